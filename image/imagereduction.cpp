#include "image/imagereduction.h"

#include "numeric/targetclones.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cstdint>
#include <cstring>
#include <omp.h>
#include <vector>

namespace
{
/// One line of the halved image from two lines of pixels of `step` numbers.
template <class T, int step>
__attribute__((always_inline)) inline void halveLines(const T* first, const T* second, T* target, std::size_t width)
{
  for (std::size_t j = 0; j < width; ++j, first += 2 * step, second += 2 * step, target += step)
  {
    for (int c = 0; c < step; ++c)
    {
      const auto sum = static_cast<unsigned>(first[c] + first[c + step] + second[c] + second[c + step]);
      target[c] = static_cast<T>((sum + 2) / 4);
    }
  }
}

/// The same of single bytes, which come in pairs: neighbours need not be shuffled apart.
MIRELO_TARGET_CLONES void halve8Bits(const unsigned char* first, const unsigned char* second, unsigned char* target,
                                     std::size_t width)
{
  for (std::size_t j = 0; j < width; ++j)
  {
    std::uint16_t upper, lower;
    std::memcpy(&upper, first + 2 * j, sizeof upper);
    std::memcpy(&lower, second + 2 * j, sizeof lower);
    const auto sum = static_cast<std::uint16_t>((upper & 0xFF) + (upper >> 8) + (lower & 0xFF) + (lower >> 8) + 2);
    target[j] = static_cast<unsigned char>(sum >> 2);
  }
}

MIRELO_TARGET_CLONES void halve16Bits(const std::uint16_t* first, const std::uint16_t* second, std::uint16_t* target,
                                      std::size_t width)
{
  halveLines<std::uint16_t, 1>(first, second, target, width);
}

MIRELO_TARGET_CLONES void halve24Bits(const unsigned char* first, const unsigned char* second, unsigned char* target,
                                      std::size_t width)
{
  halveLines<unsigned char, 3>(first, second, target, width);
}

MIRELO_TARGET_CLONES void halve32Bits(const unsigned char* first, const unsigned char* second, unsigned char* target,
                                      std::size_t width)
{
  halveLines<unsigned char, 4>(first, second, target, width);
}

const std::uint16_t* asPairs(const unsigned char* line)
{
  return static_cast<const std::uint16_t*>(static_cast<const void*>(line));
}

std::uint16_t* asPairs(unsigned char* line)
{
  return static_cast<std::uint16_t*>(static_cast<void*>(line));
}

void halveLine(const Image& source, Image& target, int i)
{
  const unsigned char *first = source.getLine(2 * i), *second = source.getLine(2 * i + 1);
  unsigned char* const line = target.getLine(i);
  const auto width = static_cast<std::size_t>(target.getWidth());
  switch (source.getDepth())
  {
  case 8:
    return halve8Bits(first, second, line, width);
  case 16:
    return halve16Bits(asPairs(first), asPairs(second), asPairs(line), width);
  case 24:
    return halve24Bits(first, second, line, width);
  default:
    return halve32Bits(first, second, line, width);
  }
}

/// Lines of an image that together have about half a MiB.
long linesPerBand(const Image& image)
{
  constexpr std::size_t bandLength = std::size_t{1} << 19;
  return static_cast<long>(std::max<std::size_t>(1, bandLength / std::max<std::size_t>(1, image.bytesPerLine())));
}

/// Calls body(i) for the lines 0 to n - 1, on all threads, each of which takes the next `grain` lines when it has done
/// its own: a core that is busy with other work holds nobody up.
template <class Body>
void forEachLine(ProgressSubject& subject, long n, long grain, const char* where, const Body& body)
{
  {
    const ProgressStep step(subject, "Reducing the image", n);
    const long numBands = (n + grain - 1) / grain;
    std::atomic<long> numDone = 0;
#pragma omp parallel for schedule(dynamic) if (numBands > 1)
    for (long band = 0; band < numBands; ++band)
    {
      if (subject.isCancelled()) continue;
      const long first = band * grain, last = std::min(n, first + grain);
      for (long i = first; i < last; ++i) body(static_cast<int>(i));
      const long done = numDone += last - first;
      if (omp_get_thread_num() == 0) subject.progress(done);
    }
  }
  subject.throwIfCancelled(where);
}

/// Samples an image at places on a coarser grid, each the mean of the window around it.
template <class T> class WindowMeans
{
public:
  WindowMeans(const Image& source, Image& target, int halfSize)
    : _source(source),
      _target(target),
      _halfSize(halfSize),
      _numbersPerPixel(source.bytesPerPixel() / static_cast<int>(sizeof(T))),
      _sums(static_cast<std::size_t>(omp_get_max_threads()) * numbersPerLine())
  {
  }

  /// Fills line i of the target.
  void fillLine(int i, const ProgressSubject& subject)
  {
    const Window rows = window(i, _target.getHeight(), _source.getHeight());
    std::uint32_t* const sums = &_sums[static_cast<std::size_t>(omp_get_thread_num()) * numbersPerLine()];
    std::fill_n(sums, numbersPerLine(), 0u);
    for (int row = rows.first; row <= rows.last; ++row)
    {
      if (subject.isCancelled()) return;
      const T* const line = numbers(_source.getLine(row));
      for (std::size_t j = 0; j < numbersPerLine(); ++j) sums[j] += line[j];
    }
    T* target = numbers(_target.getLine(i));
    for (int j = 0; j < _target.getWidth(); ++j)
    {
      const Window columns = window(j, _target.getWidth(), _source.getWidth());
      for (int c = 0; c < _numbersPerPixel; ++c) *target++ = mean(sums + c, columns, rows.size());
    }
  }

private:
  struct Window
  {
    int first, last;
    std::uint64_t size() const { return static_cast<std::uint64_t>(last - first + 1); }
  };

  std::size_t numbersPerLine() const { return _source.bytesPerLine() / sizeof(T); }
  static const T* numbers(const unsigned char* line) { return static_cast<const T*>(static_cast<const void*>(line)); }
  static T* numbers(unsigned char* line) { return static_cast<T*>(static_cast<void*>(line)); }

  /// Around the pixel at the centre of pixel i of n, along an axis of `size` pixels.
  Window window(int i, int n, int size) const
  {
    const int center = static_cast<int>((2 * std::int64_t{i} + 1) * size / (2 * std::int64_t{n}));
    return {center < _halfSize ? 0 : center - _halfSize, center > size - 1 - _halfSize ? size - 1 : center + _halfSize};
  }

  T mean(const std::uint32_t* sums, const Window& columns, std::uint64_t numRows) const
  {
    std::uint64_t sum = 0;
    const auto step = static_cast<std::size_t>(_numbersPerPixel);
    for (auto j = static_cast<std::size_t>(columns.first); j <= static_cast<std::size_t>(columns.last); ++j)
      sum += sums[j * step];
    const std::uint64_t count = columns.size() * numRows;
    return static_cast<T>((sum + count / 2) / count);
  }

  const Image& _source;
  Image& _target;
  int _halfSize;
  int _numbersPerPixel;
  std::vector<std::uint32_t> _sums; // of the window's rows, by thread
};

template <class T> void fillWithMeans(const Image& source, Image& target, int halfSize, ProgressSubject& subject)
{
  WindowMeans<T> means(source, target, halfSize);
  forEachLine(subject, target.getHeight(), 1, "Image resized(const Image&, int, int, ProgressSubject&)",
              [&](int i) { means.fillLine(i, subject); });
}

/// Half-size of the mean filter that is due before an image becomes narrower.
int smoothingHalfSize(int imageWidth, int width)
{
  constexpr int greatest = 32767; // sums over a window's rows of 16-bit numbers still have 32 bits
  if (2 * std::int64_t{width} >= imageWidth) return 0;
  return std::min(imageWidth / (2 * width), greatest);
}

constexpr const char* expandSignature = "void expandColormap(Image&, ProgressSubject&)";

void expandGray(Image& image, ProgressSubject& subject)
{
  std::array<unsigned char, 256> levels;
  for (std::size_t i = 0; i < levels.size(); ++i) levels[i] = image.getColormap().getColor(static_cast<int>(i))[0];
  const auto expandLine = [&](int i)
  {
    unsigned char* const line = image.getLine(i);
    for (std::size_t j = 0; j < image.bytesPerLine(); ++j) line[j] = levels[line[j]];
  };
  forEachLine(subject, image.getHeight(), linesPerBand(image), expandSignature, expandLine);
  image.deleteColormap();
}

void expandColors(Image& image, ProgressSubject& subject)
{
  Image colors(image.getWidth(), image.getHeight(), 24);
  const Colormap& colormap = image.getColormap();
  const auto expandLine = [&](int i)
  {
    const unsigned char* const line = image.getLine(i);
    unsigned char* target = colors.getLine(i);
    for (std::size_t j = 0; j < image.bytesPerLine(); ++j)
      target = std::ranges::copy(colormap.getColor(line[j]), target).out;
  };
  forEachLine(subject, image.getHeight(), linesPerBand(image), expandSignature, expandLine);
  ImageHeader header = image.getHeader();
  header.deleteColormap();
  header.setNumChannels(3);
  colors.setDescription(header);
  image.swap(colors);
}
} // namespace

