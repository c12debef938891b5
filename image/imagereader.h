#pragma once

#include <iosfwd>
#include <string>

class Image;
class ImageHeader;
class ImageMosaic;
class ImageSource;
class ImageSourceFile;
class ImageSourceFileMosaic;
class ImageSourceLSMStackPlane;
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
  static void read(Image& image, const ImageSource& source);
  static void read(Image& image, const ImageSourceFile& source);
  /// The tiles pasted side by side. \throw FileFormatError  they differ in depth, colormap or sizes of rows and columns
  static void read(Image& image, const ImageSourceFileMosaic& source);
  static void read(Image& image, const ImageMosaic& mosaic);
  static void read(Image& image, const ImageSourceTiffStackPlane& source);
  static void read(Image& image, const ImageSourceLSMStackPlane& source);
  /// See readPlane() for how voxels become grey levels.
  static void read(Image& image, const ImageSourceVoxelMatrixFilePlane& source);
  /// \throw RangeError  the source is not defined
  static void read(Image& image, const ImageSourceVoxelMatrixPlane& source);
  /// The first image of a TIFF or LSM file that is no thumbnail.
  static void read(Image& image, const std::string& filename);

  /// Only the header. Its planes are all directories of the file, those of a stack do not include thumbnails.
  static void read(ImageHeader& header, const std::string& filename);
  static void read(ImageHeader& header, const ImageSourceFile& source);
  static void read(ImageHeader& header, const ImageSourceTiffStackPlane& source);
  static void read(ImageHeader& header, const ImageSourceLSMStackPlane& source);

  /// Where the line "S32MagicNumber :" and the number in an LSM file's private block are written, once per file whose
  /// images are read; by default the standard output. To be set before anything is read; the stream must live as long.
  static void setMagicNumberStream(std::ostream& stream);
  static std::ostream& getMagicNumberStream();
};
