#include "model/stackcreation.h"

#include "image/imageheader.h"
#include "image/imagereader.h"
#include "image/imagesourcefile.h"
#include "image/imagesourcelsmstackplane.h"
#include "image/imagesourcetiffstackplane.h"
#include "image/imagesourcevoxelmatrixfileplane.h"
#include "image/voxelmatrixfile.h"
#include "model/io/calibrationlimits.h"
#include "model/stack.h"
#include "model/stackslice.h"
#include "model/storabletext.h"
#include "numeric/progresssubject.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <set>

namespace
{
/// A file that says nothing of its pixels has pixels of 1 by 1 metre; sizes that no stack file can hold say nothing.
bool tellsPixelSize(const PixelCalibration& calibration)
{
  return calibration != PixelCalibration() && isStorableCalibration(calibration);
}

/// The name as an absolute one. \throw ValueError  a stack file cannot hold it
std::string imageName(const std::string& filename)
{
  const std::filesystem::path path = std::filesystem::absolute(filename);
  if (!isStorableName(path.filename().string()))
    throw ValueError("std::string imageName(const std::string&)",
                     "The name of \"" + filename + "\" holds what a stack file cannot hold in names");
  return path.string();
}

PixelCalibration converted(PixelCalibration calibration, const LengthUnit& unit)
{
  const auto factor = static_cast<float>(std::pow(10.0, calibration.getLengthUnit().getScale() - unit.getScale()));
  const float width = calibration.getPixelWidth() * factor, aspectRatio = calibration.getAspectRatio();
  calibration.clearFlags();
  calibration.setLengthUnit(unit);
  calibration.setPixelWidth(width);
  calibration.setAspectRatio(aspectRatio);
  calibration.compute();
  return calibration;
}

std::string suffixOf(const std::string& filename)
{
  std::string suffix = std::filesystem::path(filename).extension().string();
  std::ranges::transform(suffix, suffix.begin(), [](unsigned char letter) { return std::tolower(letter); });
  return suffix;
}

std::string numbered(const char* format, int number)
{
  char text[16];
  std::snprintf(text, sizeof text, format, number);
  return text;
}

template <class Source> void addPlanes(Stack& stack, Source source, const char* nameFormat, int first, int numPlanes)
{
  for (int k = 0; k < numPlanes; ++k)
  {
    auto slice = std::make_unique<StackSlice>();
    slice->setName(numbered(nameFormat, k));
    slice->setPixelCalibration(stack.getDefaultPixelCalibration());
    source.setPlane(first + k);
    slice->setImageSource(source);
    stack.addSlice(std::move(slice));
  }
}

/// Takes over what a file says of its pixels and of the distance of its planes; both are in one unit.
void calibrate(Stack& stack, const PixelCalibration& calibration, float distance)
{
  if (tellsPixelSize(calibration)) stack.setDefaultPixelCalibration(calibration);
  const bool isKnown = std::isfinite(distance) && calibration.getLengthUnit() == stack.getLengthUnit();
  stack.setDefaultSliceSpacing(isKnown ? std::abs(distance) : 0);
}

template <class Source> float statedDistance(const Source& source)
{
  return source.hasVoxelSizeZ() ? source.getVoxelSizeZ() : 0;
}

void addTiffPlanes(Stack& stack, const std::string& filename)
{
  const ImageSourceTiffStackPlane source(filename);
  const int numPlanes = source.getNumImages();
  calibrate(stack, source.getPixelCalibration(), numPlanes > 1 ? statedDistance(source) : 0);
  addPlanes(stack, source, "%03d", 0, numPlanes);
}

void addLSMPlanes(Stack& stack, const std::string& filename, int channel)
{
  const ImageSourceLSMStackPlane source(filename);
  const int numPlanes = source.getNumPlanes();
  if (channel < 0 || channel >= source.getNumChannels())
    throw FileFormatError("void addPlanesOf(Stack&, const std::string&, int)",
                          "There is no channel " + std::to_string(channel), filename);
  calibrate(stack, source.getPixelCalibration(), numPlanes > 1 ? statedDistance(source) : 0);
  addPlanes(stack, source, "%03d", channel * numPlanes, numPlanes);
}

void addVoxelMatrixPlanes(Stack& stack, const std::string& filename)
{
  const VoxelMatrixHeader header = VoxelMatrixFile(filename).getHeader();
  if (header.format != 0)
    calibrate(stack, header.calibration.pixelCalibration(), std::abs(header.calibration.getVoxelDepth()));
  addPlanes(stack, ImageSourceVoxelMatrixFilePlane(filename), "%04d", 0, header.size3);
}

/// The names of slices, those of a stack and those to be added to it.
class SliceNames
{
public:
  explicit SliceNames(const Stack& stack) : _stack(stack) {}

