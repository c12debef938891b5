#pragma once

#include <cstddef>

class Colormap;
class PixelCalibration;
class TiffFile;
class VoxelCalibration;

/// The steps of writing a directory of a TIFF file.
/// @{

/// Palette, gray or RGB by the depth, and the sizes; always 8 bits per sample.
void writeTIFFHeader(int width, int height, int depth, bool isIndexed, TiffFile& file);
void writeTIFFColormap(const Colormap& colormap, TiffFile& file);
/// Pixel size and unit so that readTiffCalibration() finds them again; units without a name there, and those in which
/// the size is beyond what the format can hold, are changed.
/// \throw FileWriteError  with the where-text of the caller: a size that no file can hold (NaN, infinite, not positive)
void writeTiffCalibration(const PixelCalibration& calibration, TiffFile& file, const char* where);
/// The same for a plane of a volume: the distance of the planes, too, and the sizes crossed as
/// VoxelMatrix::loadTiffStackFile() crosses them.
void writeTiffCalibration(const VoxelCalibration& calibration, TiffFile& file, const char* where);
/// Lines one after another, then the directory. \throw FileWriteError  with the where-text of the caller
void writeTIFFPixels(const unsigned char* pixels, int height, std::size_t bytesPerLine, TiffFile& file,
                     const char* where);
/// @}
