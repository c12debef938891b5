#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <tiffio.h>
#include <vector>

/// A TIFF file as other programs write it, made by libtiff itself.
struct TiffRecipe
{
  int width = 37, height = 23, planes = 1;
  int bits = 8, samples = 1;
  int photometric = PHOTOMETRIC_MINISBLACK;
  int compression = COMPRESSION_NONE;
  int tileSize = 0; // 0: strips
  int rowsPerStrip = 5;
  int planarConfig = PLANARCONFIG_CONTIG;
  std::optional<int> sampleFormat = std::nullopt;
  std::optional<int> resolutionUnit = std::nullopt;
  std::optional<float> xResolution = std::nullopt, yResolution = std::nullopt;
  std::optional<std::string> description = std::nullopt;
  const char* mode = "w";     // "wb" big-endian, "w8" BigTIFF
  bool isSmooth = false;      // no jumps, which JPEG would blur
  int paletteScale = 257;     // from 8 bits to those of the palette
  bool hasThumbnails = false; // a small image before each plane

  /// Sample s of pixel (x, y) on plane p.
  std::uint16_t sample(int x, int y, int s, int p) const
  {
    if (isSmooth) return static_cast<std::uint16_t>(x + y + s * 50);
    const unsigned value = static_cast<unsigned>(x * 7 + y * 13 + s * 50 + p * 31);
    return static_cast<std::uint16_t>(bits == 16 ? value * 257 % 65536 : value % 256);
  }

  void write(const std::string& path) const
  {
    TIFF* const tiff = TIFFOpen(path.c_str(), mode);
    for (int p = 0; p < planes; ++p)
    {
      if (hasThumbnails) writeThumbnail(tiff);
      writeTags(tiff);
      if (tileSize > 0)
        for (int y = 0, index = 0; y < height; y += tileSize)
          for (int x = 0; x < width; x += tileSize, ++index) writeBlock(tiff, index, x, y, tileSize, tileSize, p);
      else
        for (int y = 0, index = 0; y < height; y += rowsPerStrip, ++index)
          writeBlock(tiff, index, 0, y, width, std::min(rowsPerStrip, height - y), p);
      TIFFWriteDirectory(tiff);
    }
    TIFFClose(tiff);
  }

private:
  static void writeThumbnail(TIFF* tiff)
  {
    TiffRecipe{.width = 1, .height = 1}.writeTags(tiff);
    TIFFSetField(tiff, TIFFTAG_SUBFILETYPE, FILETYPE_REDUCEDIMAGE);
    unsigned char pixel = 9;
    TIFFWriteEncodedStrip(tiff, 0, &pixel, 1);
    TIFFWriteDirectory(tiff);
  }

