#include "app/core/actions/nyxstackaction.h"

#include "app/core/nyxstack.h"
#include "numeric/exception.h"

#include <algorithm>

NYXStack& NYXStackAction::openStack(Stack* stack, const char* where)
{
  auto* const open = dynamic_cast<NYXStack*>(stack);
  if (!open) throw UsageError(where, "What is to be changed belongs to no open stack");
  return *open;
}

void NYXStackAction::apply()
{
  NYXAction::apply();
  announce();
}

void NYXStackAction::revert()
{
  NYXAction::revert();
  announce();
}

void NYXStackAction::record()
{
  _isRecorded = true;
  noteLooseChange();
}

const StackSlice* NYXStackAction::lockedSlice() const
{
  const auto& locked = _stack->getLockedSlices();
  const auto found = std::ranges::find_if(locked, [this](const StackSlice* slice) { return changes(*slice); });
  return found == locked.end() ? nullptr : *found;
}

void NYXStackAction::announce()
{
  noteLooseChange();
  postEvents();
  NYXEventClient::notifyAction(*this);
}

void NYXStackAction::noteLooseChange()
{
  const bool isLoose = !_isRecorded && isApplied() && changesContent() && !isNull();
  if (isLoose == _isLoose) return;
  _isLoose = isLoose;
  _stack->noteLooseChange(isLoose ? 1 : -1);
}

void NYXStackAction::post(NYXEvent&& event)
{
  event.setAction(this);
  _stack->notifyEvent(event);
}
