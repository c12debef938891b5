#include "app/core/nyxactionhistory.h"

#include "app/core/nyxexception.h"
#include "model/stackslice.h"
#include "numeric/exception.h"

#include <iostream>
#include <utility>

namespace
{
long numStepsMade = 0; // ever, in all histories

/// Deletes the steps that were made last first: they may refer to what earlier ones own.
void destroyUndone(std::vector<NYXActionHistory::Step>& redoList)
{
  for (NYXActionHistory::Step& step : redoList) step.actions.destroy();
  redoList.clear();
}

void requireUnlocked(const StackSlice* lockedSlice, const char* where)
{
  if (lockedSlice)
    throw NYXException(where, "Slice " + lockedSlice->getName() + " is locked: a computation works on it.");
}

void destroyMade(std::vector<NYXActionHistory::Step>& undoList)
{
  while (!undoList.empty()) undoList.pop_back();
}
} // namespace

NYXActionHistory::~NYXActionHistory()
{
  destroyUndone(_redoList);
  destroyMade(_undoList);
}

void NYXActionHistory::openStep()
{
  if (_isStepOpen) throw UsageError("void NYXActionHistory::openStep()", "A step is already open");
  _undoList.emplace_back();
  _isStepOpen = true;
}

void NYXActionHistory::push(std::unique_ptr<NYXAction> action, const bool apply)
{
  if (!_isStepOpen)
    throw UsageError("void NYXActionHistory::push(NYXAction*, const bool)",
                     "No step was open prior to action insertion");
  Step& step = _undoList.back();
  if (step.number == 0) step.number = ++numStepsMade;
  NYXAction& pushed = *action;
  step.actions.append(std::move(action));
  if (apply)
  {
    try
    {
      requireUnlocked(pushed.lockedSlice(), "void NYXActionHistory::push(NYXAction*, const bool)");
      pushed.apply();
    }
    catch (...)
    {
      if (!pushed.isApplied()) step.actions.dropLast();
      abandonStep();
      throw;
    }
  }
  setRedoListAside();
}

void NYXActionHistory::setRedoListAside()
{
  if (_redoListAside) return;
  _redoListAside = std::move(_redoList);
  _redoList.clear();
  emit redoEnabled(false);
}

void NYXActionHistory::closeStep()
{
  if (!_isStepOpen) throw UsageError("void NYXActionHistory::closeStep()", "No open step to close");
  _isStepOpen = false;
  Step& step = _undoList.back();
  if (step.actions.isEmpty()) return _undoList.pop_back();
  step.touchesSlices = step.actions.touchesSlices();
  emit stepAdded();
  destroyUndone(*_redoListAside);
  _redoListAside.reset();
  emit changed();
  emit undoEnabled(true);
}

void NYXActionHistory::abandonStep()
{
  if (!_isStepOpen) return;
  _undoList.back().actions.takeBack();
  _undoList.pop_back();
  _isStepOpen = false;
  if (_redoListAside)
  {
    _redoList = std::move(*_redoListAside);
    _redoListAside.reset();
    emit redoEnabled(isRedoable());
  }
  emit changed();
}

void NYXActionHistory::pushStep(std::unique_ptr<NYXAction> action, const bool apply)
{
  if (action->isNull()) return;
  openStep();
  push(std::move(action), apply);
  closeStep();
}

void NYXActionHistory::undo()
{
  if (!isUndoable()) return;
  requireUnlocked(_undoList.back().actions.lockedSlice(), "void NYXActionHistory::undo()");
  _undoList.back().actions.revert();
  _redoList.push_back(std::move(_undoList.back()));
  _undoList.pop_back();
  emit changed();
  emit redoEnabled(true);
  emit undoEnabled(isUndoable());
}

void NYXActionHistory::redo()
{
  if (!isRedoable()) return;
  requireUnlocked(_redoList.back().actions.lockedSlice(), "void NYXActionHistory::redo()");
  _redoList.back().actions.apply();
  _undoList.push_back(std::move(_redoList.back()));
  _redoList.pop_back();
  emit changed();
  emit undoEnabled(true);
  emit redoEnabled(isRedoable());
}

QString NYXActionHistory::getUndoDescription(bool isDetailed) const
{
  const Step* const step = stepToUndo();
  return step ? step->actions.getAction(0).description(isDetailed) : tr("(Nothing to undo)");
}

QString NYXActionHistory::getRedoDescription(bool isDetailed) const
{
  const Step* const step = stepToRedo();
  return step ? step->actions.getAction(0).description(isDetailed) : tr("(Nothing to redo)");
}

void NYXActionHistory::clear()
{
  const bool wasAtSaved = isAtSaved();
  _isStepOpen = false;
  clearRedoList();
  destroyMade(_undoList);
  _savedPosition = wasAtSaved ? std::optional<long>(0) : std::nullopt;
  emit undoEnabled(false);
  emit changed();
}

void NYXActionHistory::clearRedoList()
{
  if (_redoListAside) destroyUndone(*_redoListAside);
  _redoListAside.reset();
  destroyUndone(_redoList);
  emit redoEnabled(false);
}

long NYXActionHistory::position() const
{
  const bool isLastEmpty = !_undoList.empty() && _undoList.back().actions.isEmpty(); // just opened
  const std::size_t numSteps = _undoList.size() - (isLastEmpty ? 1 : 0);
  return numSteps == 0 ? 0 : _undoList[numSteps - 1].number;
}

void NYXActionHistory::print(const std::string& prefix) const
{
  print(prefix, std::cout);
}

void NYXActionHistory::print(const std::string& prefix, std::ostream& stream) const
{
  const auto printSteps = [&](const std::vector<Step>& steps)
  {
    for (const Step& step : steps)
      stream << prefix << "    " << step.number << ": " << step.actions.getSize() << " x "
             << (step.actions.isEmpty() ? "" : step.actions.getAction(0).description(true).toStdString()) << "\n";
  };
  stream << prefix << "*** Action history (" << (_isStepOpen ? "recording" : "idle") << ")\n";
  stream << prefix << "  [ Undo list size = " << _undoList.size() << " ]\n";
  printSteps(_undoList);
  stream << prefix << "  [ Redo list size = " << _redoList.size() << " ]\n";
  printSteps(_redoList);
}
