#include "app/core/actions/nyxitemselectionconversionaction.h"

#include "app/core/actions/nyxitemconversionaction.h"
#include "model/model.h"

NYXItemSelectionConversionAction::NYXItemSelectionConversionAction(ModelItem& item, Model* destination)
  : NYXItemSelectionAction(item), _destination(destination)
{
  if (!destination || destination == item.getModel()) return;
  std::unique_ptr<ModelItem> points = selectedPoints();
  ModelItem& converted = points ? *points : item;
  if (points) split(std::move(points));
  append(std::make_unique<NYXItemConversionAction>(converted, *destination));
}

QString NYXItemSelectionConversionAction::description(bool) const
{
  if (!_destination) return tr("<Invalid item selection conversion action>");
  return tr("Conversion to: ") + QString::fromStdString(_destination->getName());
}

bool NYXItemSelectionConversionAction::isEqual(const NYXAction& other) const
{
  const auto& action = static_cast<const NYXItemSelectionConversionAction&>(other);
  return &getItem() == &action.getItem() && _destination == action._destination;
}
