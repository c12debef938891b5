#include "image/filters/separablefilter.h"

#include "image/filters/elementconversion.h"
#include "image/filters/slicepreparation.h"
#include "image/filters/slicesweep.h"
#include "numeric/targetclones.h"

#include <limits>

namespace
{
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

/// Filters across slices and stores the results; what a thread needs for it.
template <class T, class A, class S> class SliceCombination
{
public:
  SliceCombination(const SliceView<T>& image, const LineFilter<A, S>& filter, Real<A> scale, int batch)
    : _image(image),
      _filter(filter),
      _scale(scale),
      _results(batch, spreadSize<A>(largestTileWidth)),
      _from(static_cast<std::size_t>(batch) + 2 * static_cast<std::size_t>(filter.radius()))
  {
    for (int k = 0; k < batch; ++k) _to.push_back(_results[k].data());
  }

  void operator()(int first, int count, int line, int begin, int end, PreparedSlices<S>& prepared)
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
  const LineFilter<A, S>& _filter;
  Real<A> _scale;
  Matrix<A> _results;
  std::vector<const S*> _from;
  std::vector<A*> _to;
};

/// Slices that are made at once: enough for all threads, and a multiple of the filter's period.
template <class T, class A, class S> int batchSize(const SliceView<T>& image, const LineFilter<A, S>& filter)
{
  constexpr long fewestElements = 1 << 16;
  const long sliceSize = static_cast<long>(image.width()) * image.numLines();
  const long wanted = std::clamp(fewestElements / sliceSize, 8L, 64L);
  const long batch = (wanted + filter.period() - 1) / filter.period() * filter.period();
  return static_cast<int>(std::min<long>(batch, image.numSlices()));
}
/// Filters within slices, into the place where they are kept; what a thread needs for it.
template <class T, class A, class S> class KeptPreparation
{
public:
  KeptPreparation(const SliceView<T>& image, const LineFilters<A, S>& filters)
    : _image(image),
      _scale(filters.scaleOfKept),
      _preparation(image.numLines(), image.width(), filters.alongColumns, filters.acrossLines),
      _slice(isConverted ? image.numLines() : 0, spreadSize<A>(image.width()))
  {
  }

  void operator()(int slice, PreparedSlices<S>& prepared)
  {
    const int width = _image.width();
    const auto loadLine = [&](int line, A* to) { load(_image.line(slice, line), width, to); };
    if constexpr (isConverted)
    {
      _preparation(loadLine, [&](int line) { return _slice[line].data(); });
      for (int line = 0; line < _image.numLines(); ++line)
        store(_slice[line].data(), width, _scale, prepared.line(slice, line));
    }
    else
      _preparation(loadLine, [&](int line) { return prepared.line(slice, line); });
  }

private:
  static constexpr bool isConverted = !std::is_same_v<A, S>;

  const SliceView<T>& _image;
  Real<A> _scale;
  SlicePreparation<A> _preparation;
  Matrix<A> _slice; // before it is converted
};
} // namespace

template <class T, class A, class S> void filterSeparably(const SliceView<T>& image, const LineFilters<A, S>& filters,
                                                          Real<A> scale, ProgressSubject& subject)
{
  requireSmallSides(image);
  const int batch = batchSize(image, filters.acrossSlices), numThreads = omp_get_max_threads();
  std::vector<KeptPreparation<T, A, S>> preparations;
  std::vector<SliceCombination<T, A, S>> combinations;
  for (int thread = 0; thread < numThreads; ++thread)
  {
    preparations.emplace_back(image, filters);
    combinations.emplace_back(image, filters.acrossSlices, scale, batch);
  }
  const auto at = [](auto& perThread, int thread) -> auto&
  {
    return perThread[static_cast<std::size_t>(thread)];
  };
  sweepSlices<S>(
      image, filters.acrossSlices.radius(), batch, subject,
      [&](int slice, int thread, PreparedSlices<S>& prepared) { at(preparations, thread)(slice, prepared); },
      [&](int first, int count, int line, int begin, int end, int thread, PreparedSlices<S>& prepared)
      { at(combinations, thread)(first, count, line, begin, end, prepared); });
}

#define IMAGE_INSTANTIATE_SEPARABLE(T, A)                                                                              \
  template void filterSeparably(const SliceView<T>&, const LineFilters<A, A>&, Real<A>, ProgressSubject&);
IMAGE_FOR_EACH_CONVERSION(IMAGE_INSTANTIATE_SEPARABLE)
template void filterSeparably(const SliceView<float>&, const LineFilters<double, float>&, double, ProgressSubject&);
