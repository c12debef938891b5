#pragma once

#include <functional>
#include <memory>
#include <vector>

class Model;
class ModelItem;
class Stack;

/// Models on a copy of a stack's slices: what is needed to draw them in 3D, for a thread of its own.
struct ShownStack
{
  ShownStack();
  ShownStack(ShownStack&&) noexcept;
  ShownStack& operator=(ShownStack&&) noexcept;
  ~ShownStack();

  std::unique_ptr<Stack> stack;     ///< slices where they lie, and copies of the models
  std::vector<const Model*> models; ///< the models that were copied; addresses that may be stale
};

/// Whether an item is to be seen in 3D: by its own properties, or what its model says for those that it leaves open.
bool isShown3D(const ModelItem& item);

/// Copies models of one stack with those of their items that are to be seen. Nothing is shared with the stack.
ShownStack copyShown(const Stack& stack, const std::vector<const Model*>& models,
                     const std::function<bool(const ModelItem&)>& isShown = isShown3D);
