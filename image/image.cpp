#include "image/image.h"

#include "image/imagereader.h"
#include "image/imagewriter.h"
#include "image/pixelmatrix.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <ostream>
#include <utility>

namespace
{
unsigned char mean(const unsigned char* rgb)
{
  return static_cast<unsigned char>((rgb[0] + rgb[1] + rgb[2]) / 3);
}

/// The gray levels of 16-bit pixels, which need not be aligned.
std::uint16_t level16(const unsigned char* pixel)
{
  std::uint16_t level;
  std::memcpy(&level, pixel, sizeof level);
  return level;
}

std::uint16_t maximum16(const Image& image)
{
  std::uint16_t maximum = 0;
  const unsigned char* data = image.getData();
  for (std::size_t i = 0; i < image.getSize(); ++i) maximum = std::max(maximum, level16(data + 2 * i));
  return maximum;
}

/// Levels as they are when they fit 8 bits, else round(level x 255 / maximum).
void scaleTo8Bits(const Image& source, Image& target)
{
  const std::uint32_t maximum = maximum16(source);
  const unsigned char* from = source.getData();
  unsigned char* to = target.getData();
  for (std::size_t i = 0; i < source.getSize(); ++i)
  {
    const std::uint32_t level = level16(from + 2 * i);
    to[i] = static_cast<unsigned char>(maximum < 256 ? level : (level * 510 + maximum) / (2 * maximum));
  }
}

/// Red, green, blue of every pixel of an 8-bit or colour image into an image of 24 or 32 bits.
void expandColors(const Image& source, Image& target)
{
  const int from = source.bytesPerPixel(), to = target.bytesPerPixel();
  const unsigned char* in = source.getData();
  unsigned char* out = target.getData();
  for (std::size_t i = 0; i < source.getSize(); ++i, in += from, out += to)
  {
    if (source.isIndexed())
      std::ranges::copy(source.getColormap().getColor(in[0]), out);
    else
      for (int channel = 0; channel < 3; ++channel) out[channel] = in[from == 1 ? 0 : channel];
    if (to == 4) out[3] = 255;
  }
}
} // namespace

Image::Image(const Image& image) : _header(image._header)
{
  if (!image._data) return;
  allocate();
  std::memcpy(_data.get(), image._data.get(), dataLength());
}

Image& Image::operator=(Image image) noexcept
{
  swap(image);
  return *this;
}

void Image::swap(Image& image) noexcept
{
  std::swap(_header, image._header);
  _data.swap(image._data);
  _lines.swap(image._lines);
}

void Image::init(int width, int height, int depth)
{
  if (depth != 8 && depth != 16 && depth != 24 && depth != 32)
    throw DepthError("void Image::init(int, int, int)", "Invalid depth value");
  if (width < 0 || height < 0) throw SizeError("void Image::init(int, int, int)", "Negative image size");
  if (_data && width == getWidth() && height == getHeight() && depth == getDepth()) return;
  Image fresh;
  fresh._header = _header;
  fresh._header.setWidth(width);
  fresh._header.setHeight(height);
  fresh._header.setDepth(depth);
  fresh.allocate();
  swap(fresh);
}

void Image::allocate()
{
  _data.reset(allocateElements<unsigned char>(dataLength()));
  _lines.resize(static_cast<std::size_t>(getHeight()));
  for (std::size_t i = 0; i < _lines.size(); ++i) _lines[i] = _data.get() + i * bytesPerLine();
}

void Image::clear()
{
  Image empty;
  swap(empty);
}

void Image::reset()
{
  if (_data) std::memset(_data.get(), 0, dataLength());
}

void Image::setColormap(const Colormap& colormap)
{
  constexpr int numIndexes = 256;
  if (colormap.getSize() < numIndexes)
    throw SizeError("void Image::setColormap(const Colormap&)", "The colormap has fewer than 256 colors");
  _header.setColormap(colormap);
}

void Image::setDescription(const ImageHeader& header)
{
  if (header.hasColormap()) setColormap(header.getColormap());
  const int width = getWidth(), height = getHeight(), depth = getDepth();
  _header = header;
  _header.setWidth(width);
  _header.setHeight(height);
  _header.setDepth(depth);
}

BoundingBox<int> Image::boundingBox() const
{
  Vector<int> minimum(2), maximum(2);
  minimum.setZeros();
  maximum[0] = getWidth() - 1;
  maximum[1] = getHeight() - 1;
  return BoundingBox<int>(minimum, maximum);
}

bool Image::isGrayscale() const
{
  if (isIndexed()) return getColormap().isGrayscale();
  if (getDepth() <= 16) return true;
  const int step = bytesPerPixel();
  const unsigned char* const end = _data.get() + dataLength();
  for (const unsigned char* pixel = _data.get(); pixel != end; pixel += step)
    if (pixel[0] != pixel[1] || pixel[0] != pixel[2]) return false;
  return true;
}

bool Image::hasOnlyChannel(int channel) const
{
  if (getDepth() <= 16 && !isIndexed()) return false;
  const std::size_t first = channel == 0 ? 1 : 0, second = channel == 2 ? 1 : 2; // the two other channels
  if (isIndexed())
  {
    for (int i = 0; i < getColormap().getSize(); ++i)
      if (const Colormap::Color& color = getColormap().getColor(i); color[first] != 0 || color[second] != 0)
        return false;
    return true;
  }
  const int step = bytesPerPixel();
  const unsigned char* const end = _data.get() + dataLength();
  for (const unsigned char* pixel = _data.get(); pixel != end; pixel += step)
    if (pixel[first] != 0 || pixel[second] != 0) return false;
  return true;
}

