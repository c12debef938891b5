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

void ModelItemOwner::removeItem(ModelItem* item)
{
  const auto found = std::find(_items.begin(), _items.end(), item);
  if (found == _items.end()) return;
  _items.erase(found);
  noteMembership(*item, false);
}

void ModelItemOwner::removeAllItems()
{
  for (ModelItem* item : _items) noteMembership(*item, false);
  _items.clear();
}

void ModelItemOwner::removeItemsIf(const std::function<bool(const ModelItem&)>& test)
{
  const auto removes = [&](ModelItem* item)
  {
    const bool goes = test(*item);
    if (goes) noteMembership(*item, false);
    return goes;
  };
  std::erase_if(_items, removes);
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
