#pragma once

#include "app/core/nyxactionhistory.h"

#include <exception>

/// Opens a step of a history and closes it at the end of the scope. A scope left by an error takes the step back.
class NYXActionStep
{
public:
  /// \throw UsageError  a step is open already
  explicit NYXActionStep(NYXActionHistory& history) : _history(history) { history.openStep(); }
  NYXActionStep(const NYXActionStep&) = delete;
  NYXActionStep& operator=(const NYXActionStep&) = delete;

  ~NYXActionStep() noexcept(false)
  {
    if (std::uncaught_exceptions() > _numErrors)
      _history.abandonStep();
    else if (_history.isStepOpen()) // an action that failed has closed it
      _history.closeStep();
  }

  /// Applies an action and adds it to the step.
  void push(std::unique_ptr<NYXAction> action) { _history.push(std::move(action), true); }

private:
  NYXActionHistory& _history;
  int _numErrors = std::uncaught_exceptions();
};
