#include "model/registration.h"

namespace
{
float correctedOnce(float angle)
{
  if (angle < 0) return angle + 360;
  return angle >= 360 ? angle - 360 : angle;
}
} // namespace

Registration operator+(const Registration& a, const Registration& b)
{
  return Registration(a.getHorizontalShift() + b.getHorizontalShift(), a.getVerticalShift() + b.getVerticalShift(),
                      correctedOnce(a.getAngle() + b.getAngle()));
}

Registration operator-(const Registration& a, const Registration& b)
{
  return Registration(a.getHorizontalShift() - b.getHorizontalShift(), a.getVerticalShift() - b.getVerticalShift(),
                      correctedOnce(a.getAngle() - b.getAngle()));
}
