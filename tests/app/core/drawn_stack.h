#pragma once

#include "app/core/nyxstack.h"
#include "tests/support/stackfiles.h"
#include "tests/support/stacks.h"

#include <string>

/// An open stack with three slices, a model of each geometry, a few items and a pose; saved as it is.
class DrawnStack
{
public:
  DrawnStack();

  NYXStack& stack() { return _stack; }
  StackSlice& slice(int i) { return *_stack.getSlice(i); }
  Model& model(const std::string& name) { return *_stack.getModel(_stack.findModel(name)); }
  /// Item i of a model: see the constructor.
  ModelItem& item(const std::string& model, int i) { return *this->model(model).getItem(i); }

  /// All that is saved, and what the file leaves out or rounds.
  std::string state();
  /// How many vertices of each item are selected, which no file says.
  std::string selections();
  /// The state without the notes of the slices that were segmented and registered last.
  std::string stateWithoutBookmarks();

private:
  NYXStack _stack;
  TemporaryFolder _folder;
};

RLEItemSet disc(int x, int y, int radius);
