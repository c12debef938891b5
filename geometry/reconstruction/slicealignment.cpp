#include "geometry/reconstruction/slicealignment.h"

#include "geometry/curveprocessing/curveresampling.h"
#include "geometry/curveprocessing/iterativeclosestpoint.h"
#include "geometry/reconstruction/regionboundaries.h"
#include "image/image.h"
#include "image/registration/principalaxesimageregistration.h"
#include "model/model.h"
#include "model/modelitem.h"
#include "model/stackslice.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace
{
constexpr double degree = std::numbers::pi / 180;
constexpr const char* alignWhere = "SliceAlignment alignOnPreviousSlice(const StackSlice&, bool)";
constexpr const char* contoursWhere =
    "Registration alignContoursOnPreviousSlice(const StackSlice&, const Registration&)";
constexpr int maxNumVertices = 1000; // of an outline that is fitted

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
int wholePixels(double length, float pixel, const char* where)
{
  const double pixels = std::floor(length / static_cast<double>(pixel) + 0.5);
  if (!(std::abs(pixels) < 1e9)) throw UsageError(where, "The pixels have no size");
  return static_cast<int>(pixels);
}

/// Of an angle in radians and a translation in lengths.
Registration registrationOf(double angle, double right, double down, const PixelCalibration& calibration,
                            const char* where)
{
  const double degrees = angle / degree;
  const auto positive = static_cast<float>(degrees - 360 * std::floor(degrees / 360));
  return {wholePixels(right, calibration.getPixelWidth(), where),
          wholePixels(down, calibration.getPixelHeight(), where), positive < 360 ? positive : 0.0F};
}

Registration registrationOf(const RigidRegistration<double>& result, const PixelCalibration& calibration)
{
  const double angle = std::atan2(result.rotation()(0, 1), result.rotation()(0, 0));
  return registrationOf(angle, result.translation()[1], result.translation()[0], calibration, alignWhere);
}

double correlationAt(const PixelMatrix<double>& source, const PixelMatrix<double>& target,
                     const Registration& registration)
{
  const PixelCalibration& calibration = source.getPixelCalibration();
  return correlation(source, target, static_cast<double>(registration.getAngle()) * degree,
                     registration.getVerticalShift() * static_cast<double>(calibration.getPixelHeight()),
                     registration.getHorizontalShift() * static_cast<double>(calibration.getPixelWidth()));
}

const StackSlice& previousOf(const StackSlice& slice, const char* where)
{
  const StackSlice* previous = slice.prevSlice();
  if (previous == nullptr) throw UsageError(where, "The first slice has none to be aligned on");
  return *previous;
}

const ModelItem& firstItem(const StackSlice& slice, const Model* model)
{
  const std::vector<ModelItem*>& items = slice.getItems();
  const auto item = std::ranges::find_if(items, [&](const ModelItem* other)
                                         { return model == nullptr || other->getModel() == model; });
  if (item == items.end())
    throw UsageError(contoursWhere, "Slice " + slice.getName() + " has no item" +
                                        (model == nullptr ? "" : " of the model " + model->getName()));
  return **item;
}

/// The vertices of an item; of a region, those of its largest outer boundary.
Curve<double> outlineOf(const ModelItem& item)
{
  if (item.getModel()->getGeometry() != MPrimitive::Region)
  {
    Curve<double> curve(2, item.getVertices().getNumVertices());
    std::copy_n(item.getVertices().data(), 2 * curve.getNumVertices(), curve.data());
    curve.setOpen(!item.isClosed());
    return curve;
  }
  const std::vector<Curve<double>> boundaries = outerBoundaries(item.getRLEItemSet());
  const auto largest = std::ranges::max_element(
      boundaries, {}, [](const Curve<double>& curve) { return std::abs(curve.twiceArea(0, 1)); });
  return largest == boundaries.end() ? Curve<double>(2, 0) : *largest;
}

/// The outline in lengths from the centre of the slice's image, rightwards and downwards, with enough vertices to be
/// fitted closely. Points stay as they are.
Curve<double> fittedOutline(const StackSlice& slice, const ModelItem& item)
{
  Curve<double> outline = outlineOf(item);
  if (outline.getNumVertices() == 0) throw UsageError(contoursWhere, "Slice " + slice.getName() + " has an empty item");
  const ImageSource* source = slice.getImageSource();
  if (source == nullptr) throw UsageError(contoursWhere, "Slice " + slice.getName() + " has no image");
  const PixelCalibration& calibration = slice.getPixelCalibration();
  double* p = outline.data();
  for (int i = 0; i < outline.getNumVertices(); ++i, p += 2)
  {
    p[0] = (p[0] - source->getSize2() / 2.0) * static_cast<double>(calibration.getPixelWidth());
    p[1] = (p[1] - source->getSize1() / 2.0) * static_cast<double>(calibration.getPixelHeight());
  }
  if (item.getModel()->getGeometry() == MPrimitive::Polypoint) return outline;
  Curve<double> resampled(2, maxNumVertices);
  CurveResampling<double>().apply(outline, resampled);
  return resampled;
}

/// Turns the outline about the corner, and gives its mean then.
Vector<double> turnedMean(Curve<double>& outline, double angle)
{
  Vector<double> mean{0, 0};
  double* p = outline.data();
  for (int i = 0; i < outline.getNumVertices(); ++i, p += 2)
  {
    const double x = p[0];
    p[0] = std::cos(angle) * x - std::sin(angle) * p[1];
    p[1] = std::sin(angle) * x + std::cos(angle) * p[1];
    mean[0] += p[0] / outline.getNumVertices();
    mean[1] += p[1] / outline.getNumVertices();
  }
  return mean;
}

void move(Curve<double>& outline, double x, double y)
{
  double* p = outline.data();
  for (int i = 0; i < outline.getNumVertices(); ++i, p += 2)
  {
    p[0] += x;
    p[1] += y;
  }
}
} // namespace

SliceAlignment alignOnPreviousSlice(const StackSlice& slice, bool isDark)
{
  const StackSlice& previous = previousOf(slice, alignWhere);
  const PixelMatrix<double> source = specimenOf(slice, isDark);
  const PixelMatrix<double> target = specimenOf(previous, isDark);
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

Registration alignContoursOnPreviousSlice(const StackSlice& slice, const Registration& start)
{
  const StackSlice& previous = previousOf(slice, contoursWhere);
  const ModelItem& item = firstItem(slice, nullptr);
  Curve<double> outline = fittedOutline(slice, item);
  Curve<double> target = fittedOutline(previous, firstItem(previous, item.getModel()));
  const double angle = static_cast<double>(start.getAngle()) * degree;
  const Vector<double> to = turnedMean(target, 0);
  const Vector<double> from = turnedMean(outline, angle);
  const double x = to[0] - from[0];
  const double y = to[1] - from[1];
  move(outline, x, y);
  IterativeClosestPoint<double> fit;
  fit.apply(outline, target);
  const RigidTransform<double>& found = fit.getTransform();
  const SquareMatrix<double>& turn = found.rotation;
  return registrationOf(
      angle + std::atan2(turn(1, 0), turn(0, 0)), turn(0, 0) * x + turn(0, 1) * y + found.translation[0],
      turn(1, 0) * x + turn(1, 1) * y + found.translation[1], slice.getPixelCalibration(), contoursWhere);
}
