#pragma once

#include <cstdint>
#include <cstring>
#include <string>
#include <tiffio.h>
#include <vector>

/// A confocal stack as a microscope writes it, made by libtiff: planes, each followed by a thumbnail of another size.
struct LsmRecipe
{
  int width = 9, height = 5, planes = 2, channels = 3, bits = 8;
  int planarConfig = PLANARCONFIG_SEPARATE, compression = COMPRESSION_NONE;
  std::uint32_t magicNumber = 0x0400494C;
  std::int32_t dimensionX = 9, dimensionY = 5, dimensionZ = 2;
  double voxelSizeX = 0.25e-6, voxelSizeY = 0.5e-6, voxelSizeZ = 2e-6; // metres
  std::uint32_t blockLength = 128;
  bool hasThumbnails = true;

  std::uint16_t sample(int x, int y, int c, int z) const
  {
    const int value = x * 7 + y * 13 + c * 50 + z * 31;
    return static_cast<std::uint16_t>(bits == 16 ? value * 257 : value % 256);
  }

  void write(const std::string& path) const
  {
    TIFF* const tiff = TIFFOpen(path.c_str(), "w");
    for (int z = 0; z < planes; ++z)
    {
      char name[] = "information";
      const TIFFFieldInfo field = {tag, TIFF_VARIABLE2, TIFF_VARIABLE2, TIFF_BYTE, FIELD_CUSTOM, 1, 1, name};
      TIFFMergeFieldInfo(tiff, &field, 1);
      writeTags(tiff, width, height, channels, 0);
      if (z == 0) writeInformation(tiff);
      writePixels(tiff, z);
      TIFFWriteDirectory(tiff);
      if (hasThumbnails) writeThumbnail(tiff);
    }
    TIFFClose(tiff);
  }

private:
  static constexpr std::uint32_t tag = 34412;

  void writeTags(TIFF* tiff, int columns, int rows, int samples, std::uint32_t subfileType) const
  {
    TIFFSetField(tiff, TIFFTAG_SUBFILETYPE, subfileType);
    TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, columns);
    TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, rows);
    TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, bits);
    TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, samples);
    TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, samples == 1 ? PHOTOMETRIC_MINISBLACK : PHOTOMETRIC_RGB);
    TIFFSetField(tiff, TIFFTAG_COMPRESSION, compression);
    TIFFSetField(tiff, TIFFTAG_PLANARCONFIG, planarConfig);
    TIFFSetField(tiff, TIFFTAG_ROWSPERSTRIP, 2);
  }

  void writeInformation(TIFF* tiff) const
  {
    std::vector<unsigned char> block(std::max<std::uint32_t>(blockLength, 64));
    const std::int32_t numbers[] = {
        static_cast<std::int32_t>(magicNumber), 128, dimensionX, dimensionY, dimensionZ, channels};
    const double sizes[] = {voxelSizeX, voxelSizeY, voxelSizeZ};
    std::memcpy(block.data(), numbers, sizeof numbers);
    std::memcpy(block.data() + 40, sizes, sizeof sizes);
    TIFFSetField(tiff, tag, blockLength, block.data());
  }

  void writePixels(TIFF* tiff, int z) const
  {
    const int perPixel = planarConfig == PLANARCONFIG_SEPARATE ? 1 : channels;
    std::vector<unsigned char> line;
    for (int first = 0; first < channels; first += perPixel)
      for (int y = 0; y < height; ++y)
      {
        line.clear();
        for (int x = 0; x < width; ++x)
          for (int c = first; c < first + perPixel; ++c)
          {
            line.push_back(static_cast<unsigned char>(sample(x, y, c, z) & 0xFF));
            if (bits == 16) line.push_back(static_cast<unsigned char>(sample(x, y, c, z) >> 8)); // this machine's order
          }
        TIFFWriteScanline(tiff, line.data(), static_cast<std::uint32_t>(y), static_cast<std::uint16_t>(first));
      }
  }

  void writeThumbnail(TIFF* tiff) const
  {
    writeTags(tiff, 2, 1, 1, FILETYPE_REDUCEDIMAGE);
    unsigned char line[4] = {1, 2, 3, 4};
    TIFFWriteScanline(tiff, line, 0, 0);
    TIFFWriteDirectory(tiff);
  }
};
