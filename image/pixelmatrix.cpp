#include "image/pixelmatrix.h"

#include "image/image.h"
#include "image/imagewriter.h"
#include "numeric/randomgenerator.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <string>
#include <utility>

namespace
{
constexpr unsigned char black = 0, white = 255;

template <class T> bool isInfinity(T x)
{
  return x > std::numeric_limits<T>::max();
}

/// The mean of red, green and blue; its fraction is dropped.
int grayLevel(const unsigned char* color)
{
  return (color[0] + color[1] + color[2]) / 3;
}

int level16(const unsigned char* pixel)
{
  std::uint16_t level = 0;
  std::memcpy(&level, pixel, sizeof level);
  return level;
}

/// Writes levelAt(pixel) of every pixel; returns the largest.
template <class T, class LevelAt> int copyLevels(const Image& image, T* levels, const LevelAt& levelAt)
{
  const unsigned char* pixel = image.getData();
  const int step = image.bytesPerPixel();
  int largest = 0;
  for (const T* const end = levels + image.getSize(); levels != end; ++levels, pixel += step)
  {
    const int level = levelAt(pixel);
    largest = std::max(largest, level);
    *levels = static_cast<T>(level);
  }
  return largest;
}

/// Grey levels of all pixels, colours going through colorLevel(color); returns the largest.
template <class T, class ColorLevel> int readLevels(const Image& image, T* levels, const ColorLevel& colorLevel)
{
  if (image.isIndexed())
  {
    Vector<int> palette(image.getColormap().getSize());
    for (int k = 0; k < palette.getSize(); ++k) palette[k] = colorLevel(image.getColormap().getColor(k).data());
    return copyLevels(image, levels, [&palette](const unsigned char* pixel) { return palette[*pixel]; });
  }
  switch (image.bytesPerPixel())
  {
  case 1:
    return copyLevels(image, levels, [](const unsigned char* pixel) { return int{*pixel}; });
  case 2:
    return copyLevels(image, levels, level16);
  default:
    return copyLevels(image, levels, colorLevel);
  }
}

template <class T> bool canHold(int level)
{
  if constexpr (std::is_integral_v<T>)
    return static_cast<long>(level) <= static_cast<long>(std::numeric_limits<T>::max());
  else
    return true;
}

/// An 8-bit image of level(x) of every element x.
template <class T, class Level> void makeImage(const PixelMatrix<T>& matrix, Image& image, const Level& level)
{
  Image converted(matrix.getSize2(), matrix.getSize1(), 8);
  std::transform(matrix.data(), matrix.data() + matrix.getNumElements(), converted.getData(), level);
  converted.setPixelCalibration(matrix.getPixelCalibration());
  image.swap(converted);
}
} // namespace

template <class T> PixelMatrix<T>::PixelMatrix(PixelMatrix&& other)
  : Matrix<T>(other.isOwner() ? Matrix<T>(static_cast<Matrix<T>&&>(other)) : Matrix<T>(other)),
    _pixelCalibration(other._pixelCalibration)
{
}

template <class T> PixelMatrix<T>& PixelMatrix<T>::operator=(const PixelMatrix& other)
{
  Matrix<T>::operator=(other);
  if (this->isOwner()) _pixelCalibration = other._pixelCalibration;
  return *this;
}

template <class T> PixelMatrix<T>& PixelMatrix<T>::operator=(PixelMatrix&& other)
{
  const PixelCalibration calibration = other._pixelCalibration;
  Matrix<T>::operator=(std::move(other));
  if (this->isOwner()) _pixelCalibration = calibration;
  return *this;
}

template <class T> void PixelMatrix<T>::swap(PixelMatrix& other)
{
  const bool areOwners = this->isOwner() && other.isOwner();
  Matrix<T>::swap(other);
  if (areOwners) std::swap(_pixelCalibration, other._pixelCalibration);
}

template <class T> void PixelMatrix<T>::fillBorder(int width, T value)
{
  const int rows = this->getSize1(), columns = this->getSize2();
  const int side = std::clamp(width, 0, columns);
  for (int i = 0; i < rows; ++i)
  {
    T* const row = (*this)[i].data();
    const bool isBorder = i < width || i >= rows - width;
    std::fill_n(row, isBorder ? columns : side, value);
    std::fill_n(row + columns - side, side, value);
  }
}

