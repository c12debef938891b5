#pragma once

#include "app/core/nyxaction.h"

#include <memory>
#include <vector>

/// The actions of one step, in order. Owns them.
///
/// When an action throws, what was done of the step is taken back and the error is thrown on.
class NYXActionList
{
public:
  NYXActionList() = default;
  NYXActionList(NYXActionList&&) = default;
  NYXActionList& operator=(NYXActionList&&) = default;
  ~NYXActionList() { destroy(); }

  void append(std::unique_ptr<NYXAction> action);
  /// Deletes the last action. Unchecked.
  void dropLast() { _actions.pop_back(); }
  /// Applies the actions in order.
  void apply();
  /// Reverts the actions in reverse order.
  void revert();
  /// Reverts those actions that are not reverted and deletes all; errors are of no account.
  void takeBack();
  /// Deletes the actions, the last one first.
  void destroy();

  int getSize() const { return static_cast<int>(_actions.size()); }
  bool isEmpty() const { return _actions.empty(); }
  /// Action i. Unchecked.
  NYXAction& getAction(int i) const { return *_actions[static_cast<std::size_t>(i)]; }

  bool isNull() const;
  bool touchesSlices() const;
  /// A locked slice that one of the actions would change, or nullptr.
  const StackSlice* lockedSlice() const;
  bool operator==(const NYXActionList& other) const;

private:
  std::vector<std::unique_ptr<NYXAction>> _actions;
};
