#include "geometry/boxtree.h"
#include "geometry/coordinates.h"
#include "geometry/curve.h"

#include <algorithm>
#include <limits>

namespace
{

/// A point of a curve and its squared distance from another point.
template <class R> struct FootPoint
{
  std::array<R, 3> point = {};
  R squaredDistance = std::numeric_limits<R>::infinity();
};

template <class T> std::array<Real<T>, 3> inSpace(const T* coordinates, int space)
{
  std::array<Real<T>, 3> point = {};
  std::copy_n(coordinates, space, point.begin());
  return point;
}

template <class R>
FootPoint<R> closestOnSegment(const std::array<R, 3>& p, const std::array<R, 3>& a, const std::array<R, 3>& b)
{
  R along = 0, length2 = 0;
  for (std::size_t k = 0; k < 3; ++k)
  {
    along += (b[k] - a[k]) * (p[k] - a[k]);
    length2 += (b[k] - a[k]) * (b[k] - a[k]);
  }
  const R share = length2 > 0 ? std::clamp<R>(along / length2, 0, 1) : 0;
  FootPoint<R> foot;
  for (std::size_t k = 0; k < 3; ++k) foot.point[k] = share < 1 ? a[k] + share * (b[k] - a[k]) : b[k];
  foot.squaredDistance = squaredDistance(p.data(), foot.point.data(), 3);
  return foot;
}

/// Edge i; of a single vertex, that vertex.
template <class T> FootPoint<Real<T>> closestOnEdge(const Curve<T>& curve, int i, const std::array<Real<T>, 3>& point)
{
  const int next = i + 1 < curve.getSize() ? i + 1 : 0;
  return closestOnSegment(point, inSpace(curve.data(i), curve.getSpace()), inSpace(curve.data(next), curve.getSpace()));
}

template <class T> BoxTree<Real<T>> edgeTree(const Curve<T>& curve, int numEdges)
{
  std::vector<TreeBox<Real<T>>> boxes(static_cast<std::size_t>(numEdges));
  for (int i = 0; i < numEdges; ++i)
    for (const int vertex : {i, i + 1 < curve.getSize() ? i + 1 : 0})
      boxes[static_cast<std::size_t>(i)].add(inSpace(curve.data(vertex), curve.getSpace()));
  return BoxTree<Real<T>>(std::move(boxes));
}

/// Number of edges, one vertex of an open curve taken for an edge.
template <class T> int numSegments(const Curve<T>& curve)
{
  return std::max(curve.getNumEdges(), std::min(curve.getSize(), 1));
}

} // namespace

template <class T> Vector<Real<T>> Curve<T>::closestPoint(const Vector<T>& point) const
{
  const char* const where = "Vector<T> Curve<T>::closestPoint(const Vector<T>&) const";
  const int space = this->getSpace();
  if (point.getSize() != space || space > 3) throw SizeError(where, "The point has another dimension");
  const std::array<Real<T>, 3> from = inSpace(point.data(), space);
  FootPoint<Real<T>> closest;
  for (int i = 0; i < numSegments(*this); ++i)
    if (const FootPoint<Real<T>> foot = closestOnEdge(*this, i, from); foot.squaredDistance < closest.squaredDistance)
      closest = foot;
  if (!(closest.squaredDistance < std::numeric_limits<Real<T>>::infinity()))
    throw SizeError(where, "There is no vertex at a finite distance");
  Vector<Real<T>> result(space);
  std::copy_n(closest.point.begin(), space, result.begin());
  return result;
}

template <class T> Real<T> Curve<T>::resamplingError(const Curve<T>& resampled) const
{
  const char* const where = "T Curve<T>::resamplingError(const Curve<T>&) const";
  const int size = this->getSize(), space = this->getSpace();
  if (resampled.getSpace() != space || space > 3) throw SizeError(where, "The curves have different dimensions");
  if (size == 0) return 0;
  const BoxTree<Real<T>> tree = edgeTree(resampled, numSegments(resampled));
  Real<T> sum = 0;
  for (int i = 0; i < size; ++i)
  {
    const std::array<Real<T>, 3> vertex = inSpace(this->data(i), space);
    sum += tree.findClosest(vertex, [&](int edge) { return closestOnEdge(resampled, edge, vertex).squaredDistance; });
  }
  if (!(sum < std::numeric_limits<Real<T>>::infinity()))
    throw SizeError(where, "There is no edge at a finite distance");
  return std::sqrt(sum / static_cast<Real<T>>(size));
}

GEOMETRY_INSTANTIATE(Curve)
