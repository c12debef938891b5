#include "app/core/actions/nyxmodelitembrushaction.h"

#include "numeric/exception.h"

NYXModelItemBrushAction::NYXModelItemBrushAction(ModelItem& item, const RLEItemSet& stroke, Mode mode)
  : NYXItemVertexAction(item), _positions(stroke), _mode(mode)
{
  if (!item.isRegion())
    throw UsageError("NYXModelItemBrushAction::NYXModelItemBrushAction(ModelItem&, const RLEItemSet&, Mode)",
                     "Only regions are painted with the brush");
  _positions.remove(item.getRLEItemSet());
  if (mode == Paint) return;
  const RLEItemSet outside = _positions;
  _positions = stroke;
  _positions.remove(outside);
}

void NYXModelItemBrushAction::apply()
{
  change(_mode == Paint);
  NYXItemVertexAction::apply();
}

void NYXModelItemBrushAction::revert()
{
  change(_mode == Erase);
  NYXItemVertexAction::revert();
}

void NYXModelItemBrushAction::change(bool isPainted)
{
  if (isPainted)
    getItem().addRLEItemSet(_positions);
  else
    getItem().removeRLEItemSet(_positions);
}

QString NYXModelItemBrushAction::description(bool) const
{
  return _mode == Paint ? tr("Paint region") : tr("Erase from region");
}

bool NYXModelItemBrushAction::isEqual(const NYXAction& other) const
{
  const auto& action = static_cast<const NYXModelItemBrushAction&>(other);
  return &getItem() == &action.getItem() && _mode == action._mode && _positions == action._positions;
}
