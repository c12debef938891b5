#include "model/stackvolume.h"

#include "image/imagesourcefile.h"
#include "image/imagesourcevoxelmatrixfileplane.h"
#include "image/imagewriter.h"
#include "image/voxelmatrixfile.h"
#include "model/io/stackreader.h"
#include "model/io/stackwriter.h"
#include "model/stack.h"
#include "numeric/exception.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <limits>
#include <memory>
#include <optional>
#include <system_error>

namespace fs = std::filesystem;

namespace
{
constexpr const char* readSignature =
    "void stackToVolume(VoxelMatrix<T>&, const Stack&, ImageColorContent, ProgressSubject&)";
constexpr const char* saveSignature = "std::vector<std::string> saveVolumeAsStack(const VoxelMatrix<T>&, const "
                                      "std::string&, float, bool, ProgressSubject&)";

std::optional<ImageChannel> onlyChannel(ImageColorContent content)
{
  if (content == ImageColorContent::RedOnly) return ImageChannel::Red;
  if (content == ImageColorContent::GreenOnly) return ImageChannel::Green;
  if (content == ImageColorContent::BlueOnly) return ImageChannel::Blue;
  return std::nullopt;
}

VoxelCalibration voxelCalibration(const Stack& stack)
{
  const PixelCalibration& pixel = stack.getFirstSlice()->getPixelCalibration();
  VoxelCalibration calibration;
  calibration.setLengthUnit(stack.getLengthUnit());
  calibration.setVoxelHeight(pixel.getPixelHeight());
  calibration.setVoxelWidth(pixel.getPixelWidth());
  calibration.setVoxelDepth(stack.getNumSlices() > 1 ? stack.getSlice(1)->getRelativePosition()
                                                     : stack.getDefaultRelativePosition());
  return calibration;
}

/// The value as T. \throw RangeError  T cannot hold it
template <class T, class Stored> T checkedVoxel(Stored x)
{
  if constexpr (std::is_integral_v<T>)
  {
    const auto value = static_cast<long double>(x);
    const bool fits = value >= static_cast<long double>(std::numeric_limits<T>::lowest()) &&
                      value <= static_cast<long double>(std::numeric_limits<T>::max()) && value == std::floor(value);
    if (!fits)
      throw RangeError(readSignature,
                       "The value " + std::to_string(value) + " does not fit voxels of type " + typeName<T>());
  }
  return static_cast<T>(x);
}

/// The voxels of a plane as they are, which an image of it would show scaled.
template <class T> PixelMatrix<T> voxels(const ImageSourceVoxelMatrixFilePlane& source)
{
  const VoxelMatrixFile file(source.getVoxelMatrixFilename());
  const VoxelMatrixHeader& header = file.getHeader();
  if (source.getPlane() < 0 || source.getPlane() >= header.size3)
    throw FileFormatError(readSignature, "There is no plane " + std::to_string(source.getPlane()), file.getFilename());
  PixelMatrix<T> plane(header.size1, header.size2);
  withElementType(header,
                  [&]<class Stored>(Stored)
                  {
                    PixelMatrix<Stored> stored(header.size1, header.size2);
                    const std::size_t size = stored.getNumElements();
                    file.read(stored.data(), static_cast<std::size_t>(source.getPlane()) * size, size);
                    std::transform(stored.data(), stored.data() + size, plane.data(), checkedVoxel<T, Stored>);
                  });
  return plane;
}

template <class T> PixelMatrix<T> imageLevels(const StackSlice& slice, const std::optional<ImageChannel>& channel)
{
  Image image;
  slice.load(image);
  PixelMatrix<T> levels;
  if (channel)
    levels.convertFromImage(image, *channel);
  else
    levels.convertFromImage(image);
  return levels;
}

template <class T> PixelMatrix<T> levels(const StackSlice& slice, const std::optional<ImageChannel>& channel)
{
  try
  {
    const auto* const plane = dynamic_cast<const ImageSourceVoxelMatrixFilePlane*>(slice.getImageSource());
    return plane ? voxels<T>(*plane) : imageLevels<T>(slice, channel);
  }
  catch (const RangeError& error)
  {
    throw RangeError(readSignature, "Slice \"" + slice.getName() + "\": " + error.getWhat());
  }
}

/// Files that were written for one purpose; unless they are kept, they are removed when it fails.
class NewFiles
{
public:
  explicit NewFiles(bool overwrite) : _overwrite(overwrite) {}
  NewFiles(const NewFiles&) = delete;
  NewFiles& operator=(const NewFiles&) = delete;
  ~NewFiles()
  {
    std::error_code ignored;
    for (const std::string& name : _names) fs::remove(name, ignored);
  }

  /// To be asked of all files before the first one is written.
  void require(const std::string& name) const
  {
    if (!_overwrite && fs::exists(name)) throw FileWriteError(saveSignature, "File already exists", name);
  }
  /// To be told before a file is written: one that was there already is not removed.
  void add(const std::string& name)
  {
    if (!fs::exists(name)) _names.push_back(name);
  }
  void keep() { _names.clear(); }

private:
  bool _overwrite;
  std::vector<std::string> _names;
};

/// The file of plane k, beside the stack file and named after it.
std::string planeFile(const std::string& stem, int k)
{
  const std::string number = std::to_string(k + 1);
  constexpr std::size_t leastDigits = 4;
  return stem + "-" + std::string(leastDigits - std::min(leastDigits, number.size()), '0') + number + ".tif";
}

std::unique_ptr<StackSlice> makeSlice(const std::string& name, const ImageSource& source,
                                      const PixelCalibration& calibration)
{
  auto slice = std::make_unique<StackSlice>();
  slice->setName(name);
  slice->setImageSource(source);
  slice->setPixelCalibration(calibration);
  return slice;
}

/// One TIFF file per plane.
class PlaneImages
{
public:
  PlaneImages(const VoxelMatrix<unsigned char>& volume, std::string stem) : _volume(volume), _stem(std::move(stem)) {}

