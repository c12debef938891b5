#include "image/filters/runningsums.h"

#include "image/filters/elementconversion.h"
#include "image/filters/slicepreparation.h"
#include "numeric/targetclones.h"

namespace
{
template <class T, class A>
__attribute__((always_inline)) inline void subtractElements(const T* a, const T* b, long n, A* to)
{
  for (long j = 0; j < n; ++j) to[j] = static_cast<A>(a[j]) - static_cast<A>(b[j]);
}

template <class T, class A>
__attribute__((always_inline)) inline void addMultiple(const T* x, A weight, long n, A* sums)
{
  for (long j = 0; j < n; ++j) sums[j] += weight * static_cast<A>(x[j]);
}

template <class T, class A>
__attribute__((always_inline)) inline void addAndStore(const A* changes, long n, Real<A> scale, A* sums, T* to)
{
  for (long j = 0; j < n; ++j) sums[j] += changes[j];
  scaleAndRound(sums, n, scale, to);
}

#define IMAGE_RUNNING_KERNELS(T, A)                                                                                    \
  MIRELO_TARGET_CLONES void loadDifference(const T* a, const T* b, long n, A* to)                                      \
  {                                                                                                                    \
    subtractElements(a, b, n, to);                                                                                     \
  }                                                                                                                    \
  MIRELO_TARGET_CLONES void addWeighted(const T* x, A weight, long n, A* sums)                                         \
  {                                                                                                                    \
    addMultiple(x, weight, n, sums);                                                                                   \
  }                                                                                                                    \
  MIRELO_TARGET_CLONES void advance(const A* changes, long n, Real<A> scale, A* sums, T* to)                           \
  {                                                                                                                    \
    addAndStore(changes, n, scale, sums, to);                                                                          \
  }

#define IMAGE_FOR_EACH_SUM(MACRO)                                                                                      \
  MACRO(char, int)                                                                                                     \
  MACRO(unsigned char, int)                                                                                            \
  MACRO(short, int)                                                                                                    \
  MACRO(unsigned short, int)                                                                                           \
  MACRO(char, double)                                                                                                  \
  MACRO(unsigned char, double)                                                                                         \
  MACRO(short, double)                                                                                                 \
  MACRO(unsigned short, double)                                                                                        \
  MACRO(int, double)                                                                                                   \
  MACRO(unsigned int, double)

IMAGE_FOR_EACH_SUM(IMAGE_RUNNING_KERNELS)

/// Goes through the slices of an image in batches, one or more slices per thread.
template <class T, class A> class RunningSums
{
public:
  RunningSums(const SliceView<T>& image, const LineFilter<A>& alongColumns, const LineFilter<A>& acrossLines,
              int radius, Real<A> scale)
    : _image(image),
      _radius(radius),
      _scale(scale),
      _batch(batchSize()),
      _kept(image.numLines(), image.width(), std::min(image.numSlices(), radius + 1)),
      _changes(image.numLines() | 1, spreadSize<A>(image.width()), _batch),
      _sums(image.numLines(), spreadSize<A>(image.width()))
  {
    for (int thread = 0; thread < omp_get_max_threads(); ++thread)
      _preparations.emplace_back(image.numLines(), image.width(), alongColumns, acrossLines);
  }

  void apply(ProgressSubject& subject)
  {
    const int numSlices = _image.numSlices(), width = _image.width();
    const int numTiles = (width + largestTileWidth - 1) / largestTileWidth;
    const ProgressStep step(subject, "Filtering", numSlices);
    sumBeforeFirst();
    for (int first = 0; first < numSlices && !subject.isCancelled(); first += _batch)
    {
      const int count = std::min(_batch, numSlices - first);
#pragma omp parallel
      {
#pragma omp for schedule(dynamic)
        for (int d = 0; d < count; ++d) computeChange(first, d);
#pragma omp for schedule(dynamic, 4) collapse(2)
        for (int line = 0; line < _image.numLines(); ++line)
          for (int tile = 0; tile < numTiles; ++tile)
            advanceTile(first, count, line, tile * largestTileWidth, std::min(width, (tile + 1) * largestTileWidth));
      }
      subject.progress(first + count);
    }
  }

private:
  /// As many slices as give the threads enough to do, as long as what is kept of them is small beside the image.
  int batchSize() const
  {
    constexpr long fewestElements = 1 << 16, partOfImage = 8;
    const long sliceSize = static_cast<long>(_image.width()) * _image.numLines();
    const long wanted = std::clamp(fewestElements / sliceSize, 8L, 64L);
    const long affordable =
        _image.numSlices() * static_cast<long>(sizeof(T)) / (partOfImage * static_cast<long>(sizeof(A)));
    const long numThreads = omp_get_max_threads();
    return static_cast<int>(std::min<long>(std::max(numThreads, std::min(wanted, affordable)), _image.numSlices()));
  }

  SlicePreparation<A>& preparation()
  {
    return _preparations[static_cast<std::size_t>(omp_get_thread_num())];
  }

  /// How often the window around the slice before the first one meets this slice.
  int weightBeforeFirst(int slice) const
  {
    const int first = slice == 0 ? -_radius - 1 : slice;
    const int last = slice == _image.numSlices() - 1 ? _radius - 1 : std::min(slice, _radius - 1);
    return std::max(0, last - first + 1);
  }

  void sumBeforeFirst()
  {
    const int numMet = std::clamp(_radius, 1, _image.numSlices()), width = _image.width();
#pragma omp parallel for
    for (int line = 0; line < _image.numLines(); ++line)
    {
      A* const sums = _sums[line].data();
      std::fill_n(sums, width, A(0));
      for (int slice = 0; slice < numMet; ++slice)
        addWeighted(_image.line(slice, line), static_cast<A>(weightBeforeFirst(slice)), width, sums);
    }
    preparation()([&](int line, A* x) { std::copy_n(_sums[line].data(), width, x); },
                  [&](int line) { return _sums[line].data(); });
  }

  /// The line of a slice before the batch that begins with `first` was changed.
  const T* original(int slice, int line, int first)
  {
    const int inside = std::clamp(slice, 0, _image.numSlices() - 1);
    return inside < first ? _kept[inside % _kept.getSize3()][line].data() : _image.line(inside, line);
  }

  void computeChange(int first, int d)
  {
    const int entering = static_cast<int>(std::min<long>(long{first} + d + _radius, _image.numSlices() - 1));
    const int leaving = first + d - _radius - 1;
    preparation()(
        [&](int line, A* x)
        { loadDifference(original(entering, line, first), original(leaving, line, first), _image.width(), x); },
        [&](int line) { return _changes[d][line].data(); });
  }

  void advanceTile(int first, int count, int line, int begin, int end)
  {
    for (int d = 0; d < count; ++d)
    {
      T* const x = _image.line(first + d, line) + begin;
      std::copy_n(x, end - begin, _kept[(first + d) % _kept.getSize3()][line].data() + begin);
      advance(_changes[d][line].data() + begin, end - begin, _scale, _sums[line].data() + begin, x);
    }
  }

  const SliceView<T>& _image;
  int _radius;
  Real<A> _scale;
  int _batch;
  VoxelMatrix<T> _kept;    // slice s in plane s modulo their number
  VoxelMatrix<A> _changes; // of the sums, from slice to slice of the batch
  Matrix<A> _sums;         // of the slice made last
  std::vector<SlicePreparation<A>> _preparations;
};
} // namespace

template <class T, class A> void sumAcrossSlices(const SliceView<T>& image, const LineFilter<A>& alongColumns,
                                                 const LineFilter<A>& acrossLines, int radius, Real<A> scale,
                                                 ProgressSubject& subject)
{
  requireSmallSides(image);
  RunningSums<T, A>(image, alongColumns, acrossLines, radius, scale).apply(subject);
}

#define IMAGE_INSTANTIATE_SUM(T, A)                                                                                    \
  template void sumAcrossSlices(const SliceView<T>&, const LineFilter<A>&, const LineFilter<A>&, int, Real<A>,         \
                                ProgressSubject&);
IMAGE_FOR_EACH_SUM(IMAGE_INSTANTIATE_SUM)
