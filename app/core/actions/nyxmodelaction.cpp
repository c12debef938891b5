#include "app/core/actions/nyxmodelaction.h"

#include "model/model.h"

NYXModelAction::NYXModelAction(Model& model)
  : NYXModelAction(openStack(model.getStack(), "NYXModelAction::NYXModelAction(Model&)"), model)
{
}
