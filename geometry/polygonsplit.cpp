#include "geometry/polygonsplit.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <numeric>
#include <span>
#include <tuple>
#include <utility>

namespace
{

/// An edge that ends at a point where vertices touch, seen from there.
template <class R> struct Ray
{
  PlanePoint<R> end;
  int vertex;  // where the edge begins
  bool leaves; // begins at the point: the inside of the polygon follows counter-clockwise
};

template <class R> bool isUpper(const PlanePoint<R>& centre, const PlanePoint<R>& p)
{
  return p.y > centre.y || (p.y == centre.y && p.x > centre.x);
}

/// Order of directions around a centre, counter-clockwise from the right.
template <class R> bool isBefore(const PlanePoint<R>& centre, const PlanePoint<R>& p, const PlanePoint<R>& q)
{
  const bool pUpper = isUpper(centre, p), qUpper = isUpper(centre, q);
  return pUpper != qUpper ? pUpper : orientation(centre, p, q) > 0;
}

/// One behind the last of the rays in the direction of a ray.
template <class R> std::size_t endOfDirection(const PlanePoint<R>& centre, std::span<const Ray<R>> rays, std::size_t k)
{
  std::size_t end = k + 1;
  while (end < rays.size() && !isBefore(centre, rays[k].end, rays[end].end)) ++end;
  return end;
}

/// Begins the rays with a direction in which more edges leave than arrive, or the other way round: only there is it
/// known which side is the inside. False when there is none.
template <class R> bool beginWhereInsideIsKnown(const PlanePoint<R>& centre, std::vector<Ray<R>>& rays)
{
  for (std::size_t k = 0, end = 0; k < rays.size(); k = end)
  {
    end = endOfDirection<R>(centre, rays, k);
    const auto first = rays.begin() + static_cast<std::ptrdiff_t>(k);
    const auto numLeaving =
        std::count_if(first, rays.begin() + static_cast<std::ptrdiff_t>(end), [](const Ray<R>& r) { return r.leaves; });
    if (2 * static_cast<std::size_t>(numLeaving) == end - k) continue;
    std::rotate(rays.begin(), first, rays.end());
    return true;
  }
  return false;
}

/// Sorts edges of the same direction so that all around the point they leave and arrive in turn. False when that cannot
/// be: the polygon crosses itself.
template <class R> bool alternate(const PlanePoint<R>& centre, std::vector<Ray<R>>& rays)
{
  const std::size_t firstEnd = endOfDirection<R>(centre, rays, 0);
  const auto isLeaving = [](const Ray<R>& r) { return r.leaves; };
  const auto numLeaving = std::count_if(rays.begin(), rays.begin() + static_cast<std::ptrdiff_t>(firstEnd), isLeaving);
  bool leaves = 2 * static_cast<std::size_t>(numLeaving) > firstEnd;
  for (std::size_t k = 0, end = firstEnd; k < rays.size(); ++k, leaves = !leaves)
  {
    if (k == end) end = endOfDirection<R>(centre, rays, k);
    std::size_t other = k;
    while (other < end && rays[other].leaves != leaves) ++other;
    if (other == end) return false;
    std::swap(rays[k], rays[other]);
  }
  return true;
}

/// The cycles of vertices into which a polygon is split.
template <class R> class SplitCycles
{
public:
  using Triangle = typename PolygonSplit<R>::Triangle;

  explicit SplitCycles(const std::vector<PlanePoint<R>>& points);

  void split();
  /// The vertices of each cycle.
  std::vector<std::vector<int>> cycles() const;
  const std::vector<Triangle>& getFlatTriangles() const { return _flatTriangles; }
  int getNumSplits() const { return _numSplits; }

private:
  int& next(int i) { return _next[static_cast<std::size_t>(i)]; }
  int& previous(int i) { return _previous[static_cast<std::size_t>(i)]; }
  const PlanePoint<R>& at(int i) const { return _points[static_cast<std::size_t>(i)]; }
  std::vector<int> verticesThatMayTouch() const;
  std::vector<int> sortedVertices() const;
  void removeRepeated();
  void splitAt(std::span<const int> vertices);
  std::vector<Ray<R>> raysAround(std::span<const int> vertices);
  void connect(int u, int w);
  void link(int i, int j);

  const std::vector<PlanePoint<R>>& _points;
  std::vector<int> _next;
  std::vector<int> _previous;
  std::vector<bool> _isRemoved;
  std::vector<Triangle> _flatTriangles;
  int _size;
  int _numSplits = 0;
};

template <class R> SplitCycles<R>::SplitCycles(const std::vector<PlanePoint<R>>& points)
  : _points(points),
    _next(points.size()),
    _previous(points.size()),
    _isRemoved(points.size()),
    _size(static_cast<int>(points.size()))
{
  std::iota(_next.begin(), _next.end(), 1);
  std::iota(_previous.begin(), _previous.end(), -1);
  _next.back() = 0;
  _previous.front() = _size - 1;
}

template <class R> void SplitCycles<R>::split()
{
  const std::vector<int> vertices = sortedVertices();
  const auto touch = [&](int i, int j) { return at(i) == at(j); };
  auto first = std::adjacent_find(vertices.begin(), vertices.end(), touch);
  if (first == vertices.end()) return;
  removeRepeated();
  while (first != vertices.end())
  {
    const auto last = std::find_if(first, vertices.end(), [&](int i) { return !touch(i, *first); });
    splitAt({first, last});
    first = std::adjacent_find(last, vertices.end(), touch);
  }
}

/// The finite vertices that may share their point with others: those whose place in a hash table is taken twice.
template <class R> std::vector<int> SplitCycles<R>::verticesThatMayTouch() const
{
  const int numBits = std::bit_width(8 * _points.size());
  const auto place = [numBits](const PlanePoint<R>& p)
  {
    constexpr std::uint64_t golden = 0x9e3779b97f4a7c15; // spreads close values
    const auto bits = [](R x) { return std::bit_cast<std::uint64_t>(static_cast<double>(x) + 0.0); }; // -0 becomes 0
    return static_cast<std::size_t>(((bits(p.x) * golden ^ bits(p.y)) * golden) >> (64 - numBits));
  };
  std::vector<std::uint8_t> counts(std::size_t{1} << numBits); // 2 stands for all above
  for (const PlanePoint<R>& p : _points)
    if (std::uint8_t& count = counts[place(p)]; count < 2) ++count;
  std::vector<int> vertices;
  for (int i = 0; i < _size; ++i)
    if (counts[place(at(i))] == 2 && std::isfinite(at(i).x) && std::isfinite(at(i).y)) vertices.push_back(i);
  return vertices;
}

/// The vertices that may touch others, those at the same point beside each other.
template <class R> std::vector<int> SplitCycles<R>::sortedVertices() const
{
  std::vector<int> vertices = verticesThatMayTouch();
  std::sort(vertices.begin(), vertices.end(),
            [&](int i, int j) { return std::tie(at(i).x, at(i).y, i) < std::tie(at(j).x, at(j).y, j); });
  return vertices;
}

/// Removes vertices that repeat the one before: they have no direction.
template <class R> void SplitCycles<R>::removeRepeated()
{
  const int n = _size;
  for (int i = 0; i < n && _size > 3; ++i)
  {
    if (at(i) != at(previous(i))) continue;
    _flatTriangles.push_back({previous(i), i, next(i)});
    link(previous(i), next(i));
    _isRemoved[static_cast<std::size_t>(i)] = true;
    --_size;
  }
}

/// Connects the two edges beside each sector of the inside around a point.
template <class R> void SplitCycles<R>::splitAt(std::span<const int> vertices)
{
  std::vector<Ray<R>> rays = raysAround(vertices);
  const PlanePoint<R>& centre = at(vertices.front());
  if (rays.size() < 4 || !beginWhereInsideIsKnown(centre, rays) || !alternate(centre, rays)) return;
  for (std::size_t k = 0; k < rays.size(); ++k)
  {
    const Ray<R>&ray = rays[k], &following = rays[k + 1 < rays.size() ? k + 1 : 0];
    if (ray.leaves) connect(ray.vertex, next(following.vertex));
  }
}

/// The edges that end at a point, counter-clockwise.
template <class R> std::vector<Ray<R>> SplitCycles<R>::raysAround(std::span<const int> vertices)
{
  std::vector<Ray<R>> rays;
  for (const int i : vertices)
  {
    if (_isRemoved[static_cast<std::size_t>(i)]) continue;
    rays.push_back({at(next(i)), i, true});
    rays.push_back({at(previous(i)), previous(i), false});
  }
  const PlanePoint<R>& centre = at(vertices.front());
  std::stable_sort(rays.begin(), rays.end(),
                   [&](const Ray<R>& a, const Ray<R>& b) { return isBefore(centre, a.end, b.end); });
  return rays;
}

/// Splits a cycle along the diagonal of no length between two vertices: each part keeps one of them and cuts the other
/// one as an ear.
template <class R> void SplitCycles<R>::connect(int u, int w)
{
  if (u == w) return;
  const int beforeU = previous(u), beforeW = previous(w);
  _flatTriangles.push_back({beforeW, w, u});
  _flatTriangles.push_back({beforeU, u, w});
  link(beforeW, u);
  link(beforeU, w);
  ++_numSplits;
}

template <class R> void SplitCycles<R>::link(int i, int j)
{
  next(i) = j;
  previous(j) = i;
}

template <class R> std::vector<std::vector<int>> SplitCycles<R>::cycles() const
{
  std::vector<std::vector<int>> cycles;
  std::vector<bool> isDone = _isRemoved;
  for (std::size_t start = 0; start < _next.size(); ++start)
  {
    if (isDone[start]) continue;
    std::vector<int>& cycle = cycles.emplace_back();
    for (std::size_t i = start; !isDone[i]; i = static_cast<std::size_t>(_next[i]))
    {
      isDone[i] = true;
      cycle.push_back(static_cast<int>(i));
    }
  }
  return cycles;
}

} // namespace

template <class R> PolygonSplit<R>::PolygonSplit(const std::vector<PlanePoint<R>>& points)
{
  if (points.empty()) return;
  SplitCycles<R> polygon(points);
  polygon.split();
  _parts = polygon.cycles();
  _flatTriangles = polygon.getFlatTriangles();
  // A connection between two parts would have joined them.
  const bool isSplit = _parts.size() == static_cast<std::size_t>(polygon.getNumSplits()) + 1 &&
                       std::none_of(_parts.begin(), _parts.end(), [](const auto& part) { return part.size() < 2; });
  if (!isSplit)
  {
    _parts = SplitCycles<R>(points).cycles();
    _flatTriangles.clear();
  }
  std::erase_if(_parts, [](const auto& part) { return part.size() < 3; });
}

template class PolygonSplit<double>;
template class PolygonSplit<long double>;
