#include "geometry/boxtree.h"
#include "geometry/planeprojection.h"

#include <algorithm>
#include <limits>

namespace
{

template <class P> PlanePoint<P> middle(const PlanePoint<P>& a, const PlanePoint<P>& b)
{
  return {a.x / 2 + b.x / 2, a.y / 2 + b.y / 2};
}

template <class P> TreeBox<P> boxAround(const PlanePoint<P>& a, const PlanePoint<P>& b)
{
  TreeBox<P> box;
  box.add(std::array<P, 3>{a.x, a.y, 0});
  box.add(std::array<P, 3>{b.x, b.y, 0});
  return box;
}

/// True when each of the segments from a to b and from c to d has its ends strictly on both sides of the other one.
template <class P>
bool crossProperly(const PlanePoint<P>& a, const PlanePoint<P>& b, const PlanePoint<P>& c, const PlanePoint<P>& d)
{
  return orientation(a, b, c) * orientation(a, b, d) < 0 && orientation(c, d, a) * orientation(c, d, b) < 0;
}

/// The edges of a curve in a plane, in a tree.
template <class P> class PlaneEdges
{
public:
  PlaneEdges(std::vector<PlanePoint<P>> points, int numEdges)
    : _points(std::move(points)), _numEdges(numEdges), _tree(boxes())
  {
  }

  int getNumEdges() const { return _numEdges; }
  const PlanePoint<P>& begin(int edge) const { return _points[static_cast<std::size_t>(edge)]; }
  const PlanePoint<P>& end(int edge) const { return begin(next(edge)); }
  int next(int edge) const { return static_cast<std::size_t>(edge) + 1 < _points.size() ? edge + 1 : 0; }

  /// Calls visit(edge) for the edges whose boxes meet that of the segment, until it returns true.
  template <class Visit> bool findNear(const PlanePoint<P>& a, const PlanePoint<P>& b, const Visit& visit) const
  {
    return _tree.findOverlap(boxAround(a, b), visit);
  }

  /// Whether a closed curve contains the point.
  bool contains(const PlanePoint<P>& p) const
  {
    bool isOdd = false;
    TreeBox<P> ray = boxAround(p, p);
    ray.high[0] = std::numeric_limits<P>::infinity();
    const bool isOnBorder = _tree.findOverlap(ray,
                                              [&](int edge)
                                              {
                                                const PlanePoint<P>&a = begin(edge), &b = end(edge);
                                                const int side = orientation(a, b, p);
                                                if (side == 0 && isBetween(a, b, p)) return true;
                                                if ((a.y > p.y) != (b.y > p.y) && (b.y > a.y) == (side > 0))
                                                  isOdd = !isOdd;
                                                return false;
                                              });
    return isOnBorder || isOdd;
  }

  /// Whether a closed curve contains the segment: it has no crossing, and each part between its contacts is inside.
  bool contains(const PlanePoint<P>& a, const PlanePoint<P>& b) const
  {
    if (!contains(a) || !contains(b)) return false;
    std::vector<PlanePoint<P>> contacts = {a, b};
    bool isTouched = false;
    const bool isCrossed = findNear(a, b,
                                    [&](int edge)
                                    {
                                      const PlanePoint<P>&c = begin(edge), &d = end(edge);
                                      if (crossProperly(a, b, c, d)) return true;
                                      isTouched = isTouched || segmentsIntersect(a, b, c, d);
                                      if (isOnSegment(a, b, c)) contacts.push_back(c);
                                      return false;
                                    });
    if (isCrossed || !isTouched) return !isCrossed;
    std::sort(contacts.begin(), contacts.end(),
              [](const PlanePoint<P>& c, const PlanePoint<P>& d) { return c.x != d.x ? c.x < d.x : c.y < d.y; });
    for (std::size_t k = 1; k < contacts.size(); ++k)
      if (!containsPart(contacts[k - 1], contacts[k])) return false;
    return true;
  }

private:
  std::vector<TreeBox<P>> boxes() const
  {
    std::vector<TreeBox<P>> boxes;
    for (int i = 0; i < _numEdges; ++i) boxes.push_back(boxAround(begin(i), end(i)));
    return boxes;
  }
  /// The same for a part that meets the curve at its ends only, or runs along an edge.
  bool containsPart(const PlanePoint<P>& a, const PlanePoint<P>& b) const
  {
    const auto runsAlong = [&](int edge)
    { return isOnSegment(begin(edge), end(edge), a) && isOnSegment(begin(edge), end(edge), b); };
    return findNear(a, b, runsAlong) || contains(middle(a, b));
  }

  std::vector<PlanePoint<P>> _points;
  int _numEdges;
  BoxTree<P> _tree;
};

template <class T> PlaneEdges<PredicateReal<T>> planeEdges(const Curve<T>& curve, int i, int j)
{
  return {planeProjection(curve, i, j), curve.getNumEdges()};
}

/// Calls visit(edge of a, edge of b) for the edges that share a point, until it returns true.
template <class P, class Visit>
bool findIntersection(const PlaneEdges<P>& a, const PlaneEdges<P>& b, const Visit& visit)
{
  for (int i = 0; i < a.getNumEdges(); ++i)
    if (b.findNear(a.begin(i), a.end(i),
                   [&](int k) { return segmentsIntersect(a.begin(i), a.end(i), b.begin(k), b.end(k)) && visit(i, k); }))
      return true;
  return false;
}

/// Whether two edges, of which the second one follows the first, have more in common than the vertex between them.
template <class P> bool foldsBack(const PlanePoint<P>& a, const PlanePoint<P>& b, const PlanePoint<P>& c)
{
  return isOnSegment(a, b, c) || isOnSegment(b, c, a);
}

} // namespace

