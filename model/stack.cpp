#include "model/stack.h"

#include "model/stackvolume.h"
#include "model/storabletext.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <iostream>
#include <unordered_set>

namespace
{
constexpr int micrometer = -6;

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
  _standardImages.clear();
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
  if (!std::filesystem::path(path).is_absolute())
    requireStorableName(path, "void Stack::setImagesPath(const std::string&)");
  const bool isFirst = _imagesPath.empty(); // later ones find absolute names only
  _imagesPath = path;
  if (!isFirst) return;
  for (const auto& slice : _slices) slice->noteImagesPath();
  for (const auto& image : _standardImages) image->setStack(this);
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

std::vector<float> Stack::absolutePositions() const
{
  std::vector<float> positions;
  positions.reserve(static_cast<std::size_t>(getNumSlices()));
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

std::unique_ptr<Model> Stack::removeModel(const Model* model)
{
  const int i = findModel(model);
  return i < 0 ? nullptr : _models.take(i);
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
  std::vector<ModelItem*> items;
  for (const auto& model : _models) items.insert(items.end(), model->getItems().begin(), model->getItems().end());
  for (const auto& slice : _slices)
    slice->removeItemsIf([this](const ModelItem& item)
                         { return item.getModel() && item.getModel()->getStack() == this; });
  for (const auto& model : _models) model->removeAllItems();
  for (ModelItem* item : items) delete item;
  _models.clear();
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

StandardImage& Stack::addStandardImage(std::unique_ptr<StandardImage> image)
{
  StandardImage& added = *_standardImages.emplace_back(std::move(image));
  added.setStack(this);
  return added;
}

std::vector<const StandardImage*> Stack::calibratedImages() const
{
  std::vector<const StandardImage*> images;
  for (const auto& image : _standardImages)
    if (image->hasCalibrationCurve()) images.push_back(image.get());
  return images;
}

int Stack::getNumCalibration() const
{
  return static_cast<int>(calibratedImages().size());
}

const CalibrationCurve* Stack::getCalibration(int i) const
{
  const std::vector<const StandardImage*> images = calibratedImages();
  const bool exists = i >= 0 && i < static_cast<int>(images.size());
  return exists ? images[static_cast<std::size_t>(i)]->getCalibrationCurve() : nullptr;
}

const CalibrationCurve* Stack::getCalibration(const std::string& name) const
{
  for (const StandardImage* image : calibratedImages())
    if (image->getName() == name) return image->getCalibrationCurve();
  return nullptr;
}

bool Stack::isRegular() const
{
  if (getNumSlices() < 2) return getNumSlices() == 1;
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

template <class T> VoxelMatrix<T> Stack::toVoxelMatrix(ImageColorContent content, ProgressSubject* subject) const
{
  VoxelMatrix<T> volume;
  ProgressSubject nobody;
  stackToVolume(volume, *this, content, subject ? *subject : nobody);
  return volume;
}

#define INSTANTIATE_TO_VOXEL_MATRIX(T)                                                                                 \
  template VoxelMatrix<T> Stack::toVoxelMatrix<T>(ImageColorContent, ProgressSubject*) const;
IMAGE_FOR_EACH_TYPE(INSTANTIATE_TO_VOXEL_MATRIX)

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
  for (int i = 0; i < getNumSlices(); ++i)
  {
    const StackSlice& slice = *getSlice(i);
    const PixelCalibration& calibration = slice.getPixelCalibration();
    stream << prefix << "Name = " << slice.getName() << "\n"
           << prefix << "  Prev = " << nameOf(slice.prevSlice()) << "\n"
           << prefix << "  Succ = " << nameOf(slice.nextSlice()) << "\n"
           << prefix << "  Rel/Abs position = " << slice.getRelativePosition() << " / "
           << positions[static_cast<std::size_t>(i)] << (slice.useRelativePosition() ? " [Relative]" : " [Absolute]")
           << "\n"
           << prefix << "  Aspect ratio = " << calibration.getAspectRatio() << "\n"
           << prefix << "  Pixel width  = " << calibration.getPixelWidth() << "\n"
           << prefix << "  Pixel height = " << calibration.getPixelHeight() << "\n"
           << prefix << "  Corrected width = " << printed([&] { return slice.width(); }) << "\n"
           << prefix << "  Corrected height = " << printed([&] { return slice.height(); }) << "\n"
           << prefix << "  Number of items = " << slice.getNumItems() << "\n";
  }
}
