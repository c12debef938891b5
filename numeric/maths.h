#pragma once

#include <array>
#include <cmath>
#include <concepts>
#include <limits>
#include <numbers>

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

/// The angles in degrees about X, Y and Z whose rotation matrices make up this one as their product X Y Z; its rows one
/// after the other. Y lies within a quarter of a circle; where it is a whole quarter, Z is 0.
template <std::floating_point T> std::array<T, 3> decomposeRotationMatrix3D(const std::array<T, 9>& rotation)
{
  constexpr T degrees = 180 / std::numbers::pi_v<T>;
  const T sine = rotation[2], cosine = std::hypot(rotation[5], rotation[8]);
  const T y = std::atan2(sine, cosine) * degrees;
  if (cosine < 16 * std::numeric_limits<T>::epsilon()) return {std::atan2(rotation[7], rotation[4]) * degrees, y, T(0)};
  return {std::atan2(-rotation[5], rotation[8]) * degrees, y, std::atan2(-rotation[1], rotation[0]) * degrees};
}
} // namespace Maths
