#include "viewer/scene/shownstack.h"

#include "model/model.h"
#include "model/modelitem.h"
#include "model/stack.h"
#include "model/stackcopy.h"

#include <limits>

ShownStack::ShownStack() = default;
ShownStack::ShownStack(ShownStack&&) noexcept = default;
ShownStack& ShownStack::operator=(ShownStack&&) noexcept = default;
ShownStack::~ShownStack() = default;

bool isShown3D(const ModelItem& item)
{
  const ModelItemProperties defaults = item.getModel() ? item.getModel()->getItemProperties() : ModelItemProperties();
  return (item.getProperties() + defaults).getRenderingVisibility();
}

ShownStack copyShown(const Stack& stack, const std::vector<const Model*>& models,
                     const std::function<bool(const ModelItem&)>& isShown)
{
  StackCopy copy(stack, models, isShown);
  while (copy.advance(std::numeric_limits<long>::max())) continue;
  ShownStack shown;
  shown.stack = copy.releaseStack();
  shown.models = models;
  return shown;
}
