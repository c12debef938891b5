#include "model/stack.h"

#include "model/storabletext.h"

#include <algorithm>
#include <cmath>
#include <iostream>
#include <unordered_set>

namespace
{
constexpr int micrometer = -6;

template <class T> int indexOf(const std::vector<std::unique_ptr<T>>& objects, const T* object)
{
  const auto found =
      std::find_if(objects.begin(), objects.end(), [&](const auto& each) { return each.get() == object; });
  return found == objects.end() ? -1 : static_cast<int>(found - objects.begin());
}

template <class T> int indexOfName(const std::vector<std::unique_ptr<T>>& objects, const std::string& name)
{
  const auto found =
      std::find_if(objects.begin(), objects.end(), [&](const auto& each) { return each->getName() == name; });
  return found == objects.end() ? -1 : static_cast<int>(found - objects.begin());
}

PixelCalibration rescaled(PixelCalibration calibration, float factor, int scale)
{
  calibration.setPixelWidth(calibration.getPixelWidth() * factor);
  calibration.setPixelHeight(calibration.getPixelHeight() * factor);
  calibration.setLengthUnit(LengthUnit(scale));
  return calibration;
}

void rescale(StackSlice& slice, float factor, int scale)
{
  slice.setPixelCalibration(rescaled(slice.getPixelCalibration(), factor, scale));
  slice.setThickness(slice.getThickness() * factor);
  if (!slice.useRelativePosition())
    slice.setAbsolutePosition(slice.getAbsolutePosition() * factor);
  else if (!slice.useDefaultRelativePosition())
    slice.setRelativePosition(slice.getRelativePosition() * factor);
}
/// A size as it is printed; the images of a stack may be missing.
template <class Size> std::string printed(Size size)
{
  try
  {
    return std::to_string(size());
  }
  catch (const FileError&)
  {
    return "unknown";
  }
}
} // namespace

Stack::Stack()
{
  setLengthUnit(LengthUnit(micrometer));
}

Stack::~Stack()
{
  clear();
}

void Stack::clear()
{
  _models.clear(); // before the items, which then have no list left to leave
  _slices.clear();
  deletePoses();
  clearKeptStatements();
  _name = _annotation = _imagesPath = _lastSegmentedSlice = _lastRegisteredSlice = "";
  _absoluteImagesPathPolicy = _invertZAxis = false;
  _defaultSliceThickness = _defaultRelativePosition = 0;
  _defaultPixelCalibration = PixelCalibration();
  setLengthUnit(LengthUnit(micrometer));
}

void Stack::deletePoses()
{
  while (getNumPoses() > 0)
  {
    const std::unique_ptr<Pose> last(getPose(getNumPoses() - 1));
    removePose(getNumPoses() - 1);
  }
}

void Stack::setName(const std::string& name)
{
  requireStorableName(name, "void Stack::setName(const std::string&)");
  _name = name;
}

void Stack::setImagesPath(const std::string& path)
{
  requireStorableName(path, "void Stack::setImagesPath(const std::string&)");
  _imagesPath = path;
}

void Stack::setLastSegmentedSlice(const std::string& name)
{
  requireStorableName(name, "void Stack::setLastSegmentedSlice(const std::string&)");
  _lastSegmentedSlice = name;
}

void Stack::setLastRegisteredSlice(const std::string& name)
{
  requireStorableName(name, "void Stack::setLastRegisteredSlice(const std::string&)");
  _lastRegisteredSlice = name;
}

StackSlice* Stack::getNextSlice(const StackSlice* slice) const
{
  const int i = findSlice(slice);
  return i >= 0 && i + 1 < getNumSlices() ? getSlice(i + 1) : nullptr;
}

StackSlice* Stack::getPreviousSlice(const StackSlice* slice) const
{
  const int i = findSlice(slice);
  return i > 0 ? getSlice(i - 1) : nullptr;
}

int Stack::findSlice(const std::string& name) const
{
  return indexOfName(_slices, name);
}

int Stack::findSlice(const StackSlice* slice) const
{
  return slice && slice->getStack() == this ? slice->getIndex() : -1;
}

StackSlice& Stack::addSlice(std::unique_ptr<StackSlice> slice)
{
  return addSlice(std::move(slice), getNumSlices());
}

StackSlice& Stack::addSlice(std::unique_ptr<StackSlice> slice, int i)
{
  _slices.insert(_slices.begin() + i, std::move(slice));
  numberSlices(static_cast<std::size_t>(i));
  return *getSlice(i);
}

std::unique_ptr<StackSlice> Stack::removeSlice(int i)
{
  std::unique_ptr<StackSlice> slice = std::move(_slices[static_cast<std::size_t>(i)]);
  _slices.erase(_slices.begin() + i);
  numberSlices(static_cast<std::size_t>(i));
  slice->setStack(nullptr, -1);
  return slice;
}

void Stack::numberSlices(std::size_t first)
{
  for (std::size_t i = first; i < _slices.size(); ++i) _slices[i]->setStack(this, static_cast<int>(i));
}

