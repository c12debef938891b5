#include "image/tiffreading.h"

#include "image/image.h"
#include "image/tiffdirectories.h"
#include "image/tifffile.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstring>
#include <limits>
#include <new>
#include <string_view>
#include <tiffio.h>
#include <vector>

namespace
{
constexpr const char* headerSignature = "void ImageReader::readTiffHeader(ImageHeader&, TIFF*)";
constexpr const char* pixelsSignature = "void Image::readTiffPixels(Image&, TIFF*)";

/// A tag of one number; `absent` when the directory does not have it.
template <class T> T readTag(const TiffFile& file, std::uint32_t tag, T absent)
{
  T value = absent;
  return TIFFGetField(file.get(), tag, &value) == 1 ? value : absent;
}

template <class T> T readTagOrDefault(const TiffFile& file, std::uint32_t tag)
{
  T value = 0;
  TIFFGetFieldDefaulted(file.get(), tag, &value);
  return value;
}

/// Turns compressed YCbCr into red, green, blue while reading; to be called before anything asks for line sizes.
void askForColors(const TiffFile& file)
{
  if (readTagOrDefault<std::uint16_t>(file, TIFFTAG_COMPRESSION) == COMPRESSION_JPEG)
    TIFFSetField(file.get(), TIFFTAG_JPEGCOLORMODE, JPEGCOLORMODE_RGB);
}

std::uint16_t photometric(const TiffFile& file, std::uint16_t samplesPerPixel)
{
  const std::uint16_t absent = samplesPerPixel == 1 ? PHOTOMETRIC_MINISBLACK : PHOTOMETRIC_RGB;
  return readTag<std::uint16_t>(file, TIFFTAG_PHOTOMETRIC, absent);
}

/// Samples per pixel, after everything that Image cannot hold was refused.
std::uint16_t checkSamples(TiffFile& file, std::uint16_t bitsPerSample)
{
  const auto refuse = [&file](const std::string& what)
  { file.failReading(headerSignature, "Cannot read TIFF with " + what); };
  const auto samples = readTagOrDefault<std::uint16_t>(file, TIFFTAG_SAMPLESPERPIXEL);
  if (bitsPerSample != 8 && bitsPerSample != 16) refuse(std::to_string(bitsPerSample) + " bits per sample");
  if (samples != 1 && samples != 3 && samples != 4) refuse(std::to_string(samples) + " samples per pixel");
  const auto format = readTagOrDefault<std::uint16_t>(file, TIFFTAG_SAMPLEFORMAT);
  if (format != SAMPLEFORMAT_UINT && format != SAMPLEFORMAT_VOID) refuse("signed or floating-point samples");
  const std::uint16_t colors = photometric(file, samples);
  const bool isKnown =
      colors <= PHOTOMETRIC_RGB || (colors == PHOTOMETRIC_PALETTE && samples == 1 && bitsPerSample == 8) ||
      (colors == PHOTOMETRIC_YCBCR && readTagOrDefault<std::uint16_t>(file, TIFFTAG_COMPRESSION) == COMPRESSION_JPEG);
  if (!isKnown) refuse("photometric interpretation " + std::to_string(colors));
  return samples;
}

int checkLength(TiffFile& file, std::uint32_t length)
{
  if (length == 0 || length > static_cast<std::uint32_t>(std::numeric_limits<int>::max()))
    file.failReading(headerSignature, "Invalid image size");
  return static_cast<int>(length);
}

/// The scale named after "unit=" in the description of programs without a resolution unit of their own.
int scaleOfDescription(std::string_view description)
{
  const struct
  {
    const char* text;
    int scale;
  } units[] = {{"unit=cm", -2},       {"unit=mm", -3},
               {"unit=micron", -6},   {"unit=\xC2\xB5m", -6}, // micro sign in UTF-8
               {"unit=\xB5m", -6},                            // in Latin-1
               {"unit=\\u00B5m", -6},                         // escaped
               {"unit=um", -6},       {"unit=nm", -9}};
  int scale = 0;
  for (const auto& unit : units)
    if (description.find(unit.text) != std::string_view::npos) scale = unit.scale; // a later match overrides
  return scale;
}

/// Distance between planes, from the text after "spacing="; nothing changes when there is none.
void readSpacing(ImageHeader& header, std::string_view description)
{
  constexpr std::size_t nameLength = 8; // "spacing="
  const std::size_t start = description.find("spacing");
  if (start == std::string_view::npos || start + nameLength > description.size()) return;
  std::string_view piece = description.substr(start + nameLength);
  piece = piece.substr(0, piece.find("loop="));
  float spacing = 0;
  const auto parsed = std::from_chars(piece.data(), piece.data() + piece.size(), spacing);
  if (parsed.ec == std::errc() && std::isfinite(spacing)) header.setVoxelSizeZ(spacing);
}

/// Pixel size from a resolution in pixels per unit; a square pixel when only one direction is known.
void setPixelSize(PixelCalibration& calibration, float xResolution, float yResolution, float factor)
{
  const auto isKnown = [](float resolution) { return std::isfinite(resolution) && resolution > 0; };
  if (!isKnown(xResolution)) xResolution = yResolution;
  if (!isKnown(yResolution)) yResolution = xResolution;
  if (!isKnown(xResolution)) return;
  calibration.setPixelWidth(factor / xResolution);
  calibration.setPixelHeight(factor / yResolution);
}

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

/// Refuses sizes that the file is too short for, before anybody believes them.
void checkSize(TiffFile& file, const char* where, double numBytes)
{
  const auto compression = readTagOrDefault<std::uint16_t>(file, TIFFTAG_COMPRESSION);
  if (numBytes / greatestExpansion(compression) > static_cast<double>(file.getLength()))
    file.failReading(where, "The file is too short for its image size");
}

void readStrips(Image& image, TiffFile& file)
{
  const auto height = static_cast<std::uint32_t>(image.getHeight());
  const auto rowsPerStrip =
      std::clamp(readTagOrDefault<std::uint32_t>(file, TIFFTAG_ROWSPERSTRIP), std::uint32_t{1}, height);
  if (TIFFScanlineSize64(file.get()) != image.bytesPerLine())
    file.failReading(pixelsSignature, "Cannot read TIFF with padded lines");
  for (std::uint32_t row = 0, strip = 0; row < height; row += rowsPerStrip, ++strip)
  {
    const std::size_t numBytes = std::min(rowsPerStrip, height - row) * image.bytesPerLine();
    const auto length = static_cast<tmsize_t>(numBytes);
    if (TIFFReadEncodedStrip(file.get(), strip, image.getLine(static_cast<int>(row)), length) != length)
      file.failReading(pixelsSignature, "Cannot read the pixels");
  }
}

/// The tile whose first pixel lies at (x, y), as far as it lies inside the image.
void pasteTile(Image& image, const std::vector<unsigned char>& tile, std::uint32_t tileWidth, std::uint32_t x,
               std::uint32_t y)
{
  const auto pixelSize = static_cast<std::size_t>(image.bytesPerPixel());
  const std::size_t tileLine = tileWidth * pixelSize;
  const std::size_t numBytes = std::min(tileLine, image.bytesPerLine() - x * pixelSize);
  const std::size_t numLines = std::min(tile.size() / tileLine, static_cast<std::size_t>(image.getHeight()) - y);
  for (std::size_t i = 0; i < numLines; ++i)
    std::memcpy(image.getLine(static_cast<int>(y + i)) + x * pixelSize, tile.data() + i * tileLine, numBytes);
}

void readTiles(Image& image, TiffFile& file)
{
  const auto tileWidth = readTagOrDefault<std::uint32_t>(file, TIFFTAG_TILEWIDTH);
  const auto tileHeight = readTagOrDefault<std::uint32_t>(file, TIFFTAG_TILELENGTH);
  const std::uint64_t tileSize = TIFFTileSize64(file.get());
  if (tileSize == 0 || tileSize / tileWidth / tileHeight != static_cast<std::uint64_t>(image.bytesPerPixel()))
    file.failReading(pixelsSignature, "Cannot read TIFF with padded tiles");
  checkSize(file, pixelsSignature, static_cast<double>(tileSize));
  std::vector<unsigned char> tile(tileSize);
  const auto length = static_cast<tmsize_t>(tileSize);
  const auto width = static_cast<std::uint64_t>(image.getWidth()),
             height = static_cast<std::uint64_t>(image.getHeight());
  std::uint32_t index = 0;
  for (std::uint64_t y = 0; y < height; y += tileHeight)
  {
    for (std::uint64_t x = 0; x < width; x += tileWidth)
    {
      if (TIFFReadEncodedTile(file.get(), index++, tile.data(), length) != length)
        file.failReading(pixelsSignature, "Cannot read the pixels");
      pasteTile(image, tile, tileWidth, static_cast<std::uint32_t>(x), static_cast<std::uint32_t>(y));
    }
  }
}

/// Turns min-is-white into min-is-black: the complement of every level, whatever its number of bytes.
void invert(Image& image)
{
  unsigned char* const data = image.getData();
  for (std::size_t i = 0, length = image.dataLength(); i < length; ++i) data[i] = static_cast<unsigned char>(~data[i]);
}
} // namespace

