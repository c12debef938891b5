#include "app/core/actions/nyxmodeldeletionaction.h"

#include "app/core/nyxstack.h"

NYXModelDeletionAction::NYXModelDeletionAction(Model& model) : NYXModelAction(model) {}

NYXModelDeletionAction::~NYXModelDeletionAction() = default;

int NYXModelDeletionAction::getNumItems() const
{
  return static_cast<int>(_model ? _items.getItems().size() : getModel().getItems().size());
}

void NYXModelDeletionAction::apply()
{
  _place = getModel().getIndex();
  _items = NYXDetachedItems(getModel().getItems());
  _items.detach();
  _model = getStack().removeModel(&getModel());
  NYXModelAction::apply();
}

void NYXModelDeletionAction::revert()
{
  getStack().addModel(std::move(_model), _place);
  _items.attach();
  NYXModelAction::revert();
}

QString NYXModelDeletionAction::description(bool isDetailed) const
{
  return isDetailed ? tr("Model deletion: ") + QString::fromStdString(getModel().getName()) : tr("Model deletion");
}

void NYXModelDeletionAction::postEvents()
{
  if (reverted())
    post(NYXModelCreateEvent(getModel()));
  else
    post(NYXModelDeleteEvent(getModel(), getStack()));
}

bool NYXModelDeletionAction::isEqual(const NYXAction& other) const
{
  return &getModel() == &static_cast<const NYXModelDeletionAction&>(other).getModel();
}
