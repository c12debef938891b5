#include "analysis/spatial/distancesort.h"

#include "geometry/bufferallocator.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

namespace
{

constexpr std::size_t smallest = 4096; // number of values from which on a share of them in each bucket pays

/// Gives each value the number of its bucket, growing with the value.
template <class T> class Buckets
{
public:
  Buckets(std::span<const T> values, std::size_t count) : _last(count - 1)
  {
    const auto [low, high] = std::minmax_element(values.begin(), values.end());
    _low = *low;
    _scale = static_cast<T>(count) / (*high - *low);
  }
  /// Whether the values can be told apart by their buckets.
  bool areUsable() const { return std::isfinite(_scale); }
  std::size_t operator()(T value) const { return std::min(static_cast<std::size_t>((value - _low) * _scale), _last); }

private:
  T _low;
  T _scale;
  std::size_t _last;
};

/// Deals the values into buckets in the other block; returns where each bucket begins, and the end.
template <class T>
std::vector<std::size_t> deal(std::span<const T> values, std::span<T> dealt, const Buckets<T>& bucketOf, std::size_t n)
{
  std::vector<std::size_t> ends(n + 1, 0);
  for (const T value : values) ++ends[bucketOf(value) + 1];
  for (std::size_t i = 1; i <= n; ++i) ends[i] += ends[i - 1];
  std::vector<std::size_t> next(ends.begin(), ends.end() - 1);
  for (const T value : values) dealt[next[bucketOf(value)]++] = value;
  return ends;
}

template <class T> void insertionSort(std::span<T> values)
{
  for (std::size_t i = 1; i < values.size(); ++i)
  {
    const T value = values[i];
    std::size_t k = i;
    for (; k > 0 && value < values[k - 1]; --k) values[k] = values[k - 1];
    values[k] = value;
  }
}

/// Sorts from one block into another one of the same size, which fits into the cache.
template <class T> void sortInto(std::span<const T> values, std::span<T> sorted)
{
  constexpr std::size_t few = 16;
  if (values.empty()) return;
  const std::size_t numBuckets = std::max<std::size_t>(values.size() / 2, 1);
  const Buckets<T> bucketOf(values, numBuckets);
  if (!bucketOf.areUsable())
  {
    std::copy(values.begin(), values.end(), sorted.begin());
    std::sort(sorted.begin(), sorted.end());
    return;
  }
  const std::vector<std::size_t> begins = deal(values, sorted, bucketOf, numBuckets);
  for (std::size_t i = 0; i < numBuckets; ++i)
  {
    const std::span<T> bucket = sorted.subspan(begins[i], begins[i + 1] - begins[i]);
    if (bucket.size() <= few)
      insertionSort(bucket);
    else
      std::sort(bucket.begin(), bucket.end());
  }
}

template <class T> void sortByBuckets(std::span<T> values)
{
  constexpr std::size_t perBucket = 8192, maxBuckets = 1024;
  if (values.size() < smallest) return std::sort(values.begin(), values.end());
  const std::size_t numBuckets = std::clamp<std::size_t>(values.size() / perBucket, 1, maxBuckets);
  const Buckets<T> bucketOf(values, numBuckets);
  if (!bucketOf.areUsable()) return std::sort(values.begin(), values.end());
  BufferVector<T> dealt(values.size());
  const std::vector<std::size_t> begins = deal<T>(values, dealt, bucketOf, numBuckets);
#pragma omp parallel for schedule(dynamic, 16) if (numBuckets > 64)
  for (std::size_t i = 0; i < numBuckets; ++i)
  {
    const std::size_t size = begins[i + 1] - begins[i];
    sortInto<T>({dealt.data() + begins[i], size}, values.subspan(begins[i], size));
  }
}

} // namespace

void sortDistances(std::span<float> distances)
{
  sortByBuckets(distances);
}

void sortDistances(std::span<double> distances)
{
  sortByBuckets(distances);
}

void sortDistances(std::span<long double> distances)
{
  sortByBuckets(distances);
}