  void writeTags(TIFF* tiff) const
  {
    TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, width);
    TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, height);
    TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, bits);
    TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, samples);
    TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, photometric);
    TIFFSetField(tiff, TIFFTAG_COMPRESSION, compression);
    TIFFSetField(tiff, TIFFTAG_PLANARCONFIG, planarConfig);
    if (photometric == PHOTOMETRIC_YCBCR) TIFFSetField(tiff, TIFFTAG_JPEGCOLORMODE, JPEGCOLORMODE_RGB);
    if (sampleFormat) TIFFSetField(tiff, TIFFTAG_SAMPLEFORMAT, *sampleFormat);
    if (resolutionUnit) TIFFSetField(tiff, TIFFTAG_RESOLUTIONUNIT, *resolutionUnit);
    if (xResolution) TIFFSetField(tiff, TIFFTAG_XRESOLUTION, static_cast<double>(*xResolution));
    if (yResolution) TIFFSetField(tiff, TIFFTAG_YRESOLUTION, static_cast<double>(*yResolution));
    if (description) TIFFSetField(tiff, TIFFTAG_IMAGEDESCRIPTION, description->c_str());
    if (photometric == PHOTOMETRIC_PALETTE) writePalette(tiff);
    if (tileSize > 0)
    {
      TIFFSetField(tiff, TIFFTAG_TILEWIDTH, tileSize);
      TIFFSetField(tiff, TIFFTAG_TILELENGTH, tileSize);
    }
    else
      TIFFSetField(tiff, TIFFTAG_ROWSPERSTRIP, rowsPerStrip);
  }

  /// Entry i is (i, 255 - i, 7).
  void writePalette(TIFF* tiff) const
  {
    std::vector<std::uint16_t> red(256), green(256), blue(256);
    for (std::size_t i = 0; i < 256; ++i)
    {
      const auto scale = static_cast<std::size_t>(paletteScale);
      red[i] = static_cast<std::uint16_t>(i * scale);
      green[i] = static_cast<std::uint16_t>((255 - i) * scale);
      blue[i] = static_cast<std::uint16_t>(7 * scale);
    }
    TIFFSetField(tiff, TIFFTAG_COLORMAP, red.data(), green.data(), blue.data());
  }

  void writeBlock(TIFF* tiff, int index, int x0, int y0, int blockWidth, int blockHeight, int p) const
  {
    std::vector<std::uint8_t> bytes;
    for (int y = y0; y < y0 + blockHeight; ++y)
      for (int x = x0; x < x0 + blockWidth; ++x)
        for (int s = 0; s < samples; ++s)
        {
          const std::uint16_t value = sample(x, y, s, p);
          bytes.push_back(static_cast<std::uint8_t>(value & 0xFF));
          if (bits == 16) bytes.push_back(static_cast<std::uint8_t>(value >> 8)); // this machine's order
        }
    const auto block = static_cast<std::uint32_t>(index);
    const auto size = static_cast<tmsize_t>(bytes.size());
    if (tileSize > 0)
      TIFFWriteEncodedTile(tiff, block, bytes.data(), size);
    else
      TIFFWriteEncodedStrip(tiff, block, bytes.data(), size);
  }
};

/// The bytes of a little-endian TIFF file of one 8-bit strip, laid out by hand: header, directory, then `data`. The
/// strip is said to have `stripSize` bytes, `stripShift` bytes behind the place of the data. A description stands
/// before the data.
inline std::string handmadeTiff(std::uint32_t width, std::uint32_t height, std::uint32_t compression,
                                const std::string& data, std::uint32_t stripSize, std::uint32_t stripShift = 0,
                                const std::string& description = "     ")
{
  std::string bytes = "II*";
  const auto append = [&bytes](std::uint32_t value, int size)
  {
    for (int i = 0; i < size; ++i) bytes += static_cast<char>(value >> (8 * i) & 0xFF);
  };
  bytes += '\0';
  append(8, 4);
  constexpr std::uint32_t behindDirectory = 8 + 2 + 10 * 12 + 4;
  const std::string text = description + '\0';
  const auto textSize = static_cast<std::uint32_t>(text.size());
  const std::uint32_t tags[][4] = {
      {TIFFTAG_IMAGEWIDTH, TIFF_LONG, 1, width},
      {TIFFTAG_IMAGELENGTH, TIFF_LONG, 1, height},
      {TIFFTAG_BITSPERSAMPLE, TIFF_LONG, 1, 8},
      {TIFFTAG_COMPRESSION, TIFF_LONG, 1, compression},
      {TIFFTAG_PHOTOMETRIC, TIFF_LONG, 1, PHOTOMETRIC_MINISBLACK},
      {TIFFTAG_IMAGEDESCRIPTION, TIFF_ASCII, textSize, behindDirectory},
      {TIFFTAG_STRIPOFFSETS, TIFF_LONG, 1, behindDirectory + textSize + stripShift},
      {TIFFTAG_SAMPLESPERPIXEL, TIFF_LONG, 1, 1},
      {TIFFTAG_ROWSPERSTRIP, TIFF_LONG, 1, height},
      {TIFFTAG_STRIPBYTECOUNTS, TIFF_LONG, 1, stripSize},
  };
  append(10, 2);
  for (const auto& [tag, type, count, value] : tags)
  {
    append(tag, 2);
    append(type, 2);
    append(count, 4);
    append(value, 4);
  }
  append(0, 4);
  return bytes + text + data;
}
