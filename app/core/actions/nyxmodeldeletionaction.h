#pragma once

#include "app/core/actions/nyxdetacheditems.h"
#include "app/core/actions/nyxmodelaction.h"

#include <memory>

/// A model leaves its stack with all its items; the action owns them meanwhile.
class NYXModelDeletionAction : public NYXModelAction
{
public:
  /// \throw UsageError  the model is in no open stack
  explicit NYXModelDeletionAction(Model& model);
  ~NYXModelDeletionAction() override;

  /// Items that go with the model, or went.
  int getNumItems() const;

  void apply() override;
  void revert() override;
  QString description(bool isDetailed) const override;

private:
  void postEvents() override;
  bool isEqual(const NYXAction& other) const override;

  std::unique_ptr<Model> _model; // while it is not in the stack
  NYXDetachedItems _items;
  int _place = -1;
};
