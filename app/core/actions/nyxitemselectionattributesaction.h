#pragma once

#include "app/core/actions/nyxitemselectionaction.h"

/// What is selected of an item gets other properties of its own.
class NYXItemSelectionAttributesAction : public NYXItemSelectionAction
{
public:
  NYXItemSelectionAttributesAction(ModelItem& item, const ModelItemProperties& properties);

  QString description(bool isDetailed) const override;

private:
  bool isEqual(const NYXAction& other) const override;

  ModelItemProperties _properties;
};
