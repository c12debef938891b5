#pragma once

#include "app/core/actions/nyxmodelaction.h"

#include <memory>

/// A new model, without items, comes into the stack.
class NYXModelCreationAction : public NYXModelAction
{
public:
  /// At the end of the stack's models.
  NYXModelCreationAction(NYXStack& stack, std::unique_ptr<Model> model);
  ~NYXModelCreationAction() override;

  void apply() override;
  void revert() override;
  QString description(bool isDetailed) const override;

private:
  bool changes(const StackSlice&) const override { return false; } // nothing is drawn in it
  void postEvents() override;

  std::unique_ptr<Model> _model; // while it is not in the stack
};
