#pragma once

#include "app/core/actions/nyxitemaction.h"
#include "app/core/nyxactionlist.h"

#include <memory>

/// An action on what is selected of an item: the item, or some of the points of a points item, which become an item of
/// their own. It is made up of actions, which tell the event bus of their changes.
class NYXItemSelectionAction : public NYXItemAction
{
public:
  void apply() override;
  void revert() override;
  bool isNull() const override { return _actions.isNull(); }

protected:
  using NYXItemAction::NYXItemAction;

  /// A new item with the selected points, when these are some of a points item; nullptr when the item goes as a whole.
  std::unique_ptr<ModelItem> selectedPoints() const;
  void append(std::unique_ptr<NYXAction> action) { _actions.append(std::move(action)); }
  /// Takes the selected points from the item and makes the new item of them.
  void split(std::unique_ptr<ModelItem> points);

private:
  void postEvents() override {}

  NYXActionList _actions;
};
