#include "geometry/curveprocessing/curvedecimation.h"

#include "geometry/coordinates.h"
#include "geometry/curveprocessing/chainsplitting.h"

#include <algorithm>

namespace
{
/// The squared distance from a point to the edge from a to b.
template <class T> Real<T> squaredDistanceToEdge(const T* point, const T* a, const T* b, int space)
{
  Real<T> along = 0, squaredLength = 0;
  for (int k = 0; k < space; ++k)
  {
    const Real<T> edge = static_cast<Real<T>>(b[k]) - static_cast<Real<T>>(a[k]);
    along += edge * (static_cast<Real<T>>(point[k]) - static_cast<Real<T>>(a[k]));
    squaredLength += edge * edge;
  }
  const Real<T> share = squaredLength > 0 ? std::clamp<Real<T>>(along / squaredLength, 0, 1) : 0;
  Real<T> sum = 0;
  for (int k = 0; k < space; ++k)
  {
    const Real<T> start = static_cast<Real<T>>(a[k]);
    const Real<T> offset = static_cast<Real<T>>(point[k]) - start - share * (static_cast<Real<T>>(b[k]) - start);
    sum += offset * offset;
  }
  return sum;
}
} // namespace

template <class T> void CurveDecimation<T>::setTolerance(Real<T> tolerance)
{
  if (!(tolerance >= 0)) throw ValueError("void CurveDecimation<T>::setTolerance(T)", "The tolerance is negative");
  _tolerance = tolerance;
}

template <class T> void CurveDecimation<T>::apply(const Curve<T>& curve, Curve<T>& out) const
{
  const int size = curve.getSize(), space = curve.getSpace();
  const auto findSplit = [&curve, size, space, this](int first, int last)
  {
    const T *const a = curve.data(first), *const b = curve.data(last < size ? last : 0);
    Real<T> farthest = _tolerance * _tolerance;
    int split = -1;
    for (int i = first + 1; i < last; ++i)
    {
      const Real<T> candidate = squaredDistanceToEdge(curve.data(i), a, b, space);
      if (!(candidate > farthest)) continue;
      farthest = candidate;
      split = i;
    }
    return split;
  };
  out = curveThroughSplits(curve, findSplit);
}

GEOMETRY_INSTANTIATE(CurveDecimation)
