#pragma once

#include "app/core/nyxeventclient.h"

#include <utility>
#include <vector>

/// Locks slices for a scope, in the name of an event client.
class NYXSliceLocks
{
public:
  NYXSliceLocks(NYXEventClient& sender, std::vector<StackSlice*> slices) : _sender(sender), _slices(std::move(slices))
  {
    notify(true);
  }
  NYXSliceLocks(const NYXSliceLocks&) = delete;
  NYXSliceLocks& operator=(const NYXSliceLocks&) = delete;
  ~NYXSliceLocks() { notify(false); }

private:
  void notify(bool isLocked)
  {
    for (StackSlice* slice : _slices) _sender.notifyEvent(NYXSliceLockEvent(*slice, isLocked));
  }

  NYXEventClient& _sender;
  std::vector<StackSlice*> _slices;
};
