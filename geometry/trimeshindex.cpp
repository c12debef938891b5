#include "geometry/trimeshindex.h"

#include "geometry/predicates.h"

#include <algorithm>
#include <limits>

TriangleStars::TriangleStars(const int* corners, int numSlots, int numVertices)
  : _first(static_cast<std::size_t>(numVertices) + 1)
{
  const std::size_t numCorners = 3 * static_cast<std::size_t>(numSlots);
  const auto isFirstUse = [corners, numVertices](std::size_t i) // a degenerate triangle may name a vertex twice
  {
    const int vertex = corners[i];
    const int* const triangle = corners + i / 3 * 3;
    return vertex >= 0 && vertex < numVertices && std::find(triangle, corners + i, vertex) == corners + i;
  };
  for (std::size_t i = 0; i < numCorners; ++i)
    if (isFirstUse(i)) ++_first[static_cast<std::size_t>(corners[i]) + 1];
  for (std::size_t v = 1; v < _first.size(); ++v) _first[v] += _first[v - 1];
  _triangles.resize(_first.back());
  std::vector<std::size_t> next(_first.begin(), _first.end() - 1);
  for (std::size_t i = 0; i < numCorners; ++i)
    if (isFirstUse(i)) _triangles[next[static_cast<std::size_t>(corners[i])]++] = static_cast<int>(i / 3);
}

namespace
{

template <class R, class T> Vector3d<R> toPoint(const T* coordinates)
{
  return {static_cast<R>(coordinates[0]), static_cast<R>(coordinates[1]), static_cast<R>(coordinates[2])};
}

template <class R> Vector3d<R> along(const Vector3d<R>& a, const Vector3d<R>& direction, R factor)
{
  return {a[0] + factor * direction[0], a[1] + factor * direction[1], a[2] + factor * direction[2]};
}

template <class R> Vector3d<R> difference(const Vector3d<R>& b, const Vector3d<R>& a)
{
  return {b[0] - a[0], b[1] - a[1], b[2] - a[2]};
}

template <class R> R squaredDistance(const Vector3d<R>& a, const Vector3d<R>& b)
{
  const Vector3d<R> d = difference(b, a);
  return dotProduct(d, d);
}

template <class R> Vector3d<R> closestOnSegment(const Vector3d<R>& p, const Vector3d<R>& a, const Vector3d<R>& b)
{
  const Vector3d<R> ab = difference(b, a);
  const R length2 = dotProduct(ab, ab);
  if (!(length2 > 0)) return a;
  return along(a, ab, std::clamp<R>(dotProduct(difference(p, a), ab) / length2, 0, 1));
}

template <class R>
Vector3d<R> closestOnEdges(const Vector3d<R>& p, const Vector3d<R>& a, const Vector3d<R>& b, const Vector3d<R>& c)
{
  Vector3d<R> closest = closestOnSegment(p, a, b);
  for (const Vector3d<R>& candidate : {closestOnSegment(p, b, c), closestOnSegment(p, c, a)})
    if (squaredDistance(p, candidate) < squaredDistance(p, closest)) closest = candidate;
  return closest;
}

/// The foot of the perpendicular when it is in the triangle, else the closest point of its edges.
template <class R>
Vector3d<R> closestOnTriangle(const Vector3d<R>& p, const Vector3d<R>& a, const Vector3d<R>& b, const Vector3d<R>& c)
{
  const Vector3d<R> ab = difference(b, a), ac = difference(c, a), ap = difference(p, a);
  const Vector3d<R> bp = difference(p, b), cp = difference(p, c);
  const R d1 = dotProduct(ab, ap), d2 = dotProduct(ac, ap), d3 = dotProduct(ab, bp), d4 = dotProduct(ac, bp),
          d5 = dotProduct(ab, cp), d6 = dotProduct(ac, cp);
  const R weightA = d3 * d6 - d5 * d4, weightB = d5 * d2 - d1 * d6, weightC = d1 * d4 - d3 * d2;
  const R sum = weightA + weightB + weightC;
  if (!(weightA > 0 && weightB > 0 && weightC > 0 && sum > 0)) return closestOnEdges(p, a, b, c);
  return along(along(a, ab, weightB / sum), ac, weightC / sum);
}

template <class T> std::vector<TreeBox<Real<T>>> triangleBoxes(const TriangleView<T>& triangles)
{
  std::vector<TreeBox<Real<T>>> boxes(
      static_cast<std::size_t>(triangles.numSlots)); // that of an empty slot stays empty
  for (std::size_t i = 0; i < boxes.size(); ++i)
    for (int k = 0; k < 3 && triangles.corners[3 * i] >= 0; ++k)
      boxes[i].add(toPoint<Real<T>>(triangles.corner(static_cast<int>(i), k)));
  return boxes;
}

/// The orientation of a, b and p in the plane, p being moved by a step in x and a far smaller one in y: 0 only when a
/// equals b.
template <class P> int orientationAside(const PlanePoint<P>& a, const PlanePoint<P>& b, const PlanePoint<P>& p)
{
  if (const int exact = orientation(a, b, p); exact != 0) return exact;
  if (a.y != b.y) return a.y > b.y ? 1 : -1;
  return a.x < b.x ? 1 : a.x > b.x ? -1 : 0;
}

/// Whether a ray from p upwards meets the triangle.
template <class P> bool meetsRay(const Vector3d<P>& a, const Vector3d<P>& b, const Vector3d<P>& c, const Vector3d<P>& p)
{
  const PlanePoint<P> a2 = {a[0], a[1]}, b2 = {b[0], b[1]}, c2 = {c[0], c[1]}, p2 = {p[0], p[1]};
  const int side = orientation(a2, b2, c2);
  return side != 0 && orientationAside(a2, b2, p2) == side && orientationAside(b2, c2, p2) == side &&
         orientationAside(c2, a2, p2) == side && orientation(a, b, c, p) == side;
}

template <class P> PlanePoint<P> project(const Vector3d<P>& a, std::size_t axis)
{
  return {a[(axis + 1) % 3], a[(axis + 2) % 3]};
}

template <class P> bool isOnSegment(const Vector3d<P>& a, const Vector3d<P>& b, const Vector3d<P>& p)
{
  for (std::size_t axis = 0; axis < 3; ++axis)
    if (!isOnSegment(project(a, axis), project(b, axis), project(p, axis))) return false;
  return true;
}

/// Whether p, which is in the plane of the triangle, lies in the triangle or on its border.
template <class P>
bool isInTriangle(const Vector3d<P>& a, const Vector3d<P>& b, const Vector3d<P>& c, const Vector3d<P>& p)
{
  for (std::size_t axis = 0; axis < 3; ++axis)
  {
    const PlanePoint<P> a2 = project(a, axis), b2 = project(b, axis), c2 = project(c, axis), p2 = project(p, axis);
    const int side = orientation(a2, b2, c2);
    if (side != 0)
      return orientation(a2, b2, p2) * side >= 0 && orientation(b2, c2, p2) * side >= 0 &&
             orientation(c2, a2, p2) * side >= 0;
  }
  return isOnSegment(a, b, p) || isOnSegment(b, c, p) || isOnSegment(c, a, p); // a triangle without area
}

} // namespace

