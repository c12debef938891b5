#include "app/core/actions/nyxitemaction.h"

#include "app/core/nyxstack.h"

#include <algorithm>

NYXItemAction::NYXItemAction(ModelItem& item)
  : NYXStackAction(
        openStack(item.getSlice() ? item.getSlice()->getStack() : nullptr, "NYXItemAction::NYXItemAction(ModelItem&)")),
    _item(&item)
{
}

bool NYXItemAction::lieOn(const StackSlice& slice, const std::vector<ModelItem*>& items)
{
  return std::ranges::any_of(items, [&](const ModelItem* item) { return item->getSlice() == &slice; });
}

bool NYXItemVertexAction::areEqual(const Vertices<int>& a, const Vertices<int>& b)
{
  const int size = a.getSize();
  if (size != b.getSize()) return false;
  return size == 0 || a.data() == b.data() || std::equal(a.data(), a.data() + 2 * size, b.data());
}
