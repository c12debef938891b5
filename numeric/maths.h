#pragma once

#include <cmath>
#include <concepts>
#include <limits>

/// Small functions of numbers.
namespace Maths
{
/// Nearest integer, halves away from zero; values beyond int become its nearest limit, NaN becomes 0.
template <std::floating_point T> int fround(T x)
{
  constexpr int lowest = std::numeric_limits<int>::min(), highest = std::numeric_limits<int>::max();
  const T rounded = std::round(x);
  if (!(rounded < -static_cast<T>(lowest)))
    return std::isnan(x) ? 0 : highest; // -lowest is exact, highest not in float
  return rounded <= static_cast<T>(lowest) ? lowest : static_cast<int>(rounded);
}
} // namespace Maths
