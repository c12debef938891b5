#include "analysis/spatial/curveedges.h"

#include <algorithm>
#include <array>
#include <limits>
#include <utility>

namespace
{

template <class R> R square(R x)
{
  return x * x;
}

} // namespace

template <class R> CurveEdges<R>::CurveEdges(std::vector<PlanePoint<R>> vertices) : _vertices(std::move(vertices))
{
  buildRows();
  buildBoxes();
}

/// As many rows as edges, but fewer where many edges reach through all of them.
template <class R> void CurveEdges<R>::buildRows()
{
  const auto byY = [](const PlanePoint<R>& a, const PlanePoint<R>& b) { return a.y < b.y; };
  const auto [lowest, highest] = std::minmax_element(_vertices.begin(), _vertices.end(), byY);
  _lowY = lowest->y;
  _highY = highest->y;
  const std::size_t numEdges = _vertices.size();
  const auto forEachRow = [this, numEdges](const auto& visit)
  {
    for (std::size_t i = 0; i < numEdges; ++i)
    {
      const auto [low, high] = std::minmax(begin(i).y, end(i).y);
      for (std::size_t row = rowOf(low); row <= rowOf(high); ++row) visit(row, i);
    }
  };
  R height = 0; // of all edges
  for (std::size_t i = 0; i < numEdges; ++i) height += std::abs(end(i).y - begin(i).y);
  const R span = _highY - _lowY;
  const R crossings = span > 0 ? height / span : R(1); // edges in the mean row
  const auto numRows = static_cast<std::size_t>(std::max(R(1), 8 * static_cast<R>(numEdges) / (crossings + 2)));
  _rowsPerLength = span > 0 ? static_cast<R>(numRows) / span : R(0);
  if (!std::isfinite(_rowsPerLength)) _rowsPerLength = 0;
  _rowBegins.assign(numRows + 2, 0); // the last row holds what lies at the very top
  forEachRow([this](std::size_t row, std::size_t) { ++_rowBegins[row + 1]; });
  for (std::size_t row = 1; row < _rowBegins.size(); ++row) _rowBegins[row] += _rowBegins[row - 1];
  _rowEdges.resize(_rowBegins.back());
  std::vector<std::size_t> next(_rowBegins.begin(), _rowBegins.end() - 1);
  forEachRow([this, &next](std::size_t row, std::size_t edge) { _rowEdges[next[row]++] = edge; });
}

template <class R> std::size_t CurveEdges<R>::rowOf(R y) const
{
  return static_cast<std::size_t>((y - _lowY) * _rowsPerLength);
}

template <class R> bool CurveEdges<R>::contains(const PlanePoint<R>& point) const
{
  if (!(point.y >= _lowY && point.y <= _highY)) return false;
  const std::size_t row = rowOf(point.y);
  bool isInside = false;
  for (std::size_t k = _rowBegins[row]; k < _rowBegins[row + 1]; ++k)
  {
    const PlanePoint<R>&a = begin(_rowEdges[k]), &b = end(_rowEdges[k]);
    if ((a.y > point.y && b.y > point.y) || (a.y < point.y && b.y < point.y) || (a.x < point.x && b.x < point.x))
      continue;
    const bool crosses = (a.y > point.y) != (b.y > point.y);
    if (crosses && a.x > point.x && b.x > point.x)
    {
      isInside = !isInside;
      continue;
    }
    const int side = orientation(a, b, point);
    if (side == 0 && isBetween(a, b, point)) return true;
    if (side != 0 && crosses && (b.y > a.y) == (side > 0)) isInside = !isInside;
  }
  return isInside;
}

template <class R> void CurveEdges<R>::buildBoxes()
{
  constexpr R infinity = std::numeric_limits<R>::infinity();
  const std::size_t numEdges = _vertices.size();
  while (_numLeaves * leafSize < numEdges) _numLeaves *= 2;
  _boxes.assign(2 * _numLeaves - 1, {infinity, infinity, -infinity, -infinity});
  const auto add = [](Box& box, const Box& other)
  {
    box = {std::min(box.lowX, other.lowX), std::min(box.lowY, other.lowY), std::max(box.highX, other.highX),
           std::max(box.highY, other.highY)};
  };
  for (std::size_t i = 0; i < numEdges; ++i)
    for (const PlanePoint<R>& p : {begin(i), end(i)}) add(_boxes[_numLeaves - 1 + i / leafSize], {p.x, p.y, p.x, p.y});
  for (std::size_t i = _boxes.size() - 1; i > 0; --i) add(_boxes[(i - 1) / 2], _boxes[i]);
}

template <class R> R CurveEdges<R>::edgeDistance(std::size_t edge, const PlanePoint<R>& point) const
{
  const PlanePoint<R>&a = begin(edge), &b = end(edge);
  const R dx = b.x - a.x, dy = b.y - a.y, length2 = dx * dx + dy * dy;
  const R along = dx * (point.x - a.x) + dy * (point.y - a.y);
  if (!(along > 0)) return square(point.x - a.x) + square(point.y - a.y);
  if (along >= length2) return square(point.x - b.x) + square(point.y - b.y);
  const R share = along / length2;
  return square(point.x - (a.x + share * dx)) + square(point.y - (a.y + share * dy));
}

template <class R> R CurveEdges<R>::squaredDistance(const PlanePoint<R>& point, std::size_t& edge) const
{
  const auto distanceTo = [this, &point](std::size_t box)
  {
    const Box& b = _boxes[box];
    const R dx = std::max({b.lowX - point.x, point.x - b.highX, R(0)});
    const R dy = std::max({b.lowY - point.y, point.y - b.highY, R(0)});
    return dx * dx + dy * dy;
  };
  constexpr std::size_t depth = 64;
  std::array<std::pair<R, std::size_t>, depth> waiting;
  std::size_t numWaiting = 0;
  R closest = edgeDistance(edge, point);
  waiting[numWaiting++] = {distanceTo(0), 0};
  while (numWaiting > 0)
  {
    const auto [distance, box] = waiting[--numWaiting];
    if (!(distance < closest)) continue;
    if (box < _numLeaves - 1)
    {
      std::pair<R, std::size_t> near = {distanceTo(2 * box + 1), 2 * box + 1};
      std::pair<R, std::size_t> far = {distanceTo(2 * box + 2), 2 * box + 2};
      if (far.first < near.first) std::swap(near, far);
      if (far.first < closest) waiting[numWaiting++] = far;
      if (near.first < closest) waiting[numWaiting++] = near;
      continue;
    }
    const std::size_t first = (box - (_numLeaves - 1)) * leafSize;
    for (std::size_t i = first; i < std::min(first + leafSize, _vertices.size()); ++i)
      if (const R candidate = edgeDistance(i, point); candidate < closest)
      {
        closest = candidate;
        edge = i;
      }
  }
  return closest;
}

template class CurveEdges<double>;
template class CurveEdges<long double>;
