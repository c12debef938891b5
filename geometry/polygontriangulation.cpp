#include "geometry/polygontriangulation.h"

#include "geometry/planeprojection.h"
#include "geometry/polygonsplit.h"
#include "geometry/vertexgrid.h"

#include <deque>
#include <numeric>

namespace
{

/// True when c lies strictly left of the directed segment from a to b.
template <class R> bool isLeft(const PlanePoint<R>& a, const PlanePoint<R>& b, const PlanePoint<R>& c)
{
  return orientation(a, b, c) > 0;
}

template <class R> bool isLeftOrOn(const PlanePoint<R>& a, const PlanePoint<R>& b, const PlanePoint<R>& c)
{
  return orientation(a, b, c) >= 0;
}

/// What is left of the polygon while ears are cut: a cycle of vertices.
///
/// A queue holds the vertices that may be ears. One whose diagonal an edge crosses waits for the end of that edge.
template <class R> class VertexCycle
{
public:
  explicit VertexCycle(std::vector<PlanePoint<R>> points);

  int getSize() const { return _size; }
  int next(int i) const { return _next[static_cast<std::size_t>(i)]; }
  int previous(int i) const { return _previous[static_cast<std::size_t>(i)]; }

  /// The next vertex at which to cut: an ear or, when the polygon has none, the least bad vertex.
  int nextEar();
  void cut(int ear);
  /// A vertex that has not been cut.
  int anyVertex() const { return _last; }

private:
  struct Status
  {
    bool isCut = false;
    bool isQueued = false;
    bool isPostponed = false; // its turn in the queue is moved to the end
    int blocker = -1;         // the vertex whose edge crosses the diagonal
  };
  struct Waiting
  {
    int vertex;
    int next; // place of the next one that waits for the same edge, -1 at the end
  };

  const PlanePoint<R>& at(int i) const { return _points[static_cast<std::size_t>(i)]; }
  Status& status(int i) { return _status[static_cast<std::size_t>(i)]; }
  const Status& status(int i) const { return _status[static_cast<std::size_t>(i)]; }
  bool inCone(int i, int j) const;
  bool blocks(int k, int i, int j) const;
  int crossingEdge(int ear) const;
  bool weakDiagonal(int ear);
  bool isDiagonal(int ear);
  bool isEar(int i);
  int earFromQueue();
  void enqueue(int i);
  void postpone(int i);
  void release(int edge);
  void sortIntoGrid();
  int leastBad() const;

  std::vector<PlanePoint<R>> _points;
  std::vector<int> _next;
  std::vector<int> _previous;
  std::vector<Status> _status;
  std::deque<int> _queue;
  std::vector<Waiting> _waiting;
  std::vector<int> _firstWaiting; // for the edge from each vertex to the next one
  VertexGrid<R> _grid;
  int _size;
  int _numInGrid = 0;
  int _last = 0;
  bool _mayFollowBorder = false; // set when no other ear is left: at points where the polygon touches itself
};

template <class R> VertexCycle<R>::VertexCycle(std::vector<PlanePoint<R>> points)
  : _points(std::move(points)),
    _next(_points.size()),
    _previous(_points.size()),
    _status(_points.size()),
    _firstWaiting(_points.size(), -1),
    _size(static_cast<int>(_points.size()))
{
  std::iota(_next.begin(), _next.end(), 1);
  std::iota(_previous.begin(), _previous.end(), -1);
  _next.back() = 0;
  _previous.front() = _size - 1;
  for (int i = 0; i < _size; ++i) enqueue(i);
  sortIntoGrid();
}

/// True when the diagonal from i to j begins inside the polygon's angle at i or, where that is allowed, along its
/// border.
template <class R> bool VertexCycle<R>::inCone(int i, int j) const
{
  const PlanePoint<R>&a = at(i), &b = at(j), &before = at(previous(i)), &after = at(next(i));
  const int side = _mayFollowBorder ? 0 : 1;
  if (isLeftOrOn(a, after, before)) return orientation(a, b, before) >= side && orientation(b, a, after) >= side;
  return !(isLeftOrOn(a, b, after) && isLeftOrOn(b, a, before));
}

/// True when the edge from k to the next vertex meets the diagonal from i to j outside its ends.
template <class R> bool VertexCycle<R>::blocks(int k, int i, int j) const
{
  const int l = next(k);
  if (k == i || k == j || l == i || l == j) return false;
  const PlanePoint<R>&a = at(i), &b = at(j), &c = at(k), &d = at(l);
  const bool cAtEnd = c == a || c == b;
  const bool dAtEnd = d == a || d == b;
  if (cAtEnd && dAtEnd) return false;
  if (cAtEnd) return isOnSegment(a, b, d) || (c == a ? isOnSegment(c, d, b) : isOnSegment(c, d, a));
  if (dAtEnd) return isOnSegment(a, b, c) || (d == a ? isOnSegment(c, d, b) : isOnSegment(c, d, a));
  return segmentsIntersect(a, b, c, d);
}

/// A vertex whose edge to the next one crosses the candidate diagonal between the neighbours of a convex vertex; -1
/// when there is none. An edge that comes in through the diagonal must end in the ear: it cannot leave it through the
/// sides.
template <class R> int VertexCycle<R>::crossingEdge(int ear) const
{
  const int before = previous(ear), after = next(ear);
  const PlanePoint<R>&a = at(before), &b = at(ear), &c = at(after);
  const auto [left, right] = std::minmax({a.x, b.x, c.x});
  const auto [bottom, top] = std::minmax({a.y, b.y, c.y});
  int blocker = -1;
  _grid.findNear(a, b, c,
                 [&, left = left, right = right, bottom = bottom, top = top](const typename VertexGrid<R>::Entry& entry)
                 {
                   const PlanePoint<R>& p = entry.point;
                   if (p.x < left || p.x > right || p.y < bottom || p.y > top) return false;
                   const int k = entry.vertex;
                   if (k == before || k == ear || k == after || status(k).isCut) return false;
                   if (!isLeftOrOn(c, a, p) || !isLeftOrOn(a, b, p) || !isLeftOrOn(b, c, p)) return false;
                   blocker = blocks(k, before, after) ? k : blocks(previous(k), before, after) ? previous(k) : -1;
                   return blocker >= 0;
                 });
  return blocker;
}

/// Whether no edge crosses the candidate diagonal between the neighbours of a convex vertex; otherwise the vertex waits
/// for the end of the edge that does.
template <class R> bool VertexCycle<R>::weakDiagonal(int ear)
{
  const int blocker = crossingEdge(ear);
  if (blocker < 0) return true;
  status(ear).blocker = blocker;
  int& first = _firstWaiting[static_cast<std::size_t>(blocker)];
  _waiting.push_back({ear, first});
  first = static_cast<int>(_waiting.size() - 1);
  return false;
}

/// Whether the neighbours of a convex vertex form a diagonal: inside at both ends, and crossed by no edge.
template <class R> bool VertexCycle<R>::isDiagonal(int ear)
{
  const int before = previous(ear), after = next(ear);
  return inCone(before, after) && inCone(after, before) && weakDiagonal(ear);
}

/// Whether the vertex can be cut off.
template <class R> bool VertexCycle<R>::isEar(int i)
{
  const PlanePoint<R>&a = at(previous(i)), &b = at(i), &c = at(next(i));
  if (a == b || b == c || a == c) return true; // a repeated vertex or a spike: nothing is lost
  return isLeft(a, b, c) && isDiagonal(i);
}

template <class R> int VertexCycle<R>::nextEar()
{
  int ear = earFromQueue();
  if (ear < 0 && !_mayFollowBorder)
  {
    _mayFollowBorder = true;
    for (int k = 0, i = _last; k < _size; ++k, i = next(i)) enqueue(i);
    ear = earFromQueue();
  }
  return ear >= 0 ? ear : leastBad();
}

template <class R> int VertexCycle<R>::earFromQueue()
{
  while (!_queue.empty())
  {
    const int i = _queue.front();
    _queue.pop_front();
    if (status(i).isCut) continue;
    status(i).isQueued = false;
    if (status(i).isPostponed)
      enqueue(i);
    else if (isEar(i))
      return i;
  }
  return -1;
}

/// Without ears the polygon crosses itself or lies on a line: of the next vertices a flat one is cut or, failing that,
/// a convex one.
template <class R> int VertexCycle<R>::leastBad() const
{
  constexpr int numCandidates = 100;
  int convex = -1;
  int candidate = _last;
  for (int k = 0; k < std::min(_size, numCandidates); ++k, candidate = next(candidate))
  {
    const int side = orientation(at(previous(candidate)), at(candidate), at(next(candidate)));
    if (side == 0) return candidate;
    if (convex < 0 && side > 0) convex = candidate;
  }
  return convex >= 0 ? convex : _last;
}

// Cutting changes the angles of the neighbours, and frees the vertices that an edge of the ear stood against.
// Neighbours come last again: ears in turn all around give less slender triangles.
template <class R> void VertexCycle<R>::cut(int ear)
{
  const int before = previous(ear), after = next(ear);
  _next[static_cast<std::size_t>(before)] = after;
  _previous[static_cast<std::size_t>(after)] = before;
  status(ear).isCut = true;
  --_size;
  _last = after;
  release(before);
  release(ear);
  postpone(after);
  postpone(before);
  if (2 * _size < _numInGrid) sortIntoGrid();
}

template <class R> void VertexCycle<R>::enqueue(int i)
{
  status(i).isPostponed = false;
  status(i).blocker = -1;
  if (status(i).isQueued) return;
  status(i).isQueued = true;
  _queue.push_back(i);
}

template <class R> void VertexCycle<R>::postpone(int i)
{
  if (status(i).isQueued)
    status(i).isPostponed = true;
  else
    enqueue(i);
}

/// Gives the vertices whose diagonals were crossed by an edge another try.
template <class R> void VertexCycle<R>::release(int edge)
{
  int& first = _firstWaiting[static_cast<std::size_t>(edge)];
  for (int place = first; place >= 0; place = _waiting[static_cast<std::size_t>(place)].next)
  {
    const int vertex = _waiting[static_cast<std::size_t>(place)].vertex;
    if (status(vertex).blocker == edge && !status(vertex).isCut) enqueue(vertex);
  }
  first = -1;
}

template <class R> void VertexCycle<R>::sortIntoGrid()
{
  std::vector<int> vertices(static_cast<std::size_t>(_size));
  int vertex = _last;
  for (int& entry : vertices)
  {
    entry = vertex;
    vertex = next(vertex);
  }
  _grid.build(_points, vertices);
  _numInGrid = _size;
}

/// Adds the triangles of the polygon of some of the points to a mesh of them all.
template <class R, class T>
void triangulatePart(const std::vector<PlanePoint<R>>& points, const std::vector<int>& vertices, TriMesh<T>& mesh)
{
  std::vector<PlanePoint<R>> corners;
  corners.reserve(vertices.size());
  for (const int vertex : vertices) corners.push_back(points[static_cast<std::size_t>(vertex)]);
  VertexCycle<R> cycle(std::move(corners));
  const auto add = [&](int corner)
  {
    const auto vertex = [&](int k) { return vertices[static_cast<std::size_t>(k)]; };
    mesh.addTriangle(vertex(cycle.previous(corner)), vertex(corner), vertex(cycle.next(corner)));
  };
  while (cycle.getSize() > 3)
  {
    const int ear = cycle.nextEar();
    add(ear);
    cycle.cut(ear);
  }
  add(cycle.anyVertex());
}

} // namespace

template <class T> const TriMesh<T>& PolygonTriangulation<T>::apply(const Curve<T>& curve, int i, int j)
{
  requirePlane(i, j, curve.getSpace(), "const TriMesh<T>& PolygonTriangulation<T>::apply(const Curve<T>&, int, int)");
  _mesh = TriMesh<T>(static_cast<const Vertices<T>&>(curve));
  if (curve.getSize() < 3) return _mesh;
  _mesh.reserveTriangles(curve.getSize() - 2);
  const std::vector<PlanePoint<PredicateReal<T>>> points = planeProjection(curve, i, j);
  const PolygonSplit<PredicateReal<T>> split(points);
  for (const auto& [a, b, c] : split.getFlatTriangles()) _mesh.addTriangle(a, b, c);
  for (const std::vector<int>& part : split.getParts()) triangulatePart(points, part, _mesh);
  return _mesh;
}

GEOMETRY_INSTANTIATE_REAL(PolygonTriangulation)
