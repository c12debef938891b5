#pragma once

#include <string>

class Image;
class ImageHeader;
class ImageSource;
class ImageSourceFile;
class ImageSourceFileMosaic;
class ImageSourceTiffStackPlane;
class ImageSourceVoxelMatrixFilePlane;
class ImageSourceVoxelMatrixPlane;

/// Reads the image that a source names.
///
/// Every failure is a FileReadError (the file cannot be opened) or a FileFormatError (it is not what it should be)
/// with the file's name; the image is then as it was.
class ImageReader
{
public:
  /// \throw FileError  also for sources of a kind that cannot be read yet
  static void read(Image& image, const ImageSource& source);
  static void read(Image& image, const ImageSourceFile& source);
  /// The tiles pasted side by side. \throw FileFormatError  they differ in depth, colormap or sizes of rows and columns
  static void read(Image& image, const ImageSourceFileMosaic& source);
  static void read(Image& image, const ImageSourceTiffStackPlane& source);
  /// See readPlane() for how voxels become grey levels.
  static void read(Image& image, const ImageSourceVoxelMatrixFilePlane& source);
  /// \throw RangeError  the source is not defined
  static void read(Image& image, const ImageSourceVoxelMatrixPlane& source);
  /// The first image of a TIFF file.
  static void read(Image& image, const std::string& filename);

  /// Only the header.
  static void read(ImageHeader& header, const std::string& filename);
  static void read(ImageHeader& header, const ImageSourceFile& source);
  static void read(ImageHeader& header, const ImageSourceTiffStackPlane& source);
};
