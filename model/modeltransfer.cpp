#include "model/modeltransfer.h"

#include "model/modelproposal.h"
#include "model/stack.h"
#include "numeric/exception.h"

#include <algorithm>
#include <cmath>
#include <set>
#include <unordered_map>

namespace
{
constexpr int unlimited = -1;
constexpr double lengthTolerance = 1e-4; // relative: files hold lengths with few digits, in various units

struct ImageSize
{
  int width;
  int height;
};

ImageSize imageSizeOf(const StackSlice& slice)
{
  if (slice.isEmpty()) return {unlimited, unlimited};
  try
  {
    return {slice.getImageSource()->getSize2(), slice.getImageSource()->getSize1()};
  }
  catch (const FileError&)
  {
    return {unlimited, unlimited};
  }
}

/// Whether two lengths, in their units, differ in space.
bool differ(double a, const LengthUnit& unitOfA, double b, const LengthUnit& unitOfB)
{
  b *= std::pow(10.0, unitOfB.getScale() - unitOfA.getScale());
  return std::abs(a - b) > lengthTolerance * std::max(std::abs(a), std::abs(b));
}

bool havePixelsOfOneSize(const StackSlice& a, const StackSlice& b)
{
  const PixelCalibration &p = a.getPixelCalibration(), &q = b.getPixelCalibration();
  return !differ(p.getPixelWidth(), p.getLengthUnit(), q.getPixelWidth(), q.getLengthUnit()) &&
         !differ(p.getPixelHeight(), p.getLengthUnit(), q.getPixelHeight(), q.getLengthUnit());
}

/// Finds the slices of the target and the sizes of their images, each of which is read once.
class SlicePairs
{
public:
  SlicePairs(const Stack& target, SliceMatching matching) : _target(target), _matching(matching) {}

  StackSlice* partnerOf(const StackSlice* slice) const
  {
    if (!slice) return nullptr;
    const int i = _matching == SliceMatching::ByName ? _target.findSlice(slice->getName()) : slice->getIndex();
    return i >= 0 && i < _target.getNumSlices() ? _target.getSlice(i) : nullptr;
  }

  bool isInside(const ModelItem& item, const StackSlice& slice)
  {
    const auto [entry, isNew] = _sizes.try_emplace(&slice, ImageSize{unlimited, unlimited});
    if (isNew) entry->second = imageSizeOf(slice);
    const ImageSize size = entry->second;
    const BoundingBox<int> box = item.boundingBox();
    if (size.width == unlimited || box.isEmpty()) return true;
    const Vector<int>&first = box.getMinimum(), &last = box.getMaximum();
    return first[0] >= 0 && first[1] >= 0 && last[0] < size.width && last[1] < size.height;
  }

private:
  const Stack& _target;
  SliceMatching _matching;
  std::unordered_map<const StackSlice*, ImageSize> _sizes;
};

std::unique_ptr<Model> copyOf(const Model& model, const std::string& name)
{
  auto copy = std::make_unique<Model>(name);
  copy->setProperties(model.getProperties());
  copy->setItemProperties(model.getItemProperties());
  if (model.hasSnakeConfig()) copy->setSnakeConfig(model.getSnakeConfig());
  return copy;
}

std::unique_ptr<ModelItem> copyOf(const ModelItem& item, Model& model, StackSlice& slice)
{
  auto copy = std::make_unique<ModelItem>(item);
  copy->setModel(&model);
  copy->setSlice(&slice);
  copy->removeSelection();
  return copy;
}
} // namespace

ModelTransfer copyModels(const std::vector<const Model*>& models, const Stack& target, SliceMatching matching,
                         bool keepsItemsOutside)
{
  ModelTransfer transfer;
  SlicePairs slices(target, matching);
  std::set<std::string> newNames;
  const auto isTaken = [&](const std::string& name) { return target.findModel(name) >= 0 || newNames.contains(name); };
  for (const Model* model : models)
  {
    const std::string name = freeName(model->getName(), isTaken);
    newNames.insert(name);
    ModelTransfer::Copy& copy = transfer.copies.emplace_back(copyOf(*model, name));
    for (const ModelItem* item : model->getItems())
    {
      StackSlice* const slice = slices.partnerOf(item->getSlice());
      const bool isOutside = slice && !slices.isInside(*item, *slice);
      if (!slice) ++transfer.numWithoutSlice;
      if (isOutside) ++transfer.numOutside;
      if (!slice || (isOutside && !keepsItemsOutside)) continue;
      copy.items.push_back(copyOf(*item, *copy.model, *slice));
      if (!havePixelsOfOneSize(*item->getSlice(), *slice)) ++transfer.numResized;
    }
    transfer.numItems += static_cast<int>(copy.items.size());
  }
  return transfer;
}
