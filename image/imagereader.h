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
class ProgressSubject;

/// Reads the image that a source names.
///
/// Every failure is a FileReadError (the file cannot be opened) or a FileFormatError (it is not what it should be)
/// with the file's name; the image is then as it was. Reading reports to the subject, if there is one, looks at it
/// every few milliseconds and throws Cancelled when it is cancelled.
class ImageReader
{
public:
  /// The image of a source of any kind, as below.
  static void read(Image& image, const ImageSource& source);
  static void read(Image& image, const ImageMosaic& mosaic);
  /// The first image of a TIFF or LSM file that is no thumbnail.
  static void read(Image& image, const std::string& filename);

  static void read(Image& image, const ImageSource& source, ProgressSubject& subject);
  static void read(Image& image, const ImageSourceFile& source, ProgressSubject& subject);
  /// The tiles pasted side by side. \throw FileFormatError  they differ in depth, colormap or sizes of rows and columns
  static void read(Image& image, const ImageSourceFileMosaic& source, ProgressSubject& subject);
  static void read(Image& image, const ImageSourceTiffStackPlane& source, ProgressSubject& subject);
  static void read(Image& image, const ImageSourceLSMStackPlane& source, ProgressSubject& subject);
  /// See readPlane() for how voxels become grey levels.
  static void read(Image& image, const ImageSourceVoxelMatrixFilePlane& source, ProgressSubject& subject);
  /// \throw RangeError  the source is not defined
  static void read(Image& image, const ImageSourceVoxelMatrixPlane& source, ProgressSubject& subject);
  static void read(Image& image, const std::string& filename, ProgressSubject& subject);

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
