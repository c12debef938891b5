#include "viewer/scene/stackpainters.h"

#include "geometry/reconstruction/stackreconstruction.h"
#include "model/model.h"
#include "model/stack.h"
#include "numeric/progresssubject.h"
#include "viewer/scene/modelpainters.h"
#include "viewer/scene/shownstack.h"

namespace
{
/// What goes wrong with a model is its problem alone.
PaintedModel paintModel(const Model& model, const StackReconstruction<float>& reconstruction, float size,
                        ProgressSubject& subject)
{
  try
  {
    const ModelGeometry geometry = modelGeometry(model, reconstruction, subject);
    return {createPainter(geometry, size), geometry.problem};
  }
  catch (const Cancelled&)
  {
    throw;
  }
  catch (const Exception& error)
  {
    return {nullptr, error.getWhat()};
  }
}
} // namespace

std::vector<PaintedModel> paintModels(const ShownStack& shown, ProgressSubject& subject)
{
  const ProgressStep step(subject, "Reconstructing models...", shown.stack->getNumModels() + 1);
  const StackReconstruction<float> reconstruction(*shown.stack);
  const float size = symbolSize(*shown.stack);
  std::vector<PaintedModel> painted;
  for (int i = 0; i < shown.stack->getNumModels(); ++i)
  {
    subject.progress(i + 1);
    subject.throwIfCancelled("std::vector<PaintedModel> paintModels(const ShownStack&, ProgressSubject&)");
    painted.push_back(paintModel(*shown.stack->getModel(i), reconstruction, size, subject));
  }
  return painted;
}
