#include "image/filters/meanfilter.h"

#include "image/filters/runningsums.h"
#include "image/filters/separablefilter.h"
#include "numeric/targetclones.h"

#include <limits>

namespace
{
/// out[d] = lines[d] + ... + lines[d + size - 1], for d < count <= size: the sum of the last lines of one block of
/// `size` lines and of the first ones of the next block. Nothing is subtracted, so that no element has an effect beyond
/// its window, be it infinite or NaN.
/// Source: the block scheme of van Herk, "A fast algorithm for local minimum and maximum filters", 1992.
template <class A, class S>
__attribute__((always_inline)) inline void addBlock(const S* const* lines, int size, int count, long n, A* const* out)
{
  constexpr int lanes = 16;
  long j = 0;
  const auto addColumns = [&](auto numLanes)
  {
    A sums[numLanes] = {};
    for (int d = size - 1; d >= 0; --d)
    {
      for (int k = 0; k < numLanes; ++k) sums[k] += lines[d][j + k];
      for (int k = 0; d < count && k < numLanes; ++k) out[d][j + k] = sums[k];
    }
    A more[numLanes] = {};
    for (int d = 1; d < count; ++d)
      for (int k = 0; k < numLanes; ++k)
      {
        more[k] += lines[size + d - 1][j + k];
        out[d][j + k] += more[k];
      }
  };
  for (; j + lanes <= n; j += lanes) addColumns(std::integral_constant<int, lanes>());
  for (; j < n; ++j) addColumns(std::integral_constant<int, 1>());
}

/// out[j] = x[j] + ... + x[j + size - 1] for j < n, from sums of 1, 2, 4, ... elements, which replace x.
template <class A> __attribute__((always_inline)) inline void addNext(A* x, int size, long n, A* out)
{
  std::fill_n(out, n, A(0));
  long numAdded = 0;
  for (long width = 1; width <= size; width *= 2)
  {
    if (size & width)
    {
      for (long j = 0; j < n; ++j) out[j] += x[j + numAdded];
      numAdded += width;
    }
    for (long j = 0; 2 * width <= size && j <= n + size - 1 - 2 * width; ++j) x[j] += x[j + width];
  }
}

#define IMAGE_ACROSS_KERNELS(A, S)                                                                                     \
  MIRELO_TARGET_CLONES void sumAcross(const S* const* lines, int size, int count, long n, A* const* out)               \
  {                                                                                                                    \
    addBlock(lines, size, count, n, out);                                                                              \
  }                                                                                                                    \
  MIRELO_TARGET_CLONES void addOverhang(const S* first, const S* last, A count, long n, A* sums)                       \
  {                                                                                                                    \
    for (long j = 0; j < n; ++j) sums[j] += count * (static_cast<A>(first[j]) + static_cast<A>(last[j]));              \
  }
IMAGE_ACROSS_KERNELS(int, int)
IMAGE_ACROSS_KERNELS(double, double)
IMAGE_ACROSS_KERNELS(double, float)
IMAGE_ACROSS_KERNELS(long double, long double)

#define IMAGE_ALONG_KERNEL(A)                                                                                          \
  MIRELO_TARGET_CLONES void sumAlong(A* x, int size, long n, A* out)                                                   \
  {                                                                                                                    \
    addNext(x, size, n, out);                                                                                          \
  }
IMAGE_ALONG_KERNEL(int)
IMAGE_ALONG_KERNEL(double)
IMAGE_ALONG_KERNEL(long double)

/// Sums of `size` consecutive values on an axis of `length` values. What every window has beyond the farthest window
/// that an axis can fill is a multiple of the outermost values, and added as such.
template <class A, class S = A> class Sums : public LineFilter<A, S>
{
public:
  Sums(int size, int length) : _radius(std::min(size / 2, length - 1)), _overhang(size / 2 - _radius) {}

  int radius() const override { return _radius; }
  int period() const override { return 2 * _radius + 1; }
  void along(A* x, long n, A* out) const override
  {
    const A beyond = _overhang == 0 ? A(0) : static_cast<A>(_overhang) * (x[0] + x[n - 1 + 2 * _radius]);
    sumAlong(x, period(), n, out);
    for (long j = 0; _overhang > 0 && j < n; ++j) out[j] += beyond;
  }
  void across(const S* const* lines, int count, long n, A* const* out) const override
  {
    for (int d = 0; d < count; d += period()) sumAcross(lines + d, period(), std::min(period(), count - d), n, out + d);
    for (int d = 0; _overhang > 0 && d < count; ++d)
      addOverhang(lines[0], lines[count - 1 + 2 * _radius], static_cast<A>(_overhang), n, out[d]);
  }

private:
  int _radius;
  int _overhang; // elements that are still missing on either side
};

/// Sums in type A over boxes of these sizes, divided by the number of elements.
template <class A, class T>
void filterInType(const SliceView<T>& image, const int (&sizes)[3], double numElements, ProgressSubject& subject)
{
  using Axis = typename SliceView<T>::Axis;
  const auto sumsAlong = [&](Axis axis) { return Sums<A>(sizes[axis], image.size(axis)); };
  const Sums<A> alongColumns = sumsAlong(SliceView<T>::Columns), acrossLines = sumsAlong(image.lineAxis());
  const auto scale = 1 / static_cast<Real<A>>(numElements);
  const Axis sliceAxis = image.sliceAxis();
  if constexpr (std::is_integral_v<T>)
    sumAcrossSlices<T, A>(image, alongColumns, acrossLines, sizes[sliceAxis] / 2, scale, subject);
  else
  {
    const Sums<A, T> acrossSlices(sizes[sliceAxis], image.size(sliceAxis));
    const auto scaleOfKept = std::is_same_v<A, T> ? 1 : scale * sizes[sliceAxis];
    filterSeparably<T, A, T>(image, {alongColumns, acrossLines, acrossSlices, scaleOfKept}, scale / scaleOfKept,
                             subject);
  }
}
} // namespace

