#pragma once

#include "model/modelitemowner.h"

#include <utility>
#include <vector>

/// Takes items off the lists of their models and slices and puts them back between the same neighbours, in a time
/// linear in the lists. Owns the items while they are off.
class NYXDetachedItems
{
public:
  NYXDetachedItems() = default;
  /// Items made by new. Those that are on no list yet are put at the ends of the lists at first.
  explicit NYXDetachedItems(std::vector<ModelItem*> items) : _items(std::move(items)) {}
  NYXDetachedItems(NYXDetachedItems&& other) noexcept { *this = std::move(other); }
  NYXDetachedItems& operator=(NYXDetachedItems&& other) noexcept;
  /// Deletes the items if they are off.
  ~NYXDetachedItems();

  const std::vector<ModelItem*>& getItems() const { return _items; }
  bool areDetached() const { return _areDetached; }
  /// Takes over items that are on no list.
  void own() { _areDetached = true; }

  void detach();
  void attach();

private:
  using Places = std::vector<ModelItemOwner::Place>;

  std::vector<ModelItem*> _items;
  std::vector<std::pair<ModelItemOwner*, Places>> _places; // in each list, from when they were detached last
  bool _areDetached = false;
};
