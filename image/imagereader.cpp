#include "image/imagereader.h"

#include "image/image.h"
#include "image/imagemosaic.h"
#include "image/imagesourcefile.h"
#include "image/imagesourcefilemosaic.h"
#include "image/imagesourcelsmstackplane.h"
#include "image/imagesourcetiffstackplane.h"
#include "image/imagesourcevoxelmatrixfileplane.h"
#include "image/imagesourcevoxelmatrixplane.h"
#include "image/lsmreading.h"
#include "image/tifffile.h"
#include "image/tiffreading.h"
#include "image/voxelmatrixfile.h"
#include "image/voxelmatrixplanes.h"
#include "numeric/progresssubject.h"

#include <atomic>
#include <cstdint>
#include <iostream>
#include <limits>
#include <new>
#include <numeric>
#include <vector>

namespace
{
std::atomic<std::ostream*> magicNumberStream = &std::cout;

/// The image of the current directory; the given image changes only when all went well.
void readCurrentImage(Image& image, TiffFile& file, ProgressSubject& subject)
{
  ImageHeader header;
  readTiffHeader(header, file);
  Image fresh;
  readTiffPixels(fresh, header, file, subject);
  image.swap(fresh);
  file.tellWarning();
}

const std::string& requireImage(const std::string& filename, const char* where)
{
  if (filename.empty()) throw FileReadError(where, "The slice has no image");
  return filename;
}

constexpr const char* mosaicSignature =
    "void ImageReader::read(Image&, const ImageSourceFileMosaic&, ProgressSubject&)";

/// \throw FileFormatError  the tile is not of the given size, or not like the mosaic's first tile
void requireFit(const ImageHeader& tile, int width, int height, const ImageHeader& first, const std::string& filename)
{
  if (tile.getWidth() != width || tile.getHeight() != height)
    throw FileFormatError(mosaicSignature, "Incompatible image dimensions", filename);
  if (tile.getDepth() != first.getDepth())
    throw FileFormatError(mosaicSignature, "Incompatible image depths", filename);
  const bool sameColormaps =
      tile.hasColormap() == first.hasColormap() && (!tile.hasColormap() || tile.getColormap() == first.getColormap());
  if (!sameColormaps) throw FileFormatError(mosaicSignature, "Incompatible colormaps", filename);
}

/// The grid of a mosaic, all its tiles' headers looked at: what the image takes in memory, the files justify.
struct MosaicGrid
{
  ImageHeader first;
  std::vector<int> heights, widths;
};

MosaicGrid checkedGrid(const ImageSourceFileMosaic& source)
{
  MosaicGrid grid;
  ImageReader::read(grid.first, source.requireFilename(0, 0));
  grid.heights = source.rowHeights();
  grid.widths = source.colWidths();
  for (int row = 0; row < source.getRows(); ++row)
  {
    for (int column = 0; column < source.getCols(); ++column)
    {
      ImageHeader tile;
      ImageReader::read(tile, source.requireFilename(row, column));
      requireFit(tile, grid.widths[static_cast<std::size_t>(column)], grid.heights[static_cast<std::size_t>(row)],
                 grid.first, source.getFilename(row, column));
    }
  }
  return grid;
}

/// An image of the grid's size that is like its first tile otherwise.
Image emptyMosaic(const MosaicGrid& grid, const std::string& filename)
{
  const auto total = [&filename](const std::vector<int>& sizes)
  {
    const std::int64_t sum = std::accumulate(sizes.begin(), sizes.end(), std::int64_t{0});
    if (sum <= std::numeric_limits<int>::max()) return static_cast<int>(sum);
    throw FileFormatError(mosaicSignature, "The mosaic is too large", filename);
  };
  try
  {
    Image mosaic(total(grid.widths), total(grid.heights), grid.first.getDepth());
    mosaic.setDescription(grid.first);
    return mosaic;
  }
  catch (const std::bad_alloc&)
  {
    throw FileFormatError(mosaicSignature, "There is not enough memory for the mosaic", filename);
  }
}

} // namespace

void ImageReader::read(Image& image, const ImageSource& source)
{
  ProgressSubject nobody;
  read(image, source, nobody);
}

void ImageReader::read(Image& image, const std::string& filename)
{
  ProgressSubject nobody;
  read(image, filename, nobody);
}

void ImageReader::read(Image& image, const ImageSource& source, ProgressSubject& subject)
{
  switch (source.getType())
  {
  case ImageSourceType::File:
    return read(image, static_cast<const ImageSourceFile&>(source), subject);
  case ImageSourceType::FileMosaic:
    return read(image, static_cast<const ImageSourceFileMosaic&>(source), subject);
  case ImageSourceType::TiffStackPlane:
    return read(image, static_cast<const ImageSourceTiffStackPlane&>(source), subject);
  case ImageSourceType::LSMStackPlane:
    return read(image, static_cast<const ImageSourceLSMStackPlane&>(source), subject);
  case ImageSourceType::VoxelMatrixFilePlane:
    return read(image, static_cast<const ImageSourceVoxelMatrixFilePlane&>(source), subject);
  case ImageSourceType::VoxelMatrixPlane:
    return read(image, static_cast<const ImageSourceVoxelMatrixPlane&>(source), subject);
  }
}

