#include "image/tiffreading.h"

#include "image/image.h"
#include "image/parallelloop.h"
#include "image/tiffpixels.h"
#include "image/tifftags.h"
#include "numeric/targetclones.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <new>
#include <optional>
#include <string_view>

namespace
{
constexpr const char* headerSignature = "void ImageReader::readTiffHeader(ImageHeader&, TIFF*)";
constexpr const char* pixelsSignature = "void Image::readTiffPixels(Image&, TIFF*)";

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

/// The scale named after "unit=" in the description of programs without a resolution unit of their own.
int scaleOfDescription(std::string_view description)
{
  const struct
  {
    const char* text;
    int scale;
  } units[] = {{"unit=cm", -2},        {"unit=mm", -3},
               {"unit=micron", -6},    {"unit=\xC2\xB5m", -6}, // micro sign in UTF-8
               {"unit=\xCE\xBCm", -6},                         // the Greek letter
               {"unit=\xB5m", -6},                             // micro sign in Latin-1
               {"unit=\\u00B5m", -6},                          // escaped
               {"unit=um", -6},        {"unit=nm", -9}};
  int scale = 0;
  for (const auto& unit : units)
    if (description.find(unit.text) != std::string_view::npos) scale = unit.scale; // a later match overrides
  return scale;
}

/// What numbers may begin with and std::from_chars() does not know: blanks and one plus sign.
std::string_view withoutBlanksAndPlus(std::string_view text)
{
  text.remove_prefix(std::min(text.find_first_not_of(" \t\r\n"), text.size()));
  const bool hasPlus = text.starts_with('+') && !text.starts_with("+-");
  return text.substr(hasPlus ? 1 : 0);
}

/// Distance between planes, from the text after "spacing="; nothing changes when there is none.
void readSpacing(ImageHeader& header, std::string_view description)
{
  constexpr std::size_t nameLength = 8; // "spacing="
  const std::size_t start = description.find("spacing");
  if (start == std::string_view::npos || start + nameLength > description.size()) return;
  std::string_view piece = description.substr(start + nameLength);
  piece = withoutBlanksAndPlus(piece.substr(0, piece.find("loop=")));
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

/// How the pixels lie in the file once the header is known.
TiffRaster rasterOf(const ImageHeader& header, const TiffFile& file)
{
  TiffRaster raster;
  raster.width = header.getWidth();
  raster.height = header.getHeight();
  raster.bytesPerPixel = static_cast<std::size_t>(header.getDepth() / 8);
  if (file.getNumDirectories() == 1)
    raster.pixelsBehind = static_cast<std::uint64_t>(file.getPlane()) * static_cast<std::uint64_t>(header.getWidth()) *
                          static_cast<std::uint64_t>(header.getHeight());
  return raster;
}

/// The number after "images=" in an ImageJ description; 0 when there is none.
std::uint64_t numImagesOfDescription(std::string_view description)
{
  constexpr std::string_view name = "images=";
  const std::size_t start = description.find(name);
  if (!description.starts_with("ImageJ=") || start == std::string_view::npos) return 0;
  const std::string_view piece = description.substr(start + name.size());
  std::uint64_t number = 0;
  std::from_chars(piece.data(), piece.data() + piece.size(), number);
  return number;
}

/// Number of planes of a file of one directory whose description counts several images: as many, when they are there,
/// or one, when it is a single page with the description of a stack.
int numStackedPlanes(std::uint64_t numImages, const ImageHeader& header, TiffFile& file)
{
  TiffRaster first = rasterOf(header, file);
  first.pixelsBehind = 0;
  const std::optional<TiffRasterRun> run = findRasterRun(first, file);
  const std::uint64_t numFound = run ? std::min<std::uint64_t>(run->numRasters, std::numeric_limits<int>::max()) : 1;
  if (numImages <= numFound) return static_cast<int>(numImages);
  const std::string told = std::to_string(numImages) + " images of its description";
  if (run && !(numFound == 1 && run->isWhole))
    file.failReading(headerSignature, "The file is too short for the " + told);
  file.noteWarning("The file has one plane only, not the " + told);
  return 1;
}

/// Refuses pixels that an image cannot hold.
void checkPixels(const ImageHeader& header, TiffFile& file)
{
  if (header.getNumChannels() > 1 &&
      readTagOrDefault<std::uint16_t>(file, TIFFTAG_PLANARCONFIG) == PLANARCONFIG_SEPARATE)
    file.failReading(pixelsSignature, "Cannot read TIFF with separate planes");
  if (header.getDepth() > 32) file.failReading(pixelsSignature, "Invalid depth value");
}

bool isMinIsWhite(const TiffFile& file)
{
  const auto samplesPerPixel = readTagOrDefault<std::uint16_t>(file, TIFFTAG_SAMPLESPERPIXEL);
  return samplesPerPixel == 1 && photometric(file, samplesPerPixel) == PHOTOMETRIC_MINISWHITE;
}

/// Turns min-is-white into min-is-black: the complement of every level, whatever its number of bytes.
MIRELO_TARGET_CLONES void invert(unsigned char* pixels, std::size_t numBytes)
{
  for (std::size_t i = 0; i < numBytes; ++i) pixels[i] = static_cast<unsigned char>(~pixels[i]);
}
} // namespace

void readTiffHeader(ImageHeader& header, TiffFile& file)
{
  askForColors(file);
  const auto bitsPerSample = readTagOrDefault<std::uint16_t>(file, TIFFTAG_BITSPERSAMPLE);
  const std::uint16_t samplesPerPixel = checkSamples(file, bitsPerSample);
  header = ImageHeader();
  header.setFormat(ImageFormat::Tiff);
  readTiffSize(header, file, headerSignature);
  header.setDepth(bitsPerSample * samplesPerPixel);
  header.setNumChannels(samplesPerPixel);
  checkTiffLength(double{1} * header.getWidth() * header.getHeight() * header.getDepth() / 8, file, headerSignature);
  readTiffNumPlanes(header, file);
  header.setNewSubfileType(readTag<std::uint32_t>(file, TIFFTAG_SUBFILETYPE, 0));
  readTiffCalibration(header, file);
  if (photometric(file, samplesPerPixel) == PHOTOMETRIC_PALETTE) readTiffColormap(header, file);
}

void readTiffSize(ImageHeader& header, TiffFile& file, const char* where)
{
  const auto height = readTag<std::uint32_t>(file, TIFFTAG_IMAGELENGTH, 0);
  const auto width = readTag<std::uint32_t>(file, TIFFTAG_IMAGEWIDTH, 0);
  constexpr auto greatest = static_cast<std::uint32_t>(std::numeric_limits<int>::max());
  if (height == 0 || height > greatest || width == 0 || width > greatest) file.failReading(where, "Invalid image size");
  header.setHeight(static_cast<int>(height));
  header.setWidth(static_cast<int>(width));
}

void readTiffNumPlanes(ImageHeader& header, TiffFile& file)
{
  header.setNumPlanes(file.getNumDirectories());
  if (file.getNumDirectories() > 1) return;
  const char* const description = readTag<const char*>(file, TIFFTAG_IMAGEDESCRIPTION, nullptr);
  const std::uint64_t numImages = description ? numImagesOfDescription(description) : 0;
  if (numImages > 1) header.setNumPlanes(numStackedPlanes(numImages, header, file));
  if (file.getPlane() >= header.getNumPlanes())
    file.failReading(headerSignature, "There is no plane " + std::to_string(file.getPlane()));
}

int numTiffPlanes(const ImageHeader& header, const TiffFile& file)
{
  return file.getNumDirectories() == 1 ? header.getNumPlanes() : file.getNumPlanes();
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
  const int divisor = hasBytes ? 1 : 256; // level x 257 as well as level x 256, which some programs write
  Colormap colormap(numColors);
  const auto level = [divisor](std::uint16_t value) { return static_cast<unsigned char>(value / divisor); };
  for (int i = 0; i < numColors; ++i) colormap.setColor(i, {level(red[i]), level(green[i]), level(blue[i])});
  header.setColormap(colormap);
}

void readTiffPixels(unsigned char* pixels, const ImageHeader& header, TiffFile& file, ProgressSubject& subject)
{
  checkPixels(header, file);
  const TiffRaster raster = rasterOf(header, file);
  const ProgressStep step(subject, "Reading the image", isMinIsWhite(file) ? 2 : 1);
  readTiffRaster(pixels, raster, file, pixelsSignature, subject);
  turnMinIsWhite(pixels, raster.dataLength(), file, subject);
}

void readTiffPixels(Image& image, const ImageHeader& header, TiffFile& file, ProgressSubject& subject)
{
  checkPixels(header, file);
  initImage(image, header, file);
  readTiffPixels(image.getData(), header, file, subject);
}

void initImage(Image& image, const ImageHeader& header, TiffFile& file)
{
  try
  {
    image.init(header.getWidth(), header.getHeight(), header.getDepth());
  }
  catch (const std::bad_alloc&)
  {
    file.failReading(pixelsSignature, "There is not enough memory for the image");
  }
  image.setDescription(header);
}

void turnMinIsWhite(unsigned char* pixels, std::size_t numBytes, const TiffFile& file, ProgressSubject& subject)
{
  if (!isMinIsWhite(file)) return;
  constexpr long pieceLength = 1 << 20;
  const ProgressStep step(subject, "Reading the image", static_cast<long>(numBytes));
  forEachRange(subject, static_cast<long>(numBytes), pieceLength,
               [pixels](long first, long last) { invert(pixels + first, static_cast<std::size_t>(last - first)); });
  subject.throwIfCancelled(pixelsSignature);
}
