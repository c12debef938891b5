#include "app/core/actions/nyxitemselectionaction.h"

#include "app/core/actions/nyxitemcreationaction.h"
#include "app/core/actions/nyxremoveselectionaction.h"
#include "model/model.h"

void NYXItemSelectionAction::apply()
{
  _actions.apply();
  NYXItemAction::apply();
}

void NYXItemSelectionAction::revert()
{
  _actions.revert();
  NYXItemAction::revert();
}

std::unique_ptr<ModelItem> NYXItemSelectionAction::selectedPoints() const
{
  const ModelItem& item = getItem();
  const bool isOfPoints = item.getModel() && item.getModel()->getGeometry() == MPrimitive::Polypoint;
  const ModelItemSelection& selection = item.getSelection();
  if (!isOfPoints || selection.isEmpty() || selection.isComplete()) return nullptr;
  auto points = std::make_unique<ModelItem>(item);
  points->setVertices(item.selectedVertices());
  points->getSelection().set(true);
  return points;
}

void NYXItemSelectionAction::split(std::unique_ptr<ModelItem> points)
{
  append(std::make_unique<NYXRemoveSelectionAction>(getItem()));
  append(std::make_unique<NYXItemCreationAction>(std::move(points)));
}
