#include "app/core/nyxstackhistories.h"

#include <algorithm>
#include <utility>

const NYXStackHistories::Direction NYXStackHistories::undoing = {&NYXActionHistory::stepToUndo,
                                                                 [](long a, long b) { return a > b; }};
const NYXStackHistories::Direction NYXStackHistories::redoing = {&NYXActionHistory::stepToRedo,
                                                                 [](long a, long b) { return a < b; }};

NYXStackHistories::NYXStackHistories()
{
  connect(&_history, &NYXActionHistory::stepAdded, this, [this] { noteStep(_history); });
  connect(&_history, &NYXActionHistory::changed, this, &NYXStackHistories::changed);
}

NYXStackHistories::~NYXStackHistories()
{
  destroySliceHistories();
}

void NYXStackHistories::destroySliceHistories()
{
  const auto ending = std::exchange(_sliceHistories, {}); // no action that ends with them finds one half gone
}

NYXActionHistory& NYXStackHistories::sliceHistory(const StackSlice& slice)
{
  std::unique_ptr<NYXActionHistory>& history = _sliceHistories[&slice];
  if (!history)
  {
    history = std::make_unique<NYXActionHistory>();
    NYXActionHistory* const made = history.get();
    connect(made, &NYXActionHistory::stepAdded, this, [this, made] { noteStep(*made); });
    connect(made, &NYXActionHistory::changed, this, &NYXStackHistories::changed);
  }
  return *history;
}

void NYXStackHistories::destroyHistory()
{
  if (!areAtSaved()) _isSavedStateLost = true;
  destroySliceHistories();
  _history.clear();
}

void NYXStackHistories::forget(const StackSlice& slice)
{
  const auto found = _sliceHistories.find(&slice);
  if (found == _sliceHistories.end()) return;
  if (!found->second->isAtSaved()) _isSavedStateLost = true;
  _sliceHistories.erase(found);
}

bool NYXStackHistories::isStepOpen() const
{
  return _history.isStepOpen() ||
         std::ranges::any_of(_sliceHistories, [](const auto& entry) { return entry.second->isStepOpen(); });
}

NYXActionHistory* NYXStackHistories::find(const StackSlice* slice) const
{
  const auto found = _sliceHistories.find(slice);
  return found == _sliceHistories.end() ? nullptr : found->second.get();
}

const StackSlice* NYXStackHistories::obstacle(const Step& stackStep, const Direction& direction) const
{
  if (!stackStep.touchesSlices) return nullptr;
  for (const auto& [slice, history] : _sliceHistories)
  {
    const Step* const step = (*history.*direction.next)();
    if (step && direction.isBefore(step->number, stackStep.number)) return slice;
  }
  return nullptr;
}

NYXStackHistories::Choice NYXStackHistories::choose(const StackSlice* shown, const Direction& direction)
{
  if (isStepOpen()) return {};
  NYXActionHistory* const slice = find(shown);
  const Step* const sliceStep = slice ? (slice->*direction.next)() : nullptr;
  const Step* const stackStep = (_history.*direction.next)();
  if (sliceStep && (!stackStep || direction.isBefore(sliceStep->number, stackStep->number)))
    return unlessLocked(*slice, *sliceStep);
  if (!stackStep) return {};
  if (const StackSlice* const inTheWay = obstacle(*stackStep, direction)) return {nullptr, inTheWay, nullptr};
  return unlessLocked(_history, *stackStep);
}

NYXStackHistories::Choice NYXStackHistories::unlessLocked(NYXActionHistory& history, const Step& step)
{
  const StackSlice* const locked = step.actions.lockedSlice();
  return {locked ? nullptr : &history, nullptr, locked};
}

void NYXStackHistories::undo(const StackSlice* shown)
{
  if (NYXActionHistory* const history = choose(shown, undoing).history) history->undo();
}

void NYXStackHistories::redo(const StackSlice* shown)
{
  if (NYXActionHistory* const history = choose(shown, redoing).history) history->redo();
}

QString NYXStackHistories::undoDescription(const StackSlice* shown, bool isDetailed)
{
  const NYXActionHistory* const history = choose(shown, undoing).history;
  return history ? history->getUndoDescription(isDetailed) : NYXActionHistory().getUndoDescription(isDetailed);
}

QString NYXStackHistories::redoDescription(const StackSlice* shown, bool isDetailed)
{
  const NYXActionHistory* const history = choose(shown, redoing).history;
  return history ? history->getRedoDescription(isDetailed) : NYXActionHistory().getRedoDescription(isDetailed);
}

void NYXStackHistories::clearSliceRedoLists(const NYXActionHistory* except)
{
  for (const auto& entry : _sliceHistories)
    if (entry.second.get() != except) entry.second->clearRedoList();
}

void NYXStackHistories::noteStep(const NYXActionHistory& history)
{
  const bool isOfStack = &history == &_history;
  if (isOfStack || _history.isRedoable()) clearSliceRedoLists(&history); // first: they refer to what the stack's own
  if (!isOfStack) _history.clearRedoList();
}

void NYXStackHistories::setSaved()
{
  _isSavedStateLost = false;
  _history.setSaved();
  for (const auto& entry : _sliceHistories) entry.second->setSaved();
}

bool NYXStackHistories::areAtSaved() const
{
  return !_isSavedStateLost && _history.isAtSaved() &&
         std::ranges::all_of(_sliceHistories, [](const auto& entry) { return entry.second->isAtSaved(); });
}
