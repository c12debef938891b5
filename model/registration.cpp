#include "model/registration.h"

#include <algorithm>
#include <cstdint>
#include <limits>

namespace
{
float correctedOnce(float angle)
{
  if (angle < 0) return angle + 360;
  return angle >= 360 ? angle - 360 : angle;
}

/// Shifts end at the range of integers.
int clamped(std::int64_t shift)
{
  return static_cast<int>(
      std::clamp<std::int64_t>(shift, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()));
}
} // namespace

Registration operator+(const Registration& a, const Registration& b)
{
  return Registration(clamped(std::int64_t{a.getHorizontalShift()} + b.getHorizontalShift()),
                      clamped(std::int64_t{a.getVerticalShift()} + b.getVerticalShift()),
                      correctedOnce(a.getAngle() + b.getAngle()));
}

Registration operator-(const Registration& a, const Registration& b)
{
  return Registration(clamped(std::int64_t{a.getHorizontalShift()} - b.getHorizontalShift()),
                      clamped(std::int64_t{a.getVerticalShift()} - b.getVerticalShift()),
                      correctedOnce(a.getAngle() - b.getAngle()));
}
