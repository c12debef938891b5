#include "geometry/reconstruction/regionboundaries.h"

#include "model/rleitemset.h"

#include <algorithm>
#include <compare>
#include <cstdint>
#include <limits>
#include <span>

namespace
{
using Runs = std::span<const RLEItem>;

/// A corner of pixels: that of pixel (x, y) towards smaller coordinates.
struct Corner
{
  std::int64_t x, y;
  auto operator<=>(const Corner&) const = default;
};

/// Part of a boundary, straight and with the region on its left when x goes right and y up.
struct Side
{
  Corner from, to;
  bool isTraced = false;

  bool operator<(const Side& other) const { return from < other.from; }
  /// 1 when the other side turns left from this one, 0 when it goes straight on, -1 when it turns right.
  int turnTo(const Side& other) const
  {
    const auto sign = [](std::int64_t a) { return (a > 0) - (a < 0); };
    return sign(to.x - from.x) * sign(other.to.y - other.from.y) -
           sign(to.y - from.y) * sign(other.to.x - other.from.x);
  }
};

/// Where runs along y begin and end, one after the other.
class RunEnds
{
public:
  explicit RunEnds(Runs runs) : _runs(runs) {}

  bool isInside() const { return _isInside; }
  /// The next place at which a run begins or ends.
  std::int64_t next() const
  {
    if (_run == _runs.size()) return std::numeric_limits<std::int64_t>::max();
    return _isInside ? std::int64_t{_runs[_run].end()} + 1 : _runs[_run].begin();
  }
  void passUntil(std::int64_t y)
  {
    if (next() != y) return;
    if (_isInside) ++_run;
    _isInside = !_isInside;
  }
  bool isAtEnd() const { return _run == _runs.size(); }

private:
  Runs _runs;
  std::size_t _run = 0;
  bool _isInside = false;
};

/// The sides on the line x between the runs of two neighbouring rows.
void addSidesBetween(Runs left, Runs right, std::int64_t x, std::vector<Side>& sides)
{
  RunEnds leftEnds(left), rightEnds(right);
  std::int64_t y = 0;
  while (!leftEnds.isAtEnd() || !rightEnds.isAtEnd())
  {
    const std::int64_t next = std::min(leftEnds.next(), rightEnds.next());
    if (leftEnds.isInside() && !rightEnds.isInside()) sides.push_back({{x, y}, {x, next}});
    if (!leftEnds.isInside() && rightEnds.isInside()) sides.push_back({{x, next}, {x, y}});
    leftEnds.passUntil(next);
    rightEnds.passUntil(next);
    y = next;
  }
}

/// The sides at both ends of each run.
void addEndSides(Runs runs, std::vector<Side>& sides)
{
  for (const RLEItem& run : runs)
  {
    const std::int64_t x = run.getOriginX(), end = std::int64_t{run.end()} + 1;
    sides.push_back({{x, run.begin()}, {x + 1, run.begin()}});
    sides.push_back({{x + 1, end}, {x, end}});
  }
}

/// All sides of the region, sorted by where they begin.
std::vector<Side> sidesOf(const RLEItemSet& region)
{
  const Runs runs(region.getItems());
  std::vector<Side> sides;
  sides.reserve(4 * runs.size());
  Runs previous;
  for (std::size_t first = 0, last = 0; first < runs.size(); first = last)
  {
    const std::int64_t x = runs[first].getOriginX();
    while (last < runs.size() && runs[last].getOriginX() == x) ++last;
    const Runs row = runs.subspan(first, last - first);
    const bool isNeighbour = !previous.empty() && previous[0].getOriginX() + std::int64_t{1} == x;
    if (!isNeighbour && !previous.empty())
      addSidesBetween(previous, {}, previous[0].getOriginX() + std::int64_t{1}, sides);
    addSidesBetween(isNeighbour ? previous : Runs(), row, x, sides);
    addEndSides(row, sides);
    previous = row;
  }
  if (!previous.empty()) addSidesBetween(previous, {}, previous[0].getOriginX() + std::int64_t{1}, sides);
  std::sort(sides.begin(), sides.end());
  return sides;
}

/// The side that follows. Where two pixels meet at a corner only, two sides leave it: the walk stays on its pixel,
/// which is on the left.
Side& sideAfter(const Side& side, std::vector<Side>& sides)
{
  auto next = std::lower_bound(sides.begin(), sides.end(), Side{side.to, side.to});
  if (next + 1 != sides.end() && next[1].from == side.to && side.turnTo(next[1]) > side.turnTo(next[0])) ++next;
  return *next;
}

/// The turns of the boundary that begins with a side; the side at its lexicographically smallest corner when it is an
/// outer one, since that corner leads along x there only.
std::vector<Corner> trace(Side& start, std::vector<Side>& sides)
{
  std::vector<Corner> turns;
  Side* side = &start;
  do
  {
    side->isTraced = true;
    Side& next = sideAfter(*side, sides);
    if (side->turnTo(next) != 0) turns.push_back(side->to);
    side = &next;
  } while (side != &start);
  return turns;
}

Curve<double> curveThrough(const std::vector<Corner>& turns)
{
  Curve<double> curve(2, static_cast<int>(turns.size()));
  double* coordinate = curve.data();
  for (const Corner& turn : turns)
  {
    *coordinate++ = static_cast<double>(turn.x) - 0.5;
    *coordinate++ = static_cast<double>(turn.y) - 0.5;
  }
  return curve;
}
} // namespace

// Sides that go along x, from the beginnings of runs, are on every boundary, and are met in the order of the runs.
std::vector<Curve<double>> outerBoundaries(const RLEItemSet& region)
{
  std::vector<Side> sides = sidesOf(region);
  std::vector<Curve<double>> boundaries;
  for (Side& side : sides)
  {
    if (side.isTraced || side.to.x <= side.from.x) continue;
    const std::vector<Corner> turns = trace(side, sides);
    const bool isOuter = *std::min_element(turns.begin(), turns.end()) == side.from;
    if (isOuter) boundaries.push_back(curveThrough(turns));
  }
  return boundaries;
}