bool Image::isRedOnly() const
{
  return hasOnlyChannel(0);
}

bool Image::isGreenOnly() const
{
  return hasOnlyChannel(1);
}

bool Image::isBlueOnly() const
{
  return hasOnlyChannel(2);
}

ImageColorContent Image::colorContent() const
{
  if (!_data) return ImageColorContent::Undefined;
  if (isGrayscale()) return ImageColorContent::Grayscale;
  if (isRedOnly()) return ImageColorContent::RedOnly;
  if (isGreenOnly()) return ImageColorContent::GreenOnly;
  if (isBlueOnly()) return ImageColorContent::BlueOnly;
  return ImageColorContent::Mixed;
}

void Image::setGrayscale()
{
  if (isIndexed())
  {
    Colormap gray = getColormap();
    gray.setGrayscale();
    setColormap(gray);
    return;
  }
  if (getDepth() <= 16) return;
  const int step = bytesPerPixel();
  unsigned char* const end = _data.get() + dataLength();
  for (unsigned char* pixel = _data.get(); pixel != end; pixel += step) pixel[0] = pixel[1] = pixel[2] = mean(pixel);
}

void Image::make8bitsGrayscale()
{
  if (isIndexed()) return setGrayscale();
  if (!_data || getDepth() == 8) return;
  Image gray(getWidth(), getHeight(), 8);
  if (getDepth() == 16)
    scaleTo8Bits(*this, gray);
  else
    for (std::size_t i = 0, step = static_cast<std::size_t>(bytesPerPixel()); i < getSize(); ++i)
      gray._data[i] = mean(&_data[i * step]);
  replacePixels(gray);
}

void Image::make24bits()
{
  if (getDepth() != 8) throw DepthError("void Image::make24bits()", "Cannot convert non-8 bits images");
  Image colors(getWidth(), getHeight(), 24);
  expandColors(*this, colors);
  replacePixels(colors);
}

void Image::make32bits()
{
  if (getDepth() == 32) return;
  if (getDepth() != 8 && getDepth() != 24)
    throw DepthError("void Image::make32bits()", "Cannot convert 16 bits images");
  Image colors(getWidth(), getHeight(), 32);
  expandColors(*this, colors);
  replacePixels(colors);
}

void Image::replacePixels(Image& converted)
{
  converted.setDescription(_header);
  converted._header.setNumChannels(converted.bytesPerPixel()); // of 8 bits each
  converted.deleteColormap();
  swap(converted);
}

PixelMatrix<unsigned char> Image::channel(ImageChannel channel) const
{
  if (getDepth() == 16)
    throw DepthError("PixelMatrix<unsigned char> Image::channel(ImageChannel) const",
                     "An image of 16 bits has no color channels");
  PixelMatrix<unsigned char> matrix;
  matrix.convertFromImage(*this, channel);
  return matrix;
}

void Image::setChannel(ImageChannel channel, const PixelMatrix<unsigned char>& matrix)
{
  constexpr const char* where = "void Image::setChannel(ImageChannel, const PixelMatrix<unsigned char>&)";
  const auto byte = static_cast<std::size_t>(channel), step = static_cast<std::size_t>(bytesPerPixel());
  if (step < 3 || byte >= step) throw DepthError(where, "The image has no such channel");
  if (matrix.getSize1() != getHeight() || matrix.getSize2() != getWidth())
    throw SizeError(where, "This image and pixelMatrix have different sizes");
  const unsigned char* const levels = matrix.data();
  for (std::size_t i = 0; i < getSize(); ++i) _data[i * step + byte] = levels[i];
}

void Image::paste(const Image& image, int x, int y)
{
  constexpr const char* where = "void Image::paste(const Image&, int, int)";
  if (image.getDepth() != getDepth()) throw DepthError(where, "Incompatible image depths");
  const bool sameColormaps =
      image.hasColormap() == hasColormap() && (!hasColormap() || image.getColormap() == getColormap());
  if (!sameColormaps) throw ValueError(where, "Incompatible image colormaps");
  const bool fits = x >= 0 && y >= 0 && x <= getWidth() - image.getWidth() && y <= getHeight() - image.getHeight();
  if (!fits) throw SizeError(where, "Incompatible size and position");
  const std::size_t offset = static_cast<std::size_t>(x) * static_cast<std::size_t>(bytesPerPixel());
  for (int i = 0; i < image.getHeight(); ++i)
    std::memmove(getLine(y + i) + offset, image.getLine(i), image.bytesPerLine());
}

void Image::readFile(const std::string& filename)
{
  ImageReader::read(*this, filename);
}

void Image::writeFile(const std::string& filename, bool overwrite) const
{
  ImageWriter::write(*this, filename, overwrite);
}

void Image::print(std::ostream& stream) const
{
  const PixelCalibration& calibration = getPixelCalibration();
  stream << "Width = " << getWidth() << "\n"
         << "Height = " << getHeight() << "\n"
         << "Depth = " << getDepth() << (isIndexed() ? " [Indexed]" : "") << "\n"
         << "Pixel width = " << calibration.getPixelWidth() << " " << calibration.getLengthUnit().name() << "\n"
         << "Pixel height = " << calibration.getPixelHeight() << " " << calibration.getLengthUnit().name() << "\n";
}
