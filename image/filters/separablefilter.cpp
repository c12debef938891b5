#include "image/filters/separablefilter.h"

#include "image/filters/slicesweep.h"
#include "numeric/targetclones.h"

#include <cmath>
#include <limits>

namespace
{
/// The whole number nearest to x, which is in the range of T.
template <class T, class R> __attribute__((always_inline)) inline T rounded(R x)
{
  if constexpr (sizeof(T) <= 2)
  {
    constexpr int offset = -std::numeric_limits<T>::lowest(); // truncation rounds down what is not negative
    return static_cast<T>(static_cast<int>(x + (R(0.5) + R(offset))) - offset);
  }
  else
    return static_cast<T>(std::floor(x + R(0.5)));
}

template <class T, class A> __attribute__((always_inline)) inline void convert(const T* from, long n, A* to)
{
  for (long j = 0; j < n; ++j) to[j] = static_cast<A>(from[j]);
}

template <class T, class A>
__attribute__((always_inline)) inline void scaleAndRound(const A* from, long n, Real<A> scale, T* to)
{
  for (long j = 0; j < n; ++j)
  {
    const Real<A> x = static_cast<Real<A>>(from[j]) * scale;
    if constexpr (std::is_integral_v<T>)
      to[j] = rounded<T>(x);
    else
      to[j] = static_cast<T>(x);
  }
}

#define IMAGE_CONVERSIONS(T, A)                                                                                        \
  MIRELO_TARGET_CLONES void load(const T* from, long n, A* to)                                                         \
  {                                                                                                                    \
    convert(from, n, to);                                                                                              \
  }                                                                                                                    \
  MIRELO_TARGET_CLONES void store(const A* from, long n, Real<A> scale, T* to)                                         \
  {                                                                                                                    \
    scaleAndRound(from, n, scale, to);                                                                                 \
  }

#define IMAGE_FOR_EACH_CONVERSION(MACRO)                                                                               \
  MACRO(char, int)                                                                                                     \
  MACRO(unsigned char, int)                                                                                            \
  MACRO(short, int)                                                                                                    \
  MACRO(unsigned short, int)                                                                                           \
  MACRO(char, float)                                                                                                   \
  MACRO(unsigned char, float)                                                                                          \
  MACRO(short, float)                                                                                                  \
  MACRO(unsigned short, float)                                                                                         \
  MACRO(float, float)                                                                                                  \
  MACRO(char, double)                                                                                                  \
  MACRO(unsigned char, double)                                                                                         \
  MACRO(short, double)                                                                                                 \
  MACRO(unsigned short, double)                                                                                        \
  MACRO(int, double)                                                                                                   \
  MACRO(unsigned int, double)                                                                                          \
  MACRO(float, double)                                                                                                 \
  MACRO(double, double)                                                                                                \
  MACRO(long double, long double)

IMAGE_FOR_EACH_CONVERSION(IMAGE_CONVERSIONS)

/// Filters the lines of slices along the columns and across each other; what a thread needs for it.
template <class T, class A> class SlicePreparation
{
public:
  SlicePreparation(const SliceView<T>& image, const LineFilters<A>& filters)
    : _image(image),
      _filters(filters),
      _padded(paddedWidth()),
      _isFlat(filters.acrossLines.radius() == 0),
      _lines(_isFlat ? 0 : image.numLines(), spreadSize<A>(image.width())),
      _from(static_cast<std::size_t>(image.numLines()) + 2 * static_cast<std::size_t>(filters.acrossLines.radius())),
      _to(static_cast<std::size_t>(image.numLines()))
  {
  }

  void operator()(int slice, PreparedSlices<A>& prepared)
  {
    for (int line = 0; line < _image.numLines(); ++line)
      filterAlong(_image.line(slice, line), _isFlat ? prepared.line(slice, line) : _lines[line].data());
    if (!_isFlat) filterAcross(slice, prepared);
  }

private:
  int paddedWidth() const { return _image.width() + 2 * _filters.alongColumns.radius(); }

  void filterAlong(const T* line, A* out)
  {
    const int radius = _filters.alongColumns.radius();
    const long width = _image.width();
    if (radius == 0) return load(line, width, out);
    A* const x = _padded.data();
    load(line, width, x + radius);
    std::fill_n(x, radius, x[radius]);
    std::fill_n(x + radius + width, radius, x[radius + width - 1]);
    _filters.alongColumns.along(x, width, out);
  }

  void filterAcross(int slice, PreparedSlices<A>& prepared)
  {
    const int radius = _filters.acrossLines.radius(), numLines = _image.numLines(), width = _image.width();
    const int tileWidth = tileWidthFor<A>(4L * radius + _filters.acrossLines.period() + 1);
    for (int begin = 0; begin < width; begin += tileWidth)
    {
      for (int k = 0; k < numLines + 2 * radius; ++k)
        _from[static_cast<std::size_t>(k)] = _lines[std::clamp(k - radius, 0, numLines - 1)].data() + begin;
      for (int k = 0; k < numLines; ++k) _to[static_cast<std::size_t>(k)] = prepared.line(slice, k) + begin;
      _filters.acrossLines.across(_from.data(), numLines, std::min(tileWidth, width - begin), _to.data());
    }
  }

  const SliceView<T>& _image;
  const LineFilters<A>& _filters;
  Vector<A> _padded;
  bool _isFlat;
  Matrix<A> _lines;
  std::vector<const A*> _from;
  std::vector<A*> _to;
};

/// Filters across slices and stores the results; what a thread needs for it.
template <class T, class A> class SliceCombination
{
public:
  SliceCombination(const SliceView<T>& image, const LineFilter<A>& filter, Real<A> scale, int batch)
    : _image(image),
      _filter(filter),
      _scale(scale),
      _results(batch, spreadSize<A>(largestTileWidth)),
      _from(static_cast<std::size_t>(batch) + 2 * static_cast<std::size_t>(filter.radius()))
  {
    for (int k = 0; k < batch; ++k) _to.push_back(_results[k].data());
  }

  void operator()(int first, int count, int line, int begin, int end, PreparedSlices<A>& prepared)
  {
    const int radius = _filter.radius();
    for (int k = 0; k < count + 2 * radius; ++k)
      _from[static_cast<std::size_t>(k)] = prepared.line(first - radius + k, line) + begin;
    _filter.across(_from.data(), count, end - begin, _to.data());
    for (int k = 0; k < count; ++k)
      store(_results[k].data(), end - begin, _scale, _image.line(first + k, line) + begin);
  }

private:
  const SliceView<T>& _image;
  const LineFilter<A>& _filter;
  Real<A> _scale;
  Matrix<A> _results;
  std::vector<const A*> _from;
  std::vector<A*> _to;
};

/// Leaves room for the neighbours beyond both ends of each axis.
template <class T> void requireSmallSides(const SliceView<T>& image)
{
  constexpr int largestSize = std::numeric_limits<int>::max() - 2 * largestRadius - 2 * largestTileWidth;
  if (std::max({image.width(), image.numLines(), image.numSlices()}) > largestSize)
    throw SizeError("void filterSeparably(const SliceView<T>&, const LineFilters<A>&, Real<A>, ProgressSubject&)",
                    "The image is too long to be filtered");
}

/// Slices that are made at once: enough for all threads, and a multiple of the filter's period.
template <class T, class A> int batchSize(const SliceView<T>& image, const LineFilter<A>& filter)
{
  constexpr long fewestElements = 1 << 16;
  const long sliceSize = static_cast<long>(image.width()) * image.numLines();
  const long wanted = std::clamp(fewestElements / sliceSize, 8L, 64L);
  const long batch = (wanted + filter.period() - 1) / filter.period() * filter.period();
  return static_cast<int>(std::min<long>(batch, image.numSlices()));
}
} // namespace

