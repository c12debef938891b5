#include "image/tiffpixels.h"

#include "image/parallelloop.h"
#include "image/tifftags.h"
#include "numeric/progresssubject.h"
#include "numeric/targetclones.h"

#include <algorithm>
#include <atomic>
#include <cstring>
#include <map>
#include <vector>

namespace
{
struct Block
{
  std::uint64_t offset; // in the file
  std::uint64_t length;
};

/// How many bytes of pixels a byte of the file can stand for, at the utmost.
double greatestExpansion(std::uint16_t compression)
{
  switch (compression)
  {
  case COMPRESSION_NONE:
    return 1;
  case COMPRESSION_PACKBITS:
    return 64; // 128 equal bytes take two
  case COMPRESSION_LZW:
  case COMPRESSION_DEFLATE:
  case COMPRESSION_ADOBE_DEFLATE:
    return 4096;
  default:
    return 65536; // block codecs write whole blocks in a few bytes
  }
}

std::uint32_t rowsPerStrip(const TiffRaster& raster, const TiffFile& file)
{
  const auto rows = readTagOrDefault<std::uint32_t>(file, TIFFTAG_ROWSPERSTRIP);
  return std::clamp(rows, std::uint32_t{1}, static_cast<std::uint32_t>(raster.height));
}

bool needsDecoding(const TiffFile& file)
{
  return TIFFIsTiled(file.get()) || readTagOrDefault<std::uint16_t>(file, TIFFTAG_COMPRESSION) != COMPRESSION_NONE ||
         readTagOrDefault<std::uint16_t>(file, TIFFTAG_FILLORDER) != FILLORDER_MSB2LSB;
}

bool hasPlainLines(const TiffRaster& raster, const TiffFile& file)
{
  return !needsDecoding(file) && TIFFScanlineSize64(file.get()) == raster.bytesPerLine();
}

/// Where the pixels lie in the file, in the order of the lines, neighbouring strips joined. None when they need
/// decoding or when a strip is shorter than its lines or lies outside the file, about which libtiff knows more.
std::vector<Block> plainBlocks(const TiffRaster& raster, const TiffFile& file)
{
  if (!hasPlainLines(raster, file)) return {};
  const auto height = static_cast<std::uint32_t>(raster.height), numRows = rowsPerStrip(raster, file);
  std::vector<Block> blocks;
  std::uint32_t strip = TIFFComputeStrip(file.get(), 0, raster.sample);
  for (std::uint32_t row = 0; row < height; ++strip)
  {
    const std::uint32_t count = std::min(numRows, height - row);
    const Block block = {TIFFGetStrileOffset(file.get(), strip), count * std::uint64_t{raster.bytesPerLine()}};
    const bool isWhole = block.offset <= file.getLength() && block.length <= file.getLength() - block.offset &&
                         TIFFGetStrileByteCount(file.get(), strip) >= block.length;
    if (!isWhole) return {};
    if (!blocks.empty() && blocks.back().offset + blocks.back().length == block.offset)
      blocks.back().length += block.length;
    else
      blocks.push_back(block);
    row += count;
  }
  return blocks;
}

MIRELO_TARGET_CLONES void swapBytePairs(unsigned char* bytes, std::size_t numPairs)
{
  for (std::size_t i = 0; i < numPairs; ++i)
  {
    std::uint16_t pair;
    std::memcpy(&pair, bytes + 2 * i, sizeof pair);
    pair = static_cast<std::uint16_t>(pair << 8 | pair >> 8);
    std::memcpy(bytes + 2 * i, &pair, sizeof pair);
  }
}

/// Pieces small enough that several threads share the work of reading a large block, and can be stopped soon.
std::vector<Block> split(const std::vector<Block>& blocks)
{
  constexpr std::uint64_t greatestPiece = 1 << 20;
  std::vector<Block> pieces;
  for (const Block& block : blocks)
    for (std::uint64_t start = 0; start < block.length; start += greatestPiece)
      pieces.push_back({block.offset + start, std::min(greatestPiece, block.length - start)});
  return pieces;
}

bool readBlocks(unsigned char* pixels, const std::vector<Block>& blocks, const TiffFile& file, ProgressSubject& subject)
{
  const std::vector<Block> pieces = split(blocks);
  std::vector<std::uint64_t> starts(pieces.size());
  for (std::size_t i = 1; i < pieces.size(); ++i) starts[i] = starts[i - 1] + pieces[i - 1].length;
  std::atomic<bool> isRead = true;
  const auto numPieces = static_cast<long>(pieces.size());
  const ProgressStep step(subject, "Reading the pixels", numPieces);
  forEachRange(subject, numPieces, 1,
               [&](long piece, long)
               {
                 const auto i = static_cast<std::size_t>(piece);
                 if (!file.readAt(pieces[i].offset, pixels + starts[i], pieces[i].length)) isRead = false;
               });
  return isRead;
}

bool hasSwappedPairs(const TiffFile& file)
{
  return TIFFIsByteSwapped(file.get()) && readTagOrDefault<std::uint16_t>(file, TIFFTAG_BITSPERSAMPLE) == 16;
}

void swapBytePairs(unsigned char* bytes, std::size_t numBytes, ProgressSubject& subject)
{
  constexpr std::size_t pieceLength = std::size_t{1} << 20;
  const ProgressStep step(subject, "Reading the pixels", static_cast<long>(numBytes));
  forEachRange(subject, static_cast<long>(numBytes), pieceLength,
               [bytes](long first, long last)
               { swapBytePairs(bytes + first, static_cast<std::size_t>(last - first) / 2); });
}

/// Whether libtiff decodes the lines of a strip one by one as fast as the strip, and the strip takes long.
bool hasLongStrips(const TiffRaster& raster, const TiffFile& file)
{
  constexpr std::size_t longStrip = std::size_t{1} << 20;
  const auto compression = readTagOrDefault<std::uint16_t>(file, TIFFTAG_COMPRESSION);
  const bool isByLine = compression == COMPRESSION_NONE || compression == COMPRESSION_PACKBITS ||
                        compression == COMPRESSION_LZW || compression == COMPRESSION_DEFLATE ||
                        compression == COMPRESSION_ADOBE_DEFLATE;
  return isByLine && rowsPerStrip(raster, file) * raster.bytesPerLine() > longStrip;
}

void decodeLines(unsigned char* pixels, const TiffRaster& raster, TiffFile& file, const char* where,
                 ProgressSubject& subject)
{
  const ProgressStep step(subject, "Reading the pixels", raster.height);
  for (int row = 0; row < raster.height; ++row)
  {
    subject.throwIfCancelled(where);
    const std::size_t start = static_cast<std::size_t>(row) * raster.bytesPerLine();
    if (TIFFReadScanline(file.get(), pixels + start, static_cast<std::uint32_t>(row), raster.sample) != 1)
      file.failReading(where, "Cannot read the pixels");
    subject.progress(row + 1);
  }
}

void decodeStrips(unsigned char* pixels, const TiffRaster& raster, TiffFile& file, const char* where,
                  ProgressSubject& subject)
{
  if (TIFFScanlineSize64(file.get()) != raster.bytesPerLine())
    file.failReading(where, "Cannot read TIFF with padded lines");
  if (hasLongStrips(raster, file)) return decodeLines(pixels, raster, file, where, subject);
  const ProgressStep step(subject, "Reading the pixels", raster.height);
  const auto height = static_cast<std::uint32_t>(raster.height), numRows = rowsPerStrip(raster, file);
  std::uint32_t strip = TIFFComputeStrip(file.get(), 0, raster.sample);
  for (std::uint32_t row = 0; row < height; ++strip)
  {
    subject.throwIfCancelled(where);
    const std::uint32_t count = std::min(numRows, height - row);
    const auto length = static_cast<tmsize_t>(count * raster.bytesPerLine());
    if (TIFFReadEncodedStrip(file.get(), strip, pixels + row * raster.bytesPerLine(), length) != length)
      file.failReading(where, "Cannot read the pixels");
    row += count;
    subject.progress(row);
  }
}

/// The tile whose first pixel lies at (x, y), as far as it lies inside the raster.
void pasteTile(unsigned char* pixels, const TiffRaster& raster, const std::vector<unsigned char>& tile,
               std::size_t tileLine, std::size_t x, std::size_t y)
{
  const std::size_t shift = x * raster.bytesPerPixel;
  const std::size_t numBytes = std::min(tileLine, raster.bytesPerLine() - shift);
  const std::size_t numLines = std::min(tile.size() / tileLine, static_cast<std::size_t>(raster.height) - y);
  for (std::size_t i = 0; i < numLines; ++i)
    std::memcpy(pixels + (y + i) * raster.bytesPerLine() + shift, tile.data() + i * tileLine, numBytes);
}

void decodeTiles(unsigned char* pixels, const TiffRaster& raster, TiffFile& file, const char* where,
                 ProgressSubject& subject)
{
  const auto tileWidth = readTagOrDefault<std::uint32_t>(file, TIFFTAG_TILEWIDTH);
  const auto tileHeight = readTagOrDefault<std::uint32_t>(file, TIFFTAG_TILELENGTH);
  const std::uint64_t tileSize = TIFFTileSize64(file.get());
  if (tileSize == 0 || tileSize / tileWidth / tileHeight != raster.bytesPerPixel)
    file.failReading(where, "Cannot read TIFF with padded tiles");
  checkTiffLength(static_cast<double>(tileSize), file, where);
  std::vector<unsigned char> tile(tileSize);
  std::uint32_t index = TIFFComputeTile(file.get(), 0, 0, 0, raster.sample);
  const auto width = static_cast<std::uint64_t>(raster.width), height = static_cast<std::uint64_t>(raster.height);
  const auto length = static_cast<tmsize_t>(tileSize);
  const ProgressStep step(subject, "Reading the pixels", raster.height);
  for (std::uint64_t y = 0; y < height; y += tileHeight)
  {
    for (std::uint64_t x = 0; x < width; x += tileWidth)
    {
      subject.throwIfCancelled(where);
      if (TIFFReadEncodedTile(file.get(), index++, tile.data(), length) != length)
        file.failReading(where, "Cannot read the pixels");
      pasteTile(pixels, raster, tile, tileWidth * raster.bytesPerPixel, x, y);
    }
    subject.progress(static_cast<long>(y));
  }
}
} // namespace

