#include "app/core/actions/nyxdetacheditems.h"

#include "model/model.h"
#include "model/modelitem.h"
#include "model/stackslice.h"

#include <algorithm>
#include <unordered_set>

namespace
{
/// The lists that the items are on, each once.
std::vector<ModelItemOwner*> listsOf(const std::vector<ModelItem*>& items)
{
  std::vector<ModelItemOwner*> lists;
  std::unordered_set<const ModelItemOwner*> known;
  const auto note = [&](ModelItemOwner* list)
  {
    if (list && known.insert(list).second) lists.push_back(list);
  };
  for (const ModelItem* item : items)
  {
    note(item->getModel());
    note(item->getSlice());
  }
  return lists;
}
} // namespace

NYXDetachedItems& NYXDetachedItems::operator=(NYXDetachedItems&& other) noexcept
{
  std::swap(_items, other._items);
  std::swap(_places, other._places);
  std::swap(_areDetached, other._areDetached);
  return *this;
}

NYXDetachedItems::~NYXDetachedItems()
{
  if (!_areDetached) return;
  for (ModelItem* item : _items) delete item;
}

void NYXDetachedItems::detach()
{
  _places.clear();
  if (_items.size() == 1) // without a look at the other items
  {
    for (ModelItemOwner* list : listsOf(_items))
      if (const long number = list->takeItem(_items.front()); number > 0)
        _places.push_back({list, {{number, _items.front()}}});
  }
  else
  {
    const std::unordered_set<const ModelItem*> leaving(_items.begin(), _items.end());
    for (ModelItemOwner* list : listsOf(_items))
      _places.emplace_back(list, list->takeItemsIf([&](const ModelItem& item) { return leaving.contains(&item); }));
  }
  _areDetached = true;
}

void NYXDetachedItems::attach()
{
  if (_places.empty())
    for (ModelItem* item : _items) item->attach();
  for (const auto& [list, places] : _places)
  {
    if (places.size() == 1)
      list->restoreItem(places.front().item, places.front().number);
    else
      list->restoreItems(places);
  }
  _areDetached = false;
}
