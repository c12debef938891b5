#include "geometry/curveprocessing/douglaspeuckercurvedecimation.h"

#include "geometry/curveprocessing/chainsplitting.h"
#include "geometry/curveprocessing/hulltree.h"

#include <algorithm>
#include <cmath>

namespace
{
/// The vertices in the plane, that of vertex 0 once more behind them.
template <class T> std::vector<Point2d<Wide<T>>> planarPoints(const Curve<T>& curve)
{
  const char* const where = "void DouglasPeuckerCurveDecimation<T>::apply(const Curve<T>&, Curve<T>&) const";
  if (curve.getSpace() < 2) throw SizeError(where, "The curve has less than two dimensions");
  std::vector<Point2d<Wide<T>>> points;
  for (int i = 0; i < curve.getSize(); ++i)
  {
    const T* const vertex = curve.data(i);
    points.push_back({static_cast<Wide<T>>(vertex[0]), static_cast<Wide<T>>(vertex[1])});
    if (!std::isfinite(points.back().x) || !std::isfinite(points.back().y))
      throw MathError(where, "A coordinate is not finite");
  }
  if (!points.empty()) points.push_back(points[0]);
  return points;
}

/// A straight edge, and how far points deviate from it.
template <class R> class StraightEdge
{
public:
  StraightEdge(const Point2d<R>& a, const Point2d<R>& b) : _start(a), _length(std::hypot(b.x - a.x, b.y - a.y))
  {
    if (_length > 0) _direction = {(b.x - a.x) / _length, (b.y - a.y) / _length};
  }

  Point2d<R> direction() const { return _direction; }
  Point2d<R> normal() const { return {-_direction.y, _direction.x}; }
  /// The distance from the line or, when it is larger, that beyond the end of the edge.
  R deviation(const Point2d<R>& point) const
  {
    const Point2d<R> offset = {point.x - _start.x, point.y - _start.y};
    const R along = offset.dot(_direction);
    return std::max({std::abs(offset.dot(normal())), -along, along - _length});
  }

private:
  Point2d<R> _start;
  R _length;
  Point2d<R> _direction = {1, 0}; // of an edge without length, any will do
};
} // namespace

template <class T> void DouglasPeuckerCurveDecimation<T>::setTolerance(Real<T> tolerance)
{
  if (!(tolerance >= 0))
    throw ValueError("void DouglasPeuckerCurveDecimation<T>::setTolerance(T)", "The tolerance is negative");
  _tolerance = tolerance;
}

template <class T> void DouglasPeuckerCurveDecimation<T>::apply(const Curve<T>& curve, Curve<T>& out) const
{
  using R = Wide<T>;
  const HullTree<R> points(planarPoints(curve));
  const auto findSplit = [&points, this](int first, int last)
  {
    const StraightEdge<R> edge(points[first], points[last]);
    R largest = _tolerance;
    int split = -1;
    const auto visit = [&](int i)
    {
      const R candidate = edge.deviation(points[i]);
      if (!(candidate > largest) && !(split > i && candidate == largest)) return; // the first of equal ones
      largest = candidate;
      split = i;
    };
    const Point2d<R> along = edge.direction(), across = edge.normal();
    for (const Point2d<R>& direction :
         {along, across, Point2d<R>{-along.x, -along.y}, Point2d<R>{-across.x, -across.y}})
      points.visitExtremes(first + 1, last - 1, direction, visit);
    return split;
  };
  out = curveThroughSplits(curve, findSplit);
}

GEOMETRY_INSTANTIATE(DouglasPeuckerCurveDecimation)
