#pragma once

#include "app/core/actions/nyxitemaction.h"

/// The selection of an item's vertices is replaced. Selecting does not make a stack modified.
class NYXSelectionAction : public NYXItemAction
{
public:
  /// \throw SizeError  the selection is not one of the item's vertices
  NYXSelectionAction(ModelItem& item, ModelItemSelection selection);

  void apply() override;
  void revert() override;
  QString description(bool isDetailed) const override;
  bool isNull() const override { return _selection == _oldSelection; }

private:
  void postEvents() override { post(NYXModelItemSelectEvent(getItem())); }
  bool changesContent() const override { return false; }
  bool isEqual(const NYXAction& other) const override;

  ModelItemSelection _oldSelection;
  ModelItemSelection _selection;
};
