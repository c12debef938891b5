#include "app/core/nyxactionlist.h"

#include "app/core/nyxeventbatch.h"

#include <algorithm>

namespace
{
/// Takes one action of a failed step back; a client that throws at the news cannot hinder it.
template <class Operation> void quietly(Operation operation)
{
  try
  {
    operation();
  }
  catch (...) // the error that made the step fail is the one to tell
  {
  }
}
} // namespace

void NYXActionList::append(std::unique_ptr<NYXAction> action)
{
  _actions.push_back(std::move(action));
  _actions.back()->record();
}

void NYXActionList::apply()
{
  const NYXEventBatch batch;
  std::size_t i = 0;
  try
  {
    for (; i < _actions.size(); ++i) _actions[i]->apply();
  }
  catch (...)
  {
    if (_actions[i]->isApplied()) ++i; // it failed at telling of its change
    while (i-- > 0) quietly([&] { _actions[i]->revert(); });
    throw;
  }
}

void NYXActionList::revert()
{
  const NYXEventBatch batch;
  std::size_t i = _actions.size();
  try
  {
    for (; i > 0; --i) _actions[i - 1]->revert();
  }
  catch (...)
  {
    if (_actions[i - 1]->reverted()) --i;
    for (; i < _actions.size(); ++i) quietly([&] { _actions[i]->apply(); });
    throw;
  }
}

void NYXActionList::takeBack()
{
  const NYXEventBatch batch;
  while (!_actions.empty())
  {
    if (!_actions.back()->reverted()) quietly([&] { _actions.back()->revert(); });
    _actions.pop_back();
  }
}

void NYXActionList::destroy()
{
  while (!_actions.empty()) _actions.pop_back();
}

bool NYXActionList::isNull() const
{
  return std::ranges::all_of(_actions, [](const auto& action) { return action->isNull(); });
}

bool NYXActionList::touchesSlices() const
{
  return std::ranges::any_of(_actions, [](const auto& action) { return action->touchesSlices(); });
}

const StackSlice* NYXActionList::lockedSlice() const
{
  for (const auto& action : _actions)
    if (const StackSlice* const slice = action->lockedSlice()) return slice;
  return nullptr;
}

bool NYXActionList::operator==(const NYXActionList& other) const
{
  return std::ranges::equal(_actions, other._actions, [](const auto& a, const auto& b) { return *a == *b; });
}
