#include "geometry/curveprocessing/curveresampling.h"

#include "geometry/coordinates.h"

#include <algorithm>
#include <numeric>

namespace
{

/// The point that divides the edge from a to b at the given fraction of its length.
template <class T> void interpolate(const T* a, const T* b, Real<T> fraction, int space, T* point)
{
  for (int k = 0; k < space; ++k)
    point[k] = toCoordinate<T>(static_cast<Real<T>>(a[k]) + fraction * (static_cast<Real<T>>(b[k]) - a[k]));
}

/// A point that moves along a curve, forwards only.
template <class T> class CurveWalk
{
public:
  CurveWalk(const Curve<T>& curve, const std::vector<Real<T>>& edgeLengths)
    : _points(curve.data()),
      _size(curve.getSize()),
      _space(curve.getSpace()),
      _edgeLengths(edgeLengths),
      _numEdges(static_cast<int>(edgeLengths.size())),
      _edgeLength(edgeLength())
  {
  }

  /// Writes the point at the given distance from the first vertex.
  void pointAt(Real<T> distanceWalked, T* point)
  {
    while (_passedLength + _edgeLength < distanceWalked && _edge + 1 < _numEdges) stepToNextEdge();
    const Real<T> fraction = _edgeLength > 0 ? (distanceWalked - _passedLength) / _edgeLength : Real<T>(0);
    interpolate(begin(), end(), std::clamp<Real<T>>(fraction, 0, 1), _space, point);
  }

private:
  const T* point(int i) const { return _points + static_cast<std::ptrdiff_t>(i) * _space; }
  const T* begin() const { return point(_edge); }
  const T* end() const { return point(_edge + 1 < _size ? _edge + 1 : 0); }
  Real<T> edgeLength() const { return _edge < _numEdges ? _edgeLengths[_edge] : 0; }

  void stepToNextEdge()
  {
    _passedLength += _edgeLength;
    ++_edge;
    _edgeLength = edgeLength();
  }

  const T* _points;
  int _size;
  int _space;
  const std::vector<Real<T>>& _edgeLengths;
  int _numEdges;
  int _edge = 0;
  Real<T> _passedLength = 0;
  Real<T> _edgeLength;
};

} // namespace

template <class T> void CurveResampling<T>::apply(const Curve<T>& curve, Curve<T>& out) const
{
  apply(curve, curve.edgeLengths(), out);
}

template <class T>
void CurveResampling<T>::apply(const Curve<T>& curve, const std::vector<Real<T>>& edgeLengths, Curve<T>& out) const
{
  if (curve.getSize() == 0)
    throw SizeError("void CurveResampling<T>::apply(const Curve<T>&, Curve<T>&) const", "The curve has no vertices");
  const int n = out.getSize();
  const int numSteps = curve.isClosed() ? n : n - 1;
  const Real<T> length = std::accumulate(edgeLengths.begin(), edgeLengths.end(), Real<T>(0));
  Curve<T> result(curve.getSpace(), n);
  result.setOpen(curve.isOpen());
  result.setName(out.getName());
  T* const points = result.data();
  CurveWalk<T> walk(curve, edgeLengths);
  for (int k = 0; k < n; ++k)
    walk.pointAt(k == 0 ? 0 : k * length / numSteps, points + static_cast<std::ptrdiff_t>(k) * curve.getSpace());
  out = result;
}

GEOMETRY_INSTANTIATE(CurveResampling)
