#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>

class ProgressSubject;
class TiffFile;

/// The pixels of a directory of an open TIFF file: lines without padding, one after another.
struct TiffRaster
{
  int width = 0;
  int height = 0;
  std::size_t bytesPerPixel = 0;  ///< of all samples or, where they lie in separate planes, of one
  std::uint16_t sample = 0;       ///< which of the separate planes
  std::uint64_t pixelsBehind = 0; ///< pixels to be skipped, for images that follow without a directory of their own

  std::size_t bytesPerLine() const { return static_cast<std::size_t>(width) * bytesPerPixel; }
  std::size_t dataLength() const { return static_cast<std::size_t>(height) * bytesPerLine(); }
};

/// Fills the dataLength() bytes at `pixels`; 16-bit samples get the machine's byte order. Pixels that need no decoding
/// come straight from the file, large ones by several threads. All in pieces that take milliseconds, between which the
/// subject is looked at; strips of less common compressions and tiles are one piece.
/// \throw FileFormatError  with the where-text of the caller
/// \throw Cancelled        the subject is
void readTiffRaster(unsigned char* pixels, const TiffRaster& raster, TiffFile& file, const char* where,
                    ProgressSubject& subject);

/// Images of one size that lie one after another, the directory's own being the first.
struct TiffRasterRun
{
  std::uint64_t numRasters = 0;
  bool isWhole = false; ///< nothing was cut off: the file ends with the last one, or its directory follows
};

/// What there is for images without directories of their own; none when the pixels need decoding or do not lie in one
/// block.
std::optional<TiffRasterRun> findRasterRun(const TiffRaster& raster, const TiffFile& file);

/// Refuses a number of bytes that the file's length and compression cannot hold, before anybody believes it.
/// \throw FileFormatError  with the where-text of the caller
void checkTiffLength(double numBytes, TiffFile& file, const char* where);

/// The same for all planes of a file with a directory for each: those of each compression must fit.
void checkTiffStackLength(double numBytesPerPlane, TiffFile& file, const char* where);
