#include "model/stacksliceselectioninfo.h"

#include "model/model.h"
#include "model/modelitem.h"
#include "model/stackslice.h"

#include <algorithm>

namespace
{
MPrimitive geometryOf(const ModelItem& item)
{
  return item.getModel() ? item.getModel()->getGeometry() : MPrimitive::Unknown;
}

template <class Property> bool areEqual(const std::vector<ModelItem*>& items, Property property)
{
  return std::all_of(items.begin(), items.end(),
                     [&](const ModelItem* item) { return property(*item) == property(*items.front()); });
}
} // namespace

StackSliceSelectionInfo::StackSliceSelectionInfo(const StackSlice& slice) : _items(slice.getSelectedItems())
{
  if (_items.empty()) return;
  const ModelItem& first = *_items.front();
  if (areEqual(_items, [](const ModelItem& item) { return item.getModel(); })) _model = first.getModel();
  if (areEqual(_items, geometryOf)) _geometry = geometryOf(first);
  if (areEqual(_items, [](const ModelItem& item) { return item.getTriangulationTag(); }))
    _triangulationTag = first.getTriangulationTag();
  _isPartial = std::any_of(_items.begin(), _items.end(),
                           [](const ModelItem* item) { return !item->getSelection().isComplete(); });
}
