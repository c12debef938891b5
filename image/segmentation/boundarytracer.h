#pragma once

#include "geometry/curve.h"

#include <algorithm>
#include <cstddef>
#include <vector>

/// Walks once around a region of pixels, along their sides, with the region on the left when x goes right and y up.
///
/// Pixel (i, j) is the square from (x, y) = (j, i) to (j + 1, i + 1). Where two pixels of the region meet at a corner
/// only, the walk stays on its pixel, so that regions connect through sides. IsInside tells whether pixel (i, j), which
/// may lie outside the image, belongs to the region.
template <class IsInside> class BoundaryTracer
{
public:
  explicit BoundaryTracer(const IsInside& isInside) : _isInside(isInside) {}

  /// The closed boundary that has the left side of pixel (i, j), whose left neighbour is outside; its vertices are the
  /// turns. Calls meetLeftSide(i, j) for each left side on it.
  template <class MeetLeftSide> Curve<int> trace(int i, int j, const MeetLeftSide& meetLeftSide)
  {
    const Place start{j, i + 1, 0, -1};
    std::vector<int> xs, ys;
    Place place = start;
    do
    {
      if (place.dy < 0) meetLeftSide(place.y - 1, place.x);
      place.x += place.dx;
      place.y += place.dy;
      if (!turn(place)) continue;
      xs.push_back(place.x);
      ys.push_back(place.y);
    } while (place != start);
    return curveThrough(xs, ys);
  }

private:
  struct Place
  {
    int x, y, dx, dy;
    bool operator==(const Place&) const = default;
  };

  /// Whether the pixel ahead of a place is inside, on its left or right.
  bool isInsideAhead(const Place& place, bool left) const
  {
    const int sideX = left ? -place.dy : place.dy, sideY = left ? place.dx : -place.dx;
    return _isInside(place.y + (place.dy + sideY - 1) / 2, place.x + (place.dx + sideX - 1) / 2);
  }

  /// Turns the place towards the next side; false when that lies straight ahead.
  bool turn(Place& place) const
  {
    if (!isInsideAhead(place, true))
      place = {place.x, place.y, -place.dy, place.dx};
    else if (isInsideAhead(place, false))
      place = {place.x, place.y, place.dy, -place.dx};
    else
      return false;
    return true;
  }

  static Curve<int> curveThrough(const std::vector<int>& xs, const std::vector<int>& ys)
  {
    const auto n = static_cast<int>(xs.size());
    Curve<int> curve(2, n);
    for (int k = 0; k < n; ++k)
    {
      curve[k][0] = xs[static_cast<std::size_t>(k)];
      curve[k][1] = ys[static_cast<std::size_t>(k)];
    }
    return curve;
  }

  const IsInside& _isInside;
};

/// The outer boundary of the region of pixel (i, j), which is inside.
template <class IsInside> Curve<int> outerBoundary(int i, int j, const IsInside& isInside)
{
  BoundaryTracer<IsInside> tracer(isInside);
  for (;;)
  {
    while (isInside(i, j - 1)) --j;
    Curve<int> boundary = tracer.trace(i, j, [](int, int) {});
    if (boundary.twiceArea(0, 1) > 0) return boundary;
    // The boundary of a hole: pass it on the left of its leftmost vertex.
    const Vector<int>* leftmost = &boundary[0];
    for (int k = 1; k < boundary.getSize(); ++k)
      if (std::lexicographical_compare(boundary[k].begin(), boundary[k].end(), leftmost->begin(), leftmost->end()))
        leftmost = &boundary[k];
    i = (*leftmost)[1];
    j = (*leftmost)[0] - 1;
  }
}

/// The boundaries of all regions and of their holes, in the raster order of the first left side on each.
template <class IsInside> std::vector<Curve<int>> allBoundaries(int numRows, int numColumns, const IsInside& isInside)
{
  BoundaryTracer<IsInside> tracer(isInside);
  std::vector<bool> isMet(static_cast<std::size_t>(numRows) * static_cast<std::size_t>(numColumns), false);
  const auto indexOf = [numColumns](int i, int j)
  { return static_cast<std::size_t>(i) * static_cast<std::size_t>(numColumns) + static_cast<std::size_t>(j); };
  std::vector<Curve<int>> boundaries;
  for (int i = 0; i < numRows; ++i)
    for (int j = 0; j < numColumns; ++j)
      if (isInside(i, j) && !isInside(i, j - 1) && !isMet[indexOf(i, j)])
        boundaries.push_back(tracer.trace(i, j, [&](int row, int column) { isMet[indexOf(row, column)] = true; }));
  return boundaries;
}
