// Voxel matrices as multi-page TIFF files.
#include "image/filewarnings.h"
#include "image/image.h"
#include "image/tifffile.h"
#include "image/tiffpixels.h"
#include "image/tiffreading.h"
#include "image/tiffwriting.h"
#include "image/voxelmatrix.h"
#include "numeric/atomicfile.h"
#include "numeric/progresssubject.h"

#include <algorithm>
#include <cmath>
#include <exception>
#include <new>
#include <omp.h>

namespace
{
constexpr const char* loadSignature = "void VoxelMatrix<T>::loadTiffStackFile(const std::string&)";
constexpr const char* saveSignature = "void VoxelMatrix<T>::saveAsTiff(const std::string&, bool) const";

/// Whether the pixels of a plane are elements of T as they are.
template <class T> bool holdsElements(const ImageHeader& header)
{
  constexpr bool isLevel = std::is_same_v<T, unsigned char> || std::is_same_v<T, unsigned short>;
  return isLevel && header.getDepth() == 8 * static_cast<int>(sizeof(T)) && !header.hasColormap();
}

/// The current plane; `image` serves planes that need a conversion and keeps its memory between them.
template <class T> void readPlane(PixelMatrix<T>& plane, Image& image, TiffFile& file)
{
  ImageHeader header;
  readTiffHeader(header, file);
  if (header.getHeight() != plane.getSize1() || header.getWidth() != plane.getSize2())
    file.failReading(loadSignature, "Plane " + std::to_string(file.getPlane()) + " has another size than the first");
  ProgressSubject nobody;
  if (holdsElements<T>(header))
    return readTiffPixels(reinterpret_cast<unsigned char*>(plane.data()), header, file, nobody);
  readTiffPixels(image, header, file, nobody);
  try
  {
    plane.convertFromImage(image);
  }
  catch (const RangeError& error)
  {
    throw RangeError(loadSignature,
                     file.getFilename() + ": plane " + std::to_string(file.getPlane()) + ": " + error.getWhat());
  }
}

/// The planes from `first` to the one before `end`, through one open file.
template <class T> void readPlanes(VoxelMatrix<T>& matrix, const std::string& filename, int first, int end)
{
  TiffFile file(filename, first, TiffPlanes::WithoutThumbnails);
  Image image;
  for (int k = first; k < end; ++k)
  {
    if (k > first) file.selectNextPlane();
    readPlane(matrix[k], image, file);
  }
}

/// Threads read runs of planes, none so long that libtiff's search among the directories it has seen takes time. Of
/// several errors, that of the first planes counts.
template <class T> void readPlanes(VoxelMatrix<T>& matrix, const std::string& filename)
{
  constexpr int longestRun = 1024;
  const int numRuns = std::clamp(omp_get_max_threads(), 1 + (matrix.getSize3() - 1) / longestRun, matrix.getSize3());
  const auto start = [&](int run) { return static_cast<int>(std::int64_t{matrix.getSize3()} * run / numRuns); };
  std::vector<std::exception_ptr> errors(static_cast<std::size_t>(numRuns));
#pragma omp parallel for schedule(dynamic)
  for (int run = 0; run < numRuns; ++run)
  {
    try
    {
      readPlanes(matrix, filename, start(run), start(run + 1));
    }
    catch (...)
    {
      errors[static_cast<std::size_t>(run)] = std::current_exception();
    }
  }
  for (const std::exception_ptr& error : errors)
    if (error) std::rethrow_exception(error);
}

/// An uninitialised matrix for the whole stack, with its calibration.
template <class T> VoxelMatrix<T> matrixFor(const std::string& filename)
{
  TiffFile file(filename, 0, TiffPlanes::WithoutThumbnails);
  ImageHeader header;
  readTiffHeader(header, file);
  const int numPlanes = numTiffPlanes(header, file);
  if (file.getNumPlanes() > 1)
    checkTiffStackLength(double{1} * header.getWidth() * header.getHeight() * header.getDepth() / 8, file,
                         loadSignature);
  const PixelCalibration& pixels = header.getPixelCalibration();
  VoxelCalibration calibration;
  calibration.setVoxelSize({pixels.getPixelWidth(), pixels.getPixelHeight(), header.getVoxelSizeZ()}); // crossed
  calibration.setLengthUnit(pixels.getLengthUnit());
  try
  {
    VoxelMatrix<T> matrix(header.getHeight(), header.getWidth(), numPlanes);
    matrix.setVoxelCalibration(calibration);
    return matrix;
  }
  catch (const std::bad_alloc&)
  {
    file.failReading(loadSignature, "There is not enough memory for the stack");
  }
}

template <class T> bool isLevel(T x)
{
  if constexpr (std::is_integral_v<T>)
    return 0 <= static_cast<long>(x) && static_cast<long>(x) <= 255;
  else
    return T(0) <= x && x <= T(255) && std::trunc(x) == x;
}

/// The levels of a plane: its own elements or, for other types than unsigned char, a copy in `buffer`.
template <class T> const unsigned char* levelsOf(const PixelMatrix<T>& plane, std::vector<unsigned char>& buffer)
{
  if constexpr (std::is_same_v<T, unsigned char>)
    return plane.data();
  else
  {
    buffer.resize(plane.getNumElements());
    std::transform(plane.data(), plane.data() + buffer.size(), buffer.begin(),
                   [](T x) { return static_cast<unsigned char>(x); });
    return buffer.data();
  }
}
} // namespace

template <class T> void VoxelMatrix<T>::loadTiffStackFile(const std::string& filename)
{
  VoxelMatrix fresh = matrixFor<T>(filename);
  readPlanes(fresh, filename);
  swap(fresh);
  tellWarning(filename);
}

template <class T> void VoxelMatrix<T>::saveAsTiff(const std::string& filename, bool overwrite) const
{
  const auto refuse = [&filename](const char* what) { throw FileWriteError(saveSignature, what, filename); };
  if (!overwrite && fileExists(filename)) refuse("File already exists");
  if (getNumVoxels() == 0) refuse("A matrix without voxels cannot be written");
  if (!std::all_of(_block, _block + getNumVoxels(), isLevel<T>))
    refuse("Only whole numbers of 0 to 255 can be written as TIFF");
  AtomicFile target(filename);
  {
    constexpr std::size_t directorySize = 1024; // at the most
    TiffFile file(target.getDescriptor(), filename, getNumVoxels() + _planes.size() * directorySize);
    std::vector<unsigned char> buffer;
    for (const PixelMatrix<T>& plane : _planes)
    {
      writeTIFFHeader(_size2, _size1, 8, false, file);
      writeTiffCalibration(_voxelCalibration, file, saveSignature);
      writeTIFFPixels(levelsOf(plane, buffer), _size1, static_cast<std::size_t>(_size2), file, saveSignature);
    }
  }
  target.commit();
  tellWarning(filename);
}

IMAGE_INSTANTIATE(VoxelMatrix)
