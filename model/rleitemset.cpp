#include "model/rleitemset.h"

#include "model/contourscan.h"
#include "numeric/exception.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace
{
/// Appends a run that does not begin before the last one, joining the two when they touch.
void appendJoined(std::vector<RLEItem>& runs, const RLEItem& run)
{
  if (!runs.empty() && runs.back().touches(run))
    runs.back().setEnd(std::max(runs.back().end(), run.end()));
  else
    runs.push_back(run);
}

std::vector<RLEItem> joined(const std::vector<RLEItem>& sortedRuns)
{
  std::vector<RLEItem> runs;
  runs.reserve(sortedRuns.size());
  for (const RLEItem& run : sortedRuns) appendJoined(runs, run);
  return runs;
}

RLEItem runBetween(int x, int begin, int end)
{
  RLEItem run(x, begin, 1);
  run.setEnd(end);
  return run;
}

/// Appends what is left of `run` without the sorted runs from `hole` on that overlap it.
template <class Iterator>
void appendWithout(std::vector<RLEItem>& runs, const RLEItem& run, Iterator hole, Iterator lastHole)
{
  std::int64_t begin = run.begin();
  for (; hole != lastHole && hole->getOriginX() == run.getOriginX() && hole->begin() <= run.end(); ++hole)
  {
    if (hole->begin() > begin) runs.push_back(runBetween(run.getOriginX(), static_cast<int>(begin), hole->begin() - 1));
    begin = std::max(begin, std::int64_t{hole->end()} + 1);
  }
  if (begin <= run.end()) runs.push_back(runBetween(run.getOriginX(), static_cast<int>(begin), run.end()));
}

bool endsBefore(const RLEItem& run, const RLEItem& other)
{
  if (run.getOriginX() != other.getOriginX()) return run.getOriginX() < other.getOriginX();
  return run.end() < other.begin();
}
} // namespace

RLEItemSet::RLEItemSet(std::vector<RLEItem> runs)
{
  if (!std::is_sorted(runs.begin(), runs.end())) std::sort(runs.begin(), runs.end());
  _runs = joined(runs);
}

std::int64_t RLEItemSet::numVertices() const
{
  std::int64_t count = 0;
  for (const RLEItem& run : _runs) count += run.getLength();
  return count;
}

RLEItemSet::Runs::const_iterator RLEItemSet::firstTouching(const RLEItem& run) const
{
  return std::lower_bound(_runs.begin(), _runs.end(), run,
                          [](const RLEItem& a, const RLEItem& b) { return endsBefore(a, b) && !a.touches(b); });
}

void RLEItemSet::add(const RLEItem& run)
{
  const auto first = firstTouching(run);
  auto last = first;
  int begin = run.begin(), end = run.end();
  for (; last != _runs.end() && last->touches(run); ++last)
  {
    begin = std::min(begin, last->begin());
    end = std::max(end, last->end());
  }
  const RLEItem whole = runBetween(run.getOriginX(), begin, end);
  _runs.insert(_runs.erase(first, last), whole);
}

void RLEItemSet::add(const RLEItemSet& set)
{
  Runs sorted;
  sorted.reserve(_runs.size() + set._runs.size());
  std::merge(_runs.begin(), _runs.end(), set._runs.begin(), set._runs.end(), std::back_inserter(sorted));
  _runs = joined(sorted);
}

void RLEItemSet::remove(const RLEItem& run)
{
  const auto first = std::lower_bound(_runs.begin(), _runs.end(), run, endsBefore);
  auto last = first;
  Runs rest;
  for (; last != _runs.end() && !endsBefore(run, *last); ++last) appendWithout(rest, *last, &run, &run + 1);
  const auto gap = _runs.erase(first, last);
  _runs.insert(gap, rest.begin(), rest.end());
}

void RLEItemSet::remove(const RLEItemSet& set)
{
  Runs rest;
  auto hole = set._runs.begin();
  for (const RLEItem& run : _runs)
  {
    while (hole != set._runs.end() && endsBefore(*hole, run)) ++hole;
    appendWithout(rest, run, hole, set._runs.end());
  }
  _runs = std::move(rest);
}

void RLEItemSet::setBall(const Vector<int>& center, int radius)
{
  constexpr std::int64_t least = std::numeric_limits<int>::min(), greatest = std::numeric_limits<int>::max();
  Runs runs;
  for (int dx = -radius; dx <= radius; ++dx)
  {
    const double square = static_cast<double>(radius) * radius - static_cast<double>(dx) * dx;
    const auto reach = static_cast<std::int64_t>(std::sqrt(square)); // exact up to radii of 2^26: correctly rounded
    const std::int64_t x = std::int64_t{center[0]} + dx;
    const std::int64_t begin = std::max(center[1] - reach, least), end = std::min(center[1] + reach, greatest);
    if (x >= least && x <= greatest)
      runs.push_back(runBetween(static_cast<int>(x), static_cast<int>(begin), static_cast<int>(end)));
  }
  _runs = std::move(runs);
}

