// Changes of the current stack: undo and redo, and slices that come, go or move.
#include "app/core/actions/nyxsliceinsertiondeletionaction.h"
#include "app/core/actions/nyxsliceorderaction.h"
#include "app/core/nyxstack.h"
#include "app/nyxrootmediator.h"
#include "app/nyxrootstatusbar.h"
#include "app/nyxslicelistwidget.h"
#include "app/nyxstackio.h"
#include "model/stackslice.h"
#include "numeric/exception.h"

namespace
{
QString nameOf(const StackSlice& slice)
{
  return QString::fromStdString(slice.getName());
}
} // namespace

/// Makes a change that the user of this window asks for, and shows the slice that came or moved with it, if one did.
void NYXRootMediator::change(const std::function<void(NYXStack&)>& make)
{
  NYXStack* const stack = currentStack();
  if (stack == nullptr) return;
  _concernedSlice = nullptr;
  try
  {
    make(*stack);
  }
  catch (const Exception& error)
  {
    _statusBar->showMessage(QString::fromStdString(error.getWhat()), messageMilliseconds);
    refreshSlices();
  }
  if (_concernedSlice != nullptr) _sliceList->selectSlice(*_concernedSlice);
}

void NYXRootMediator::undo()
{
  change([this](NYXStack& stack) { stack.histories().undo(currentSlice()); });
}

void NYXRootMediator::redo()
{
  change([this](NYXStack& stack) { stack.histories().redo(currentSlice()); });
}

void NYXRootMediator::insertSlices()
{
  change([this](NYXStack& stack) { stackIO().insertSlices(stack, qMax(_sliceList->currentSlice(), 0)); });
}

QString NYXRootMediator::deletionText(const StackSlice& slice)
{
  const auto numItems = static_cast<int>(slice.getItems().size());
  if (numItems == 0) return tr("Deleted slice %1; Undo restores it").arg(nameOf(slice));
  if (numItems == 1) return tr("Deleted slice %1 with 1 item; Undo restores both").arg(nameOf(slice));
  return tr("Deleted slice %1 with %2 items; Undo restores them").arg(nameOf(slice)).arg(numItems);
}

/// Registration and distance are relative to the slice before, which becomes another one.
QString NYXRootMediator::neighbourText(const NYXStack& stack, const StackSlice& deleted)
{
  const int place = deleted.getIndex();
  if (place < 1 || place + 1 >= stack.getNumSlices()) return {};
  const StackSlice& next = *stack.getSlice(place + 1);
  return tr(". Slice %1 now lies on slice %2: check its alignment and distance")
      .arg(nameOf(next), nameOf(*stack.getSlice(place - 1)));
}

void NYXRootMediator::deleteSlice()
{
  change(
      [this](NYXStack& stack)
      {
        StackSlice& slice = *currentSlice();
        const QString text = deletionText(slice) + neighbourText(stack, slice);
        stack.history().pushStep(std::make_unique<NYXSliceInsertionDeletionAction>(slice));
        _statusBar->showMessage(text, messageMilliseconds);
      });
}

void NYXRootMediator::moveCurrentSlice(int distance)
{
  const int slice = _sliceList->currentSlice();
  moveSlice(slice, slice + distance);
}

void NYXRootMediator::moveSlice(int slice, int place)
{
  change(
      [&](NYXStack& stack)
      {
        if (slice < 0 || slice >= stack.getNumSlices()) return;
        StackSlice& moved = *stack.getSlice(slice);
        stack.history().pushStep(std::make_unique<NYXSliceOrderAction>(moved, place));
        const QString text = moved.useRelativePosition()
                                 ? tr("Moved slice %1 to place %2")
                                 : tr("Moved slice %1 to place %2; it keeps its absolute depth");
        _statusBar->showMessage(text.arg(QString::fromStdString(moved.getName())).arg(place + 1), messageMilliseconds);
      });
}