template <class T> void MeanFilter<T>::setSize(int rows, int columns, int planes)
{
  for (const int size : {rows, columns, planes})
    if (size < 1 || size % 2 == 0 || size / 2 > largestRadius)
      throw ValueError("void MeanFilter<T>::setSize(int, int, int)",
                       "The size of a mean filter must be odd and from 1 to " + std::to_string(2 * largestRadius + 1));
  _sizes[0] = rows;
  _sizes[1] = columns;
  _sizes[2] = planes;
}

template <class T> int MeanFilter<T>::numSlicesKept(const SliceView<T>& image) const
{
  const int size = _sizes[image.sliceAxis()];
  return std::is_integral_v<T> ? size / 2 + 1 : 2 * size; // those yet to leave; a window around each slice of a batch
}

template <class T> int MeanFilter<T>::bytesPerPixelKept() const
{
  return sizeof(T);
}

template <class T> void MeanFilter<T>::filter(const SliceView<T>& image)
{
  int sizes[3];
  double numElements = 1;
  for (const auto axis : {SliceView<T>::Rows, SliceView<T>::Columns, SliceView<T>::Planes})
  {
    sizes[axis] = image.size(axis) == 1 ? 1 : _sizes[axis]; // the mean of equal elements is each of them
    numElements *= sizes[axis];
  }
  if constexpr (sizeof(T) <= 2)
  {
    const double largestSum = -numElements * std::numeric_limits<T>::lowest();
    if (std::max(largestSum, numElements * std::numeric_limits<T>::max()) < std::numeric_limits<int>::max())
      return filterInType<int>(image, sizes, numElements, *this);
  }
  filterInType<std::conditional_t<std::is_same_v<T, long double>, long double, double>>(image, sizes, numElements,
                                                                                        *this);
}

IMAGE_INSTANTIATE(MeanFilter)

extern const FilterKind meanFilterKind = filterKind<MeanFilter>("mean", FilterOption::Size);
