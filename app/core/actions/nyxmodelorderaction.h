#pragma once

#include "app/core/actions/nyxmodelaction.h"

/// A model goes to another place among the models of its stack.
class NYXModelOrderAction : public NYXModelAction
{
public:
  /// \throw UsageError  the model is in no open stack \throw RangeError  there is no such place
  NYXModelOrderAction(Model& model, int place);

  void apply() override;
  void revert() override;
  QString description(bool isDetailed) const override;
  bool isNull() const override { return _place == _oldPlace; }
  bool touchesSlices() const override { return false; }

private:
  void postEvents() override;
  bool isEqual(const NYXAction& other) const override;

  int _oldPlace;
  int _place;
};
