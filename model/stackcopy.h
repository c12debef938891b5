#pragma once

#include <functional>
#include <memory>
#include <unordered_map>
#include <vector>

class Model;
class ModelItem;
class Stack;

/// A copy of a stack's slices where they lie and of some of its models, for a thread that works on it while the stack
/// changes. It is made piece by piece, so that whoever waits for it can do other things in between.
///
/// Slices keep name, image, calibration, alignment and depth; nothing is shared with the stack. Between two pieces the
/// slices and the copied models of the stack must not change: a copy that they change under is to be thrown away.
class StackCopy
{
public:
  /// Copies the slices and the models without their items. Stack and models are borrowed until the copy is complete.
  /// \param isCopied  whether an item is copied, all by default
  StackCopy(const Stack& stack, const std::vector<const Model*>& models,
            std::function<bool(const ModelItem&)> isCopied = {});
  ~StackCopy();

  /// Copies items until they have so many vertices, and at least one. \return false when all are copied
  bool advance(long numVertices);

  /// The copy; its models are those that were given, in their order.
  const Stack& getStack() const { return *_copy; }
  std::unique_ptr<Stack> releaseStack();
  /// The models that were copied, and of each copied item of the i-th the original, slices in stack order and their
  /// items in list order. Addresses that may be stale.
  const std::vector<const Model*>& getOriginals() const { return _models; }
  const std::vector<const ModelItem*>& getOriginalItems(int i) const { return _items[static_cast<std::size_t>(i)]; }

private:
  void copyItem(const ModelItem& item);

  const Stack& _stack;
  std::function<bool(const ModelItem&)> _isCopied;
  std::unique_ptr<Stack> _copy;
  std::vector<const Model*> _models;
  std::vector<std::vector<const ModelItem*>> _items;
  std::unordered_map<const Model*, int> _places; // of models in the copy
  int _slice = 0;                                // of the item that comes next, and its place there
  int _item = 0;
};