void readTiffHeader(ImageHeader& header, TiffFile& file)
{
  askForColors(file);
  const auto bitsPerSample = readTagOrDefault<std::uint16_t>(file, TIFFTAG_BITSPERSAMPLE);
  const std::uint16_t samplesPerPixel = checkSamples(file, bitsPerSample);
  header = ImageHeader();
  header.setFormat(ImageFormat::Tiff);
  header.setHeight(checkLength(file, readTag<std::uint32_t>(file, TIFFTAG_IMAGELENGTH, 0)));
  header.setWidth(checkLength(file, readTag<std::uint32_t>(file, TIFFTAG_IMAGEWIDTH, 0)));
  header.setNumPlanes(readTiffNumPlanes(file));
  header.setDepth(bitsPerSample * samplesPerPixel);
  header.setNumChannels(samplesPerPixel);
  checkSize(file, headerSignature, double{1} * header.getWidth() * header.getHeight() * header.getDepth() / 8);
  header.setNewSubfileType(readTag<std::uint32_t>(file, TIFFTAG_SUBFILETYPE, 0));
  readTiffCalibration(header, file);
  if (photometric(file, samplesPerPixel) == PHOTOMETRIC_PALETTE) readTiffColormap(header, file);
}

int readTiffNumPlanes(TiffFile& file)
{
  return static_cast<int>(tiffDirectories(file.getDescriptor())->size());
}

