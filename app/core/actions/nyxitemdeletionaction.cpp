#include "app/core/actions/nyxitemdeletionaction.h"

#include "numeric/exception.h"

namespace
{
ModelItem& firstOf(const std::vector<ModelItem*>& items)
{
  if (items.empty())
    throw UsageError("NYXItemDeletionAction::NYXItemDeletionAction(std::vector<ModelItem*>)",
                     "There is no item to delete");
  return *items.front();
}
} // namespace

NYXItemDeletionAction::NYXItemDeletionAction(std::vector<ModelItem*> items)
  : NYXItemAction(firstOf(items)), _items(std::move(items))
{
}

void NYXItemDeletionAction::apply()
{
  _items.detach();
  NYXItemAction::apply();
}

void NYXItemDeletionAction::revert()
{
  _items.attach();
  NYXItemAction::revert();
}

QString NYXItemDeletionAction::description(bool) const
{
  return tr("Item deletion");
}

void NYXItemDeletionAction::postEvents()
{
  for (ModelItem* item : getItems())
  {
    if (reverted())
      post(NYXModelItemCreateEvent(*item));
    else
      post(NYXModelItemDeleteEvent(*item));
  }
}

bool NYXItemDeletionAction::isEqual(const NYXAction& other) const
{
  return getItems() == static_cast<const NYXItemDeletionAction&>(other).getItems();
}