template <class T> TriangleTree<T>::TriangleTree(const TriangleView<T>& triangles) : _tree(triangleBoxes(triangles)) {}

template <class T> Real<T> TriangleTree<T>::closestPoint(const TriangleView<T>& triangles, const Vector3d<R>& point,
                                                         Vector3d<R>& result) const
{
  R closest = std::numeric_limits<R>::infinity();
  _tree.findClosest(point,
                    [&](int triangle)
                    {
                      const Vector3d<R> candidate = closestOnTriangle(point, toPoint<R>(triangles.corner(triangle, 0)),
                                                                      toPoint<R>(triangles.corner(triangle, 1)),
                                                                      toPoint<R>(triangles.corner(triangle, 2)));
                      const R distance = squaredDistance(point, candidate);
                      if (distance < closest)
                      {
                        closest = distance;
                        result = candidate;
                      }
                      return distance;
                    });
  return closest;
}

template <class T> bool TriangleTree<T>::contains(const TriangleView<T>& triangles, const Vector3d<R>& point) const
{
  using P = PredicateReal<T>;
  const Vector3d<P> p = toPoint<P>(point.data());
  bool isOddCount = false;
  TreeBox<R> ray;
  ray.add(point);
  ray.high[2] = TreeBox<R>::infinity;
  const bool isOnSurface = _tree.findOverlap(ray,
                                             [&](int triangle)
                                             {
                                               const Vector3d<P> a = toPoint<P>(triangles.corner(triangle, 0)),
                                                                 b = toPoint<P>(triangles.corner(triangle, 1)),
                                                                 c = toPoint<P>(triangles.corner(triangle, 2));
                                               if (meetsRay(a, b, c, p)) isOddCount = !isOddCount;
                                               return orientation(a, b, c, p) == 0 && isInTriangle(a, b, c, p);
                                             });
  return isOnSurface || isOddCount;
}

template class TriangleTree<int>;
template class TriangleTree<float>;
template class TriangleTree<double>;
template class TriangleTree<long double>;
