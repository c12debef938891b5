// Where the canvas places the slices, and what a turn by the mouse amounts to.
#include "registration/nyxregistrationgeometry.h"

#include "geometry/reconstruction/stackreconstruction.h"
#include "tests/support/stacks.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace
{
/// Where the reconstruction puts pixel (u, v), x to the right and y upwards.
QPointF placed(const StackReconstruction<double>& reconstruction, int slice, double u, double v)
{
  const Vector<double>& m = reconstruction.getMap(slice);
  return {m[0] * u + m[1] * v + m[2], m[3] * u + m[4] * v + m[5]};
}
} // namespace

TEST(RegistrationGeometry, PlacesSlicesAsTheReconstructionDoes)
{
  const NYXSliceFrame previous = {QSize(90, 41), 0.5, 1.25}, slice = {QSize(60, 70), 0.8, 2};
  const Registration registration(7, -4, 33.3F);
  Stack stack;
  setPixelSize(addSlice(stack, 90, 41), 0.5, 1.25);
  setPixelSize(addSlice(stack, 60, 70, registration), 0.8F, 2);
  const StackReconstruction<double> reconstruction(stack);
  const QTransform ofSlice = placement(slice, registration), ofPrevious = placementOfPrevious(slice, previous);
  for (const auto& [u, v] : {std::pair{0, 0}, {60, 0}, {13, 57}, {-5, 70}})
  {
    // The same place of the frame must be the same place in space, as far as the slice before is concerned.
    const QPointF place = ofSlice.map(QPointF(u, v));
    const QPointF pixel = ofPrevious.inverted().map(place);
    const QPointF expected = placed(reconstruction, 1, u, v), actual = placed(reconstruction, 0, pixel.x(), pixel.y());
    EXPECT_NEAR(actual.x(), expected.x(), 1e-4);
    EXPECT_NEAR(actual.y(), expected.y(), 1e-4);
  }
  EXPECT_EQ(placement(slice, Registration()).map(QPointF(3, 4)), QPointF(3, 4));
  EXPECT_EQ(placement(slice, registration).map(slice.center()), QPointF(37, 31)); // half the size plus the shifts
  EXPECT_TRUE(placementOfPrevious({QSize(10, 10), 0, 0}, previous).isInvertible());
}

TEST(RegistrationGeometry, AnglesAreCutToTheirPrecision)
{
  const struct
  {
    double degrees, expected;
  } cases[] = {
      {0, 0},
      {359.96, 359.9},
      {-0.05, 359.9},
      {12.39, 12.3},
      {0.0999, 0},
      {360, 0},
      {-360, 0},
      {720.15, 0.1},
      {-3.01, 356.9},
      {std::numeric_limits<double>::quiet_NaN(), 0},
      {std::numeric_limits<double>::infinity(), 0},
  };
  for (const auto& c : cases) EXPECT_DOUBLE_EQ(actualAngle(c.degrees), c.expected) << c.degrees;
  for (int i = 0; i < 3600; ++i) // what a registration holds of a multiple stays that multiple
    ASSERT_DOUBLE_EQ(actualAngle(static_cast<double>(static_cast<float>(i / 10.0))), i / 10.0);
}

TEST(RegistrationGeometry, PositionsAreRoundedHalvesUp)
{
  EXPECT_EQ(roundedPosition({2.5, -2.5}), QPoint(3, -2));
  EXPECT_EQ(roundedPosition({2.49, -2.51}), QPoint(2, -3));
}

TEST(RegistrationGeometry, TurnsAreClockwiseOnTheScreen)
{
  EXPECT_NEAR(angleBetween({10, 10}, {20, 10}, {10, 20}), 90, 1e-12);
  EXPECT_NEAR(angleBetween({10, 10}, {20, 10}, {20, 0}), -45, 1e-12);
  EXPECT_NEAR(angleBetween({10, 10}, {10, 10}, {10, 10}), 0, 1e-12); // on the centre there is no direction
}
