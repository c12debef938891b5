#include "image/tiffwriting.h"

#include "image/tifffile.h"
#include "image/voxelcalibration.h"
#include "numeric/colormap.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <string>
#include <tiffio.h>
#include <vector>

namespace
{
/// How a length unit is told: by the resolution unit alone or, with none there, by the description.
struct TiffUnit
{
  int scale;
  int resolutionUnit;
  std::string description;
};

/// The unit itself when the format knows it, else the next finer one (nanometres at the least).
TiffUnit tiffUnit(int scale)
{
  if (scale >= 0) return {0, RESUNIT_NONE, ""};
  if (scale >= -2) return {-2, RESUNIT_CENTIMETER, ""};
  if (scale == -3) return {-3, RESUNIT_NONE, "unit=mm"};
  if (scale >= -6) return {-6, RESUNIT_NONE, "unit=um"};
  return {-9, RESUNIT_NONE, "unit=nm"};
}

/// The same where a description is needed anyway, which is not read beside a resolution unit.
TiffUnit describedUnit(int scale)
{
  TiffUnit unit = tiffUnit(scale);
  if (unit.resolutionUnit == RESUNIT_CENTIMETER) unit.description = "unit=cm";
  unit.resolutionUnit = RESUNIT_NONE;
  return unit;
}

double factorTo(const TiffUnit& unit, const LengthUnit& from)
{
  return std::pow(10.0, from.getScale() - unit.scale);
}

/// The shortest text that is read as the same number.
std::string textOf(float number)
{
  char text[32];
  return std::string(text, std::to_chars(text, text + sizeof text, number).ptr);
}

/// Unit and pixel size in this unit; a size that has no resolution is left out.
void writeResolution(const TiffUnit& unit, double pixelWidth, double pixelHeight, TIFF* tiff)
{
  TIFFSetField(tiff, TIFFTAG_RESOLUTIONUNIT, unit.resolutionUnit);
  if (!unit.description.empty()) TIFFSetField(tiff, TIFFTAG_IMAGEDESCRIPTION, unit.description.c_str());
  const double resolutions[] = {1 / pixelWidth, 1 / pixelHeight};
  const std::uint32_t tags[] = {TIFFTAG_XRESOLUTION, TIFFTAG_YRESOLUTION};
  for (int i = 0; i < 2; ++i)
    if (std::isfinite(resolutions[i]) && resolutions[i] > 0) TIFFSetField(tiff, tags[i], resolutions[i]);
}
} // namespace

void writeTIFFHeader(int width, int height, int depth, bool isIndexed, TiffFile& file)
{
  const int photometric = isIndexed ? PHOTOMETRIC_PALETTE : depth == 8 ? PHOTOMETRIC_MINISBLACK : PHOTOMETRIC_RGB;
  TIFFSetField(file.get(), TIFFTAG_PHOTOMETRIC, photometric);
  TIFFSetField(file.get(), TIFFTAG_SAMPLESPERPIXEL, depth / 8);
  TIFFSetField(file.get(), TIFFTAG_BITSPERSAMPLE, 8);
  TIFFSetField(file.get(), TIFFTAG_IMAGELENGTH, height);
  TIFFSetField(file.get(), TIFFTAG_IMAGEWIDTH, width);
  TIFFSetField(file.get(), TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
}

void writeTIFFColormap(const Colormap& colormap, TiffFile& file)
{
  constexpr int numColors = 256;
  std::vector<std::uint16_t> levels[3];
  for (auto& channel : levels) channel.resize(numColors);
  for (int i = 0; i < std::min(numColors, colormap.getSize()); ++i)
  {
    for (std::size_t channel = 0; channel < 3; ++channel)
      levels[channel][static_cast<std::size_t>(i)] = static_cast<std::uint16_t>(colormap.getColor(i)[channel] * 257);
  }
  TIFFSetField(file.get(), TIFFTAG_COLORMAP, levels[0].data(), levels[1].data(), levels[2].data());
}

void writeTiffCalibration(const PixelCalibration& calibration, TiffFile& file)
{
  const TiffUnit unit = tiffUnit(calibration.getLengthUnit().getScale());
  const double factor = factorTo(unit, calibration.getLengthUnit());
  writeResolution(unit, factor * calibration.getPixelWidth(), factor * calibration.getPixelHeight(), file.get());
}

void writeTiffCalibration(const VoxelCalibration& calibration, TiffFile& file)
{
  TiffUnit unit = describedUnit(calibration.getLengthUnit().getScale());
  const double factor = factorTo(unit, calibration.getLengthUnit());
  const auto depth = static_cast<float>(factor * calibration.getVoxelDepth());
  if (std::isfinite(depth)) unit.description += "\nspacing=" + textOf(depth) + "\nloop=false\n";
  writeResolution(unit, factor * calibration.getVoxelHeight(), factor * calibration.getVoxelWidth(), file.get());
}

void writeTIFFPixels(const unsigned char* pixels, int height, std::size_t bytesPerLine, TiffFile& file,
                     const char* where)
{
  constexpr std::size_t stripSize = 1 << 20;
  const auto numLines = static_cast<std::size_t>(height);
  const std::size_t rowsPerStrip = std::clamp<std::size_t>(stripSize / bytesPerLine, 1, numLines);
  TIFFSetField(file.get(), TIFFTAG_ROWSPERSTRIP, static_cast<std::uint32_t>(rowsPerStrip));
  for (std::size_t row = 0, strip = 0; row < numLines; row += rowsPerStrip, ++strip)
  {
    const auto length = static_cast<tmsize_t>(std::min(rowsPerStrip, numLines - row) * bytesPerLine);
    // Writing raw bytes leaves the pixels as they are: libtiff's encoder may swap bytes in its buffer.
    void* const lines = const_cast<unsigned char*>(pixels + row * bytesPerLine);
    if (TIFFWriteRawStrip(file.get(), static_cast<std::uint32_t>(strip), lines, length) != length)
      file.failWriting(where, "Cannot write file");
  }
  if (TIFFWriteDirectory(file.get()) != 1) file.failWriting(where, "Cannot write file");
}
