#include "model/rleitem.h"

#include "numeric/exception.h"

#include <cstdint>
#include <limits>

namespace
{
int endOf(int begin, int length, const char* where)
{
  if (length < 1) throw ProgramError(where, "Negative length");
  const std::int64_t end = std::int64_t{begin} + length - 1;
  if (end > std::numeric_limits<int>::max()) throw ProgramError(where, "Run beyond the coordinate range");
  return static_cast<int>(end);
}

void requireLength(int begin, int end, const char* where)
{
  if (end < begin || std::int64_t{end} - begin >= std::numeric_limits<int>::max())
    throw ProgramError(where, "Negative length"); // a length beyond int would be negative, too
}
} // namespace

RLEItem::RLEItem(int x, int y, int length) : _x(x), _begin(y), _end(endOf(y, length, "RLEItem::RLEItem(int, int, int)"))
{
}

void RLEItem::setOrigin(int x, int y)
{
  _end = endOf(y, getLength(), "void RLEItem::setOrigin(const int, const int)");
  _x = x;
  _begin = y;
}

void RLEItem::setBegin(int begin)
{
  requireLength(begin, _end, "void RLEItem::setBegin(const int)");
  _begin = begin;
}

void RLEItem::setEnd(int end)
{
  requireLength(_begin, end, "void RLEItem::setEnd(const int)");
  _end = end;
}

bool RLEItem::touches(const RLEItem& other) const
{
  return _x == other._x && std::int64_t{other._begin} <= std::int64_t{_end} + 1 &&
         std::int64_t{_begin} <= std::int64_t{other._end} + 1;
}
