#pragma once

#include "app/core/actions/nyxstackaction.h"

class Model;

/// An action on a model of an open stack.
class NYXModelAction : public NYXStackAction
{
public:
  Model& getModel() const { return *_model; }

protected:
  /// \throw UsageError  the model is in no open stack
  explicit NYXModelAction(Model& model);
  /// A model that is to come into the stack.
  NYXModelAction(NYXStack& stack, Model& model) : NYXStackAction(stack), _model(&model) {}

private:
  Model* _model;
};
