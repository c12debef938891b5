#pragma once

#include "numeric/elementtypes.h"
#include "numeric/maths.h"

#include <cmath>

// Small functions of vertices given by pointers to their coordinates, for loops over coordinate blocks.

/// Type in which long sums and products of coordinates are formed: double at least.
template <class T> using Wide = std::conditional_t<std::is_same_v<T, long double>, long double, double>;

/// Sum of the squared coordinate differences.
template <class T> Real<T> squaredDistance(const T* a, const T* b, int space)
{
  const auto square = [a, b](int k)
  {
    const Real<T> difference = static_cast<Real<T>>(a[k]) - static_cast<Real<T>>(b[k]);
    return difference * difference;
  };
  if (space == 3) return square(0) + square(1) + square(2);
  Real<T> sum = 0;
  for (int k = 0; k < space; ++k) sum += square(k);
  return sum;
}

template <class T> Real<T> distance(const T* a, const T* b, int space)
{
  return std::sqrt(squaredDistance(a, b, space));
}

/// The value as a coordinate; pixel coordinates are rounded.
template <class T> T toCoordinate(Real<T> value)
{
  if constexpr (std::is_integral_v<T>)
    return Maths::fround(value);
  else
    return value;
}