void RLEItemSet::setContour(const Vertices<int>& contour, const BoundingBox<int>& window)
{
  const Vector<int>&least = window.getMinimum(), &greatest = window.getMaximum();
  Runs runs;
  ContourScan scan(contour, ContourScan::Lines::Columns, least[0], greatest[0]);
  while (scan.next())
  {
    for (const ContourScan::Run& run : scan.getRuns())
    {
      const auto first = std::max<std::int64_t>(run.first, least[1]);
      const auto last = std::min<std::int64_t>(run.last, greatest[1]);
      if (first <= last) runs.push_back(runBetween(scan.getLine(), static_cast<int>(first), static_cast<int>(last)));
    }
  }
  _runs = std::move(runs);
}

template <class T> void RLEItemSet::fromMask(const PixelMatrix<T>& mask, T label)
{
  const int rows = mask.getSize1(), columns = mask.getSize2();
  std::vector<int> begins(static_cast<std::size_t>(columns), -1); // of the runs that the row before belongs to
  Runs runs;
  for (int i = 0; i <= rows; ++i)
  {
    const T* const row = mask.data() + static_cast<std::ptrdiff_t>(i) * columns;
    for (int j = 0; j < columns; ++j)
    {
      int& begin = begins[static_cast<std::size_t>(j)];
      const bool isInside = i < rows && row[j] == label;
      if (isInside == (begin >= 0)) continue;
      if (!isInside) runs.push_back(runBetween(j, begin, i - 1));
      begin = isInside ? i : -1;
    }
  }
  std::sort(runs.begin(), runs.end());
  _runs = std::move(runs);
}

template <class T> void RLEItemSet::toMask(PixelMatrix<T>& mask, T label) const
{
  const int rows = mask.getSize1(), columns = mask.getSize2();
  for (const RLEItem& run : _runs)
  {
    if (run.getOriginX() < 0 || run.getOriginX() >= columns) continue;
    const int last = std::min(run.end(), rows - 1);
    for (int y = std::max(run.begin(), 0); y <= last; ++y)
      mask.data()[static_cast<std::ptrdiff_t>(y) * columns + run.getOriginX()] = label;
  }
}

#define INSTANTIATE_MASKS(T)                                                                                           \
  template void RLEItemSet::fromMask<T>(const PixelMatrix<T>&, T);                                                     \
  template void RLEItemSet::toMask<T>(PixelMatrix<T>&, T) const;
IMAGE_FOR_EACH_TYPE(INSTANTIATE_MASKS)

void RLEItemSet::translate(int dx, int dy)
{
  Runs moved = _runs;
  const auto movedBy = [](int coordinate, int distance)
  {
    const std::int64_t sum = std::int64_t{coordinate} + distance;
    if (sum != static_cast<int>(sum))
      throw ProgramError("void RLEItemSet::translate(int, int)", "Run beyond the coordinate range");
    return static_cast<int>(sum);
  };
  for (RLEItem& run : moved) run.setOrigin(movedBy(run.getOriginX(), dx), movedBy(run.begin(), dy));
  _runs = std::move(moved);
}

bool RLEItemSet::contains(int x, int y) const
{
  return overlaps(RLEItem(x, y, 1));
}

bool RLEItemSet::overlaps(const RLEItem& run) const
{
  const auto first = std::lower_bound(_runs.begin(), _runs.end(), run, endsBefore);
  return first != _runs.end() && !endsBefore(run, *first);
}

BoundingBox<int> RLEItemSet::boundingBox() const
{
  BoundingBox<int> box(2);
  for (const RLEItem& run : _runs)
  {
    const int corners[][2] = {{run.getOriginX(), run.begin()}, {run.getOriginX(), run.end()}};
    box.add(corners[0]);
    box.add(corners[1]);
  }
  return box;
}

std::optional<Vector<int>> RLEItemSet::nearestPosition(int x, int y) const
{
  std::optional<Vector<int>> nearest;
  double smallest = 0;
  for (const RLEItem& run : _runs)
  {
    const int closest = std::clamp(y, run.begin(), run.end());
    const double distance = std::hypot(static_cast<double>(run.getOriginX()) - x, static_cast<double>(closest) - y);
    if (nearest && distance >= smallest) continue;
    nearest = Vector<int>{run.getOriginX(), closest};
    smallest = distance;
  }
  return nearest;
}
