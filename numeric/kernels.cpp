#include "numeric/kernels.h"

#include "numeric/targetclones.h"

#include <algorithm>
#include <cmath>

namespace
{
/// Finds the bin of a value.
///
/// The definition is a bisection over the bins' lower edges origin + k width, computed in T for floating-point types
/// and exactly for integers. For edges that do not decrease its result is the last bin whose lower edge is not above
/// the value, or bin 0; arithmetic guesses that bin, and a guess that the edges do not confirm is replaced by the
/// bisection's result.
template <class T> class BinFinder
{
public:
  using Edge = std::conditional_t<std::is_same_v<T, long>, Kernels::WideInteger,
                                  std::conditional_t<std::is_integral_v<T>, long, T>>;

  BinFinder(T origin, T width, int numBins)
    : _origin(origin), _width(width), _inverseWidth(1 / static_cast<Real<T>>(width)), _numBins(numBins)
  {
  }

  /// Whether bins can be guessed: edges that increase, indices that Real<T> holds exactly.
  bool canGuess() const
  {
    constexpr int exactInFloat = 1 << 24;
    return _width > 0 && std::isfinite(_inverseWidth) && std::isfinite(static_cast<Real<T>>(_origin)) &&
           _numBins <= exactInFloat;
  }

  int bisect(T value) const
  {
    int lower = 0, upper = _numBins;
    while (upper > lower + 1)
    {
      const int middle = lower + (upper - lower) / 2;
      (edge(middle) > value ? upper : lower) = middle;
    }
    return lower;
  }

  /// The bins of n elements, -1 where the edges do not confirm them. Two plain loops without branches over local
  /// values, so that the compiler vectorises them.
  __attribute__((always_inline)) void guess(const T* x, std::size_t n, int* bins) const
  {
    const Real<T> origin = static_cast<Real<T>>(_origin), scale = _inverseWidth;
    const Real<T> last = static_cast<Real<T>>(_numBins - 1);
    for (std::size_t i = 0; i < n; ++i)
    {
      Real<T> position = (static_cast<Real<T>>(x[i]) - origin) * scale;
      position = position > 0 ? position : Real<T>(0); // also for NaN
      bins[i] = static_cast<int>(position < last ? position : last);
    }
    confirm(x, n, bins);
  }

private:
  __attribute__((always_inline)) void confirm(const T* x, std::size_t n, int* bins) const
  {
    const BinFinder finder(*this);
    const int last = _numBins - 1;
    for (std::size_t i = 0; i < n; ++i)
    {
      const int bin = bins[i];
      const bool isNotLower = (bin == 0) | !(finder.edge(bin) > x[i]);
      const bool isNotHigher = (bin == last) | (finder.edge(bin + 1) > x[i]);
      bins[i] = (isNotLower & isNotHigher) ? bin : -1;
    }
  }

  __attribute__((always_inline)) Edge edge(int k) const
  {
    return static_cast<Edge>(_origin) + static_cast<Edge>(k) * static_cast<Edge>(_width);
  }

  T _origin;
  T _width;
  Real<T> _inverseWidth;
  int _numBins;
};

template <class T> void guessBins(const BinFinder<T>& finder, const T* x, std::size_t n, int* bins)
{
  finder.guess(x, n, bins);
}

template <>
MIRELO_TARGET_CLONES void guessBins(const BinFinder<float>& finder, const float* x, std::size_t n, int* bins)
{
  finder.guess(x, n, bins);
}

template <>
MIRELO_TARGET_CLONES void guessBins(const BinFinder<double>& finder, const double* x, std::size_t n, int* bins)
{
  finder.guess(x, n, bins);
}

/// Finds the bins of n elements.
template <class T> void findBins(const BinFinder<T>& finder, const T* x, std::size_t n, int* bins)
{
  guessBins(finder, x, n, bins);
  int signs = 0;
  for (std::size_t i = 0; i < n; ++i) signs |= bins[i];
  if (signs >= 0) return;
  for (std::size_t i = 0; i < n; ++i)
    if (bins[i] < 0) bins[i] = finder.bisect(x[i]);
}

/// Calls add(i, bin) for every element.
template <class T, class Add> void forEachBin(const T* x, std::size_t n, const BinFinder<T>& finder, const Add& add)
{
  constexpr std::size_t block = 1024;
  int bins[block];
  const bool canGuess = finder.canGuess();
  for (std::size_t first = 0; first < n; first += block)
  {
    const std::size_t size = std::min(block, n - first);
    if (canGuess)
      findBins(finder, x + first, size, bins);
    else
      std::transform(x + first, x + first + size, bins, [&finder](T value) { return finder.bisect(value); });
    for (std::size_t i = 0; i < size; ++i) add(first + i, bins[i]);
  }
}

/// The best of the elements that are not NaN.
template <class T, class IsBetter> T bestOf(const T* x, std::size_t n, IsBetter isBetter)
{
  std::size_t i = 0;
  if constexpr (std::is_floating_point_v<T>)
    while (i + 1 < n && std::isnan(x[i])) ++i;
  T best = x[i];
  for (; i < n; ++i) best = isBetter(x[i], best) ? x[i] : best;
  return best;
}
} // namespace

template <class T> T Kernels::smallest(const T* x, std::size_t n)
{
  return bestOf(x, n, [](T a, T b) { return a < b; });
}

template <class T> T Kernels::largest(const T* x, std::size_t n)
{
  return bestOf(x, n, [](T a, T b) { return a > b; });
}

template <class T>
void Kernels::countInBins(const T* x, std::size_t n, T origin, T width, int numBins, unsigned int* counts)
{
  forEachBin(x, n, BinFinder<T>(origin, width, numBins), [counts](std::size_t, int bin) { ++counts[bin]; });
}

template <class T>
void Kernels::addToBins(const T* x, const T* weights, std::size_t n, T origin, T width, int numBins, T* sums)
{
  forEachBin(x, n, BinFinder<T>(origin, width, numBins),
             [weights, sums](std::size_t i, int bin) { sums[bin] = sumOfTwo(sums[bin], weights[i]); });
}

#define NUMERIC_INSTANTIATE_KERNELS(T)                                                                                 \
  template T Kernels::smallest(const T*, std::size_t);                                                                 \
  template T Kernels::largest(const T*, std::size_t);                                                                  \
  template void Kernels::countInBins(const T*, std::size_t, T, T, int, unsigned int*);                                 \
  template void Kernels::addToBins(const T*, const T*, std::size_t, T, T, int, T*);

NUMERIC_FOR_EACH_TYPE(NUMERIC_INSTANTIATE_KERNELS)
NUMERIC_INSTANTIATE_KERNELS(long)
