#include "analysis/spatial/distancecounts.h"

#include "analysis/spatial/pairdistances.h"
#include "numeric/exception.h"

#include <algorithm>
#include <array>
#include <cmath>

template <class T> DistanceCounts<T>::DistanceCounts(T precision) : _precision(precision)
{
  if (!(precision > 0 && std::isfinite(precision)))
    throw ValueError("DistanceCounts<T>::DistanceCounts(T)", "The precision is not a positive number");
}

template <class T> void DistanceCounts<T>::add(std::span<const T> distances)
{
  const char* const where = "void DistanceCounts<T>::add(std::span<const T>)";
  constexpr std::size_t blockSize = 256;
  std::array<int, blockSize> indexes;
  const T limit = _precision * (maxGridSize - 1);
  while (!distances.empty())
  {
    const std::size_t count = std::min(distances.size(), blockSize);
    T largest = 0;
    bool isUsable = true;
    for (std::size_t i = 0; i < count; ++i)
    {
      isUsable &= distances[i] >= 0 && distances[i] <= limit; // NaN is not
      largest = std::max(largest, distances[i]);
    }
    if (!isUsable)
      throw ValueError(where,
                       "A distance is no number or more than " + std::to_string(maxGridSize) + " times the precision");
    _largest = std::max(_largest, largest);
    if (const auto size = static_cast<std::size_t>(largest / _precision) + 3; _counts.size() < size)
      _counts.resize(size, 0);
    gridIndexes(distances.data(), static_cast<int>(count), _precision, indexes.data());
    for (std::size_t i = 0; i < count; ++i) ++_counts[static_cast<std::size_t>(indexes[i])];
    _numDistances += static_cast<std::int64_t>(count);
    distances = distances.subspan(count);
  }
}

template <class T> int DistanceCounts<T>::getGridSize() const
{
  int last = 0; // smallest j with j p >= the largest distance
  gridIndexes(&_largest, 1, _precision, &last);
  return static_cast<T>(last) * _precision > _largest ? last : last + 1;
}

template <class T> std::vector<T> DistanceCounts<T>::cdf() const
{
  if (_numDistances == 0) return {1};
  std::vector<T> result;
  std::int64_t sum = 0;
  for (std::size_t j = 0; sum < _numDistances; ++j)
  {
    sum += _counts[j];
    result.push_back(static_cast<T>(sum) / static_cast<T>(_numDistances));
  }
  return result;
}

GEOMETRY_INSTANTIATE_REAL(DistanceCounts)
