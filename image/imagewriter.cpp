#include "image/imagewriter.h"

#include "image/image.h"
#include "image/tifffile.h"
#include "numeric/atomicfile.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <filesystem>
#include <tiffio.h>
#include <vector>

namespace
{
constexpr const char* writeSignature = "void ImageWriter::write(const Image&, const std::string&, bool)";

void writeTIFFHeader(const Image& image, TIFF* tiff)
{
  const int photometric = image.isIndexed()       ? PHOTOMETRIC_PALETTE
                          : image.getDepth() == 8 ? PHOTOMETRIC_MINISBLACK
                                                  : PHOTOMETRIC_RGB;
  TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, photometric);
  TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, image.getDepth() / 8);
  TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, 8);
  TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, image.getHeight());
  TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, image.getWidth());
  TIFFSetField(tiff, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
}

void writeTIFFColormap(const Colormap& colormap, TIFF* tiff)
{
  constexpr int numColors = 256;
  std::vector<std::uint16_t> levels[3];
  for (auto& channel : levels) channel.resize(numColors);
  for (int i = 0; i < std::min(numColors, colormap.getSize()); ++i)
  {
    for (std::size_t channel = 0; channel < 3; ++channel)
      levels[channel][static_cast<std::size_t>(i)] = static_cast<std::uint16_t>(colormap.getColor(i)[channel] * 257);
  }
  TIFFSetField(tiff, TIFFTAG_COLORMAP, levels[0].data(), levels[1].data(), levels[2].data());
}

/// How a length unit is told: by the resolution unit alone or, with none there, by the description.
struct TiffUnit
{
  int scale;
  int resolutionUnit;
  const char* description;
};

/// The unit itself when the format knows it, else the next finer one (nanometres at the least).
TiffUnit tiffUnit(int scale)
{
  if (scale >= 0) return {0, RESUNIT_NONE, nullptr};
  if (scale >= -2) return {-2, RESUNIT_CENTIMETER, nullptr};
  if (scale == -3) return {-3, RESUNIT_NONE, "unit=mm"};
  if (scale >= -6) return {-6, RESUNIT_NONE, "unit=um"};
  return {-9, RESUNIT_NONE, "unit=nm"};
}

void writeTiffCalibration(const PixelCalibration& calibration, TIFF* tiff)
{
  const int scale = calibration.getLengthUnit().getScale();
  const TiffUnit unit = tiffUnit(scale);
  const double factor = std::pow(10.0, scale - unit.scale);
  TIFFSetField(tiff, TIFFTAG_RESOLUTIONUNIT, unit.resolutionUnit);
  if (unit.description) TIFFSetField(tiff, TIFFTAG_IMAGEDESCRIPTION, unit.description);
  const double resolutions[] = {1 / (factor * calibration.getPixelWidth()),
                                1 / (factor * calibration.getPixelHeight())};
  const std::uint32_t tags[] = {TIFFTAG_XRESOLUTION, TIFFTAG_YRESOLUTION};
  for (int i = 0; i < 2; ++i)
    if (std::isfinite(resolutions[i]) && resolutions[i] > 0) TIFFSetField(tiff, tags[i], resolutions[i]);
}

void writeTIFFPixels(const Image& image, TiffFile& file)
{
  constexpr std::size_t stripSize = 1 << 20;
  const std::size_t height = static_cast<std::size_t>(image.getHeight()), lineSize = image.bytesPerLine();
  const std::size_t rowsPerStrip = std::clamp<std::size_t>(stripSize / lineSize, 1, height);
  TIFFSetField(file.get(), TIFFTAG_ROWSPERSTRIP, static_cast<std::uint32_t>(rowsPerStrip));
  for (std::size_t row = 0, strip = 0; row < height; row += rowsPerStrip, ++strip)
  {
    const auto length = static_cast<tmsize_t>(std::min(rowsPerStrip, height - row) * lineSize);
    // Writing raw bytes leaves the image as it is: libtiff's encoder may swap bytes in its buffer.
    void* const lines = const_cast<unsigned char*>(image.getLine(static_cast<int>(row)));
    if (TIFFWriteRawStrip(file.get(), static_cast<std::uint32_t>(strip), lines, length) != length)
      file.failWriting(writeSignature, "Cannot write file");
  }
}

void writeTIFF(const Image& image, TiffFile& file)
{
  writeTIFFHeader(image, file.get());
  if (image.isIndexed()) writeTIFFColormap(image.getColormap(), file.get());
  writeTiffCalibration(image.getPixelCalibration(), file.get());
  writeTIFFPixels(image, file);
  if (TIFFWriteDirectory(file.get()) != 1) file.failWriting(writeSignature, "Cannot write file");
}
} // namespace

void ImageWriter::write(const Image& image, const std::string& filename, bool overwrite)
{
  if (!overwrite && std::filesystem::exists(filename))
    throw FileWriteError(writeSignature, "File already exists", filename);
  if (image.getSize() == 0) throw FileWriteError(writeSignature, "An image without pixels cannot be written", filename);
  AtomicFile target(filename);
  {
    TiffFile file(target.getDescriptor(), filename, image.dataLength());
    writeTIFF(image, file);
  }
  target.commit();
}
