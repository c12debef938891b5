// Automatic alignment of slices, closing the loop: images of a specimen that was moved and turned are aligned, and
// placed by the maps of the reconstruction they must fall on each other.

#include "geometry/reconstruction/slicealignment.h"
#include "geometry/reconstruction/stackreconstruction.h"
#include "image/image.h"
#include "tests/support/errors.h"
#include "tests/support/specimens.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

namespace
{
constexpr double degree = std::numbers::pi / 180;

/// Difference of two angles in degrees, in [-180, 180).
double turnBetween(double a, double b)
{
  return a - b - 360 * std::floor((a - b + 180) / 360);
}

/// A place in lengths, x to the right, y upwards.
struct Place
{
  double x, y;
};

/// Where the reconstruction puts the place (x, y) of an image, in lengths from its corner, downwards.
Place placed(const StackReconstruction<double>& reconstruction, const StackSlice& slice, double x, double y)
{
  const Vector<double>& m = reconstruction.getMap(slice.getIndex());
  const double u = x / static_cast<double>(slice.getPixelCalibration().getPixelWidth());
  const double v = y / static_cast<double>(slice.getPixelCalibration().getPixelHeight());
  return {m[0] * u + m[1] * v + m[2], m[3] * u + m[4] * v + m[5]};
}

/// Where the specimen comes to lie: its middle, and the direction of its long axis.
struct Placement
{
  Place middle;
  double degrees;
};

Placement placementOf(const StackReconstruction<double>& reconstruction, const StackSlice& slice,
                      const SpecimenPose& pose)
{
  const Place middle = placed(reconstruction, slice, pose.x, pose.y);
  const Place end = placed(reconstruction, slice, pose.x + 100 * std::cos(pose.degrees * degree),
                           pose.y + 100 * std::sin(pose.degrees * degree));
  return {middle, std::atan2(end.y - middle.y, end.x - middle.x) / degree};
}

struct Error
{
  double pixels, degrees;
};

Error errorBetween(const Placement& a, const Placement& b, const PixelCalibration& pixel)
{
  return {std::hypot((a.middle.x - b.middle.x) / static_cast<double>(pixel.getPixelWidth()),
                     (a.middle.y - b.middle.y) / static_cast<double>(pixel.getPixelHeight())),
          std::abs(turnBetween(a.degrees, b.degrees))};
}

/// Correlation of the grey levels of two slices, placed by the maps: each pixel of the one is compared with
/// the nearest pixel of the other.
double placedCorrelation(const StackReconstruction<double>& reconstruction, const StackSlice& a, const StackSlice& b)
{
  Image imageA, imageB;
  a.load(imageA);
  b.load(imageB);
  const Vector<double>& m = reconstruction.getMap(a.getIndex());
  const Vector<double>& n = reconstruction.getMap(b.getIndex());
  const double determinant = n[0] * n[4] - n[1] * n[3];
  double number = 0, sumA = 0, sumB = 0, sumAA = 0, sumAB = 0, sumBB = 0;
  for (int v = 0; v < imageA.getHeight(); ++v)
    for (int u = 0; u < imageA.getWidth(); ++u)
    {
      const double x = m[0] * u + m[1] * v + m[2] - n[2], y = m[3] * u + m[4] * v + m[5] - n[5];
      const auto column = std::lround((n[4] * x - n[1] * y) / determinant);
      const auto line = std::lround((n[0] * y - n[3] * x) / determinant);
      if (column < 0 || line < 0 || column >= imageB.getWidth() || line >= imageB.getHeight()) continue;
      const double levelA = *(imageA.getLine(v) + u), levelB = *(imageB.getLine(static_cast<int>(line)) + column);
      number += 1;
      sumA += levelA;
      sumB += levelB;
      sumAA += levelA * levelA;
      sumAB += levelA * levelB;
      sumBB += levelB * levelB;
    }
  return (sumAB - sumA * sumB / number) / std::sqrt((sumAA - sumA * sumA / number) * (sumBB - sumB * sumB / number));
}

/// Aligns the last slice of a stack and gives its distance from the slice before.
Error alignedError(Stack& stack, const SpecimenPose& before, const SpecimenPose& pose, bool isDark = false)
{
  StackSlice& slice = *stack.getLastSlice();
  slice.setRegistration(alignOnPreviousSlice(slice, isDark).registration);
  const StackReconstruction<double> reconstruction(stack);
  return errorBetween(placementOf(reconstruction, *slice.prevSlice(), before), placementOf(reconstruction, slice, pose),
                      slice.getPixelCalibration());
}
} // namespace

TEST(SliceAlignment, BringsASpecimenBackFromAnyTurnAndShiftUnderNoise)
{
  const SpecimenView views[] = {{256, 256, 1, 1, 0.7}, {340, 220, 0.8, 1.25, 6}, {220, 340, 1.25, 0.8, 6}};
  for (const SpecimenView& view : views)
    for (int k = 0; k < 24; ++k)
    {
      SCOPED_TRACE(std::to_string(view.pixelWidth) + " wide, turn " + std::to_string(k));
      const double x = view.width * view.pixelWidth / 2, y = view.height * view.pixelHeight / 2;
      const SpecimenPose before = {x + 3, y - 5, 20};
      const SpecimenPose pose = {x + 3 + 60 * std::cos(2.3 * k), y - 5 + 60 * std::sin(2.3 * k), 23.0 + 15 * k};
      Stack stack;
      const StackSlice& first = addSpecimenSlice(stack, view, before);
      const StackSlice& second = addSpecimenSlice(stack, view, pose);
      const Error error = alignedError(stack, before, pose);
      EXPECT_LE(error.pixels, 1);
      EXPECT_LE(error.degrees, 0.3);
      EXPECT_TRUE(first.getRegistration().isNull());
      EXPECT_GT(placedCorrelation(StackReconstruction<double>(stack), first, second), 0.9);
    }
}

