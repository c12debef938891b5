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

/// The units that the format knows, those to be preferred for a scale first: the unit itself, else the next finer one.
std::vector<TiffUnit> unitsFor(int scale)
{
  std::vector<TiffUnit> units = {{0, RESUNIT_NONE, ""},
                                 {-2, RESUNIT_CENTIMETER, ""},
                                 {-3, RESUNIT_NONE, "unit=mm"},
                                 {-6, RESUNIT_NONE, "unit=um"},
                                 {-9, RESUNIT_NONE, "unit=nm"}};
  const auto best = std::find_if(units.begin(), units.end() - 1, [scale](const auto& u) { return u.scale <= scale; });
  std::rotate(units.begin(), best, units.end());
  return units;
}

/// Puts the unit into the description where one is needed anyway, which is not read beside a resolution unit.
void describe(TiffUnit& unit)
{
  if (unit.resolutionUnit == RESUNIT_CENTIMETER) unit.description = "unit=cm";
  unit.resolutionUnit = RESUNIT_NONE;
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

/// Whether a quotient of 32-bit numbers can be the resolution of pixels of this size.
bool hasResolution(double size)
{
  constexpr double greatest = 4294967040; // that is a float, as libtiff keeps resolutions
  return 1 / size <= greatest && 1 / size >= 1 / greatest;
}

/// The first unit in which the pixel size can be written.
TiffUnit unitOf(const PixelCalibration& calibration, TiffFile& file, const char* where)
{
  const LengthUnit& from = calibration.getLengthUnit();
  const double width = calibration.getPixelWidth(), height = calibration.getPixelHeight();
  for (const TiffUnit& unit : unitsFor(from.getScale()))
    if (hasResolution(factorTo(unit, from) * width) && hasResolution(factorTo(unit, from) * height)) return unit;
  file.failWriting(where, "The pixel size " + textOf(calibration.getPixelWidth()) + " x " +
                              textOf(calibration.getPixelHeight()) + " " + from.symbol() +
                              " cannot be written as TIFF");
}

/// Unit and pixel size in this unit.
void writeResolution(const TiffUnit& unit, double pixelWidth, double pixelHeight, TIFF* tiff)
{
  TIFFSetField(tiff, TIFFTAG_RESOLUTIONUNIT, unit.resolutionUnit);
  if (!unit.description.empty()) TIFFSetField(tiff, TIFFTAG_IMAGEDESCRIPTION, unit.description.c_str());
  TIFFSetField(tiff, TIFFTAG_XRESOLUTION, 1 / pixelWidth);
  TIFFSetField(tiff, TIFFTAG_YRESOLUTION, 1 / pixelHeight);
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

void writeTiffCalibration(const PixelCalibration& calibration, TiffFile& file, const char* where)
{
  const TiffUnit unit = unitOf(calibration, file, where);
  const double factor = factorTo(unit, calibration.getLengthUnit());
  writeResolution(unit, factor * calibration.getPixelWidth(), factor * calibration.getPixelHeight(), file.get());
}

void writeTiffCalibration(const VoxelCalibration& calibration, TiffFile& file, const char* where)
{
  TiffUnit unit = unitOf(calibration.pixelCalibration(), file, where);
  describe(unit);
  const double factor = factorTo(unit, calibration.getLengthUnit());
  const auto depth = static_cast<float>(factor * calibration.getVoxelDepth());
  if (!std::isfinite(depth))
    file.failWriting(where, "The distance of planes " + textOf(depth) + " cannot be written as TIFF");
  unit.description += "\nspacing=" + textOf(depth) + "\nloop=false\n";
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
