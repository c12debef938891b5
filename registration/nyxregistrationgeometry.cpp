#include "registration/nyxregistrationgeometry.h"

#include <cmath>
#include <numbers>

namespace
{
constexpr double degree = std::numbers::pi / 180;
constexpr double finestAngle = 1e-4; // degrees; a float holds the angles of a circle more finely

/// A quotient of sizes of pixels; 1 when there is none.
double ratio(double a, double b)
{
  const double quotient = a / b;
  return std::isfinite(quotient) && quotient > 0 ? quotient : 1;
}

/// The linear map that takes `from` to `to`.
QTransform mapThrough(double m11, double m12, double m21, double m22, const QPointF& from, const QPointF& to)
{
  return QTransform(m11, m12, m21, m22, to.x() - m11 * from.x() - m21 * from.y(),
                    to.y() - m12 * from.x() - m22 * from.y());
}
} // namespace

QTransform placement(const NYXSliceFrame& slice, const Registration& registration)
{
  const double angle = static_cast<double>(registration.getAngle()) * degree;
  const double cosine = std::cos(angle);
  const double sine = std::sin(angle);
  const double aspect = ratio(slice.pixelHeight, slice.pixelWidth);
  const QPointF shift(registration.getHorizontalShift(), registration.getVerticalShift());
  return mapThrough(cosine, sine / aspect, -sine * aspect, cosine, slice.center(), slice.center() + shift);
}

QTransform placementOfPrevious(const NYXSliceFrame& slice, const NYXSliceFrame& previous)
{
  return mapThrough(ratio(previous.pixelWidth, slice.pixelWidth), 0, 0, ratio(previous.pixelHeight, slice.pixelHeight),
                    previous.center(), slice.center());
}

QPoint roundedPosition(const QPointF& position)
{
  return {static_cast<int>(std::floor(position.x() + 0.5)), static_cast<int>(std::floor(position.y() + 0.5))};
}

double actualAngle(double degrees)
{
  if (!std::isfinite(degrees)) return 0;
  const double inCircle = degrees - 360 * std::floor(degrees / 360);
  const double clean = std::round(inCircle / finestAngle) * finestAngle;
  const double steps = std::floor(clean / ImageRegistrationRotationPrecision + finestAngle);
  return steps < 360 / ImageRegistrationRotationPrecision ? steps / 10 : 0;
}

double angleBetween(const QPointF& center, const QPointF& from, const QPointF& to)
{
  const QPointF a = from - center;
  const QPointF b = to - center;
  return (std::atan2(b.y(), b.x()) - std::atan2(a.y(), a.x())) / degree;
}
