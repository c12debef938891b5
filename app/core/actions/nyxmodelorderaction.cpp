#include "app/core/actions/nyxmodelorderaction.h"

#include "app/core/nyxstack.h"
#include "numeric/exception.h"

NYXModelOrderAction::NYXModelOrderAction(Model& model, int place)
  : NYXModelAction(model), _oldPlace(model.getIndex()), _place(place)
{
  if (place < 0 || place >= getStack().getNumModels())
    throw RangeError("NYXModelOrderAction::NYXModelOrderAction(Model&, int)", "There is no such place");
}

void NYXModelOrderAction::apply()
{
  _oldPlace = getModel().getIndex();
  getStack().moveModel(_oldPlace, _place);
  NYXModelAction::apply();
}

void NYXModelOrderAction::revert()
{
  getStack().moveModel(_place, _oldPlace);
  NYXModelAction::revert();
}

QString NYXModelOrderAction::description(bool) const
{
  return tr("Order of models");
}

void NYXModelOrderAction::postEvents()
{
  post(NYXModelPropertiesEvent(getModel(), getModel().getProperties(), getModel().getItemProperties()));
}

bool NYXModelOrderAction::isEqual(const NYXAction& other) const
{
  const auto& action = static_cast<const NYXModelOrderAction&>(other);
  return &getModel() == &action.getModel() && _place == action._place;
}