template <class T> double Curve<T>::twiceArea(int i, int j) const
{
  requirePlane(i, j, this->getSpace(), "double Curve<T>::twiceArea(int, int) const");
  const int size = this->getSize();
  if (_open || size < 3) return 0;
  double sum = 0;
  const T* previous = this->data(size - 1);
  for (int k = 0; k < size; ++k)
  {
    const T* const current = this->data(k);
    sum += static_cast<double>(previous[i]) * static_cast<double>(current[j]) -
           static_cast<double>(previous[j]) * static_cast<double>(current[i]);
    previous = current;
  }
  return sum;
}

template <class T> int Curve<T>::projectedAreaSign(int i, int j) const
{
  const double area = twiceArea(i, j);
  const double tolerance = Vector<T>::epsilon();
  return area > tolerance ? 1 : area < -tolerance ? -1 : 0;
}

template <class T> void Curve<T>::setClockwise(bool clockwise, int i, int j)
{
  if (projectedAreaSign(i, j) == (clockwise ? 1 : -1)) this->reverse();
}

template <class T> bool Curve<T>::contains(const Vector<T>& point, int i, int j) const
{
  const char* const where = "bool Curve<T>::contains(const Vector<T>&, int, int) const";
  requirePlane(i, j, this->getSpace(), where);
  requirePlane(i, j, point.getSize(), where);
  using P = PredicateReal<T>;
  if (_open) return false;
  const PlanePoint<P> p = {static_cast<P>(point[i]), static_cast<P>(point[j])};
  bool isInside = false;
  const int size = this->getSize();
  for (int k = 0; k < size; ++k)
  {
    const T *from = this->data(k), *to = this->data(k + 1 < size ? k + 1 : 0);
    const PlanePoint<P> a = {static_cast<P>(from[i]), static_cast<P>(from[j])};
    const PlanePoint<P> b = {static_cast<P>(to[i]), static_cast<P>(to[j])};
    if ((a.y > p.y && b.y > p.y) || (a.y < p.y && b.y < p.y) || (a.x < p.x && b.x < p.x)) continue;
    const int side = orientation(a, b, p);
    if (side == 0 && isBetween(a, b, p)) return true;
    if (side != 0 && (a.y > p.y) != (b.y > p.y) && (b.y > a.y) == (side > 0)) isInside = !isInside;
  }
  return isInside;
}

