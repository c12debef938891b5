#pragma once

#include <array>
#include <vector>

/// The made-up specimen of the example stack: what is where, in micrometres, in the frame of the reconstruction
/// (x to the right, y up, the origin at the centre of the first slice's image, z along the stack).
namespace anatomy
{
struct Point
{
  double x, y, z;
};

constexpr int numSlices = 28;
constexpr int imageSize = 256; // pixels, both ways
constexpr double pixelSize = 0.25;
constexpr double sliceSpacing = 1.2;

/// An ellipsoid turned about the z axis.
struct Ellipsoid
{
  Point center;
  double a, b, c; // semi-axes along x, y before turning, and along z
  double cosine, sine;

  /// Below 1 inside, 1 on the surface, above 1 outside.
  double level(const Point& p) const;

  /// Share of the semi-axes a and b that the section at height z has; 0 when it misses the ellipsoid.
  double sectionScale(double z) const;

  /// Vertices on the outline of the section at height z.
  std::vector<Point> outline(double z, int numVertices) const;
};

extern const Ellipsoid nucleus;
extern const Ellipsoid nucleolus;

/// A vessel of round section that divides into two branches and rejoins.
namespace vessel
{
constexpr double radius = 3.6;

/// Distance of the axes of the two branches from the line between them; 0 where there is one vessel.
double halfGap(double z);

/// The lower and the upper axis at height z.
std::array<Point, 2> axes(double z);

/// Signed distance from the wall, negative in the lumen.
double distance(const Point& p);

/// One outline where the branches overlap, else two.
std::vector<std::vector<Point>> outlines(double z, int numVertices);
} // namespace vessel

/// Fibres run along x, each through a few slices.
namespace fibres
{
constexpr int number = 3;
constexpr double halfLength = 24;

bool isPresent(int fibre, double z);
double y(int fibre, double x, double z);
} // namespace fibres

/// Vesicles lie around the nucleus, each at the depth of a slice.
struct Vesicle
{
  Point center;
  int slice;
};

constexpr double vesicleRadius = 0.7;
std::vector<Vesicle> vesicles();

/// How strongly a diffuse stain colours a place, 0 to 1; the stained region is where it exceeds a half.
double stain(const Point& p);

/// Smooth noise between -1 and 1 with features of the size 1, the same for the same place and seed.
double noise(double x, double y, double z, unsigned seed);

/// Uniform number in [0, 1) that depends on the four keys only.
double hashed(unsigned i, unsigned j, unsigned k, unsigned seed);
} // namespace anatomy