void readTiffCalibration(ImageHeader& header, TiffFile& file)
{
  int scale = 0;
  float factor = 1;
  const auto unit = readTag<std::uint16_t>(file, TIFFTAG_RESOLUTIONUNIT, 0);
  if (unit == RESUNIT_INCH) factor = 2.54f;
  if (unit != 0 && unit != RESUNIT_NONE) scale = -2;
  if (const char* text = readTag<const char*>(file, TIFFTAG_IMAGEDESCRIPTION, nullptr); unit == RESUNIT_NONE && text)
  {
    scale = scaleOfDescription(text);
    if (header.getNumPlanes() > 1) readSpacing(header, text);
  }
  PixelCalibration calibration;
  calibration.clearFlags();
  setPixelSize(calibration, readTag<float>(file, TIFFTAG_XRESOLUTION, 0), readTag<float>(file, TIFFTAG_YRESOLUTION, 0),
               factor);
  calibration.compute();
  calibration.setLengthUnit(LengthUnit(scale));
  header.setPixelCalibration(calibration);
  header.setVoxelSizeX(calibration.getPixelWidth());
  header.setVoxelSizeY(calibration.getPixelHeight());
}

void readTiffColormap(ImageHeader& header, TiffFile& file)
{
  constexpr int numColors = 256;
  std::uint16_t *red = nullptr, *green = nullptr, *blue = nullptr;
  if (TIFFGetField(file.get(), TIFFTAG_COLORMAP, &red, &green, &blue) != 1)
    file.failReading("void ImageReader::readTiffColormap(ImageHeader&, TIFF*)", "Cannot read the colormap");
  const auto isByte = [](std::uint16_t level) { return level < 256; };
  const bool hasBytes = std::all_of(red, red + numColors, isByte) && std::all_of(green, green + numColors, isByte) &&
                        std::all_of(blue, blue + numColors, isByte); // written by programs that ignored the 16 bits
  const int divisor = hasBytes ? 1 : 257;
  Colormap colormap(numColors);
  const auto level = [divisor](std::uint16_t value) { return static_cast<unsigned char>(value / divisor); };
  for (int i = 0; i < numColors; ++i) colormap.setColor(i, {level(red[i]), level(green[i]), level(blue[i])});
  header.setColormap(colormap);
}

void readTiffPixels(Image& image, const ImageHeader& header, TiffFile& file)
{
  const auto samplesPerPixel = readTagOrDefault<std::uint16_t>(file, TIFFTAG_SAMPLESPERPIXEL);
  if (samplesPerPixel > 1 && readTagOrDefault<std::uint16_t>(file, TIFFTAG_PLANARCONFIG) == PLANARCONFIG_SEPARATE)
    file.failReading(pixelsSignature, "Cannot read TIFF with separate planes");
  if (header.getDepth() > 32)
    file.failReading(pixelsSignature, "Invalid depth value: " + std::to_string(header.getDepth()) + " bits per pixel");
  try
  {
    image.init(header.getWidth(), header.getHeight(), header.getDepth());
  }
  catch (const std::bad_alloc&)
  {
    file.failReading(pixelsSignature, "There is not enough memory for the image");
  }
  if (TIFFIsTiled(file.get()))
    readTiles(image, file);
  else
    readStrips(image, file);
  if (photometric(file, samplesPerPixel) == PHOTOMETRIC_MINISWHITE && samplesPerPixel == 1) invert(image);
  image.setDescription(header);
}