template <class T, class A>
void filterSeparably(const SliceView<T>& image, const LineFilters<A>& filters, Real<A> scale, ProgressSubject& subject)
{
  requireSmallSides(image);
  const int batch = batchSize(image, filters.acrossSlices), numThreads = omp_get_max_threads();
  std::vector<SlicePreparation<T, A>> preparations;
  std::vector<SliceCombination<T, A>> combinations;
  for (int thread = 0; thread < numThreads; ++thread)
  {
    preparations.emplace_back(image, filters);
    combinations.emplace_back(image, filters.acrossSlices, scale, batch);
  }
  const auto at = [](auto& perThread, int thread) -> auto&
  {
    return perThread[static_cast<std::size_t>(thread)];
  };
  sweepSlices<A>(
      image, filters.acrossSlices.radius(), batch, subject,
      [&](int slice, int thread, PreparedSlices<A>& prepared) { at(preparations, thread)(slice, prepared); },
      [&](int first, int count, int line, int begin, int end, int thread, PreparedSlices<A>& prepared)
      { at(combinations, thread)(first, count, line, begin, end, prepared); });
}

#define IMAGE_INSTANTIATE_SEPARABLE(T, A)                                                                              \
  template void filterSeparably(const SliceView<T>&, const LineFilters<A>&, Real<A>, ProgressSubject&);
IMAGE_FOR_EACH_CONVERSION(IMAGE_INSTANTIATE_SEPARABLE)