std::vector<float> Stack::absolutePositions() const
{
  std::vector<float> positions;
  positions.reserve(_slices.size());
  double depth = 0; // summed as StackSlice::getAbsolutePosition() does
  for (const auto& slice : _slices)
  {
    if (!slice->useRelativePosition())
      depth = slice->getAbsolutePosition();
    else if (!slice->isFirstSlice())
      depth += slice->getRelativePosition();
    positions.push_back(static_cast<float>(depth));
  }
  return positions;
}

int Stack::findModel(const std::string& name) const
{
  return indexOfName(_models, name);
}

int Stack::findModel(const Model* model) const
{
  return indexOf(_models, model);
}

Model& Stack::addModel(std::unique_ptr<Model> model)
{
  return *_models.emplace_back(std::move(model));
}

std::unique_ptr<Model> Stack::removeModel(const Model* model)
{
  const int i = findModel(model);
  if (i < 0) return nullptr;
  std::unique_ptr<Model> removed = std::move(_models[static_cast<std::size_t>(i)]);
  _models.erase(_models.begin() + i);
  return removed;
}

void Stack::deleteModel(int i)
{
  const std::unique_ptr<Model> model = removeModel(getModel(i));
  const std::vector<ModelItem*> items = model->getItems();
  model->removeAllItems();
  std::unordered_set<StackSlice*> slices;
  for (const ModelItem* item : items) slices.insert(item->getSlice());
  for (StackSlice* slice : slices)
    if (slice) slice->removeItemsIf([&](const ModelItem& item) { return item.getModel() == model.get(); });
  for (ModelItem* item : items) delete item;
}

void Stack::deleteAllModels()
{
  while (!_models.empty()) deleteModel(getNumModels() - 1);
}

std::vector<Model*> Stack::listGeometryModels(MPrimitive primitive) const
{
  std::vector<Model*> models;
  for (const auto& model : _models)
    if (model->getGeometry() == primitive) models.push_back(model.get());
  return models;
}

bool Stack::hasGeometryModelItems(MPrimitive primitive) const
{
  return std::any_of(_models.begin(), _models.end(),
                     [primitive](const auto& model)
                     { return model->getGeometry() == primitive && model->getNumItems() > 0; });
}

bool Stack::isRegular() const
{
  if (_slices.size() < 2) return !_slices.empty();
  const int width = getSlice(0)->width(), height = getSlice(0)->height();
  const float distance = getSlice(1)->getRelativePosition();
  const float tolerance = std::abs(distance) * 1e-5f;
  return std::all_of(_slices.begin() + 1, _slices.end(),
                     [&](const auto& slice)
                     {
                       return slice->width() == width && slice->height() == height &&
                              slice->getRegistration().isNull() &&
                              std::abs(slice->getRelativePosition() - distance) <= tolerance;
                     });
}

ImageColorContent Stack::colorContent() const
{
  ImageColorContent content = ImageColorContent::Undefined;
  for (const auto& slice : _slices)
  {
    Image image;
    slice->load(image);
    if (slice->isFirstSlice())
      content = image.colorContent();
    else if (image.colorContent() != content)
      content = ImageColorContent::Mixed;
  }
  return content;
}

void Stack::convertLengthUnit(int scale)
{
  const float factor = static_cast<float>(std::pow(10.0, getLengthUnit().getScale() - scale));
  for (const auto& slice : _slices) rescale(*slice, factor, scale);
  _defaultSliceThickness *= factor;
  _defaultRelativePosition *= factor;
  _defaultPixelCalibration = rescaled(_defaultPixelCalibration, factor, scale);
}

void Stack::print(const std::string& prefix) const
{
  print(prefix, std::cout);
}

void Stack::print(const std::string& prefix, std::ostream& stream) const
{
  const auto nameOf = [](const StackSlice* slice) { return slice ? slice->getName() : std::string("none"); };
  stream << prefix << "Name = " << _name << "\n" << prefix << "Images path = " << _imagesPath << "\n";
  const std::vector<float> positions = absolutePositions();
  for (std::size_t i = 0; i < _slices.size(); ++i)
  {
    const StackSlice& slice = *_slices[i];
    const PixelCalibration& calibration = slice.getPixelCalibration();
    stream << prefix << "Name = " << slice.getName() << "\n"
           << prefix << "  Prev = " << nameOf(slice.prevSlice()) << "\n"
           << prefix << "  Succ = " << nameOf(slice.nextSlice()) << "\n"
           << prefix << "  Rel/Abs position = " << slice.getRelativePosition() << " / " << positions[i]
           << (slice.useRelativePosition() ? " [Relative]" : " [Absolute]") << "\n"
           << prefix << "  Aspect ratio = " << calibration.getAspectRatio() << "\n"
           << prefix << "  Pixel width  = " << calibration.getPixelWidth() << "\n"
           << prefix << "  Pixel height = " << calibration.getPixelHeight() << "\n"
           << prefix << "  Corrected width = " << printed([&] { return slice.width(); }) << "\n"
           << prefix << "  Corrected height = " << printed([&] { return slice.height(); }) << "\n"
           << prefix << "  Number of items = " << slice.getNumItems() << "\n";
  }
}
