#pragma once

#include "app/core/actions/nyxsliceaction.h"

/// A slice goes to another place in its stack; its items and its own depth go with it.
class NYXSliceOrderAction : public NYXSliceAction
{
public:
  /// \throw UsageError  the slice is in no open stack \throw RangeError  there is no such place
  NYXSliceOrderAction(StackSlice& slice, int place);

  void apply() override;
  void revert() override;
  QString description(bool isDetailed) const override;
  bool changesPlaces() const override { return true; }
  bool isNull() const override { return _place == _oldPlace; }

private:
  void postEvents() override;
  bool isEqual(const NYXAction& other) const override;

  int _oldPlace;
  int _place;
};
