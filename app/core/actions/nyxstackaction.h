#pragma once

#include "app/core/nyxaction.h"
#include "app/core/nyxevent.h"

class NYXStack;

/// An action on an open stack. It tells the event bus of what it did each time that it is applied or reverted.
class NYXStackAction : public NYXAction
{
public:
  NYXStack& getStack() const { return *_stack; }

  /// To be called once the change is made.
  void apply() override;
  void revert() override;
  void record() override;
  const StackSlice* lockedSlice() const override;

protected:
  explicit NYXStackAction(NYXStack& stack) : _stack(&stack) {}

  /// The open stack that a stack of the model is. \throw UsageError  it is none
  static NYXStack& openStack(Stack* stack, const char* where);

  /// Whether the action changes this slice of the stack, or what is drawn on it. An action that touches slices changes
  /// all of them, for all that is known here.
  virtual bool changes(const StackSlice&) const { return touchesSlices(); }
  /// Whether the action changes what is saved.
  virtual bool changesContent() const { return true; }
  /// Posts the events that tell of the change.
  virtual void postEvents() = 0;
  void post(NYXEvent&& event);

private:
  void announce();
  void noteLooseChange();

  NYXStack* _stack;
  bool _isRecorded = false; // part of a step
  bool _isLoose = false;    // applied all the same
};
