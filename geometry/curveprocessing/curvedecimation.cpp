#include "geometry/curveprocessing/curvedecimation.h"

#include "geometry/coordinates.h"
#include "geometry/curveprocessing/chainsplitting.h"

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