template <class T> void PixelMatrix<T>::randomise(RandomGenerator& generator)
{
  using Limits = std::numeric_limits<T>;
  if constexpr (std::is_integral_v<T>)
    this->apply([&generator](T) { return static_cast<T>(generator.uniformLL(Limits::min(), Limits::max())); });
  else
    this->apply([&generator](T) { return static_cast<T>(generator.uniformLF()); });
}

template <class T>
Vector<unsigned int> PixelMatrix<T>::histogram(T origin, T width, int count, const PixelMatrix& mask) const
{
  constexpr const char* where =
      "Vector<unsigned int> PixelMatrix<T>::histogram(T, T, int, const PixelMatrix<T>&) const";
  if (mask.getSize1() != this->getSize1() || mask.getSize2() != this->getSize2())
    throw SizeError(where, "The mask has another size than the matrix");
  if (count < 1) throw ValueError(where, "A histogram needs at least one bin");
  Vector<unsigned int> counts(count);
  counts.setZeros();
  Vector<T> kept(this->getSize2());
  for (int i = 0; i < this->getSize1(); ++i)
  {
    int numKept = 0;
    for (int j = 0; j < this->getSize2(); ++j)
      if (mask(i, j) != T(0)) kept[numKept++] = (*this)(i, j);
    counts += Vector<T>(numKept, kept.data()).histogram(origin, width, count);
  }
  return counts;
}

template <class T> template <class ColorLevel>
void PixelMatrix<T>::takeLevels(const Image& image, const ColorLevel& colorLevel, const char* where)
{
  PixelMatrix fresh(image.getHeight(), image.getWidth());
  const int largest = readLevels(image, fresh.data(), colorLevel);
  if (!canHold<T>(largest))
    throw RangeError(where,
                     "The grey level " + std::to_string(largest) + " does not fit elements of type " + typeName<T>());
  fresh._pixelCalibration = image.getPixelCalibration();
  *this = std::move(fresh);
}

template <class T> void PixelMatrix<T>::convertFromImage(const Image& image)
{
  takeLevels(image, grayLevel, "void PixelMatrix<T>::convertFromImage(const Image&)");
}

template <class T> void PixelMatrix<T>::convertFromImage(const Image& image, ImageChannel channel)
{
  constexpr const char* where = "void PixelMatrix<T>::convertFromImage(const Image&, ImageChannel)";
  if (channel == ImageChannel::Alpha && image.getDepth() != 32)
    throw DepthError(where, "The image has no fourth channel");
  const auto byte = static_cast<std::size_t>(channel);
  takeLevels(
      image, [byte](const unsigned char* color) { return int{color[byte]}; }, where);
}

template <class T> void PixelMatrix<T>::convertToImage(Image& image) const
{
  const auto round = [](T x)
  {
    if constexpr (std::is_integral_v<T>)
      return x;
    else
      return std::round(x);
  };
  const auto isLevel = [&round](T x) { return Real<T>(0) <= round(x) && round(x) <= Real<T>(255); };
  const T* const end = this->data() + this->getNumElements();
  const T* const outside = std::find_if_not(this->data(), end, isLevel);
  if (outside != end)
    throw RangeError("void PixelMatrix<T>::convertToImage(Image&) const",
                     "The value " + std::to_string(*outside) + " is no grey level of 0 to 255");
  makeImage(*this, image, [&round](T x) { return static_cast<unsigned char>(round(x)); });
}

template <class T> void PixelMatrix<T>::convertToImage(Image& image, T low, T high) const
{
  using R = Real<T>;
  if (!(high > low)) return makeImage(*this, image, [](T x) { return isInfinity(x) ? white : black; });
  const R whole = static_cast<R>(high) - static_cast<R>(low);
  const R share = std::isfinite(whole) ? R(1) : R(0.5); // of all values, that their range does not overflow
  const R start = share * static_cast<R>(low), range = share * static_cast<R>(high) - start;
  makeImage(*this, image,
            [=](T x)
            {
              const R level = (share * static_cast<R>(x) - start) / range * R(white) + R(0.5);
              return static_cast<unsigned char>(level >= R(0) ? std::min(level, R(white)) : R(black));
            });
}

template <class T> void PixelMatrix<T>::saveAsImage(const std::string& filename, bool overwrite) const
{
  Image image;
  convertToImage(image);
  ImageWriter::write(image, filename, overwrite);
}

IMAGE_INSTANTIATE(PixelMatrix)
