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

const StackSlice& previousOf(const StackSlice& slice, const char* where)
{
  const StackSlice* previous = slice.prevSlice();
  if (previous == nullptr) throw UsageError(where, "The first slice has none to be aligned on");
  return *previous;
}

/// Halves go up.
int wholePixels(double length, double pixel)
{
  return static_cast<int>(std::floor(length / pixel + 0.5));
}

Registration registrationOf(const RigidRegistration<double>& result, const PixelCalibration& calibration)
{
  const double angle = std::atan2(result.rotation()(0, 1), result.rotation()(0, 0)) / degree;
  const auto positive = static_cast<float>(angle < 0 ? angle + 360 : angle);
  return {wholePixels(result.translation()[1], static_cast<double>(calibration.getPixelWidth())),
          wholePixels(result.translation()[0], static_cast<double>(calibration.getPixelHeight())),
          positive < 360 ? positive : 0.0F};
}

double correlationAt(const PixelMatrix<double>& source, const PixelMatrix<double>& target,
                     const Registration& registration)
{
  const PixelCalibration& calibration = source.getPixelCalibration();
  return correlation(massAboveBackground(source), massAboveBackground(target),
                     static_cast<double>(registration.getAngle()) * degree,
                     registration.getVerticalShift() * static_cast<double>(calibration.getPixelHeight()),
                     registration.getHorizontalShift() * static_cast<double>(calibration.getPixelWidth()));
}
} // namespace

SliceAlignment alignOnPreviousSlice(const StackSlice& slice, bool isDark)
{
  const StackSlice& previous = previousOf(slice, "SliceAlignment alignOnPreviousSlice(const StackSlice&, bool)");
  const PixelMatrix<double> source = specimenOf(slice, isDark);
  const PixelMatrix<double> target = specimenOf(previous, isDark);
  PrincipalAxesImageRegistration<double> axes;
  axes.setImageCenteredRotation(true);
  axes.setSource(source);
  axes.setTarget(target);
  axes.run();
  SliceAlignment alignment;
  alignment.hasMass = axes.hasMass();
  alignment.correlationBefore = axes.correlationBefore();
  if (alignment.hasMass) alignment.registration = registrationOf(axes, slice.getPixelCalibration());
  alignment.correlationAfter = correlationAt(source, target, alignment.registration);
  return alignment;
}

double correlationWithPreviousSlice(const StackSlice& slice, const Registration& registration, bool isDark)
{
  const StackSlice& previous =
      previousOf(slice, "double correlationWithPreviousSlice(const StackSlice&, const Registration&, bool)");
  return correlationAt(specimenOf(slice, isDark), specimenOf(previous, isDark), registration);
}
