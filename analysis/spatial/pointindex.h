#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <limits>
#include <vector>

/// A point in `space` dimensions.
template <class T, int space> using SpacePoint = std::array<T, space>;

template <class T, std::size_t space> T squaredDistance(const std::array<T, space>& a, const std::array<T, space>& b)
{
  T sum = 0;
  for (std::size_t k = 0; k < space; ++k) sum += (a[k] - b[k]) * (a[k] - b[k]);
  return sum;
}

/// A search for the point nearest to a place, other than an excluded one.
template <class T, int space> struct NearestSearch
{
  SpacePoint<T, space> place;
  int excluded;
  int nearest; ///< so far
  T squared;   ///< its squared distance

  void look(const SpacePoint<T, space>* points, int first, int last)
  {
    for (int i = first; i < last; ++i)
      if (const T distance = squaredDistance(place, points[i]); distance < squared && i != excluded)
      {
        squared = distance;
        nearest = i;
      }
  }
};

/// The box around points, one at least.
template <class T, int space> struct PointBox
{
  SpacePoint<T, space> low, high;

  PointBox(const SpacePoint<T, space>* points, std::size_t count) : low(points[0]), high(points[0])
  {
    for (std::size_t i = 1; i < count; ++i)
      for (std::size_t k = 0; k < space; ++k)
      {
        low[k] = std::min(low[k], points[i][k]);
        high[k] = std::max(high[k], points[i][k]);
      }
  }
  std::size_t widestAxis() const
  {
    std::size_t widest = 0;
    for (std::size_t k = 1; k < space; ++k)
      if (high[k] - low[k] > high[widest] - low[widest]) widest = k;
    return widest;
  }
};

/// A k-d tree over finite points. They are in the order of its leaves, its nodes in that of a walk through the tree.
template <class T, int space> class TreeIndex
{
public:
  using Point = SpacePoint<T, space>;

  explicit TreeIndex(std::vector<Point> points) : _points(std::move(points))
  {
    if (!_points.empty()) build(0, static_cast<int>(_points.size()));
  }

  const std::vector<Point>& getPoints() const { return _points; }
  void search(NearestSearch<T, space>& nearest) const
  {
    if (!_nodes.empty()) visit(nearest, 0, {});
  }

private:
  static constexpr int none = -1;
  static constexpr int leafSize = 8;

  struct Node
  {
    T split = 0;
    int axis = none; // of the split; none in a leaf
    int first = 0;   // of a leaf, its first point; else its second child: the first child is the next node
    int last = 0;    // of a leaf
  };

  void build(int first, int last)
  {
    const std::size_t index = _nodes.size();
    _nodes.push_back({0, none, first, last});
    if (last - first <= leafSize) return;
    const std::size_t axis =
        PointBox<T, space>(_points.data() + first, static_cast<std::size_t>(last - first)).widestAxis();
    const int middle = first + (last - first) / 2;
    std::nth_element(_points.begin() + first, _points.begin() + middle, _points.begin() + last,
                     [axis](const Point& a, const Point& b) { return a[axis] < b[axis]; });
    _nodes[index].axis = static_cast<int>(axis);
    _nodes[index].split = _points[static_cast<std::size_t>(middle)][axis];
    build(first, middle);
    _nodes[index].first = static_cast<int>(_nodes.size());
    build(middle, last);
  }

  /// Looks into a node whose part of space is `offsets` away along the axes.
  void visit(NearestSearch<T, space>& search, int index, Point offsets) const
  {
    const Node* node = &_nodes[static_cast<std::size_t>(index)];
    while (node->axis != none)
    {
      const auto axis = static_cast<std::size_t>(node->axis);
      const T beyond = search.place[axis] - node->split;
      const int second = node->first, next = static_cast<int>(node - _nodes.data()) + 1;
      visit(search, beyond < 0 ? next : second, offsets);
      offsets[axis] = beyond;
      if (!(squaredDistance(offsets, Point{}) < search.squared)) return;
      node = &_nodes[static_cast<std::size_t>(beyond < 0 ? second : next)];
    }
    search.look(_points.data(), node->first, node->last);
  }

  std::vector<Point> _points;
  std::vector<Node> _nodes;
};

