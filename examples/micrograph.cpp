#include "examples/micrograph.h"

#include <algorithm>
#include <cmath>

using namespace anatomy;

namespace
{
/// 1 inside, 0 outside, with a soft edge of the given width around the value 0 of a signed distance.
double inside(double distance, double width)
{
  return std::clamp(0.5 - distance / width, 0.0, 1.0);
}

double mix(double from, double to, double share)
{
  return from + (to - from) * share;
}

/// Approximate signed distance from an ellipsoid's surface.
double surfaceDistance(const Ellipsoid& ellipsoid, const Point& p)
{
  return (std::sqrt(ellipsoid.level(p)) - 1) * std::min(ellipsoid.a, ellipsoid.b);
}

double fibreContrast(const Point& p)
{
  double contrast = 0;
  for (int i = 0; i < fibres::number; ++i)
  {
    if (!fibres::isPresent(i, p.z) || std::abs(p.x) > fibres::halfLength) continue;
    const double distance = (p.y - fibres::y(i, p.x, p.z)) / 0.55;
    contrast = std::max(contrast, std::exp(-distance * distance));
  }
  return contrast;
}
} // namespace

double Micrograph::vesicleContrast(const Point& p) const
{
  double contrast = 0;
  for (const Vesicle& vesicle : _vesicles)
  {
    const double dx = p.x - vesicle.center.x, dy = p.y - vesicle.center.y, dz = p.z - vesicle.center.z;
    const double square = dx * dx + dy * dy;
    if (square > 4 || std::abs(dz) > 0.6 * sliceSpacing) continue;
    const double distance = std::sqrt(square) / vesicleRadius;
    contrast += distance < 1 ? 45 * (1 - distance) : -70 * std::exp(-8 * (distance - 1.2) * (distance - 1.2));
  }
  return contrast;
}

double Micrograph::tissue(const Point& p) const
{
  double level = 196 + 20 * noise(p.x / 6, p.y / 6, p.z / 5, 1) + 13 * noise(p.x / 1.7, p.y / 1.7, p.z / 2, 2) +
                 9 * noise(p.x / 0.6, p.y / 0.6, p.z / 0.8, 3);
  level -= 62 * stain(p) * (1 + 0.25 * noise(p.x / 2, p.y / 2, p.z / 3, 6));
  level -= 85 * fibreContrast(p);
  level += vesicleContrast(p);

  const double toNucleus = surfaceDistance(nucleus, p);
  const double chromatin =
      140 + 24 * noise(p.x / 2.2, p.y / 2.2, p.z / 2.5, 4) + 12 * noise(p.x / 0.8, p.y / 0.8, p.z, 8);
  level = mix(level, chromatin, inside(toNucleus, 0.5));
  level = mix(level, 92, inside(std::abs(toNucleus + 0.4) - 0.4, 0.4));
  level = mix(level, 84, inside(surfaceDistance(nucleolus, p), 0.6));

  const double toWall = vessel::distance(p);
  level = mix(level, 112, inside(std::abs(toWall - 0.5) - 0.5, 0.5));
  return mix(level, 236, inside(toWall, 0.4));
}

unsigned char Micrograph::greyLevel(const Point& p, int slice, int u, int v) const
{
  const auto pixel = [&](unsigned seed) { return hashed(unsigned(u), unsigned(v), unsigned(slice), seed); };
  const double staining = 0.93 + 0.14 * hashed(unsigned(slice), 0, 0, 11) + 0.05 * noise(p.x / 20, p.y / 20, slice, 12);
  const double x = (u - 110.0) / imageSize, y = (v - 140.0) / imageSize;
  const double illumination = 1.04 - 0.4 * (x * x + y * y);
  const double camera = 9 * (pixel(13) + pixel(14) + pixel(15) + pixel(16) - 2);
  const double level = 255 - (255 - tissue(p)) * staining;
  return static_cast<unsigned char>(std::clamp(level * illumination + camera, 0.0, 255.0));
}
