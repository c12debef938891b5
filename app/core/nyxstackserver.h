#pragma once

#include "app/core/nyxeventclient.h"

#include <memory>
#include <vector>

class NYXStack;

/// The open stacks of the program, in the order in which they were opened. Owns them.
class NYXStackServer : public NYXEventClient
{
public:
  static NYXStackServer& server();
  ~NYXStackServer() override;

  /// Appends a stack and posts NYXStackOpenEvent.
  NYXStack& addStack(std::unique_ptr<NYXStack> stack);

  /// Posts NYXStackCloseEvent, then takes the stack from the list and deletes it.
  void removeStack(NYXStack& stack);

  int getNumStacks() const { return static_cast<int>(_stacks.size()); }
  NYXStack& getStack(int i) const { return *_stacks[static_cast<std::size_t>(i)]; }

  /// Place of a stack in the list, -1 when it is not there.
  int find(const NYXStack& stack) const;

  /// The neighbour in the list, nullptr past the ends.
  NYXStack* getPreviousStack(const NYXStack& stack) const;
  NYXStack* getNextStack(const NYXStack& stack) const;

  /// Stacks opened since the program started; never decreases.
  int getSessionNumStacks() const { return _sessionNumStacks; }

private:
  NYXStackServer();
  NYXStack* stackAt(int i) const;

  std::vector<std::unique_ptr<NYXStack>> _stacks;
  int _sessionNumStacks = 0;
};
