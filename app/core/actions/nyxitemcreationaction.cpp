#include "app/core/actions/nyxitemcreationaction.h"

#include "app/core/nyxstack.h"
#include "numeric/exception.h"

namespace
{
std::vector<std::unique_ptr<ModelItem>> listOf(std::unique_ptr<ModelItem> item)
{
  std::vector<std::unique_ptr<ModelItem>> items;
  items.push_back(std::move(item));
  return items;
}

ModelItem& firstOf(const std::vector<std::unique_ptr<ModelItem>>& items)
{
  if (items.empty())
    throw UsageError("NYXItemCreationAction::NYXItemCreationAction(std::vector<std::unique_ptr<ModelItem>>)",
                     "There is no item to create");
  return *items.front();
}
} // namespace

NYXItemCreationAction::NYXItemCreationAction(std::unique_ptr<ModelItem> item)
  : NYXItemCreationAction(listOf(std::move(item)))
{
}

NYXItemCreationAction::NYXItemCreationAction(std::vector<std::unique_ptr<ModelItem>> items)
  : NYXItemAction(firstOf(items)), _otherLastSegmentedSlice(getItem().getSlice()->getName())
{
  std::vector<ModelItem*> released;
  released.reserve(items.size());
  for (std::unique_ptr<ModelItem>& item : items) released.push_back(item.release());
  _items = NYXDetachedItems(std::move(released));
  _items.own();
}

void NYXItemCreationAction::apply()
{
  _items.attach();
  const std::string name = getStack().getLastSegmentedSlice();
  getStack().setLastSegmentedSlice(_otherLastSegmentedSlice);
  _otherLastSegmentedSlice = name;
  NYXItemAction::apply();
}

void NYXItemCreationAction::revert()
{
  _items.detach();
  const std::string name = getStack().getLastSegmentedSlice();
  getStack().setLastSegmentedSlice(_otherLastSegmentedSlice);
  _otherLastSegmentedSlice = name;
  NYXItemAction::revert();
}

QString NYXItemCreationAction::description(bool) const
{
  return tr("Item creation");
}

void NYXItemCreationAction::postEvents()
{
  for (ModelItem* item : getItems())
  {
    if (reverted())
      post(NYXModelItemDeleteEvent(*item));
    else
      post(NYXModelItemCreateEvent(*item));
  }
}
