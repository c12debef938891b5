#include "app/core/nyxstackserver.h"

#include "app/core/nyxeventserver.h"
#include "app/core/nyxstack.h"

#include <algorithm>

NYXStackServer::NYXStackServer()
{
  NYXEventServer::attach(*this); // the bus, made here at the latest, outlives the stacks that this server owns
}

NYXStackServer::~NYXStackServer() = default;

NYXStackServer& NYXStackServer::server()
{
  static NYXStackServer instance;
  return instance;
}

NYXStack& NYXStackServer::addStack(std::unique_ptr<NYXStack> stack)
{
  _stacks.push_back(std::move(stack));
  ++_sessionNumStacks;
  NYXStack& added = *_stacks.back();
  notifyEvent(NYXStackOpenEvent(added));
  return added;
}

void NYXStackServer::removeStack(NYXStack& stack)
{
  const auto erase = [&] { std::erase_if(_stacks, [&](const auto& owned) { return owned.get() == &stack; }); };
  try
  {
    notifyEvent(NYXStackCloseEvent(stack));
  }
  catch (...) // the others have let the stack go
  {
    erase();
    throw;
  }
  erase();
}

int NYXStackServer::find(const NYXStack& stack) const
{
  const auto place = std::ranges::find(_stacks, &stack, &std::unique_ptr<NYXStack>::get);
  return place == _stacks.end() ? -1 : static_cast<int>(place - _stacks.begin());
}

NYXStack* NYXStackServer::stackAt(int i) const
{
  return i >= 0 && i < getNumStacks() ? _stacks[static_cast<std::size_t>(i)].get() : nullptr;
}

NYXStack* NYXStackServer::getPreviousStack(const NYXStack& stack) const
{
  const int place = find(stack);
  return place < 0 ? nullptr : stackAt(place - 1);
}

NYXStack* NYXStackServer::getNextStack(const NYXStack& stack) const
{
  const int place = find(stack);
  return place < 0 ? nullptr : stackAt(place + 1);
}
