#include "model/stackvolume.h"

#include "image/imagesourcefile.h"
#include "image/imagesourcevoxelmatrixfileplane.h"
#include "image/imagesourcevoxelmatrixplane.h"
#include "image/imagewriter.h"
#include "image/voxelmatrixfile.h"
#include "model/io/stackreader.h"
#include "model/io/stackwriter.h"
#include "model/stack.h"
#include "numeric/exception.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <limits>
#include <memory>
#include <optional>
#include <system_error>
#include <unistd.h>

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

template <class Number> std::string shortest(Number value)
{
  char digits[64];
  return std::string(digits, std::to_chars(digits, digits + sizeof digits, value).ptr);
}

/// Whether T has the value: as a whole number of its range, or as a finite one (rounded) when the value is finite.
template <class T, class Stored> bool fits(Stored x)
{
  constexpr bool isWider = std::is_integral_v<Stored> || sizeof(T) >= sizeof(Stored);
  if constexpr (std::is_floating_point_v<T> && isWider) return true;
  const auto value = static_cast<long double>(x);
  if constexpr (std::is_floating_point_v<T>) return std::isfinite(static_cast<T>(x)) || !std::isfinite(value);
  return value >= static_cast<long double>(std::numeric_limits<T>::lowest()) &&
         value <= static_cast<long double>(std::numeric_limits<T>::max()) && value == std::floor(value);
}

/// The value as T. \throw RangeError  T cannot hold it
template <class T, class Stored> T checkedVoxel(Stored x)
{
  if constexpr (std::is_same_v<T, Stored>) return x;
  if (fits<T>(x)) return static_cast<T>(x);
  std::string number;
  if constexpr (std::is_integral_v<Stored>)
    number = std::to_string(x);
  else
    number = shortest(x);
  throw RangeError(readSignature, "The value " + number + " does not fit voxels of type " + typeName<T>());
}

