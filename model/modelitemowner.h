#pragma once

#include <functional>
#include <vector>

class ModelItem;

/// Ordered list of items that it does not delete: the items of a model, or those on a slice.
class ModelItemOwner
{
public:
  ModelItemOwner(const ModelItemOwner&) = delete;
  ModelItemOwner& operator=(const ModelItemOwner&) = delete;
  virtual ~ModelItemOwner() = default;

  int getNumItems() const { return static_cast<int>(_items.size()); }
  /// Item i. Unchecked.
  ModelItem* getItem(int i) const { return _items[static_cast<std::size_t>(i)]; }
  const std::vector<ModelItem*>& getItems() const { return _items; }
  void addItem(ModelItem* item);
  /// Nothing happens when the item is not listed.
  void removeItem(ModelItem* item);
  void removeAllItems();
  /// Takes all items off the list for which the test holds, in one pass.
  void removeItemsIf(const std::function<bool(const ModelItem&)>& test) { takeItemsIf(test); }

  /// An item that left the list, and its number: the numbers of a list rise, and what is added gets the next one. So
  /// items come back between the same neighbours, in whatever order they left and come back.
  struct Place
  {
    long number;
    ModelItem* item;
  };
  /// Takes an item off the list. \return the number that it had, 0 when it is not listed
  long takeItem(ModelItem* item);
  /// Brings an item back that had the number.
  void restoreItem(ModelItem* item, long number);
  /// Takes all items off the list for which the test holds, in one pass.
  std::vector<Place> takeItemsIf(const std::function<bool(const ModelItem&)>& test);
  /// Brings the items of one takeItemsIf() back, in one pass.
  void restoreItems(const std::vector<Place>& places);

  /// The first item whose selection is not empty, or nullptr.
  ModelItem* getSelectedItem() const;
  std::vector<ModelItem*> getSelectedItems() const;
  /// The first other item of this owner with the same model and equal properties, or nullptr.
  ModelItem* buddyItem(const ModelItem& item) const;

  /// Whether the absolute positions of the items' slices never decrease.
  bool isSorted() const;
  /// Orders the items by the absolute positions of their slices; items of one position keep their order. They are
  /// numbered anew: what left the list before must not come back.
  void sort();
  /// The items that both owners list, in this one's order.
  std::vector<ModelItem*> intersection(const ModelItemOwner& other) const;

protected:
  ModelItemOwner() = default;

private:
  /// Tells the item whether it is on this list.
  virtual void noteMembership(ModelItem& item, bool isMember) = 0;

  std::vector<ModelItem*> _items;
  std::vector<long> _numbers; // of the items, rising
  long _lastNumber = 0;       // ever given
};