template <class T> bool Curve<T>::contains(const Curve<T>& curve, int i, int j) const
{
  const char* const where = "bool Curve<T>::contains(const Curve<T>&, int, int) const";
  requirePlane(i, j, this->getSpace(), where);
  requirePlane(i, j, curve.getSpace(), where);
  if (_open || curve.getNumEdges() == 0) return false;
  const auto border = planeEdges(*this, i, j), edges = planeEdges(curve, i, j);
  for (int k = 0; k < edges.getNumEdges(); ++k)
    if (!border.contains(edges.begin(k), edges.end(k))) return false;
  return true;
}

template <class T> bool Curve<T>::intersects(const Curve<T>& curve, int i, int j) const
{
  const char* const where = "bool Curve<T>::intersects(const Curve<T>&, int, int) const";
  requirePlane(i, j, this->getSpace(), where);
  requirePlane(i, j, curve.getSpace(), where);
  return findIntersection(planeEdges(*this, i, j), planeEdges(curve, i, j), [](int, int) { return true; });
}

template <class T>
std::vector<std::pair<int, int>> Curve<T>::intersectionIndexes(const Curve<T>& curve, int i, int j) const
{
  const char* const where =
      "std::vector<std::pair<int, int>> Curve<T>::intersectionIndexes(const Curve<T>&, int, int) const";
  requirePlane(i, j, this->getSpace(), where);
  requirePlane(i, j, curve.getSpace(), where);
  std::vector<std::pair<int, int>> edges;
  findIntersection(planeEdges(*this, i, j), planeEdges(curve, i, j),
                   [&edges](int here, int there)
                   {
                     edges.emplace_back(here, there);
                     return false;
                   });
  std::sort(edges.begin(), edges.end());
  return edges;
}

template <class T> bool Curve<T>::selfIntersects(int i, int j) const
{
  requirePlane(i, j, this->getSpace(), "bool Curve<T>::selfIntersects(int, int) const");
  auto points = planeProjection(*this, i, j);
  points.erase(std::unique(points.begin(), points.end()), points.end());
  while (!_open && points.size() > 1 && points.back() == points.front()) points.pop_back();
  const int size = static_cast<int>(points.size());
  if (size < 2 || (size == 2 && _open)) return false;
  const PlaneEdges<PredicateReal<T>> edges(std::move(points), _open ? size - 1 : size);
  const auto meets = [&edges](int a, int b)
  {
    if (a == b) return false;
    if (edges.next(a) == b) return foldsBack(edges.begin(a), edges.end(a), edges.end(b));
    if (edges.next(b) == a) return foldsBack(edges.begin(b), edges.end(b), edges.end(a));
    return segmentsIntersect(edges.begin(a), edges.end(a), edges.begin(b), edges.end(b));
  };
  for (int k = 0; k < edges.getNumEdges(); ++k)
    if (edges.findNear(edges.begin(k), edges.end(k), [&meets, k](int other) { return meets(k, other); })) return true;
  return false;
}

template <class T> Vertices<Real<T>> Curve<T>::normals(int i, int j) const
{
  requirePlane(i, j, this->getSpace(), "Vertices<T> Curve<T>::normals(int, int) const");
  using R = Real<T>;
  const int size = this->getSize();
  const int space = this->getSpace();
  Vertices<R> normals(space, size);
  R* const all = normals.data();
  const auto normalAt = [all, space](int vertex) { return all + static_cast<std::ptrdiff_t>(vertex) * space; };
  for (int k = 0; k < this->getNumEdges(); ++k)
  {
    const int next = k + 1 < size ? k + 1 : 0;
    const R dx = static_cast<R>(this->data(next)[i]) - static_cast<R>(this->data(k)[i]);
    const R dy = static_cast<R>(this->data(next)[j]) - static_cast<R>(this->data(k)[j]);
    const R length = std::hypot(dx, dy);
    for (const int vertex : {k, next})
    {
      normalAt(vertex)[i] += length > 0 ? dy / length : 0;
      normalAt(vertex)[j] -= length > 0 ? dx / length : 0;
    }
  }
  for (int k = 0; k < size; ++k)
  {
    R* const normal = normalAt(k);
    const R length = std::hypot(normal[i], normal[j]);
    for (const int axis : {i, j}) normal[axis] = length > 0 ? normal[axis] / length : 0;
  }
  return normals;
}

GEOMETRY_INSTANTIATE(Curve)
