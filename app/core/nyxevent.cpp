#include "app/core/nyxevent.h"

#include "model/model.h"

NYXModelEvent::NYXModelEvent(Type type, Model& model) : NYXEvent(type), _model(&model), _stack(model.getStack()) {}
