#include "image/histogram.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <type_traits>
#include <vector>

namespace
{
using Counts = std::vector<long>;

constexpr std::size_t blockSize = std::size_t{1} << 20; // elements that a thread counts at a time

template <class T> constexpr bool hasFewLevels = sizeof(T) <= 2;
template <class T> constexpr std::size_t numLevels = std::size_t{1} << (8 * sizeof(T));

/// Place of a grey level among all levels of its type: its bits read as an unsigned number.
template <class T> std::size_t levelIndex(T x)
{
  return static_cast<std::make_unsigned_t<T>>(x);
}

/// Adds the numbers of elements per grey level. Neighbouring pixels are often equal: tables of their own for each of
/// them keep one increment from waiting for the one before.
template <class T> void countLevels(std::span<const T> x, Counts& counts)
{
  constexpr std::size_t numTables = sizeof(T) == 1 ? 4 : 2;
  constexpr std::size_t stride = 8;
  auto tables = std::make_unique<std::array<std::array<std::uint32_t, numLevels<T>>, numTables>>();
  std::size_t i = 0;
  for (; i + stride <= x.size(); i += stride)
    for (std::size_t k = 0; k < stride; ++k) ++(*tables)[k % numTables][levelIndex(x[i + k])];
  for (; i < x.size(); ++i) ++counts[levelIndex(x[i])];
  for (const auto& table : *tables)
    for (std::size_t level = 0; level < table.size(); ++level) counts[level] += table[level];
}

void add(Counts& counts, const Vector<unsigned int>& more)
{
  for (int k = 0; k < more.getSize(); ++k) counts[static_cast<std::size_t>(k)] += more[k];
}

/// Adds the numbers of elements per bin, for types of too many levels to count each.
template <class T> void countBins(std::span<const T> x, Real<T> origin, Real<T> width, int count, Counts& counts)
{
  if constexpr (std::is_floating_point_v<T>)
    add(counts, Vector<T>(static_cast<int>(x.size()), const_cast<T*>(x.data())).histogram(origin, width, count));
  else
  {
    Vector<Real<T>> values(static_cast<int>(x.size()));
    std::ranges::copy(x, values.begin());
    add(counts, values.histogram(origin, width, count));
  }
}

/// Bins the counts of all levels of a type.
template <class T> Vector<long> binLevels(const Counts& counts, Real<T> origin, Real<T> width, int count)
{
  Vector<Real<T>> levels(static_cast<int>(counts.size())), weights(levels.getSize());
  for (std::size_t k = 0; k < counts.size(); ++k)
  {
    const auto i = static_cast<int>(k);
    levels[i] = static_cast<T>(k);
    weights[i] = static_cast<Real<T>>(counts[k]);
  }
  const Vector<Real<T>> sums = levels.histogram(origin, width, count, weights);
  Vector<long> binned(count);
  for (int k = 0; k < count; ++k) binned[k] = static_cast<long>(sums[k]);
  return binned;
}

/// Elements of an array, or those of them whose mask element is not 0, block by block.
template <class T> class Blocks
{
public:
  Blocks(const T* elements, const T* mask) : _elements(elements), _mask(mask) {}

  /// The counted ones of the `size` elements from `first` on; those that had to be gathered lie in the buffer.
  std::span<const T> get(std::size_t first, std::size_t size, std::vector<T>& buffer) const
  {
    if (!_mask) return {_elements + first, size};
    buffer.clear();
    for (std::size_t i = first; i < first + size; ++i)
      if (_mask[i] != T(0)) buffer.push_back(_elements[i]);
    return buffer;
  }

private:
  const T* _elements;
  const T* _mask; // nullptr: all elements count
};

/// Adds up count(elements, counts) over all blocks of n elements, each thread with counts of its own.
template <class T, class Count>
Counts countBlocks(const Blocks<T>& blocks, std::size_t n, std::size_t numCounts, const Count& count)
{
  Counts total(numCounts, 0);
  const auto numBlocks = static_cast<long>((n + blockSize - 1) / blockSize);
#pragma omp parallel if (numBlocks > 1)
  {
    Counts counts(numCounts, 0);
    std::vector<T> buffer;
#pragma omp for schedule(static) nowait
    for (long block = 0; block < numBlocks; ++block)
    {
      const std::size_t first = static_cast<std::size_t>(block) * blockSize;
      count(blocks.get(first, std::min(blockSize, n - first), buffer), counts);
    }
#pragma omp critical(histogram)
    std::transform(counts.begin(), counts.end(), total.begin(), total.begin(), std::plus<>());
  }
  return total;
}
} // namespace

template <class T>
Vector<long> histogramOf(const T* elements, const T* mask, std::size_t n, Real<T> origin, Real<T> width, int count)
{
  if (count < 1)
    throw ValueError("Vector<long> histogramOf(const T*, const T*, std::size_t, Real<T>, Real<T>, int)",
                     "A histogram needs at least one bin");
  const Blocks<T> blocks(elements, mask);
  if constexpr (hasFewLevels<T>)
    return binLevels<T>(countBlocks(blocks, n, numLevels<T>, countLevels<T>), origin, width, count);
  else
    return Vector<long>(countBlocks(blocks, n, static_cast<std::size_t>(count),
                                    [=](std::span<const T> x, Counts& counts)
                                    { countBins(x, origin, width, count, counts); }));
}

#define IMAGE_INSTANTIATE_HISTOGRAM(T)                                                                                 \
  template Vector<long> histogramOf(const T*, const T*, std::size_t, Real<T>, Real<T>, int);
IMAGE_FOR_EACH_TYPE(IMAGE_INSTANTIATE_HISTOGRAM)
