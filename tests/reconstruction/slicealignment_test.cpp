// Automatic alignment of slices, closing the loop: images of a specimen that was moved and turned are aligned, and
// placed by the maps of the reconstruction they must fall on each other.

#include "geometry/reconstruction/slicealignment.h"
#include "geometry/reconstruction/stackreconstruction.h"
#include "image/image.h"
#include "tests/support/errors.h"
#include "tests/support/specimens.h"

#include <gtest/gtest.h>

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
  double distance, degrees;
};

Error errorBetween(const Placement& a, const Placement& b)
{
  return {std::hypot(a.middle.x - b.middle.x, a.middle.y - b.middle.y), std::abs(turnBetween(a.degrees, b.degrees))};
}
} // namespace

TEST(Probe, Noise)
{
  for (double noise : {0., 3., 6., 10., 20.})
  for (auto [pw,ph] : {std::pair{1.,1.},{0.8,1.25},{1.2,0.7}})
  {
    double worstD = 0, worstA = 0, worstS = 0; int flips = 0;
    SpecimenView view{256,256,pw,ph,noise};
    for (int k = 0; k < 24; ++k)
    {
      Stack stack;
      const double cx=128*pw, cy=128*ph;
      const double s = 60.0, d = 15.0*k+3;
      SpecimenPose a{cx + 3, cy - 5, 20}, b{cx + 3 + pw*std::round(s*std::cos(k*0.7)), cy -5 + ph*std::round(s*std::sin(k*0.7)), 20 + d};
      StackSlice& f = addSpecimenSlice(stack, view, a);
      StackSlice& g = addSpecimenSlice(stack, view, b);
      auto r = alignOnPreviousSlice(g, false);
      g.setRegistration(r.registration);
      StackReconstruction<double> rec(stack);
      Error e = errorBetween(placementOf(rec, f, a), placementOf(rec, g, b));
      if (e.degrees > 90) ++flips;
      worstD = std::max(worstD, e.distance); worstA = std::max(worstA, e.degrees);
      if (k==5) printf("corr %g -> %g\n", r.correlationBefore, r.correlationAfter);
    }
    printf("noise %g pixel %g x %g: worst distance %.3f angle %.3f flips %d %g\n", noise, pw, ph, worstD, worstA, flips, worstS);
  }
}
