#pragma once

#include <cstddef>

class Image;
class ImageHeader;
class ProgressSubject;
class TiffFile;

/// The steps of reading the current directory of an open TIFF file. All throw FileFormatError with the file's name.
/// @{

/// Sizes, which the file must be long enough for, depth, number of planes, calibration and palette.
void readTiffHeader(ImageHeader& header, TiffFile& file);
/// Height and width, with the where-text of the caller.
void readTiffSize(ImageHeader& header, TiffFile& file, const char* where);
/// Number of directories or, in a file of one directory, of the images that an ImageJ description counts, which lie one
/// after another in the file. It may be a single page with the description of a stack, which is warned of; otherwise a
/// file that is too short for them is refused. Asks for width, height and depth.
void readTiffNumPlanes(ImageHeader& header, TiffFile& file);
/// The same without directories that do not count as planes, once the header is known.
int numTiffPlanes(const ImageHeader& header, const TiffFile& file);
/// Pixel size and unit from the resolution tags and, without a unit there, from the description.
void readTiffCalibration(ImageHeader& header, TiffFile& file);
void readTiffColormap(ImageHeader& header, TiffFile& file);
/// Sizes the image as the header says and fills it. \throw Cancelled  the subject is, as for the next one
void readTiffPixels(Image& image, const ImageHeader& header, TiffFile& file, ProgressSubject& subject);
/// The same into memory for height lines of width x depth / 8 bytes.
void readTiffPixels(unsigned char* pixels, const ImageHeader& header, TiffFile& file, ProgressSubject& subject);

/// Sizes and describes the image as the header says.
void initImage(Image& image, const ImageHeader& header, TiffFile& file);
/// Turns min-is-white, when the file says so, into min-is-black: the complement of every level.
void turnMinIsWhite(unsigned char* pixels, std::size_t numBytes, const TiffFile& file, ProgressSubject& subject);
/// @}