void readTiffRaster(unsigned char* pixels, const TiffRaster& raster, TiffFile& file, const char* where,
                    ProgressSubject& subject)
{
  std::vector<Block> blocks = plainBlocks(raster, file);
  for (Block& block : blocks) block.offset += raster.pixelsBehind * raster.bytesPerPixel;
  if (!blocks.empty())
  {
    const ProgressStep step(subject, "Reading the pixels", hasSwappedPairs(file) ? 2 : 1);
    if (!readBlocks(pixels, blocks, file, subject)) file.failReading(where, "Cannot read the pixels");
    if (hasSwappedPairs(file)) swapBytePairs(pixels, raster.dataLength(), subject);
    subject.throwIfCancelled(where);
  }
  else if (TIFFIsTiled(file.get()))
    decodeTiles(pixels, raster, file, where, subject);
  else
    decodeStrips(pixels, raster, file, where, subject);
}

std::optional<TiffRasterRun> findRasterRun(const TiffRaster& raster, const TiffFile& file)
{
  if (!hasPlainLines(raster, file)) return std::nullopt;
  const std::vector<Block> blocks = plainBlocks(raster, file);
  if (blocks.size() > 1) return std::nullopt;
  if (blocks.empty()) return TiffRasterRun(); // the first raster is cut
  const std::uint64_t start = blocks.front().offset, directory = file.getPlanes().front().offset;
  const bool isDirectoryBehind = directory > start; // and thus nothing was cut off, whatever lies between
  const std::uint64_t numBytes = (isDirectoryBehind ? directory : file.getLength()) - start;
  const std::uint64_t numLeft = numBytes % raster.dataLength(), padding = 1; // to an even length
  return TiffRasterRun{numBytes / raster.dataLength(), isDirectoryBehind || numLeft <= padding};
}

void checkTiffLength(double numBytes, TiffFile& file, const char* where)
{
  const auto compression = readTagOrDefault<std::uint16_t>(file, TIFFTAG_COMPRESSION);
  if (numBytes / greatestExpansion(compression) > static_cast<double>(file.getLength()))
    file.failReading(where, "The file is too short for its image size");
}

void checkTiffStackLength(double numBytesPerPlane, TiffFile& file, const char* where)
{
  std::map<std::uint16_t, int> numPlanes; // by compression
  for (const TiffDirectory& plane : file.getPlanes()) ++numPlanes[plane.compression];
  for (const auto& [compression, number] : numPlanes)
    if (number * numBytesPerPlane / greatestExpansion(compression) > static_cast<double>(file.getLength()))
      file.failReading(where, "The file is too short for its " + std::to_string(file.getNumPlanes()) + " planes");
}