  /// The name, with a number when it is taken; from now on it is.
  std::string take(const std::string& name)
  {
    std::string candidate = name;
    for (int number = 2; _stack.findSlice(candidate) >= 0 || _taken.contains(candidate); ++number)
      candidate = name + "-" + std::to_string(number);
    _taken.insert(candidate);
    return candidate;
  }

private:
  const Stack& _stack;
  std::set<std::string> _taken;
};
} // namespace

NewSlices makeSlices(const Stack& stack, const std::vector<std::string>& filenames, bool usesFileCalibration,
                     ProgressSubject& subject)
{
  const char* const where =
      "NewSlices makeSlices(const Stack&, const std::vector<std::string>&, bool, ProgressSubject&)";
  NewSlices made = {{}, stack.getDefaultPixelCalibration()};
  bool isCalibrated = stack.getNumSlices() > 0;
  SliceNames names(stack);
  std::vector<StackSlice*> uncalibrated;
  const ProgressStep step(subject, "Reading image headers", static_cast<long>(filenames.size()));
  for (const std::string& filename : filenames)
  {
    subject.throwIfCancelled(where);
    ImageHeader header;
    ImageReader::read(header, filename);
    auto slice = std::make_unique<StackSlice>();
    slice->setName(names.take(std::filesystem::path(filename).stem().string()));
    slice->setImageSource(ImageSourceFile(imageName(filename)));
    if (usesFileCalibration && tellsPixelSize(header.getPixelCalibration()))
    {
      if (!isCalibrated) made.defaultCalibration = header.getPixelCalibration();
      isCalibrated = true;
      slice->setPixelCalibration(converted(header.getPixelCalibration(), made.defaultCalibration.getLengthUnit()));
    }
    else
      uncalibrated.push_back(slice.get());
    made.slices.push_back(std::move(slice));
    subject.progress(static_cast<long>(made.slices.size()));
  }
  subject.throwIfCancelled(where);
  for (StackSlice* const slice : uncalibrated) slice->setPixelCalibration(made.defaultCalibration);
  return made;
}

void addImageFiles(Stack& stack, const std::vector<std::string>& filenames, bool usesFileCalibration,
                   ProgressSubject& subject)
{
  NewSlices made = makeSlices(stack, filenames, usesFileCalibration, subject);
  if (stack.getNumSlices() == 0) stack.setDefaultPixelCalibration(made.defaultCalibration);
  for (std::unique_ptr<StackSlice>& slice : made.slices) stack.addSlice(std::move(slice));
}

int numChannelsOf(const std::string& filename)
{
  return suffixOf(filename) == ".lsm" ? ImageSourceLSMStackPlane(filename).getNumChannels() : 1;
}

void addPlanesOf(Stack& stack, const std::string& name, int channel)
{
  const std::string filename = imageName(name), suffix = suffixOf(filename);
  if (suffix == ".vm")
    addVoxelMatrixPlanes(stack, filename);
  else if (suffix == ".lsm")
    addLSMPlanes(stack, filename, channel);
  else
    addTiffPlanes(stack, filename);
}
