#pragma once

#include "app/core/actions/nyxstackaction.h"
#include "model/modelitem.h"

#include <vector>

/// An action on one item (or on several, which then are listed by the action) of an open stack.
class NYXItemAction : public NYXStackAction
{
public:
  ModelItem& getItem() const { return *_item; }

protected:
  /// \throw UsageError  the item lies on no slice of an open stack
  explicit NYXItemAction(ModelItem& item);

  bool changes(const StackSlice& slice) const override { return _item->getSlice() == &slice; }
  /// The same of several items.
  static bool lieOn(const StackSlice& slice, const std::vector<ModelItem*>& items);

private:
  ModelItem* _item;
};

/// An action that changes the vertices or the region of an item.
class NYXItemVertexAction : public NYXItemAction
{
protected:
  using NYXItemAction::NYXItemAction;
  void postEvents() override { post(NYXModelItemVertexEvent(getItem())); }
  static bool areEqual(const Vertices<int>& a, const Vertices<int>& b);
};
