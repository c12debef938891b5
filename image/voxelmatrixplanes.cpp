#include "image/voxelmatrixplanes.h"

#include "image/filewarnings.h"
#include "image/finiterange.h"
#include "image/image.h"
#include "image/voxelmatrixfile.h"
#include "numeric/progresssubject.h"

#include <algorithm>
#include <cstring>
#include <type_traits>

namespace
{
/// Bits per pixel of the image of a plane.
template <class T> constexpr int depthOf()
{
  return std::is_same_v<T, unsigned short> ? 16 : 8;
}

ImageHeader planeHeader(const VoxelCalibration& calibration, int size1, int size2, int size3, int depth)
{
  ImageHeader header;
  header.setHeight(size1);
  header.setWidth(size2);
  header.setNumPlanes(size3);
  header.setDepth(depth);
  header.setNumChannels(1);
  header.setPixelCalibration(calibration.pixelCalibration());
  header.setVoxelSizeX(calibration.getVoxelWidth());
  header.setVoxelSizeY(calibration.getVoxelHeight());
  header.setVoxelSizeZ(calibration.getVoxelDepth());
  return header;
}

/// Whether the voxels are grey levels as they are.
template <class T> constexpr bool isLevel()
{
  return std::is_same_v<T, unsigned char> || std::is_same_v<T, unsigned short>;
}

/// The image of a plane, some rows at a time, between which the subject is looked at. copyRows(rows, first, count)
/// copies rows of the plane; getRange() tells the smallest and the largest finite voxel of the whole volume.
template <class T, class CopyRows, class GetRange>
Image readRows(const ImageHeader& header, const CopyRows& copyRows, const GetRange& getRange, ProgressSubject& subject)
{
  constexpr int bandLength = 1 << 18; // voxels
  const int height = header.getHeight(), width = header.getWidth();
  const int bandHeight = std::clamp(bandLength / std::max(width, 1), 1, std::max(height, 1));
  Image image(width, height, depthOf<T>());
  std::pair<T, T> range;
  if constexpr (!isLevel<T>()) range = getRange();
  const ProgressStep step(subject, "Reading the image", height);
  for (int first = 0; first < height; first += bandHeight)
  {
    subject.throwIfCancelled("void readPlane(Image&, const VoxelMatrixFile&, int, ProgressSubject&)");
    const int count = std::min(bandHeight, height - first);
    if constexpr (isLevel<T>())
      copyRows(static_cast<T*>(static_cast<void*>(image.getLine(first))), first, count);
    else
    {
      PixelMatrix<T> rows(count, width);
      copyRows(rows.data(), first, count);
      Image band(width, count, depthOf<T>());
      rows.convertToImage(band, range.first, range.second);
      std::memcpy(image.getLine(first), band.getData(), band.dataLength());
    }
    subject.progress(first + count);
  }
  image.setDescription(header);
  return image;
}
} // namespace

template <class T> ImageHeader planeHeader(const VoxelMatrix<T>& matrix)
{
  return planeHeader(matrix.getVoxelCalibration(), matrix.getSize1(), matrix.getSize2(), matrix.getSize3(),
                     depthOf<T>());
}

ImageHeader planeHeader(const VoxelMatrixFile& file)
{
  const VoxelMatrixHeader& header = file.getHeader();
  const int depth = withElementType(header, [](auto zero) { return depthOf<decltype(zero)>(); });
  return planeHeader(header.calibration, header.size1, header.size2, header.size3, depth);
}

template <class T> std::pair<T, T> finiteRange(const VoxelMatrix<T>& matrix, const ProgressSubject& subject)
{
  constexpr std::size_t blockSize = std::size_t{1} << 18;
  FiniteRange<T> range;
  for (std::size_t first = 0; first < matrix.getNumVoxels(); first += blockSize)
  {
    subject.throwIfCancelled("std::pair<T, T> finiteRange(const VoxelMatrix<T>&, const ProgressSubject&)");
    range.extend(matrix.data() + first, std::min(blockSize, matrix.getNumVoxels() - first));
  }
  return {range.low, range.high};
}

template <class T> void readPlane(Image& image, const VoxelMatrix<T>& matrix, int plane, ProgressSubject& subject)
{
  if (plane < 0 || plane >= matrix.getSize3())
    throw RangeError("void readPlane(Image&, const VoxelMatrix<T>&, int, ProgressSubject&)",
                     "The voxel matrix has no plane " + std::to_string(plane));
  const T* const voxels = matrix[plane].data();
  const auto copyRows = [&](T* rows, int first, int count)
  {
    const auto width = static_cast<std::size_t>(matrix.getSize2());
    std::copy_n(voxels + static_cast<std::size_t>(first) * width, static_cast<std::size_t>(count) * width, rows);
  };
  const auto getRange = [&] { return finiteRange(matrix, subject); };
  Image fresh = readRows<T>(planeHeader(matrix), copyRows, getRange, subject);
  image.swap(fresh);
}

void readPlane(Image& image, const VoxelMatrixFile& file, int plane, ProgressSubject& subject)
{
  const VoxelMatrixHeader& header = file.getHeader();
  if (plane < 0 || plane >= header.size3)
    throw FileFormatError("void readPlane(Image&, const VoxelMatrixFile&, int, ProgressSubject&)",
                          "The file has no plane " + std::to_string(plane), file.getFilename());
  const auto read = [&](auto zero)
  {
    using T = decltype(zero);
    const auto copyRows = [&](T* rows, int first, int count)
    {
      const auto width = static_cast<std::size_t>(header.size2), height = static_cast<std::size_t>(header.size1);
      const std::size_t start = (static_cast<std::size_t>(plane) * height + static_cast<std::size_t>(first)) * width;
      file.read(rows, start, static_cast<std::size_t>(count) * width);
    };
    const auto getRange = [&]
    {
      const auto [low, high] = file.getRange(subject);
      return std::pair(static_cast<T>(low), static_cast<T>(high));
    };
    return readRows<T>(planeHeader(file), copyRows, getRange, subject);
  };
  Image fresh = withElementType(header, read);
  image.swap(fresh);
  tellWarning(file.getFilename());
}

#define IMAGE_INSTANTIATE_PLANES(T)                                                                                    \
  template ImageHeader planeHeader(const VoxelMatrix<T>&);                                                             \
  template std::pair<T, T> finiteRange(const VoxelMatrix<T>&, const ProgressSubject&);                                 \
  template void readPlane(Image&, const VoxelMatrix<T>&, int, ProgressSubject&);
IMAGE_FOR_EACH_TYPE(IMAGE_INSTANTIATE_PLANES)
