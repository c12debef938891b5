#pragma once

#include "geometry/predicates.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <utility>
#include <vector>

/// Points of the plane sorted into about as many square cells, for finding those near a triangle.
template <class R> class VertexGrid
{
public:
  struct Entry
  {
    PlanePoint<R> point;
    int vertex;
  };

  /// The grid of the given vertices; those that are not finite are left out.
  void build(const std::vector<PlanePoint<R>>& points, const std::vector<int>& vertices);

  /// Calls visit(entry) for all points of the cells which a triangle meets, until it returns true; returns whether it
  /// did.
  template <class Visit>
  bool findNear(const PlanePoint<R>& a, const PlanePoint<R>& b, const PlanePoint<R>& c, const Visit& visit) const
  {
    const std::array<PlanePoint<R>, 3> corners = {inCells(a), inCells(b), inCells(c)};
    const auto [lowest, highest] = std::minmax({corners[0].y, corners[1].y, corners[2].y});
    const int lastRow = clampToCell(highest + margin, _numRows);
    for (int row = clampToCell(lowest - margin, _numRows); row <= lastRow; ++row)
    {
      const auto [left, right] = extentInRow(corners, row);
      const std::size_t rowStart = static_cast<std::size_t>(row) * static_cast<std::size_t>(_numColumns);
      const std::size_t first = _starts[rowStart + static_cast<std::size_t>(clampToCell(left - margin, _numColumns))];
      const std::size_t last =
          _starts[rowStart + static_cast<std::size_t>(clampToCell(right + margin, _numColumns)) + 1];
      for (std::size_t i = first; i < last; ++i)
        if (visit(_entries[i])) return true;
    }
    return false;
  }

private:
  static constexpr R margin = R(0.01); // in cells, far more than any rounding error

  PlanePoint<R> inCells(const PlanePoint<R>& p) const
  {
    return {(p.x - _low.x) * _cellsPerUnit.x, (p.y - _low.y) * _cellsPerUnit.y};
  }
  static int clampToCell(R position, int count)
  {
    return position >= static_cast<R>(count) ? count - 1 : position > 0 ? static_cast<int>(position) : 0;
  }
  std::size_t cellOf(const PlanePoint<R>& point) const
  {
    const PlanePoint<R> p = inCells(point);
    return static_cast<std::size_t>(clampToCell(p.y, _numRows)) * static_cast<std::size_t>(_numColumns) +
           static_cast<std::size_t>(clampToCell(p.x, _numColumns));
  }
  /// Where the part of a triangle in a row begins and ends.
  std::pair<R, R> extentInRow(const std::array<PlanePoint<R>, 3>& corners, int row) const;
  void setCells(const std::vector<PlanePoint<R>>& points, const std::vector<int>& vertices);

  PlanePoint<R> _low = {};
  PlanePoint<R> _cellsPerUnit = {};
  int _numColumns = 1;
  int _numRows = 1;
  std::vector<std::size_t> _starts = {0, 0}; // of the entries of each cell, row by row; the end behind the last
  std::vector<Entry> _entries;
};

extern template class VertexGrid<double>;
extern template class VertexGrid<long double>;
