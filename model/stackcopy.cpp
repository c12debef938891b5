#include "model/stackcopy.h"

#include "image/imagesource.h"
#include "model/model.h"
#include "model/modelitem.h"
#include "model/stack.h"
#include "model/stackslice.h"

namespace
{
std::unique_ptr<StackSlice> copyOfPlace(const StackSlice& slice)
{
  auto copy = std::make_unique<StackSlice>();
  copy->setName(slice.getName());
  if (slice.getImageSource() != nullptr) copy->setImageSource(*slice.getImageSource());
  copy->setPixelCalibration(slice.getPixelCalibration());
  copy->setRegistration(slice.getRegistration());
  if (slice.useDefaultRelativePosition())
    copy->setDefaultRelativePosition();
  else if (slice.useRelativePosition())
    copy->setRelativePosition(slice.getRelativePosition());
  else
    copy->setAbsolutePosition(slice.getAbsolutePosition());
  return copy;
}

std::unique_ptr<Stack> copyOfSlices(const Stack& stack)
{
  auto copy = std::make_unique<Stack>();
  copy->setInvertZAxis(stack.getInvertZAxis());
  copy->setDefaultPixelCalibration(stack.getDefaultPixelCalibration());
  copy->setDefaultRelativePosition(stack.getDefaultRelativePosition());
  for (int k = 0; k < stack.getNumSlices(); ++k) copy->addSlice(copyOfPlace(*stack.getSlice(k)));
  return copy;
}
} // namespace

StackCopy::StackCopy(const Stack& stack, const std::vector<const Model*>& models,
                     std::function<bool(const ModelItem&)> isCopied)
  : _stack(stack), _isCopied(std::move(isCopied)), _copy(copyOfSlices(stack)), _models(models), _items(models.size())
{
  for (const Model* model : models)
  {
    _places[model] = _copy->getNumModels();
    Model& copy = _copy->addModel(std::make_unique<Model>(model->getName()));
    copy.setProperties(model->getProperties());
    copy.setItemProperties(model->getItemProperties());
  }
}

StackCopy::~StackCopy() = default;

std::unique_ptr<Stack> StackCopy::releaseStack()
{
  return std::move(_copy);
}

bool StackCopy::advance(long numVertices)
{
  for (; _slice < _stack.getNumSlices(); ++_slice, _item = 0)
  {
    const auto& items = _stack.getSlice(_slice)->getItems();
    for (; _item < static_cast<int>(items.size()); ++_item)
    {
      if (numVertices <= 0) return true;
      const ModelItem& item = *items[static_cast<std::size_t>(_item)];
      if (!_places.contains(item.getModel()) || (_isCopied && !_isCopied(item))) continue;
      copyItem(item);
      numVertices -= item.isRegion() ? static_cast<long>(item.getRLEItemSet().getItems().size()) : item.getSize();
      --numVertices; // an item costs something itself
    }
  }
  return false;
}

void StackCopy::copyItem(const ModelItem& item)
{
  const int place = _places.at(item.getModel());
  ModelItem& copy = ModelItem::create(*_copy->getModel(place), *_copy->getSlice(_slice));
  Vertices<int> vertices(item.getVertices());
  vertices.detach();
  copy.setVertices(std::move(vertices));
  if (item.isRegion()) copy.setRLEItemSet(item.getRLEItemSet());
  copy.setProperties(item.getProperties());
  copy.setTriangulationTag(item.getTriangulationTag());
  _items[static_cast<std::size_t>(place)].push_back(&item);
}
