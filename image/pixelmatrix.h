#pragma once

#include "image/elementtypes.h"
#include "image/imagechannel.h"
#include "image/pixelcalibration.h"
#include "numeric/exception.h"
#include "numeric/matrix.h"

#include <string>

class Image;
class RandomGenerator;

/// One plane of values and the physical size of a pixel: what filters, thresholds and measures work on.
///
/// Rows are image lines, columns places along a line; element (i, j) is line i, column j, both 0-based. Like a matrix,
/// it owns its block or is a view, as the planes of a volume are. Assigning to a view writes its elements; its
/// calibration stays. Moving from a view copies its elements, so that the planes of a volume stay where they are.
template <class T> class PixelMatrix : public Matrix<T>
{
public:
  PixelMatrix() = default;
  /// Uninitialised elements.
  PixelMatrix(int rows, int columns) : Matrix<T>(rows, columns) {}
  /// View of the rows * columns elements at block.
  PixelMatrix(int rows, int columns, T* block) : Matrix<T>(rows, columns, block) {}
  explicit PixelMatrix(const Matrix<T>& matrix) : Matrix<T>(matrix) {}
  /// \throw RangeError  as convertFromImage()
  explicit PixelMatrix(const Image& image) { convertFromImage(image); }
  PixelMatrix(const PixelMatrix&) = default;
  PixelMatrix(PixelMatrix&& other);
  ~PixelMatrix() override = default;

  /// \throw SizeError  this is a view of another size
  PixelMatrix& operator=(const PixelMatrix& other);
  PixelMatrix& operator=(PixelMatrix&& other);

  /// Exchanges the elements and, between owners, the calibrations.
  /// \throw SizeError  the sizes differ and one of the matrices is a view
  void swap(PixelMatrix& other);
  friend void swap(PixelMatrix& a, PixelMatrix& b) { a.swap(b); }

  const PixelCalibration& getPixelCalibration() const { return _pixelCalibration; }
  void setPixelCalibration(const PixelCalibration& calibration) { _pixelCalibration = calibration; }

  bool contains(int i, int j) const { return 0 <= i && i < this->getSize1() && 0 <= j && j < this->getSize2(); }

  /// Sets the elements whose distance to the border is below `width`: with 1, the outermost ones.
  void fillBorder(int width, T value);
  void fillBorder(T value) { fillBorder(1, value); }
  /// Uniform random values: over the whole range of an integer type, in [0, 1) for floating-point ones.
  void randomise(RandomGenerator& generator);

  using Matrix<T>::histogram;
  /// Numbers of elements per bin, see Vector<T>::histogram(), of those elements whose mask element is not 0.
  /// \throw SizeError  a mask of another size   \throw ValueError  count < 1
  Vector<unsigned int> histogram(T origin, T width, int count, const PixelMatrix& mask) const;

  /// Takes over the grey levels and the calibration of an image. Colours (the palette's, when indexed) become the
  /// integer part of the mean of red, green and blue.
  /// \throw RangeError  a level that T cannot hold; this matrix is then as it was
  void convertFromImage(const Image& image);
  /// Takes over one colour channel; a gray image has its level in red, green and blue.
  /// \throw DepthError  the fourth channel of an image of less than 32 bits   \throw RangeError  as above
  void convertFromImage(const Image& image, ImageChannel channel);

  /// An 8-bit image of the values, rounded. \throw RangeError  a value outside 0..255, or NaN
  void convertToImage(Image& image) const;
  /// An 8-bit image in which `low` (and below) is 0 and `high` (and above) 255, with a linear map between them; NaN is
  /// 0. When high <= low, all but infinity is 0.
  void convertToImage(Image& image, T low, T high) const;
  /// Writes the 8-bit image of convertToImage() as a TIFF file.
  /// \throw FileWriteError  as ImageWriter::write()   \throw RangeError  as convertToImage()
  void saveAsImage(const std::string& filename, bool overwrite) const;

private:
  template <class ColorLevel> void takeLevels(const Image& image, const ColorLevel& colorLevel, const char* where);

  PixelCalibration _pixelCalibration;
};

IMAGE_EXTERN_TEMPLATE(PixelMatrix)
