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

#include <atomic>
#include <iostream>
#include <new>

namespace
{
std::atomic<std::ostream*> magicNumberStream = &std::cout;

/// The image of the current directory; the given image changes only when all went well.
void readCurrentImage(Image& image, TiffFile& file)
{
  ImageHeader header;
  readTiffHeader(header, file);
  Image fresh;
  readTiffPixels(fresh, header, file);
  image.swap(fresh);
  file.tellWarning();
}

const std::string& requireImage(const std::string& filename, const char* where)
{
  if (filename.empty()) throw FileReadError(where, "The slice has no image");
  return filename;
}

/// An image of the mosaic's size that is like its first tile otherwise.
Image emptyMosaic(const ImageSourceFileMosaic& source)
{
  Image tile;
  ImageReader::read(tile, source.requireFilename(0, 0));
  try
  {
    Image mosaic(source.getSize2(), source.getSize1(), tile.getDepth());
    mosaic.setDescription(tile.getHeader());
    return mosaic;
  }
  catch (const std::bad_alloc&)
  {
    throw FileFormatError("void ImageReader::read(Image&, const ImageSourceFileMosaic&)",
                          "There is not enough memory for the mosaic", source.getFilename(0, 0));
  }
}

/// Reads one tile and pastes it into the mosaic, which gets its depth and colormap from the first.
void pasteTile(Image& mosaic, const std::string& filename, int x, int y, int width, int height)
{
  constexpr const char* where = "void ImageReader::read(Image&, const ImageSourceFileMosaic&)";
  Image tile;
  ImageReader::read(tile, filename);
  if (tile.getWidth() != width || tile.getHeight() != height)
    throw FileFormatError(where, "Incompatible image dimensions", filename);
  if (tile.getDepth() != mosaic.getDepth()) throw FileFormatError(where, "Incompatible image depths", filename);
  const bool sameColormaps =
      tile.hasColormap() == mosaic.hasColormap() && (!tile.hasColormap() || tile.getColormap() == mosaic.getColormap());
  if (!sameColormaps) throw FileFormatError(where, "Incompatible colormaps", filename);
  mosaic.paste(tile, x, y);
}
} // namespace

void ImageReader::read(Image& image, const ImageSource& source)
{
  switch (source.getType())
  {
  case ImageSourceType::File:
    return read(image, static_cast<const ImageSourceFile&>(source));
  case ImageSourceType::FileMosaic:
    return read(image, static_cast<const ImageSourceFileMosaic&>(source));
  case ImageSourceType::TiffStackPlane:
    return read(image, static_cast<const ImageSourceTiffStackPlane&>(source));
  case ImageSourceType::LSMStackPlane:
    return read(image, static_cast<const ImageSourceLSMStackPlane&>(source));
  case ImageSourceType::VoxelMatrixFilePlane:
    return read(image, static_cast<const ImageSourceVoxelMatrixFilePlane&>(source));
  case ImageSourceType::VoxelMatrixPlane:
    return read(image, static_cast<const ImageSourceVoxelMatrixPlane&>(source));
  }
}

void ImageReader::read(Image& image, const ImageSourceFile& source)
{
  read(image, requireImage(source.getFilename(), "void ImageReader::read(Image&, const ImageSourceFile&)"));
}

void ImageReader::read(Image& image, const ImageSourceTiffStackPlane& source)
{
  constexpr const char* where = "void ImageReader::read(Image&, const ImageSourceTiffStackPlane&)";
  TiffFile file(requireImage(source.getTiffStackFilename(), where), source.getPlane(), TiffPlanes::WithoutThumbnails);
  readCurrentImage(image, file);
}

void ImageReader::read(Image& image, const ImageSourceFileMosaic& source)
{
  const std::vector<int> heights = source.rowHeights(), widths = source.colWidths();
  Image mosaic = emptyMosaic(source);
  int y = 0;
  for (int row = 0; row < source.getRows(); ++row)
  {
    const int height = heights[static_cast<std::size_t>(row)];
    int x = 0;
    for (int column = 0; column < source.getCols(); ++column)
    {
      const int width = widths[static_cast<std::size_t>(column)];
      pasteTile(mosaic, source.requireFilename(row, column), x, y, width, height);
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

void ImageReader::read(Image& image, const ImageSourceLSMStackPlane& source)
{
  constexpr const char* where = "void ImageReader::read(Image&, const ImageSourceLSMStackPlane&)";
  readLSMImage(image, requireImage(source.getLSMStackFilename(), where), source.getPlane());
}

void ImageReader::read(Image& image, const ImageSourceVoxelMatrixFilePlane& source)
{
  constexpr const char* where = "void ImageReader::read(Image&, const ImageSourceVoxelMatrixFilePlane&)";
  readPlane(image, VoxelMatrixFile(requireImage(source.getVoxelMatrixFilename(), where)), source.getPlane());
}

void ImageReader::read(Image& image, const ImageSourceVoxelMatrixPlane& source)
{
  source.readImage(image);
}

void ImageReader::read(Image& image, const std::string& filename)
{
  TiffFile file(filename, 0, TiffPlanes::WithoutThumbnails);
  if (isLSM(file)) return readLSMImage(image, filename, 0);
  readCurrentImage(image, file);
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
