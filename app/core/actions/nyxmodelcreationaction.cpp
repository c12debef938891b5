#include "app/core/actions/nyxmodelcreationaction.h"

#include "app/core/nyxstack.h"

NYXModelCreationAction::NYXModelCreationAction(NYXStack& stack, std::unique_ptr<Model> model)
  : NYXModelAction(stack, *model), _model(std::move(model))
{
}

NYXModelCreationAction::~NYXModelCreationAction() = default;

void NYXModelCreationAction::apply()
{
  getStack().addModel(std::move(_model));
  NYXModelAction::apply();
}

void NYXModelCreationAction::revert()
{
  _model = getStack().removeModel(&getModel());
  NYXModelAction::revert();
}

QString NYXModelCreationAction::description(bool isDetailed) const
{
  return isDetailed ? tr("Model creation: ") + QString::fromStdString(getModel().getName()) : tr("Model creation");
}

void NYXModelCreationAction::postEvents()
{
  if (reverted())
    post(NYXModelDeleteEvent(getModel(), getStack()));
  else
    post(NYXModelCreateEvent(getModel()));
}
