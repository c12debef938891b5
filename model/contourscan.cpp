#include "model/contourscan.h"

#include <algorithm>

ContourScan::ContourScan(const Vertices<int>& contour, Lines lines, int firstLine, int lastLine)
  : _line(std::int64_t{firstLine} - 1), _lastLine(lastLine)
{
  const int size = contour.getSize();
  _edges.reserve(static_cast<std::size_t>(size));
  _flats.reserve(static_cast<std::size_t>(size));
  for (int i = 0, previous = size - 1; i < size; previous = i++)
    addEdge(contour.data(previous), contour.data(i), lines, firstLine, lastLine);
  std::sort(_edges.begin(), _edges.end(), [](const Edge& a, const Edge& b) { return a.firstLine < b.firstLine; });
  std::sort(_flats.begin(), _flats.end(), [](const Flat& a, const Flat& b) { return a.line < b.line; });
}

void ContourScan::addEdge(const int* from, const int* to, Lines lines, std::int64_t firstLine, std::int64_t lastLine)
{
  const int across = static_cast<int>(lines), along = 1 - across;
  const bool rises = from[across] <= to[across];
  const int* const low = rises ? from : to;
  const int* const high = rises ? to : from;
  const std::int64_t start = low[along], end = high[along], rise = std::int64_t{high[across]} - low[across];
  if (high[across] >= firstLine && high[across] <= lastLine)
    _flats.push_back({high[across], {rise == 0 ? std::min(start, end) : end, rise == 0 ? std::max(start, end) : end}});
  const std::int64_t begin = std::max<std::int64_t>(low[across], firstLine);
  if (begin >= high[across] || begin > lastLine) return;
  std::int64_t step = (end - start) / rise, stepRemainder = (end - start) % rise;
  if (stepRemainder < 0)
  {
    --step;
    stepRemainder += rise;
  }
  // Both factors are below 2^32, so that the product fits.
  const auto skipped = static_cast<std::uint64_t>(begin - low[across]);
  const std::uint64_t passed = skipped * static_cast<std::uint64_t>(stepRemainder);
  const auto unsignedRise = static_cast<std::uint64_t>(rise);
  const std::int64_t position =
      start + static_cast<std::int64_t>(skipped) * step + static_cast<std::int64_t>(passed / unsignedRise);
  _edges.push_back(
      {begin, high[across], position, static_cast<std::int64_t>(passed % unsignedRise), step, stepRemainder, rise});
}

bool ContourScan::next()
{
  do
  {
    ++_line;
    if (_active.empty())
    {
      std::int64_t nextLine = _lastLine + 1;
      if (_nextEdge < _edges.size()) nextLine = std::min(nextLine, _edges[_nextEdge].firstLine);
      if (_nextFlat < _flats.size()) nextLine = std::min(nextLine, _flats[_nextFlat].line);
      _line = std::max(_line, nextLine);
    }
    if (_line > _lastLine) return false;
    activateEdges();
    collectRuns();
  } while (_runs.empty());
  return true;
}

void ContourScan::activateEdges()
{
  std::erase_if(_active, [this](const Edge& edge) { return edge.lastLine <= _line; });
  for (; _nextEdge < _edges.size() && _edges[_nextEdge].firstLine == _line; ++_nextEdge)
    _active.push_back(_edges[_nextEdge]);
}

void ContourScan::collectRuns()
{
  _crossings.clear();
  for (Edge& edge : _active)
  {
    _crossings.push_back({edge.position, edge.position + (edge.remainder > 0 ? 1 : 0)});
    edge.position += edge.positionStep;
    edge.remainder += edge.remainderStep;
    if (edge.remainder < edge.rise) continue;
    edge.remainder -= edge.rise;
    ++edge.position;
  }
  // Crossings between the same two pixels may stand in any order: the runs that they end are the same.
  const auto comesFirst = [](const Run& a, const Run& b)
  { return a.first != b.first ? a.first < b.first : a.last < b.last; };
  std::sort(_crossings.begin(), _crossings.end(), comesFirst);
  _runs.clear();
  for (std::size_t i = 0; i + 1 < _crossings.size(); i += 2)
    if (_crossings[i].last <= _crossings[i + 1].first) _runs.push_back({_crossings[i].last, _crossings[i + 1].first});
  for (; _nextFlat < _flats.size() && _flats[_nextFlat].line == _line; ++_nextFlat)
    _runs.push_back(_flats[_nextFlat].run);
  std::sort(_runs.begin(), _runs.end(), comesFirst);
  joinRuns();
}

void ContourScan::joinRuns()
{
  std::size_t count = 0;
  for (const Run& run : _runs)
  {
    if (count > 0 && run.first <= _runs[count - 1].last + 1)
      _runs[count - 1].last = std::max(_runs[count - 1].last, run.last);
    else
      _runs[count++] = run;
  }
  _runs.resize(count);
}
