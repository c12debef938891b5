#pragma once

#include "app/core/actions/nyxdetacheditems.h"
#include "app/core/actions/nyxitemaction.h"

#include <memory>
#include <string>
#include <vector>

/// New items go to the ends of the lists of their models and slices; the slice of the first counts as the last one
/// segmented. That note is exact as long as steps on several slices are undone in the order in which they were made.
class NYXItemCreationAction : public NYXItemAction
{
public:
  /// \throw UsageError  an item lies on no slice of an open stack, or there is none
  explicit NYXItemCreationAction(std::unique_ptr<ModelItem> item);
  explicit NYXItemCreationAction(std::vector<std::unique_ptr<ModelItem>> items);

  void apply() override;
  void revert() override;
  QString description(bool isDetailed) const override;

  const std::vector<ModelItem*>& getItems() const { return _items.getItems(); }

private:
  bool changes(const StackSlice& slice) const override { return lieOn(slice, getItems()); }
  void postEvents() override;

  NYXDetachedItems _items;
  std::string _otherLastSegmentedSlice; // that of the stack in the other state
};