void ImageReader::read(Image& image, const ImageSourceFile& source, ProgressSubject& subject)
{
  read(image,
       requireImage(source.getFilename(), "void ImageReader::read(Image&, const ImageSourceFile&, ProgressSubject&)"),
       subject);
}

void ImageReader::read(Image& image, const ImageSourceTiffStackPlane& source, ProgressSubject& subject)
{
  constexpr const char* where = "void ImageReader::read(Image&, const ImageSourceTiffStackPlane&, ProgressSubject&)";
  TiffFile file(requireImage(source.getTiffStackFilename(), where), source.getPlane(), TiffPlanes::WithoutThumbnails);
  readCurrentImage(image, file, subject);
}

void ImageReader::read(Image& image, const ImageSourceFileMosaic& source, ProgressSubject& subject)
{
  const MosaicGrid grid = checkedGrid(source);
  Image mosaic = emptyMosaic(grid, source.getFilename(0, 0));
  const ProgressStep step(subject, "Reading the mosaic", long{source.getRows()} * source.getCols());
  int y = 0;
  for (int row = 0; row < source.getRows(); ++row)
  {
    const int height = grid.heights[static_cast<std::size_t>(row)];
    int x = 0;
    for (int column = 0; column < source.getCols(); ++column)
    {
      const int width = grid.widths[static_cast<std::size_t>(column)];
      Image tile;
      read(tile, source.getFilename(row, column), subject);
      requireFit(tile.getHeader(), width, height, mosaic.getHeader(), source.getFilename(row, column));
      mosaic.paste(tile, x, y);
      x += width;
    }
    y += height;
  }
  image.swap(mosaic);
}

void ImageReader::read(Image& image, const ImageMosaic& mosaic)
{
  read(image, mosaic.getSource());
}

void ImageReader::read(Image& image, const ImageSourceLSMStackPlane& source, ProgressSubject& subject)
{
  constexpr const char* where = "void ImageReader::read(Image&, const ImageSourceLSMStackPlane&, ProgressSubject&)";
  readLSMImage(image, requireImage(source.getLSMStackFilename(), where), source.getPlane(), subject);
}

void ImageReader::read(Image& image, const ImageSourceVoxelMatrixFilePlane& source, ProgressSubject& subject)
{
  constexpr const char* where =
      "void ImageReader::read(Image&, const ImageSourceVoxelMatrixFilePlane&, ProgressSubject&)";
  readPlane(image, VoxelMatrixFile(requireImage(source.getVoxelMatrixFilename(), where)), source.getPlane(), subject);
}

void ImageReader::read(Image& image, const ImageSourceVoxelMatrixPlane& source, ProgressSubject& subject)
{
  source.readImage(image, subject);
}

void ImageReader::read(Image& image, const std::string& filename, ProgressSubject& subject)
{
  TiffFile file(filename, 0, TiffPlanes::WithoutThumbnails);
  if (isLSM(file)) return readLSMImage(image, filename, 0, subject);
  readCurrentImage(image, file, subject);
}

void ImageReader::read(ImageHeader& header, const std::string& filename)
{
  TiffFile file(filename, 0, TiffPlanes::WithoutThumbnails);
  if (isLSM(file)) return readLSMImageHeader(header, filename, 0);
  readTiffHeader(header, file);
}

void ImageReader::read(ImageHeader& header, const ImageSourceFile& source)
{
  read(header, requireImage(source.getFilename(), "void ImageReader::read(ImageHeader&, const ImageSourceFile&)"));
}

void ImageReader::read(ImageHeader& header, const ImageSourceTiffStackPlane& source)
{
  constexpr const char* where = "void ImageReader::read(ImageHeader&, const ImageSourceTiffStackPlane&)";
  TiffFile file(requireImage(source.getTiffStackFilename(), where), source.getPlane(), TiffPlanes::WithoutThumbnails);
  readTiffHeader(header, file);
  header.setNumPlanes(numTiffPlanes(header, file));
}

void ImageReader::read(ImageHeader& header, const ImageSourceLSMStackPlane& source)
{
  constexpr const char* where = "void ImageReader::read(ImageHeader&, const ImageSourceLSMStackPlane&)";
  readLSMImageHeader(header, requireImage(source.getLSMStackFilename(), where), source.getPlane());
}

void ImageReader::setMagicNumberStream(std::ostream& stream)
{
  magicNumberStream = &stream;
}

std::ostream& ImageReader::getMagicNumberStream()
{
  return *magicNumberStream;
}
