#include "geometry/polygontriangulation.h"

#include <type_traits>
#include <vector>

namespace
{

/// Products of float coordinates are exact in double.
template <class T> using Plane = std::conditional_t<std::is_same_v<T, long double>, long double, double>;

template <class R> struct Point
{
  R x;
  R y;
  bool operator==(const Point&) const = default;
};

/// Twice the signed area of a triangle.
template <class R> R twiceArea(const Point<R>& a, const Point<R>& b, const Point<R>& c)
{
  return (b.x - a.x) * (c.y - a.y) - (c.x - a.x) * (b.y - a.y);
}

/// True when c lies strictly left of the directed segment from a to b.
template <class R> bool isLeft(const Point<R>& a, const Point<R>& b, const Point<R>& c)
{
  return twiceArea(a, b, c) > 0;
}

template <class R> bool isLeftOrOn(const Point<R>& a, const Point<R>& b, const Point<R>& c)
{
  return twiceArea(a, b, c) >= 0;
}

/// True when c, which is on the line through a and b, lies between them, both included.
template <class R> bool isBetween(const Point<R>& a, const Point<R>& b, const Point<R>& c)
{
  if (a.x != b.x) return (a.x <= c.x && c.x <= b.x) || (a.x >= c.x && c.x >= b.x);
  return (a.y <= c.y && c.y <= b.y) || (a.y >= c.y && c.y >= b.y);
}

/// True when c lies on the segment from a to b.
template <class R> bool isOn(const Point<R>& a, const Point<R>& b, const Point<R>& c)
{
  return twiceArea(a, b, c) == 0 && isBetween(a, b, c);
}

/// True when two segments share a point.
template <class R> bool intersect(const Point<R>& a, const Point<R>& b, const Point<R>& c, const Point<R>& d)
{
  const R abc = twiceArea(a, b, c), abd = twiceArea(a, b, d);
  if ((abc > 0 && abd > 0) || (abc < 0 && abd < 0)) return false;
  const R cda = twiceArea(c, d, a), cdb = twiceArea(c, d, b);
  if ((cda > 0 && cdb > 0) || (cda < 0 && cdb < 0)) return false;
  if (abc != 0 && abd != 0 && cda != 0 && cdb != 0) return true;
  return isOn(a, b, c) || isOn(a, b, d) || isOn(c, d, a) || isOn(c, d, b);
}

/// What is left of the polygon while ears are cut: a cycle of vertices.
template <class R> class VertexCycle
{
public:
  explicit VertexCycle(std::vector<Point<R>> points);

  int getSize() const { return _size; }
  int next(int i) const { return _next[i]; }
  int previous(int i) const { return _previous[i]; }

  /// The next vertex at which to cut, from vertex i on: an ear or, when the polygon has none, the least bad vertex.
  int nextEar(int i);
  void cut(int ear);

private:
  // What stands against cutting a vertex: nothing, the shape of the angle there, or else the edge from this vertex on.
  static constexpr int isEar = -1;
  static constexpr int badAngle = -2;
  static constexpr int isCut = -3;

  const Point<R>& at(int i) const { return _points[i]; }
  bool inCone(int i, int j) const;
  bool blocks(int k, int i, int j) const;
  int weakDiagonalBlocker(int i, int j) const;
  int obstacle(int i) const;
  int findEar(int i) const;
  void refresh();
  int leastBad(int i) const;

  std::vector<Point<R>> _points;
  std::vector<int> _next;
  std::vector<int> _previous;
  std::vector<int> _obstacle;
  int _size;
};

template <class R> VertexCycle<R>::VertexCycle(std::vector<Point<R>> points)
  : _points(std::move(points)),
    _next(_points.size()),
    _previous(_points.size()),
    _obstacle(_points.size()),
    _size(static_cast<int>(_points.size()))
{
  for (int i = 0; i < _size; ++i)
  {
    _next[i] = i + 1 < _size ? i + 1 : 0;
    _previous[i] = i > 0 ? i - 1 : _size - 1;
  }
  refresh();
}

/// True when the diagonal from i to j begins inside the polygon's angle at i.
template <class R> bool VertexCycle<R>::inCone(int i, int j) const
{
  const Point<R>&a = at(i), &b = at(j), &before = at(_previous[i]), &after = at(_next[i]);
  if (isLeftOrOn(a, after, before)) return isLeft(a, b, before) && isLeft(b, a, after);
  return !(isLeftOrOn(a, b, after) && isLeftOrOn(b, a, before));
}

/// True when the edge from k to the next vertex meets the diagonal from i to j outside its ends.
template <class R> bool VertexCycle<R>::blocks(int k, int i, int j) const
{
  const int l = _next[k];
  if (k == i || k == j || l == i || l == j) return false;
  const Point<R>&a = at(i), &b = at(j), &c = at(k), &d = at(l);
  const bool cAtEnd = c == a || c == b;
  const bool dAtEnd = d == a || d == b;
  if (cAtEnd && dAtEnd) return false;
  if (cAtEnd) return isOn(a, b, d) || (c == a ? isOn(c, d, b) : isOn(c, d, a));
  if (dAtEnd) return isOn(a, b, c) || (d == a ? isOn(c, d, b) : isOn(c, d, a));
  return intersect(a, b, c, d);
}

/// The first vertex k whose edge to the next one crosses the candidate diagonal from i to j; isEar when there is none.
template <class R> int VertexCycle<R>::weakDiagonalBlocker(int i, int j) const
{
  for (int k = _next[i]; k != i; k = _next[k])
    if (blocks(k, i, j)) return k;
  return isEar;
}

/// What stands against cutting vertex i.
template <class R> int VertexCycle<R>::obstacle(int i) const
{
  const int before = _previous[i], after = _next[i];
  const Point<R>&a = at(before), &b = at(i), &c = at(after);
  if (a == b || b == c || a == c) return isEar; // a repeated vertex or a spike: nothing is lost
  if (!isLeft(a, b, c) || !inCone(before, after) || !inCone(after, before)) return badAngle;
  return weakDiagonalBlocker(before, after);
}

template <class R> int VertexCycle<R>::nextEar(int i)
{
  int ear = findEar(i);
  if (ear >= 0) return ear;
  refresh();
  ear = findEar(i);
  return ear >= 0 ? ear : leastBad(i);
}

template <class R> int VertexCycle<R>::findEar(int i) const
{
  for (int k = 0; k < _size; ++k, i = _next[i])
    if (_obstacle[i] == isEar) return i;
  return -1;
}

template <class R> void VertexCycle<R>::refresh()
{
  for (int i = 0; i < static_cast<int>(_points.size()); ++i)
    if (_obstacle[i] != isCut) _obstacle[i] = obstacle(i);
}

/// Without ears the polygon crosses itself or lies on a line: a flat vertex is cut first, then a convex one.
template <class R> int VertexCycle<R>::leastBad(int i) const
{
  int convex = -1;
  int candidate = i;
  for (int k = 0; k < _size; ++k, candidate = _next[candidate])
  {
    const R area = twiceArea(at(_previous[candidate]), at(candidate), at(_next[candidate]));
    if (area == 0) return candidate;
    if (convex < 0 && area > 0) convex = candidate;
  }
  return convex >= 0 ? convex : i;
}

// Cutting changes the angles of the neighbours, and frees the vertices that an edge of the ear stood against.
template <class R> void VertexCycle<R>::cut(int ear)
{
  const int before = _previous[ear], after = _next[ear];
  _next[before] = after;
  _previous[after] = before;
  _obstacle[ear] = isCut;
  --_size;
  if (_size <= 3) return;
  _obstacle[before] = obstacle(before);
  _obstacle[after] = obstacle(after);
  for (int i = 0; i < static_cast<int>(_points.size()); ++i)
    if (_obstacle[i] == ear || _obstacle[i] == before) _obstacle[i] = obstacle(i);
}

template <class T> std::vector<Point<Plane<T>>> projection(const Curve<T>& curve, int i, int j)
{
  std::vector<Point<Plane<T>>> points(curve.getSize());
  for (int k = 0; k < curve.getSize(); ++k) points[k] = {curve.data(k)[i], curve.data(k)[j]};
  return points;
}

} // namespace

template <class T> const TriMesh<T>& PolygonTriangulation<T>::apply(const Curve<T>& curve, int i, int j)
{
  _mesh = TriMesh<T>(static_cast<const Vertices<T>&>(curve));
  if (curve.getSize() < 3) return _mesh;
  _mesh.reserveTriangles(curve.getSize() - 2);
  VertexCycle<Plane<T>> cycle(projection(curve, i, j));
  for (int vertex = 0; cycle.getSize() > 2;)
  {
    const int ear = cycle.getSize() > 3 ? cycle.nextEar(vertex) : vertex;
    const int after = cycle.next(ear);
    _mesh.addTriangle(cycle.previous(ear), ear, after);
    cycle.cut(ear);
    vertex = cycle.getSize() > 3 ? cycle.next(after) : after; // ears in turn all around give less slender triangles
  }
  return _mesh;
}

GEOMETRY_INSTANTIATE_REAL(PolygonTriangulation)
