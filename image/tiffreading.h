#pragma once

#include <string>

class Image;
class ImageHeader;
class TiffFile;

/// The steps of reading the current directory of an open TIFF file. All throw FileFormatError with the file's name.
/// @{

/// Sizes, which the file must be long enough for, depth, number of planes, calibration and palette.
void readTiffHeader(ImageHeader& header, TiffFile& file);
/// Pixel size and unit from the resolution tags and, without a unit there, from the description.
void readTiffCalibration(ImageHeader& header, TiffFile& file);
void readTiffColormap(ImageHeader& header, TiffFile& file);
/// Number of directories in the file.
int readTiffNumPlanes(TiffFile& file);
/// Sizes the image as the header says and fills it.
void readTiffPixels(Image& image, const ImageHeader& header, TiffFile& file);
/// @}
