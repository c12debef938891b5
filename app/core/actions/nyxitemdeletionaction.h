#pragma once

#include "app/core/actions/nyxdetacheditems.h"
#include "app/core/actions/nyxitemaction.h"

#include <vector>

/// Items leave their models and slices; the action owns them meanwhile. One action for many items takes linear time; an
/// action for each looks its item up in the lists, from the end.
class NYXItemDeletionAction : public NYXItemAction
{
public:
  /// \throw UsageError  an item lies on no slice of an open stack, or there is none
  explicit NYXItemDeletionAction(ModelItem& item) : NYXItemAction(item), _items({&item}) {}
  explicit NYXItemDeletionAction(std::vector<ModelItem*> items);

  void apply() override;
  void revert() override;
  QString description(bool isDetailed) const override;

  const std::vector<ModelItem*>& getItems() const { return _items.getItems(); }

private:
  bool changes(const StackSlice& slice) const override { return lieOn(slice, getItems()); }
  void postEvents() override;
  bool isEqual(const NYXAction& other) const override;

  NYXDetachedItems _items;
};