TEST(SliceAlignment, TellsTheCorrelationThatThePlacedImagesHave)
{
  Stack stack;
  const SpecimenView view = {256, 256, 1, 1, 2};
  const StackSlice& first = addSpecimenSlice(stack, view, {120, 130, 0});
  StackSlice& second = addSpecimenSlice(stack, view, {135, 120, 100});
  second.setRegistration(Registration(-10, 6, 30));
  const SliceAlignment alignment = alignOnPreviousSlice(second, false);
  EXPECT_NEAR(alignment.correlationBefore, placedCorrelation(StackReconstruction<double>(stack), first, second), 0.01);
  second.setRegistration(alignment.registration);
  EXPECT_NEAR(alignment.correlationAfter, placedCorrelation(StackReconstruction<double>(stack), first, second), 0.01);
  EXPECT_LT(alignment.correlationBefore, alignment.correlationAfter - 0.1);
}

TEST(SliceAlignment, AddsUpOverAStackOfSlices)
{
  RandomGenerator random(11);
  const SpecimenView view = {300, 260, 0.9, 1.1, 6};
  std::vector<SpecimenPose> poses;
  Stack stack;
  for (int k = 0; k < 20; ++k)
  {
    poses.push_back({135 + random.uniformLF(-40, 40), 143 + random.uniformLF(-40, 40), random.uniformLF(0, 360)});
    StackSlice& slice = addSpecimenSlice(stack, view, poses.back());
    if (k > 0) slice.setRegistration(alignOnPreviousSlice(slice, false).registration);
  }
  const StackReconstruction<double> reconstruction(stack);
  const Placement first = placementOf(reconstruction, *stack.getSlice(0), poses[0]);
  for (int k = 1; k < 20; ++k)
  {
    const StackSlice& slice = *stack.getSlice(k);
    const Error error = errorBetween(first, placementOf(reconstruction, slice, poses[static_cast<std::size_t>(k)]),
                                     slice.getPixelCalibration());
    EXPECT_LE(error.pixels, 5) << "slice " << k;
    EXPECT_LE(error.degrees, 1.5) << "slice " << k;
  }
  EXPECT_TRUE(stack.getFirstSlice()->getRegistration().isNull());
}

TEST(SliceAlignment, TakesImagesOfOtherSizesAndCalibrations)
{
  Stack stack;
  const SpecimenPose before = {70, 90, 300}, pose = {110, 80, 130};
  addSpecimenSlice(stack, {160, 360, 1, 0.5, 3}, before);
  addSpecimenSlice(stack, {500, 130, 0.4, 1.25, 3}, pose);
  const Error error = alignedError(stack, before, pose);
  EXPECT_LE(error.pixels, 1);
  EXPECT_LE(error.degrees, 0.3);
}

TEST(SliceAlignment, TakesDarkSpecimens)
{
  Stack stack;
  const SpecimenView view = {256, 256, 1, 1, 3};
  const SpecimenPose poses[] = {{110, 120, 10}, {140, 130, 250}};
  for (const SpecimenPose& pose : poses)
  {
    auto image = specimenImage(view, pose, 5);
    image->apply([](unsigned char level) { return static_cast<unsigned char>(255 - level); });
    addSlice(stack, 0, 0)
        .setImageSource(ImageSourceVoxelMatrixPlane(std::shared_ptr<const VoxelMatrix<unsigned char>>(image)));
  }
  const Error error = alignedError(stack, poses[0], poses[1], true);
  EXPECT_LE(error.pixels, 1);
  EXPECT_LE(error.degrees, 0.3);
}

TEST(SliceAlignment, DoesNotMoveSlicesWithoutASpecimen)
{
  Stack stack;
  for (int k = 0; k < 2; ++k)
  {
    auto image = std::make_shared<VoxelMatrix<unsigned char>>(20, 30, 1);
    image->setZeros();
    if (k == 0) (*image)(3, 4, 0) = 100;
    addSlice(stack, 0, 0)
        .setImageSource(ImageSourceVoxelMatrixPlane(std::shared_ptr<const VoxelMatrix<unsigned char>>(image)));
  }
  stack.getLastSlice()->setRegistration(Registration(3, 4, 5));
  const SliceAlignment alignment = alignOnPreviousSlice(*stack.getLastSlice(), false);
  EXPECT_FALSE(alignment.hasMass);
  EXPECT_TRUE(alignment.registration.isNull());
  EXPECT_EQ(alignment.correlationAfter, 0);
  expectError<UsageError>("first slice", [&] { alignOnPreviousSlice(*stack.getFirstSlice(), false); });
}
