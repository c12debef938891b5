#pragma once

#include "image/filters/separablefilter.h"
#include "image/filters/slicesweep.h"

#include <algorithm>
#include <vector>

/// Filters the lines of slices along the columns and across each other; what one thread needs for it.
template <class A> class SlicePreparation
{
public:
  SlicePreparation(int numLines, int width, const LineFilter<A>& alongColumns, const LineFilter<A>& acrossLines)
    : _numLines(numLines),
      _width(width),
      _alongColumns(alongColumns),
      _acrossLines(acrossLines),
      _padded(width + 2 * alongColumns.radius()),
      _isFlat(acrossLines.radius() == 0),
      _lines(_isFlat ? 0 : numLines, spreadSize<A>(width)),
      _from(static_cast<std::size_t>(numLines) + 2 * static_cast<std::size_t>(acrossLines.radius())),
      _to(static_cast<std::size_t>(numLines))
  {
  }

  /// load(line, x) writes the elements of a line to x; out(line) is the place of its results.
  template <class Load, class Out> void operator()(const Load& load, const Out& out)
  {
    for (int line = 0; line < _numLines; ++line)
      filterAlong([&load, line](A* x) { load(line, x); }, _isFlat ? out(line) : _lines[line].data());
    if (!_isFlat) filterAcross(out);
  }

private:
  template <class Load> void filterAlong(const Load& load, A* out)
  {
    const int radius = _alongColumns.radius();
    if (radius == 0) return load(out);
    A* const x = _padded.data();
    load(x + radius);
    std::fill_n(x, radius, x[radius]);
    std::fill_n(x + radius + _width, radius, x[radius + _width - 1]);
    _alongColumns.along(x, _width, out);
  }

  template <class Out> void filterAcross(const Out& out)
  {
    const int radius = _acrossLines.radius();
    const int tileWidth = tileWidthFor<A>(4L * radius + _acrossLines.period() + 1);
    for (int begin = 0; begin < _width; begin += tileWidth)
    {
      for (int k = 0; k < _numLines + 2 * radius; ++k)
        _from[static_cast<std::size_t>(k)] = _lines[std::clamp(k - radius, 0, _numLines - 1)].data() + begin;
      for (int k = 0; k < _numLines; ++k) _to[static_cast<std::size_t>(k)] = out(k) + begin;
      _acrossLines.across(_from.data(), _numLines, std::min(tileWidth, _width - begin), _to.data());
    }
  }

  int _numLines;
  int _width;
  const LineFilter<A>& _alongColumns;
  const LineFilter<A>& _acrossLines;
  Vector<A> _padded;
  bool _isFlat;
  Matrix<A> _lines;
  std::vector<const A*> _from;
  std::vector<A*> _to;
};
