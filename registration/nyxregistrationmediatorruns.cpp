// The automatic registrations of the mediator: how they are run, shown and stored.
#include "app/core/actions/nyxregistrationaction.h"
#include "app/core/nyxslicelocks.h"
#include "app/core/nyxstack.h"
#include "model/stackslice.h"
#include "registration/nyxautomaticregistrationpanel.h"
#include "registration/nyxregistrationmediator.h"
#include "registration/nyxregistrationrun.h"
#include "registration/nyxregistrationstatusbar.h"
#include "slice/image/nyxplaintext.h"
#include "slice/image/nyxprogressrun.h"

#include <QMessageBox>

#include <algorithm>
#include <new>

namespace
{
/// Tells a stack for a scope that its slices are being registered.
class InRegistration
{
public:
  explicit InRegistration(NYXStack& stack) : _stack(stack) { _stack.beginRegistration(); }
  InRegistration(const InRegistration&) = delete;
  InRegistration& operator=(const InRegistration&) = delete;
  ~InRegistration() { _stack.endRegistration(); }

private:
  NYXStack& _stack;
};

QString problemText(const Exception& error)
{
  const auto* fileError = dynamic_cast<const FileError*>(&error);
  const std::string file = fileError == nullptr ? "" : fileError->getFilename();
  return QString::fromStdString(file.empty() ? error.getWhat() : file + ": " + error.getWhat());
}
} // namespace

void NYXRegistrationMediator::runAutomaticRegistration(const NYXAutomaticRegistrationConfig& config)
{
  if (config.isForAllSlices && !confirmLeaving()) return;
  _isSpecimenDark = config.isSpecimenDark;
  config.isForAllSlices ? registerAllSlices() : registerCurrentSlice();
}

/// Says which one of the slices is locked, if one is: what works on it has it for itself.
bool NYXRegistrationMediator::isAnyLocked(const std::vector<StackSlice*>& slices)
{
  const auto locked = std::ranges::find_if(slices, [&](const StackSlice* slice) { return _stack->isLocked(*slice); });
  if (locked == slices.end()) return false;
  showMessage(tr("Slice %1 is locked: a computation works on it").arg(QString::fromStdString((*locked)->getName())));
  return true;
}

void NYXRegistrationMediator::registerCurrentSlice()
{
  if (_slice == nullptr || _isRunning || isAnyLocked({_slice})) return;
  NYXRegistrationRun single({_slice}, _isSpecimenDark);
  if (!run(single) || single.results().empty()) return;
  const SliceAlignment& alignment = single.results().front();
  showStep(*_slice, alignment);
  const int numSteps = _stack->history().getUndoListSize();
  if (!apply()) return;
  _automaticPanel->setCorrelations(alignment.correlationBefore, alignment.correlationAfter);
  tellResult(single, true, _stack->history().getUndoListSize() > numSteps);
}

void NYXRegistrationMediator::registerAllSlices()
{
  if (_stack == nullptr || _stack->getNumSlices() < 2 || _isRunning) return;
  std::vector<StackSlice*> slices;
  for (int i = 1; i < _stack->getNumSlices(); ++i) slices.push_back(_stack->getSlice(i));
  if (isAnyLocked(slices)) return;
  const InRegistration inRegistration(*_stack);
  setFirstSlice();
  NYXRegistrationRun all(slices, _isSpecimenDark);
  all.setObserver(
      [this](StackSlice& slice, const SliceAlignment& alignment)
      {
        QMetaObject::invokeMethod(
            this,
            [this, &slice, alignment]
            {
              if (!_isRunning) return; // news of a run that has ended
              showStep(slice, alignment);
              _statusBar->subjectProgressed(slice.getIndex() + 1, _stack->getNumSlices());
            },
            Qt::QueuedConnection);
      });
  const bool isComplete = run(all);
  const int numSteps = _stack->history().getUndoListSize();
  if (!all.results().empty() && store(all)) tellResult(all, isComplete, _stack->history().getUndoListSize() > numSteps);
}

