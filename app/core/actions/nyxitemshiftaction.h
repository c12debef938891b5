#pragma once

#include "app/core/actions/nyxitemaction.h"

/// An item is translated. While it is dragged, the shift is set and the action applied again and again.
class NYXItemShiftAction : public NYXItemVertexAction
{
public:
  explicit NYXItemShiftAction(ModelItem& item, int dx = 0, int dy = 0) : NYXItemVertexAction(item), _shift{dx, dy} {}

  /// From where the item was at first.
  void setShift(int dx, int dy) { _shift = {dx, dy}; }

  /// \throw RangeError  the item would leave the range of coordinates
  void apply() override;
  void revert() override;
  QString description(bool isDetailed) const override;
  bool isNull() const override { return _shift == Shift(); }

private:
  struct Shift
  {
    int dx = 0;
    int dy = 0;

    bool operator==(const Shift& other) const = default;
  };

  void moveTo(const Shift& shift);
  bool isEqual(const NYXAction& other) const override;

  Shift _shift;
  Shift _applied; // where the item is now
};