/// A grid of equal cells over finite points, one at least: faster than a tree where the points are spread out. They are
/// in the order of the cells, the first axis running fastest.
template <class T, int space> class GridIndex
{
public:
  using Point = SpacePoint<T, space>;

  explicit GridIndex(const std::vector<Point>& points) : _box(points.data(), points.size())
  {
    layOut(static_cast<T>(points.size()));
    _begins.assign(static_cast<std::size_t>(_numCells[0]) * static_cast<std::size_t>(_numCells[1]) *
                           static_cast<std::size_t>(_numCells[2]) +
                       1,
                   0);
    std::vector<std::size_t> cells(points.size());
    for (std::size_t i = 0; i < points.size(); ++i)
    {
      cells[i] = indexOf(cellOf(points[i]));
      ++_begins[cells[i] + 1];
    }
    for (std::size_t cell = 1; cell < _begins.size(); ++cell)
    {
      _numPairs += std::int64_t(_begins[cell]) * _begins[cell];
      _begins[cell] += _begins[cell - 1];
    }
    std::vector<int> next(_begins.begin(), _begins.end() - 1);
    _points.resize(points.size());
    for (std::size_t i = 0; i < points.size(); ++i) _points[static_cast<std::size_t>(next[cells[i]]++)] = points[i];
  }

  /// Whether the points are spread out: a tree is better when many share a cell.
  bool isSuitable() const { return _numPairs <= 16 * static_cast<std::int64_t>(_points.size()); }

  const std::vector<Point>& getPoints() const { return _points; }
  void search(NearestSearch<T, space>& nearest) const
  {
    const Cell center = cellOf(nearest.place);
    Block block = blockAround(center, 1);
    for (int z = block.low[2]; z <= block.high[2]; ++z)
      for (int y = block.low[1]; y <= block.high[1]; ++y) look(nearest, block.low[0], block.high[0], y, z);
    for (int radius = 2; beyond(nearest.place, block) < nearest.squared; ++radius)
    {
      const Block inner = block;
      block = blockAround(center, radius);
      lookAround(nearest, inner, block);
    }
  }

private:
  using Cell = std::array<int, 3>;
  struct Block // of cells, the last ones included
  {
    Cell low, high;
  };

  /// About two points in a cell on average, if they fill their box.
  void layOut(T numPoints)
  {
    constexpr T perCell = 2;
    const T maxCells = numPoints / perCell + 1;
    T numFlat = 0, content = 1;
    for (std::size_t k = 0; k < space; ++k)
      if (const T extent = _box.high[k] - _box.low[k]; extent > 0)
      {
        content *= extent;
        ++numFlat;
      }
    const T side = numFlat > 0 ? std::pow(content / maxCells, 1 / numFlat) : T(0);
    T total = 1;
    for (std::size_t k = 0; k < space; ++k)
    {
      const T extent = _box.high[k] - _box.low[k];
      const T count = extent > 0 && side > 0 ? std::min(std::floor(extent / side), maxCells) : T(0);
      // A box much longer than wide has its cells along its length.
      const bool isAllowed = count >= 1 && total * count <= 4 * maxCells;
      _numCells[k] = isAllowed ? static_cast<int>(count) : 1;
      total *= static_cast<T>(_numCells[k]);
      _cellSize[k] = extent / static_cast<T>(_numCells[k]);
      _cellsPerLength[k] = _numCells[k] > 1 ? static_cast<T>(_numCells[k]) / extent : T(0);
    }
  }

  Cell cellOf(const Point& point) const
  {
    Cell cell = {};
    for (std::size_t k = 0; k < space; ++k)
    {
      const T position = (point[k] - _box.low[k]) * _cellsPerLength[k];
      const T last = static_cast<T>(_numCells[k] - 1);
      cell[k] = static_cast<int>(position > 0 ? std::min(position, last) : T(0));
    }
    return cell;
  }
  std::size_t indexOf(const Cell& cell) const
  {
    const auto x = static_cast<std::size_t>(cell[0]), y = static_cast<std::size_t>(cell[1]);
    const auto z = static_cast<std::size_t>(cell[2]);
    return (z * static_cast<std::size_t>(_numCells[1]) + y) * static_cast<std::size_t>(_numCells[0]) + x;
  }
  Block blockAround(const Cell& center, int radius) const
  {
    Block block;
    for (std::size_t k = 0; k < 3; ++k)
    {
      block.low[k] = std::max(center[k] - radius, 0);
      block.high[k] = std::min(center[k] + radius, _numCells[k] - 1);
    }
    return block;
  }

  void look(NearestSearch<T, space>& search, int firstX, int lastX, int y, int z) const
  {
    if (firstX > lastX) return;
    search.look(_points.data(), _begins[indexOf({firstX, y, z})], _begins[indexOf({lastX, y, z}) + 1]);
  }
  /// Looks into the cells of a block around another one.
  void lookAround(NearestSearch<T, space>& search, const Block& inner, const Block& block) const
  {
    for (int z = block.low[2]; z <= block.high[2]; ++z)
      for (int y = block.low[1]; y <= block.high[1]; ++y)
      {
        const bool isBeside = z < inner.low[2] || z > inner.high[2] || y < inner.low[1] || y > inner.high[1];
        if (isBeside) look(search, block.low[0], block.high[0], y, z);
        if (isBeside) continue;
        look(search, block.low[0], inner.low[0] - 1, y, z);
        look(search, inner.high[0] + 1, block.high[0], y, z);
      }
  }
  /// The squared distance that points outside a block around the place have at least; a thousandth of a cell is left to
  /// rounding.
  T beyond(const Point& place, const Block& block) const
  {
    T distance = std::numeric_limits<T>::infinity();
    for (std::size_t k = 0; k < space; ++k)
    {
      const T at = place[k] - _box.low[k], margin = static_cast<T>(0.001) * _cellSize[k];
      if (block.low[k] > 0) distance = std::min(distance, at - static_cast<T>(block.low[k]) * _cellSize[k] - margin);
      if (block.high[k] + 1 < _numCells[k])
        distance = std::min(distance, static_cast<T>(block.high[k] + 1) * _cellSize[k] - at - margin);
    }
    return distance > 0 ? distance * distance : T(0);
  }

  PointBox<T, space> _box;
  std::array<int, 3> _numCells = {1, 1, 1};
  SpacePoint<T, space> _cellSize = {};
  SpacePoint<T, space> _cellsPerLength = {};
  std::vector<int> _begins; // of the points of each cell, and the end
  std::vector<Point> _points;
  std::int64_t _numPairs = 0; // of points in one cell, each with itself included
};
