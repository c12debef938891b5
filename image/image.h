#pragma once

#include "geometry/boundingbox.h"
#include "image/imagechannel.h"
#include "image/imageheader.h"
#include "numeric/buffer.h"
#include "numeric/exception.h"

#include <cstddef>
#include <iosfwd>
#include <memory>
#include <string>
#include <vector>

template <class T> class PixelMatrix;

/// A depth that an image or an operation cannot take.
class DepthError : public ValueError
{
public:
  explicit DepthError(std::string where = "<unknown>", std::string what = "Image depth error")
    : ValueError(std::move(where), std::move(what))
  {
  }
};

/// Which colours the pixels of an image, or of all images of a stack, hold.
enum class ImageColorContent
{
  Undefined, ///< there is no image
  Grayscale,
  RedOnly,
  GreenOnly,
  BlueOnly,
  Mixed ///< more than one colour channel, or images that differ
};

/// Raster of 8, 16, 24 or 32 bits per pixel, as it is read from and written to files.
///
/// Lines follow each other in one buffer without padding. 8 bits are a grey level or, with a colormap, an index into
/// it; 16 bits a grey level in the machine's byte order; 24 bits red, green, blue; 32 bits red, green, blue and a byte
/// that is kept but not interpreted.
class Image
{
public:
  Image() = default;
  /// Pixels are unspecified. \throw DepthError, SizeError  as init()
  Image(int width, int height, int depth) { init(width, height, depth); }
  Image(const Image& image);
  Image(Image&& image) noexcept { swap(image); }
  Image& operator=(Image image) noexcept;
  ~Image() = default;

  /// Sizes the image; unchanged sizes keep the pixels, otherwise they are unspecified.
  /// \throw DepthError  the depth is not 8, 16, 24 or 32
  /// \throw SizeError   a size is negative
  void init(int width, int height, int depth);
  /// Back to an image without pixels, colormap and calibration.
  void clear();
  /// Sets every byte to 0.
  void reset();
  void swap(Image& image) noexcept;

  const ImageHeader& getHeader() const { return _header; }
  /// Takes over what describes the image; width, height and depth stay. \throw SizeError  as setColormap()
  void setDescription(const ImageHeader& header);

  int getWidth() const { return _header.getWidth(); }
  int getHeight() const { return _header.getHeight(); }
  /// Bits per pixel.
  int getDepth() const { return _header.getDepth(); }
  /// Number of pixels.
  std::size_t getSize() const { return static_cast<std::size_t>(getWidth()) * static_cast<std::size_t>(getHeight()); }
  int bytesPerPixel() const { return getDepth() / 8; }
  std::size_t bytesPerLine() const
  {
    return static_cast<std::size_t>(getWidth()) * static_cast<std::size_t>(bytesPerPixel());
  }
  std::size_t dataLength() const { return static_cast<std::size_t>(getHeight()) * bytesPerLine(); }
  /// From (0, 0) to (width - 1, height - 1).
  BoundingBox<int> boundingBox() const;

  unsigned char* getData() { return _data.get(); }
  const unsigned char* getData() const { return _data.get(); }
  /// Start of line i. Unchecked.
  unsigned char* getLine(int i) { return _lines[static_cast<std::size_t>(i)]; }
  const unsigned char* getLine(int i) const { return _lines[static_cast<std::size_t>(i)]; }
  /// One pointer per line.
  unsigned char* const* getPixels() { return _lines.data(); }
  const unsigned char* const* getPixels() const { return _lines.data(); }

  bool hasColormap() const { return _header.hasColormap(); }
  const Colormap& getColormap() const { return _header.getColormap(); }
  /// \throw SizeError  fewer than 256 colours: a pixel could have none
  void setColormap(const Colormap& colormap);
  void deleteColormap() { _header.deleteColormap(); }
  const PixelCalibration& getPixelCalibration() const { return _header.getPixelCalibration(); }
  void setPixelCalibration(const PixelCalibration& calibration) { _header.setPixelCalibration(calibration); }

  /// 8 bits with a colormap.
  bool isIndexed() const { return getDepth() == 8 && hasColormap(); }
  /// Indexed images answer for their colormap, others for their pixels; 8 and 16 bits without colormap are gray.
  bool isGrayscale() const;
  bool isRedOnly() const;
  bool isGreenOnly() const;
  bool isBlueOnly() const;
  /// Gray wins where several answers hold (a black image).
  ImageColorContent colorContent() const;

  /// Turns colours (the colormap's when indexed) into the mean of red, green and blue; the depth stays.
  void setGrayscale();
  /// Brings the image to 8 bits of gray: 16 bits are scaled to the maximum unless it is below 256, colours are
  /// averaged, an indexed image keeps its pixels and gets a gray colormap.
  void make8bitsGrayscale();
  /// \throw DepthError  the image does not have 8 bits
  void make24bits();
  /// From 8 or 24 bits, the fourth byte being 255. \throw DepthError  the image has 16 bits
  void make32bits();

  /// One colour channel: of colours their byte (the palette's, when indexed), of 8 bits of gray the level.
  /// \throw DepthError  the image has 16 bits, or less than 32 for the fourth channel
  PixelMatrix<unsigned char> channel(ImageChannel channel) const;
  /// \throw DepthError  the image has no such channel: less than 24 bits, or 32 for the fourth
  /// \throw SizeError   the matrix has another size than the image
  void setChannel(ImageChannel channel, const PixelMatrix<unsigned char>& matrix);

  /// Copies `image` so that its first pixel lies at (x, y).
  /// \throw DepthError  the depths differ
  /// \throw ValueError  the colormaps differ
  /// \throw SizeError   the image does not fit at this place
  void paste(const Image& image, int x, int y);

  /// See ImageReader::read() and ImageWriter::write().
  void readFile(const std::string& filename);
  void writeFile(const std::string& filename, bool overwrite) const;

  /// Readable text, for debugging.
  void print(std::ostream& stream) const;

private:
  struct Free
  {
    void operator()(unsigned char* buffer) const { freeBuffer(buffer); }
  };

  void allocate();
  /// True when all pixels (or colormap entries) keep only the given channel.
  bool hasOnlyChannel(int channel) const;
  void replacePixels(Image& converted);

  ImageHeader _header;
  std::unique_ptr<unsigned char[], Free> _data;
  std::vector<unsigned char*> _lines;
};
