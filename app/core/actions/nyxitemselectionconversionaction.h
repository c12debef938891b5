#pragma once

#include "app/core/actions/nyxitemselectionaction.h"

/// What is selected of an item goes to another model, as by NYXItemConversionAction.
class NYXItemSelectionConversionAction : public NYXItemSelectionAction
{
public:
  /// Without a destination the action is null. \throw UsageError  as NYXItemConversionAction
  NYXItemSelectionConversionAction(ModelItem& item, Model* destination);

  QString description(bool isDetailed) const override;

private:
  bool isEqual(const NYXAction& other) const override;

  Model* _destination;
};
