#pragma once

#include "drawn_stack.h"

#include "app/core/nyxaction.h"

#include <functional>
#include <memory>
#include <utility>
#include <vector>

using ActionPtr = std::unique_ptr<NYXAction>;

template <class Action, class... Arguments> ActionPtr make(Arguments&&... arguments)
{
  return std::make_unique<Action>(std::forward<Arguments>(arguments)...);
}

/// A contour of the model "nuclei" on the last slice.
std::unique_ptr<ModelItem> newItem(DrawnStack& drawn);

/// An action on a drawn stack, and what it says and tells.
struct ActionCase
{
  const char* name;
  std::function<ActionPtr(DrawnStack&)> action;
  const char* description;
  std::vector<int> events; // posted when it is applied; reverting swaps creation and deletion
  bool isComparable = true;
};

/// Each kind of action in each of its ways.
const std::vector<ActionCase>& actionCases();
