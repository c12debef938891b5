#include "geometry/reconstruction/slicealignment.h"

#include "image/image.h"
#include "image/registration/principalaxesimageregistration.h"
#include "model/stackslice.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace
{
constexpr double degree = std::numbers::pi / 180;
constexpr const char* alignWhere = "SliceAlignment alignOnPreviousSlice(const StackSlice&, bool)";

/// Grey levels of the specimen, with the slice's pixel size.
PixelMatrix<double> specimenOf(const StackSlice& slice, bool isDark)
{
  Image image;
  slice.load(image);
  image.make8bitsGrayscale();
  image.deleteColormap();
  PixelMatrix<double> levels(image);
  levels.setPixelCalibration(slice.getPixelCalibration());
  if (isDark) std::for_each(levels.data(), levels.data() + levels.getNumElements(), [](double& x) { x = 255 - x; });
  return levels;
}

/// Halves go up.
int wholePixels(double length, float pixel)
{
  const double pixels = std::floor(length / static_cast<double>(pixel) + 0.5);
  if (!(std::abs(pixels) < 1e9)) throw UsageError(alignWhere, "The pixels have no size");
  return static_cast<int>(pixels);
}

Registration registrationOf(const RigidRegistration<double>& result, const PixelCalibration& calibration)
{
  const double angle = std::atan2(result.rotation()(0, 1), result.rotation()(0, 0)) / degree;
  const auto positive = static_cast<float>(angle < 0 ? angle + 360 : angle);
  return {wholePixels(result.translation()[1], calibration.getPixelWidth()),
          wholePixels(result.translation()[0], calibration.getPixelHeight()), positive < 360 ? positive : 0.0F};
}

double correlationAt(const PixelMatrix<double>& source, const PixelMatrix<double>& target,
                     const Registration& registration)
{
  const PixelCalibration& calibration = source.getPixelCalibration();
  return correlation(source, target, static_cast<double>(registration.getAngle()) * degree,
                     registration.getVerticalShift() * static_cast<double>(calibration.getPixelHeight()),
                     registration.getHorizontalShift() * static_cast<double>(calibration.getPixelWidth()));
}
} // namespace

SliceAlignment alignOnPreviousSlice(const StackSlice& slice, bool isDark)
{
  const StackSlice* previous = slice.prevSlice();
  if (previous == nullptr) throw UsageError(alignWhere, "The first slice has none to be aligned on");
  const PixelMatrix<double> source = specimenOf(slice, isDark);
  const PixelMatrix<double> target = specimenOf(*previous, isDark);
  PrincipalAxesImageRegistration<double> axes;
  axes.setImageCenteredRotation(true);
  axes.setSource(source);
  axes.setTarget(target);
  axes.run();
  SliceAlignment alignment;
  alignment.hasMass = axes.hasMass();
  if (alignment.hasMass) alignment.registration = registrationOf(axes, slice.getPixelCalibration());
  alignment.correlationBefore = correlationAt(source, target, slice.getRegistration());
  alignment.correlationAfter = correlationAt(source, target, alignment.registration);
  return alignment;
}