  std::vector<std::string> fileNames() const
  {
    std::vector<std::string> names;
    for (int k = 0; k < _volume.getSize3(); ++k) names.push_back(planeFile(_stem, k));
    return names;
  }

  void write(NewFiles& files, bool overwrite, ProgressSubject& subject) const
  {
    for (int k = 0; k < _volume.getSize3(); ++k)
    {
      subject.throwIfCancelled(saveSignature);
      const std::string name = planeFile(_stem, k);
      Image image;
      _volume[k].convertToImage(image);
      files.add(name);
      ImageWriter::write(image, name, overwrite);
      subject.progress(k + 1);
    }
  }

  ImageSourceFile source(int k) const { return ImageSourceFile(planeFile(_stem, k)); }

private:
  const VoxelMatrix<unsigned char>& _volume;
  std::string _stem;
};

/// One file of all voxels. Signed bytes and shorts are widened: files of 8 and 16 bits are read as unsigned.
template <class T> class PlanesOfVolume
{
public:
  PlanesOfVolume(const VoxelMatrix<T>& volume, const std::string& stem) : _volume(volume), _fileName(stem + ".vm") {}

  std::vector<std::string> fileNames() const { return {_fileName}; }

  void write(NewFiles& files, bool overwrite, ProgressSubject& subject) const
  {
    subject.throwIfCancelled(saveSignature);
    files.add(_fileName);
    if constexpr (std::is_same_v<T, char> || std::is_same_v<T, short>)
      _volume.template toType<int>().save(_fileName, overwrite);
    else
      _volume.save(_fileName, overwrite);
  }

  ImageSourceVoxelMatrixFilePlane source(int k) const { return ImageSourceVoxelMatrixFilePlane(_fileName, k); }

private:
  const VoxelMatrix<T>& _volume;
  std::string _fileName;
};

template <class T> using PlaneFiles =
    std::conditional_t<std::is_same_v<T, unsigned char>, PlaneImages, PlanesOfVolume<T>>;
} // namespace

template <class T>
void stackToVolume(VoxelMatrix<T>& volume, const Stack& stack, ImageColorContent content, ProgressSubject& subject)
{
  if (stack.getNumSlices() == 0) throw SizeError(readSignature, "The stack has no slices");
  const std::optional<ImageChannel> channel = onlyChannel(content);
  const ProgressStep step(subject, "Reading the images of " + stack.getName(), stack.getNumSlices());
  VoxelMatrix<T> planes;
  for (int k = 0; k < stack.getNumSlices(); ++k)
  {
    subject.throwIfCancelled(readSignature);
    const PixelMatrix<T> plane = levels<T>(*stack.getSlice(k), channel);
    if (k == 0) planes.setSize(plane.getSize1(), plane.getSize2(), stack.getNumSlices());
    if (plane.getSize1() != planes.getSize1() || plane.getSize2() != planes.getSize2())
      throw SizeError(readSignature, "The image of slice \"" + stack.getSlice(k)->getName() +
                                         "\" has another size than that of the first slice");
    planes[k] = plane;
    subject.progress(k + 1);
  }
  planes.setVoxelCalibration(voxelCalibration(stack));
  volume.swap(planes);
}

template <class T> std::vector<std::string> saveVolumeAsStack(const VoxelMatrix<T>& volume,
                                                              const std::string& stackFileName, float relativePosition,
                                                              bool overwrite, ProgressSubject& subject)
{
  if (volume.getNumVoxels() == 0) throw SizeError(saveSignature, "The volume is empty");
  const fs::path stackFile = fs::absolute(StackReader::withSuffix(stackFileName));
  const std::string stem = fs::path(stackFile).replace_extension().string();
  const PlaneFiles<T> planes(volume, stem);
  NewFiles files(overwrite);
  files.require(stackFile.string());
  for (const std::string& name : planes.fileNames()) files.require(name);

  Stack stack;
  stack.setName(fs::path(stem).filename().string());
  stack.setDefaultRelativePosition(relativePosition);
  stack.setDefaultPixelCalibration(volume.getVoxelCalibration().pixelCalibration());
  for (int k = 0; k < volume.getSize3(); ++k)
    stack.addSlice(
        makeSlice(fs::path(planeFile(stem, k)).stem().string(), planes.source(k), stack.getDefaultPixelCalibration()));
  const ProgressStep step(subject, "Writing " + stackFile.string(), volume.getSize3());
  planes.write(files, overwrite, subject);
  StackWriter writer;
  writer.write(stack, stackFile.string());
  files.keep();
  return writer.getWarnings();
}

#define INSTANTIATE_VOLUMES(T)                                                                                         \
  template void stackToVolume<T>(VoxelMatrix<T>&, const Stack&, ImageColorContent, ProgressSubject&);                  \
  template std::vector<std::string> saveVolumeAsStack<T>(const VoxelMatrix<T>&, const std::string&, float, bool,       \
                                                         ProgressSubject&);
IMAGE_FOR_EACH_TYPE(INSTANTIATE_VOLUMES)
