#include "model/modelitemowner.h"

#include "model/modelitem.h"
#include "model/stack.h"

#include <algorithm>
#include <unordered_map>
#include <unordered_set>

namespace
{
/// Absolute positions of items' slices; those of a whole stack are computed at once, at the first question.
class SlicePositions
{
public:
  float operator()(const ModelItem& item)
  {
    const StackSlice* const slice = item.getSlice();
    if (!slice) return 0;
    const Stack* const stack = slice->getStack();
    if (!stack) return slice->getAbsolutePosition();
    const auto [positions, isNew] = _positions.try_emplace(stack);
    if (isNew) positions->second = stack->absolutePositions();
    return positions->second[static_cast<std::size_t>(slice->getIndex())];
  }

private:
  std::unordered_map<const Stack*, std::vector<float>> _positions;
};

bool hasSelection(const ModelItem* item)
{
  return !item->getSelection().isEmpty();
}
} // namespace

void ModelItemOwner::addItem(ModelItem* item)
{
  _items.push_back(item);
  noteMembership(*item, true);
}

void ModelItemOwner::insertItem(ModelItem* item, int i)
{
  _items.insert(_items.begin() + i, item);
  noteMembership(*item, true);
}

void ModelItemOwner::removeItem(ModelItem* item)
{
  takeItem(item);
}

int ModelItemOwner::takeItem(ModelItem* item)
{
  // From the end: what was drawn last goes first, and so do the items of a selection that is deleted.
  const auto found = std::find(_items.rbegin(), _items.rend(), item);
  if (found == _items.rend()) return -1;
  const auto place = found.base() - 1;
  const auto index = static_cast<int>(place - _items.begin());
  _items.erase(place);
  noteMembership(*item, false);
  return index;
}

void ModelItemOwner::removeAllItems()
{
  for (ModelItem* item : _items) noteMembership(*item, false);
  _items.clear();
}

std::vector<ModelItemOwner::Place> ModelItemOwner::takeItemsIf(const std::function<bool(const ModelItem&)>& test)
{
  std::vector<Place> places;
  int index = 0;
  const auto takes = [&](ModelItem* item)
  {
    const int i = index++;
    if (!test(*item)) return false;
    places.push_back({i, item});
    noteMembership(*item, false);
    return true;
  };
  _items.erase(std::remove_if(_items.begin(), _items.end(), takes), _items.end());
  return places;
}

void ModelItemOwner::restoreItems(const std::vector<Place>& places)
{
  std::vector<ModelItem*> items;
  items.reserve(_items.size() + places.size());
  auto next = _items.begin();
  for (const Place& place : places)
  {
    const auto numBefore = place.index - static_cast<int>(items.size());
    items.insert(items.end(), next, next + numBefore);
    next += numBefore;
    items.push_back(place.item);
  }
  items.insert(items.end(), next, _items.end());
  _items = std::move(items);
  for (const Place& place : places) noteMembership(*place.item, true);
}

ModelItem* ModelItemOwner::getSelectedItem() const
{
  const auto found = std::find_if(_items.begin(), _items.end(), hasSelection);
  return found == _items.end() ? nullptr : *found;
}

std::vector<ModelItem*> ModelItemOwner::getSelectedItems() const
{
  std::vector<ModelItem*> selected;
  std::copy_if(_items.begin(), _items.end(), std::back_inserter(selected), hasSelection);
  return selected;
}

ModelItem* ModelItemOwner::buddyItem(const ModelItem& item) const
{
  const auto isBuddy = [&item](const ModelItem* other)
  { return other != &item && other->getModel() == item.getModel() && other->getProperties() == item.getProperties(); };
  const auto found = std::find_if(_items.begin(), _items.end(), isBuddy);
  return found == _items.end() ? nullptr : *found;
}

bool ModelItemOwner::isSorted() const
{
  SlicePositions positions;
  return std::is_sorted(_items.begin(), _items.end(),
                        [&](const ModelItem* a, const ModelItem* b) { return positions(*a) < positions(*b); });
}

void ModelItemOwner::sort()
{
  SlicePositions positions;
  std::stable_sort(_items.begin(), _items.end(),
                   [&](const ModelItem* a, const ModelItem* b) { return positions(*a) < positions(*b); });
}

std::vector<ModelItem*> ModelItemOwner::intersection(const ModelItemOwner& other) const
{
  const std::unordered_set<const ModelItem*> others(other._items.begin(), other._items.end());
  std::vector<ModelItem*> common;
  std::copy_if(_items.begin(), _items.end(), std::back_inserter(common),
               [&others](const ModelItem* item) { return others.contains(item); });
  return common;
}
