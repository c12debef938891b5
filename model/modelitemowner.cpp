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
  restoreItem(item, ++_lastNumber);
}

void ModelItemOwner::restoreItem(ModelItem* item, long number)
{
  const auto place = std::upper_bound(_numbers.begin(), _numbers.end(), number) - _numbers.begin();
  _items.insert(_items.begin() + place, item);
  _numbers.insert(_numbers.begin() + place, number);
  noteMembership(*item, true);
}

void ModelItemOwner::removeItem(ModelItem* item)
{
  takeItem(item);
}

long ModelItemOwner::takeItem(ModelItem* item)
{
  // From the end: what was drawn last goes first, and so do the items of a selection that is deleted.
  const auto found = std::find(_items.rbegin(), _items.rend(), item);
  if (found == _items.rend()) return 0;
  const auto place = found.base() - 1 - _items.begin();
  const long number = _numbers[static_cast<std::size_t>(place)];
  _items.erase(_items.begin() + place);
  _numbers.erase(_numbers.begin() + place);
  noteMembership(*item, false);
  return number;
}

void ModelItemOwner::removeAllItems()
{
  for (ModelItem* item : _items) noteMembership(*item, false);
  _items.clear();
  _numbers.clear();
}

std::vector<ModelItemOwner::Place> ModelItemOwner::takeItemsIf(const std::function<bool(const ModelItem&)>& test)
{
  std::vector<Place> places;
  std::size_t numKept = 0;
  for (std::size_t i = 0; i < _items.size(); ++i)
  {
    if (test(*_items[i]))
    {
      places.push_back({_numbers[i], _items[i]});
      noteMembership(*_items[i], false);
      continue;
    }
    _items[numKept] = _items[i];
    _numbers[numKept++] = _numbers[i];
  }
  _items.resize(numKept);
  _numbers.resize(numKept);
  return places;
}

void ModelItemOwner::restoreItems(const std::vector<Place>& places)
{
  std::vector<ModelItem*> items;
  std::vector<long> numbers;
  items.reserve(_items.size() + places.size());
  numbers.reserve(_items.size() + places.size());
  std::size_t next = 0;
  const auto keepBefore = [&](long number)
  {
    for (; next < _items.size() && _numbers[next] < number; ++next)
    {
      items.push_back(_items[next]);
      numbers.push_back(_numbers[next]);
    }
  };
  for (const Place& place : places)
  {
    keepBefore(place.number);
    items.push_back(place.item);
    numbers.push_back(place.number);
  }
  keepBefore(_lastNumber + 1);
  _items = std::move(items);
  _numbers = std::move(numbers);
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
  for (long& number : _numbers) number = ++_lastNumber;
}

std::vector<ModelItem*> ModelItemOwner::intersection(const ModelItemOwner& other) const
{
  const std::unordered_set<const ModelItem*> others(other._items.begin(), other._items.end());
  std::vector<ModelItem*> common;
  std::copy_if(_items.begin(), _items.end(), std::back_inserter(common),
               [&others](const ModelItem* item) { return others.contains(item); });
  return common;
}