/// The voxels of a plane as they are, which an image of it would show scaled.
template <class T> PixelMatrix<T> voxels(const ImageSourceVoxelMatrixFilePlane& source)
{
  const VoxelMatrixFile file(source.getVoxelMatrixFilename());
  const VoxelMatrixHeader& header = file.getHeader();
  if (source.getPlane() >= header.size3)
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

template <class T> PixelMatrix<T> voxels(const ImageSourceVoxelMatrixPlane& source)
{
  PixelMatrix<T> plane;
  source.visitMatrix(
      [&]<class Stored>(const VoxelMatrix<Stored>& matrix)
      {
        const PixelMatrix<Stored>& stored = matrix[source.getPlane()];
        plane.setSize(stored.getSize1(), stored.getSize2());
        std::transform(stored.data(), stored.data() + stored.getNumElements(), plane.data(), checkedVoxel<T, Stored>);
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
  const ImageSource* const source = slice.getImageSource();
  if (slice.isEmpty()) throw UsageError(readSignature, "The slice \"" + slice.getName() + "\" has no image");
  try
  {
    if (const auto* plane = dynamic_cast<const ImageSourceVoxelMatrixFilePlane*>(source)) return voxels<T>(*plane);
    if (const auto* plane = dynamic_cast<const ImageSourceVoxelMatrixPlane*>(source)) return voxels<T>(*plane);
    return imageLevels<T>(slice, channel);
  }
  catch (RangeError& error)
  {
    error.setWhat("Slice \"" + slice.getName() + "\": " + error.getWhat());
    throw;
  }
  catch (FileFormatError& error)
  {
    error.setWhat("Slice \"" + slice.getName() + "\": " + error.getWhat());
    throw;
  }
}

/// \throw FileWriteError  the file is there and must not be, or cannot be written over
void requireReplaceable(const std::string& name, bool overwrite)
{
  std::error_code error;
  const fs::file_status status = fs::status(name, error);
  if (!fs::exists(status)) return;
  if (!overwrite) throw FileWriteError(saveSignature, "File already exists", name);
  if (!fs::is_regular_file(status))
    throw FileWriteError(saveSignature, "Cannot open file for writing (Not a regular file)", name);
  if (access(name.c_str(), W_OK) != 0)
    throw FileWriteError(saveSignature, "Cannot open file for writing (Permission denied)", name);
}

/// Files that took their places for one purpose; unless they are kept, those that replaced nothing are removed when it
/// fails.
class NewFiles
{
public:
  NewFiles() = default;
  NewFiles(const NewFiles&) = delete;
  NewFiles& operator=(const NewFiles&) = delete;
  ~NewFiles()
  {
    std::error_code ignored;
    for (const std::string& name : _names) fs::remove(name, ignored);
  }

  /// To be told before a file takes its place.
  void add(const std::string& name)
  {
    std::error_code ignored;
    if (!fs::exists(name, ignored)) _names.push_back(name);
  }
  void keep() { _names.clear(); }

private:
  std::vector<std::string> _names;
};

/// A new folder for files that are not complete yet, beside their places; it is removed with what is left in it.
class FolderBeside
{
public:
  explicit FolderBeside(const fs::path& place) : _path((place.parent_path() / ".mirelo-XXXXXX").string())
  {
    if (!mkdtemp(_path.data()))
      throw FileWriteError(saveSignature,
                           "Cannot open file for writing (" + std::generic_category().message(errno) + ")",
                           place.string());
  }
  FolderBeside(const FolderBeside&) = delete;
  FolderBeside& operator=(const FolderBeside&) = delete;
  ~FolderBeside()
  {
    std::error_code ignored;
    fs::remove_all(_path, ignored);
  }

  /// Where the file that will be `place` is written.
  std::string file(const std::string& place) const { return (_path / fs::path(place).filename()).string(); }
  /// Puts it there, or where the link at that place leads, with the permissions of the file that it replaces.
  /// \throw FileWriteError
  void moveTo(const std::string& place) const
  {
    std::error_code error;
    const bool isLink = fs::is_symlink(place, error);
    const fs::path target = isLink ? fs::canonical(place, error) : fs::path(place);
    if (fs::exists(target, error)) fs::permissions(file(place), fs::status(target, error).permissions(), error);
    error.clear();
    fs::rename(file(place), target, error);
    if (error == std::errc::cross_device_link) // that the link leads to
    {
      const fs::path beside = target.string() + ".mirelo-part";
      error.clear();
      fs::copy_file(file(place), beside, fs::copy_options::overwrite_existing, error);
      if (!error) fs::rename(beside, target, error);
      std::error_code ignored;
      if (error) fs::remove(beside, ignored);
    }
    if (error) throw FileWriteError(saveSignature, "Cannot replace file (" + error.message() + ")", place);
  }

private:
  std::string _path;
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

  /// Writes all images beside their places before the first one takes its place.
  void write(NewFiles& files, ProgressSubject& subject) const
  {
    const std::vector<std::string> names = fileNames();
    const FolderBeside folder(names.front());
    for (int k = 0; k < _volume.getSize3(); ++k)
    {
      writePlane(k, folder);
      subject.progress(k + 1);
      subject.throwIfCancelled(saveSignature);
    }
    for (const std::string& name : names)
    {
      files.add(name);
      folder.moveTo(name);
    }
  }

  ImageSourceFile source(int k) const { return ImageSourceFile(planeFile(_stem, k)); }

private:
  void writePlane(int k, const FolderBeside& folder) const
  {
    const std::string name = planeFile(_stem, k);
    Image image;
    _volume[k].convertToImage(image);
    try
    {
      ImageWriter::write(image, folder.file(name), false);
    }
    catch (FileWriteError& error)
    {
      error.setFilename(name);
      throw;
    }
  }

  const VoxelMatrix<unsigned char>& _volume;
  std::string _stem;
};

/// A plane of a file that is to be written: its size is known, whatever lies in the file's place until then.
class PlaneToBeWritten : public ImageSourceVoxelMatrixFilePlane
{
public:
  PlaneToBeWritten(const std::string& fileName, int plane, int size1, int size2)
    : ImageSourceVoxelMatrixFilePlane(fileName, plane), _size1(size1), _size2(size2)
  {
  }

  int getSize1() const override { return _size1; }
  int getSize2() const override { return _size2; }
  std::unique_ptr<ImageSource> clone() const override { return std::make_unique<PlaneToBeWritten>(*this); }

private:
  int _size1, _size2;
};

/// One file of all voxels. Signed bytes and shorts are widened: files of 8 and 16 bits are read as unsigned.
template <class T> class PlanesOfVolume
{
public:
  PlanesOfVolume(const VoxelMatrix<T>& volume, const std::string& stem) : _volume(volume), _fileName(stem + ".vm") {}

  std::vector<std::string> fileNames() const { return {_fileName}; }

  void write(NewFiles& files, ProgressSubject& subject) const
  {
    files.add(_fileName);
    if constexpr (std::is_same_v<T, char> || std::is_same_v<T, short>)
      _volume.template toType<int>().save(_fileName, true, subject);
    else
      _volume.save(_fileName, true, subject);
  }

  PlaneToBeWritten source(int k) const
  {
    return PlaneToBeWritten(_fileName, k, _volume.getSize1(), _volume.getSize2());
  }

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
  subject.throwIfCancelled(readSignature);
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
  requireReplaceable(stackFile.string(), overwrite);
  for (const std::string& name : planes.fileNames()) requireReplaceable(name, overwrite);

  Stack stack;
  stack.setName(fs::path(stem).filename().string());
  stack.setDefaultRelativePosition(relativePosition);
  stack.setDefaultPixelCalibration(volume.getVoxelCalibration().pixelCalibration());
  for (int k = 0; k < volume.getSize3(); ++k)
    stack.addSlice(
        makeSlice(fs::path(planeFile(stem, k)).stem().string(), planes.source(k), stack.getDefaultPixelCalibration()));
  const ProgressStep step(subject, "Writing " + stackFile.string(), static_cast<long>(planes.fileNames().size()));
  NewFiles files;
  StackWriter writer; // which refuses what it cannot write before a plane is written
  writer.setBeforeReplace([&] { planes.write(files, subject); });
  writer.write(stack, stackFile.string());
  files.keep();
  return writer.getWarnings();
}

#define INSTANTIATE_VOLUMES(T)                                                                                         \
  template void stackToVolume<T>(VoxelMatrix<T>&, const Stack&, ImageColorContent, ProgressSubject&);                  \
  template std::vector<std::string> saveVolumeAsStack<T>(const VoxelMatrix<T>&, const std::string&, float, bool,       \
                                                         ProgressSubject&);
IMAGE_FOR_EACH_TYPE(INSTANTIATE_VOLUMES)
