#include "geometry/vertexgrid.h"

#include <cmath>
#include <limits>

namespace
{

template <class R> bool isFinite(const PlanePoint<R>& point)
{
  return std::isfinite(point.x) && std::isfinite(point.y);
}

/// Number of cells per unit of length along an axis; 0, hence a single cell, when the points do not spread there.
template <class R> R cellsPerUnit(int count, R length)
{
  const R density = static_cast<R>(count) / length;
  return std::isfinite(density) ? density : 0;
}

} // namespace

template <class R>
void VertexGrid<R>::setCells(const std::vector<PlanePoint<R>>& points, const std::vector<int>& vertices)
{
  constexpr R infinity = std::numeric_limits<R>::infinity();
  PlanePoint<R> low = {infinity, infinity}, high = {-infinity, -infinity};
  for (const int vertex : vertices)
  {
    const PlanePoint<R>& point = points[static_cast<std::size_t>(vertex)];
    if (!isFinite(point)) continue;
    low = {std::min(low.x, point.x), std::min(low.y, point.y)};
    high = {std::max(high.x, point.x), std::max(high.y, point.y)};
  }
  const R width = high.x - low.x, height = high.y - low.y;
  const R count = static_cast<R>(std::max<std::size_t>(vertices.size(), 1));
  const R numColumns = std::sqrt(count * (width / height));
  _numColumns = std::isnan(numColumns) ? 1 : static_cast<int>(std::clamp<R>(numColumns, 1, count));
  _numRows = std::max(static_cast<int>(count) / _numColumns, 1);
  _low = low;
  _cellsPerUnit = {cellsPerUnit(_numColumns, width), cellsPerUnit(_numRows, height)};
}

template <class R> void VertexGrid<R>::build(const std::vector<PlanePoint<R>>& points, const std::vector<int>& vertices)
{
  setCells(points, vertices);
  std::vector<std::size_t> cells(vertices.size());
  _starts.assign(static_cast<std::size_t>(_numColumns) * static_cast<std::size_t>(_numRows) + 2, 0);
  std::size_t numEntries = 0;
  for (std::size_t i = 0; i < vertices.size(); ++i)
  {
    const PlanePoint<R>& point = points[static_cast<std::size_t>(vertices[i])];
    if (!isFinite(point)) continue;
    cells[i] = cellOf(point);
    ++_starts[cells[i] + 2];
    ++numEntries;
  }
  for (std::size_t cell = 2; cell < _starts.size(); ++cell) _starts[cell] += _starts[cell - 1];
  _entries.resize(numEntries);
  for (std::size_t i = 0; i < vertices.size(); ++i)
    if (const PlanePoint<R>& point = points[static_cast<std::size_t>(vertices[i])]; isFinite(point))
      _entries[_starts[cells[i] + 1]++] = {point, vertices[i]};
  _starts.pop_back();
}

template <class R>
std::pair<R, R> VertexGrid<R>::extentInRow(const std::array<PlanePoint<R>, 3>& corners, int row) const
{
  const R bottom = static_cast<R>(row) - margin, top = static_cast<R>(row + 1) + margin;
  R left = std::numeric_limits<R>::infinity(), right = -left;
  for (std::size_t k = 0; k < 3; ++k)
  {
    PlanePoint<R> p = corners[k], q = corners[k < 2 ? k + 1 : 0];
    if (p.y > q.y) std::swap(p, q);
    if (q.y < bottom || p.y > top) continue;
    const R slope = q.y > p.y ? (q.x - p.x) / (q.y - p.y) : 0;
    const R x0 = p.y < bottom ? p.x + (bottom - p.y) * slope : p.x;
    const R x1 = q.y > top ? p.x + (top - p.y) * slope : q.x;
    left = std::min({left, x0, x1});
    right = std::max({right, x0, x1});
  }
  return {left, right};
}

template class VertexGrid<double>;
template class VertexGrid<long double>;
