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

void NYXMeasureRun::start(std::unique_ptr<StackCopy> copy, int numModels, int items)
{
  _originals = copy->getOriginals();
  _originalItems = items < 0 ? std::vector<const ModelItem*>() : copy->getOriginalItems(items);
  _models.clear();
  _items.reset();
  startThread([this, numModels, items, stack = std::shared_ptr<const Stack>(copy->releaseStack())](
                  ProgressSubject& progress) { measure(*stack, numModels, items, progress); });
}

void NYXMeasureRun::measure(const Stack& stack, int numModels, int items, ProgressSubject& progress)
{
  const ProgressStep step(progress, "Measuring", numModels + 1);
  if (items >= 0) _items = measureItems(stack, *stack.getModel(items), progress);
  for (int i = 0; i < numModels; ++i)
  {
    progress.progress(i + 1);
    progress.throwIfCancelled("void NYXMeasureRun::measure(const Stack&,int,int,ProgressSubject&)");
    _models.push_back(measureOrTell(*stack.getModel(i)));
  }
}
