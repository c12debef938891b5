#include "viewer/scene/shownstack.h"

#include "image/imagesource.h"
#include "model/model.h"
#include "model/modelitem.h"
#include "model/stack.h"
#include "model/stackslice.h"

#include <algorithm>
#include <unordered_map>

namespace
{
/// Where a slice lies: its depth, alignment and calibration, and the image whose size counts.
std::unique_ptr<StackSlice> copyOfPlace(const StackSlice& slice, float depth)
{
  auto copy = std::make_unique<StackSlice>();
  copy->setName(slice.getName());
  if (slice.getImageSource() != nullptr) copy->setImageSource(*slice.getImageSource());
  copy->setPixelCalibration(slice.getPixelCalibration());
  copy->setRegistration(slice.getRegistration());
  copy->setAbsolutePosition(depth);
  return copy;
}

std::unique_ptr<Stack> copyOfSlices(const Stack& stack)
{
  auto copy = std::make_unique<Stack>();
  copy->setInvertZAxis(stack.getInvertZAxis());
  copy->setDefaultPixelCalibration(stack.getDefaultPixelCalibration());
  const std::vector<float> depths = stack.absolutePositions();
  for (int k = 0; k < stack.getNumSlices(); ++k)
    copy->addSlice(copyOfPlace(*stack.getSlice(k), depths[static_cast<std::size_t>(k)]));
  return copy;
}

void copyItem(const ModelItem& item, Model& model, StackSlice& slice)
{
  ModelItem& copy = ModelItem::create(model, slice);
  Vertices<int> vertices(item.getVertices());
  vertices.detach();
  copy.setVertices(std::move(vertices));
  if (item.isRegion()) copy.setRLEItemSet(item.getRLEItemSet());
  copy.setProperties(item.getProperties());
  copy.setTriangulationTag(item.getTriangulationTag());
}
} // namespace

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
  ShownStack shown;
  shown.stack = copyOfSlices(stack);
  shown.models = models;
  std::unordered_map<const Model*, Model*> copies;
  for (const Model* model : models)
  {
    Model& copy = shown.stack->addModel(std::make_unique<Model>(model->getName()));
    copy.setProperties(model->getProperties());
    copy.setItemProperties(model->getItemProperties());
    copies[model] = &copy;
  }
  for (int k = 0; k < stack.getNumSlices(); ++k)
    for (const ModelItem* item : stack.getSlice(k)->getItems())
      if (const auto copy = copies.find(item->getModel()); copy != copies.end() && isShown(*item))
        copyItem(*item, *copy->second, *shown.stack->getSlice(k));
  return shown;
}
