#pragma once

#include "numeric/vector.h"

/// Run of consecutive positions along the second coordinate: (x, begin) to (x, end), both included.
class RLEItem
{
public:
  /// \throw ProgramError  the length is below 1 or the run ends beyond int
  RLEItem(int x, int y, int length);

  /// (x, begin).
  Vector<int> getOrigin() const { return Vector<int>{_x, _begin}; }
  int getOriginX() const { return _x; }
  /// Moves the run; its length stays. \throw ProgramError  the run would end beyond int
  void setOrigin(int x, int y);
  int getLength() const { return _end - _begin + 1; }

  /// First and last second coordinate.
  int begin() const { return _begin; }
  int end() const { return _end; }
  /// Moves one end, the other stays. \throw ProgramError  "Negative length"
  void setBegin(int begin);
  void setEnd(int end);

  bool contains(int x, int y) const { return x == _x && y >= _begin && y <= _end; }
  /// Whether the two together are one run: same first coordinate, overlapping or next to each other.
  bool touches(const RLEItem& other) const;

  bool operator==(const RLEItem& other) const = default;
  /// By first coordinate, then begin.
  bool operator<(const RLEItem& other) const { return _x != other._x ? _x < other._x : _begin < other._begin; }

private:
  int _x;
  int _begin;
  int _end;
};