/// Runs it in a thread of its own, with its slices locked. \return whether it came to its end
bool NYXRegistrationMediator::run(NYXRegistrationRun& run)
{
  _isRunning = true;
  updateActions();
  _statusBar->subjectStarted(tr("Running automatic registration..."));
  QString problem;
  bool isDone = false;
  {
    const NYXSliceLocks locks(*this, run.slices());
    try
    {
      isDone = runWithProgress(&_window, tr("Automatic registration"), run.subject(), nullptr, [&run] { run.run(); });
    }
    catch (const Exception& error)
    {
      problem = problemText(error);
    }
    catch (const std::bad_alloc&)
    {
      problem = tr("There is not enough memory for the images");
    }
  }
  _isRunning = false;
  _statusBar->subjectFinished();
  updateActions();
  if (problem.isEmpty()) return isDone;
  const QString name = QString::fromStdString(run.slices()[run.results().size()]->getName());
  QMessageBox::warning(&_window, tr("Automatic registration"),
                       plainText(tr("Slice %1 could not be registered.").arg(name) + "\n" + problem));
  return false;
}

/// Shows what came out for a slice, before it is stored.
void NYXRegistrationMediator::showStep(StackSlice& slice, const SliceAlignment& alignment)
{
  if (&slice != _slice) setSlice(&slice);
  setRegistration(alignment.registration);
  _automaticPanel->setCorrelations(alignment.correlationBefore, alignment.correlationAfter);
}

/// All results in one step. \return whether that could be done
bool NYXRegistrationMediator::store(const NYXRegistrationRun& run)
{
  std::vector<NYXRegistrationAction::Alignment> alignments;
  for (std::size_t i = 0; i < run.results().size(); ++i)
    alignments.push_back({run.slices()[i], run.results()[i].registration});
  StackSlice& last = *alignments.back().slice;
  bool isStored = false;
  changeHistory(
      [&]
      {
        _stack->history().pushStep(std::make_unique<NYXRegistrationAction>(std::move(alignments)));
        isStored = true;
      });
  setSlice(&last);
  const SliceAlignment& alignment = run.results().back();
  _automaticPanel->setCorrelations(alignment.correlationBefore, alignment.correlationAfter);
  return isStored;
}

/// Results that the slices had before make no step.
void NYXRegistrationMediator::tellResult(const NYXRegistrationRun& run, bool isComplete, bool isStep)
{
  const auto numDone = static_cast<int>(run.results().size());
  const auto numEmpty = static_cast<int>(
      std::ranges::count_if(run.results(), [](const SliceAlignment& alignment) { return !alignment.hasMass; }));
  QString text;
  if (!isComplete)
    text = tr("Ended after %1 of %2 slices, which are registered").arg(numDone).arg(run.slices().size());
  else if (numDone > 1)
    text = tr("%1 slices registered").arg(numDone);
  else
    text = tr("Slice %1 registered").arg(QString::fromStdString(run.slices()[0]->getName()));
  text += isStep ? tr("; Undo takes that back") : tr(" as before; nothing has changed");
  if (numEmpty == 1)
    text += tr(". One slice is not registered any more: there is no specimen on it or on the one before");
  if (numEmpty > 1)
    text +=
        tr(". %1 slices are not registered any more: there is no specimen on them or on those before").arg(numEmpty);
  const auto numWorse =
      static_cast<int>(std::ranges::count_if(run.results(), [](const SliceAlignment& alignment)
                                             { return alignment.correlationAfter < alignment.correlationBefore; }));
  if (numWorse > 0) text += tr(". Images that correlate less than before: %1").arg(numWorse);
  showMessage(text);
}

void NYXRegistrationMediator::runICP(StackSlice& slice)
{
  if (&slice != _slice) setSlice(&slice);
  if (&slice != _slice) return; // it has none before it
  try
  {
    setRegistration(alignContoursOnPreviousSlice(slice, _registration));
    showMessage(tr("This is how the contours fit; Apply stores it"));
  }
  catch (const Exception& error)
  {
    showMessage(problemText(error));
  }
}
