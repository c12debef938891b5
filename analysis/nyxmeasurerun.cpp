#include "analysis/nyxmeasurerun.h"

#include "model/model.h"
#include "model/stack.h"

namespace
{
/// The items' measures; none where they cannot be computed, which the model's measures tell.
MeasureTable measureItems(const Stack& stack, const Model& model, ProgressSubject& progress)
{
  try
  {
    return itemTable(stack, model, progress);
  }
  catch (const Cancelled&)
  {
    throw;
  }
  catch (const Exception&)
  {
  }
  catch (const std::exception&)
  {
  }
  return emptyItemTable(model.getGeometry(), stack.getLengthUnit().symbol());
}
} // namespace

NYXMeasureRun::NYXMeasureRun(QObject* parent) : QObject(parent)
{
  _subject.addObserver(*this);
}

NYXMeasureRun::~NYXMeasureRun()
{
  _subject.cancel();
  if (_thread.joinable()) _thread.join();
}

void NYXMeasureRun::start(std::unique_ptr<StackCopy> copy, int numModels, int items)
{
  _originals = copy->getOriginals();
  _originalItems = items < 0 ? std::vector<const ModelItem*>() : copy->getOriginalItems(items);
  _models.clear();
  _items.reset();
  _isDone = false;
  _isRunning = true;
  _thread = std::thread([this, numModels, items, stack = copy->releaseStack()] { work(*stack, numModels, items); });
}

void NYXMeasureRun::progressed(double share)
{
  QMetaObject::invokeMethod(
      this, [this, share] { emit progressChanged(share); }, Qt::QueuedConnection);
}

void NYXMeasureRun::work(const Stack& stack, int numModels, int items)
{
  try
  {
    measure(stack, numModels, items);
    _isDone = true;
  }
  catch (const Cancelled&)
  {
  }
  QMetaObject::invokeMethod(
      this,
      [this]
      {
        _thread.join();
        _isRunning = false;
        emit ended(_isDone);
      },
      Qt::QueuedConnection);
}

void NYXMeasureRun::measure(const Stack& stack, int numModels, int items)
{
  const ProgressStep step(_subject, "Measuring", numModels + 1);
  if (items >= 0) _items = measureItems(stack, *stack.getModel(items), _subject);
  for (int i = 0; i < numModels; ++i)
  {
    _subject.progress(i + 1);
    _subject.throwIfCancelled("void NYXMeasureRun::measure(const Stack&,int,int)");
    _models.push_back(measureOrTell(*stack.getModel(i)));
  }
}