Image halved(const Image& image, ProgressSubject& subject)
{
  constexpr const char* where = "Image halved(const Image&, ProgressSubject&)";
  if (image.getWidth() < 2 || image.getHeight() < 2) throw SizeError(where, "The image is too small to be halved");
  Image half(image.getWidth() / 2, image.getHeight() / 2, image.getDepth());
  half.setDescription(image.getHeader());
  forEachLine(subject, half.getHeight(), linesPerBand(image), where, [&](int i) { halveLine(image, half, i); });
  return half;
}

Image resized(const Image& image, int width, int height, ProgressSubject& subject)
{
  if (width < 1 || height < 1 || image.getSize() == 0)
    throw SizeError("Image resized(const Image&, int, int, ProgressSubject&)", "An image of no size");
  Image copy(width, height, image.getDepth());
  copy.setDescription(image.getHeader());
  const int halfSize = smoothingHalfSize(image.getWidth(), width);
  if (image.getDepth() == 16)
    fillWithMeans<std::uint16_t>(image, copy, halfSize, subject);
  else
    fillWithMeans<unsigned char>(image, copy, halfSize, subject);
  return copy;
}

void expandColormap(Image& image, ProgressSubject& subject)
{
  if (!image.isIndexed()) return;
  image.isGrayscale() ? expandGray(image, subject) : expandColors(image, subject);
}
