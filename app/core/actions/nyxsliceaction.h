#pragma once

#include "app/core/actions/nyxstackaction.h"

class StackSlice;

/// An action on a slice of an open stack.
class NYXSliceAction : public NYXStackAction
{
public:
  StackSlice& getSlice() const { return *_slice; }
  /// Whether slices come, go or change places.
  virtual bool changesPlaces() const { return false; }

protected:
  /// \throw UsageError  the slice is in no open stack
  explicit NYXSliceAction(StackSlice& slice);
  /// A slice that is to come into the stack.
  NYXSliceAction(NYXStack& stack, StackSlice& slice) : NYXStackAction(stack), _slice(&slice) {}

private:
  StackSlice* _slice;
};
