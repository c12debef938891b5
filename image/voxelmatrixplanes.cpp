#include "image/voxelmatrixplanes.h"

#include "image/filewarnings.h"
#include "image/finiterange.h"
#include "image/image.h"
#include "image/voxelmatrixfile.h"

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

/// The image of a plane; getRange() tells the smallest and the largest finite voxel of the whole volume.
template <class T, class GetRange> Image imageOf(const PixelMatrix<T>& plane, const GetRange& getRange)
{
  Image image(plane.getSize2(), plane.getSize1(), depthOf<T>());
  if constexpr (std::is_same_v<T, unsigned char> || std::is_same_v<T, unsigned short>)
    std::memcpy(image.getData(), plane.data(), image.dataLength());
  else
  {
    const auto [low, high] = getRange();
    plane.convertToImage(image, low, high);
  }
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

template <class T> std::pair<T, T> finiteRange(const VoxelMatrix<T>& matrix)
{
  FiniteRange<T> range;
  range.extend(matrix.data(), matrix.getNumVoxels());
  return {range.low, range.high};
}

template <class T> void readPlane(Image& image, const VoxelMatrix<T>& matrix, int plane)
{
  if (plane < 0 || plane >= matrix.getSize3())
    throw RangeError("void readPlane(Image&, const VoxelMatrix<T>&, int)",
                     "The voxel matrix has no plane " + std::to_string(plane));
  Image fresh = imageOf(matrix[plane], [&matrix] { return finiteRange(matrix); });
  fresh.setDescription(planeHeader(matrix));
  image.swap(fresh);
}

void readPlane(Image& image, const VoxelMatrixFile& file, int plane)
{
  const VoxelMatrixHeader& header = file.getHeader();
  if (plane < 0 || plane >= header.size3)
    throw FileFormatError("void readPlane(Image&, const VoxelMatrixFile&, int)",
                          "The file has no plane " + std::to_string(plane), file.getFilename());
  const auto read = [&](auto zero)
  {
    using T = decltype(zero);
    PixelMatrix<T> matrix(header.size1, header.size2);
    file.read(matrix.data(), static_cast<std::size_t>(plane) * matrix.getNumElements(), matrix.getNumElements());
    const auto getRange = [&file]
    {
      const auto [low, high] = file.getRange();
      return std::pair(static_cast<T>(low), static_cast<T>(high));
    };
    return imageOf(matrix, getRange);
  };
  Image fresh = withElementType(header, read);
  fresh.setDescription(planeHeader(file));
  image.swap(fresh);
  tellWarning(file.getFilename());
}

#define IMAGE_INSTANTIATE_PLANES(T)                                                                                    \
  template ImageHeader planeHeader(const VoxelMatrix<T>&);                                                             \
  template std::pair<T, T> finiteRange(const VoxelMatrix<T>&);                                                         \
  template void readPlane(Image&, const VoxelMatrix<T>&, int);
IMAGE_FOR_EACH_TYPE(IMAGE_INSTANTIATE_PLANES)
