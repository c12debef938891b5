#pragma once

#include "app/core/actions/nyxslicepropertiesaction.h"
#include "app/core/actions/nyxstackpropertiesaction.h"

#include <vector>

/// The length unit of a stack is changed and all lengths with it, so that nothing changes in space.
class NYXLengthUnitAction : public NYXStackAction
{
public:
  /// To the unit of this power of ten of the metre.
  NYXLengthUnitAction(NYXStack& stack, int scale);

  void apply() override;
  void revert() override;
  QString description(bool isDetailed) const override;
  bool isNull() const override { return _scale == _oldScale; }

private:
  void postEvents() override;
  bool isEqual(const NYXAction& other) const override;

  int _oldScale;
  int _scale;
  NYXStackProperties _oldProperties;            // lengths that are scaled back differ in their last digits
  std::vector<NYXSliceProperties> _oldOfSlices; // in stack order
};
