#pragma once

#include <cstddef>
#include <limits>

/// Smallest and largest of the finite numbers met so far; before the first one, `low` is above `high`.
template <class T> struct FiniteRange
{
  T low = std::numeric_limits<T>::max();
  T high = std::numeric_limits<T>::lowest();

  void extend(const T* values, std::size_t n)
  {
    constexpr T least = std::numeric_limits<T>::lowest(), greatest = std::numeric_limits<T>::max();
    for (std::size_t i = 0; i < n; ++i) // infinities are below the least or above the greatest, NaN neither
    {
      low = values[i] < low && values[i] >= least ? values[i] : low;
      high = values[i] > high && values[i] <= greatest ? values[i] : high;
    }
  }
};
