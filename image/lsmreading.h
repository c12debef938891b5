#pragma once

#include <string>

class Image;
class ImageHeader;
class ProgressSubject;
class TiffFile;

/// Confocal stacks in the LSM variant of TIFF: a directory per plane, others for thumbnails, a private block that tells
/// the voxel size, and one sample per channel, mostly in separate planes.
///
/// An image is one channel of one plane. Image i is plane i % n of channel i / n, n being the number of planes without
/// thumbnails: the planes of the first channel come first. All functions throw FileFormatError with the file's name.
/// @{

/// Whether the current directory has the private block of an LSM file.
bool isLSM(const TiffFile& file);

/// What the first directory and its private block say, rows and columns crossed: the height is the dimension along X.
/// The planes include thumbnails. Also writes the block's magic number, see ImageReader::setMagicNumberStream().
void readLSMHeader(ImageHeader& header, TiffFile& file);
/// The palette of indexed images.
void readLSMColormap(ImageHeader& header, TiffFile& file);
/// Fills an image, sized as the current directory, with one channel, 0-based. \throw Cancelled  the subject is
void readLSMPixels(Image& image, TiffFile& file, int channel, ProgressSubject& subject);

/// Header of an image as readLSMImage() gives it: sizes of the raster, pixel width along X, planes without thumbnails.
/// Both write the magic number once per file.
void readLSMImageHeader(ImageHeader& header, const std::string& filename, int index);
void readLSMImage(Image& image, const std::string& filename, int index, ProgressSubject& subject);
/// @}
