#include "examples/anatomy.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <numbers>

namespace anatomy
{
namespace
{
constexpr double turn = 2 * std::numbers::pi;

/// 0 below `from`, 1 above `to`, smooth between.
double ramp(double from, double to, double value)
{
  const double t = std::clamp((value - from) / (to - from), 0.0, 1.0);
  return t * t * (3 - 2 * t);
}

/// Distance from `origin`, inside a disc, to its rim in the direction (dx, dy) of length 1.
double distanceToRim(const Point& center, double radius, const Point& origin, double dx, double dy)
{
  const double x = origin.x - center.x, y = origin.y - center.y;
  const double along = x * dx + y * dy;
  return -along + std::sqrt(along * along + radius * radius - x * x - y * y);
}
} // namespace

const Ellipsoid nucleus = {{5, 3, 16.2}, 13, 10, 12, std::cos(0.4), std::sin(0.4)};
const Ellipsoid nucleolus = {{8, 1, 15}, 2.6, 2.2, 3, 1, 0};

double Ellipsoid::level(const Point& p) const
{
  const double x = p.x - center.x, y = p.y - center.y, z = p.z - center.z;
  const double u = (cosine * x + sine * y) / a;
  const double v = (cosine * y - sine * x) / b;
  return u * u + v * v + z * z / (c * c);
}

double Ellipsoid::sectionScale(double z) const
{
  const double w = (z - center.z) / c;
  return std::abs(w) < 1 ? std::sqrt(1 - w * w) : 0;
}

std::vector<Point> Ellipsoid::outline(double z, int numVertices) const
{
  const double scale = sectionScale(z);
  std::vector<Point> points;
  for (int i = 0; i < numVertices; ++i)
  {
    const double u = scale * a * std::cos(turn * i / numVertices);
    const double v = scale * b * std::sin(turn * i / numVertices);
    points.push_back({center.x + cosine * u - sine * v, center.y + sine * u + cosine * v, z});
  }
  return points;
}

namespace vessel
{
double halfGap(double z)
{
  const double middle = (numSlices - 1) * sliceSpacing / 2;
  const double t = 1 - std::pow((z - middle) / 9.5, 2);
  return t > 0 ? 6.4 * t * t * (3 - 2 * t) : 0;
}

std::array<Point, 2> axes(double z)
{
  const Point middle = {-17 + 1.5 * std::sin(z / 6), -5 + 0.15 * z, z};
  const double gap = halfGap(z);
  return {Point{middle.x + 0.3 * gap, middle.y - gap, z}, Point{middle.x - 0.3 * gap, middle.y + gap, z}};
}

double distance(const Point& p)
{
  double nearest = INFINITY;
  for (const Point& axis : axes(p.z)) nearest = std::min(nearest, std::hypot(p.x - axis.x, p.y - axis.y));
  return nearest - radius;
}

std::vector<std::vector<Point>> outlines(double z, int numVertices)
{
  const auto [lower, upper] = axes(z);
  const Point middle = {(lower.x + upper.x) / 2, (lower.y + upper.y) / 2, z};
  const bool isOne = std::hypot(lower.x - upper.x, lower.y - upper.y) < 2 * radius;
  const std::vector<Point> origins = isOne ? std::vector{middle} : std::vector{lower, upper};
  std::vector<std::vector<Point>> result;
  for (const Point& origin : origins)
  {
    std::vector<Point> outline;
    for (int i = 0; i < numVertices; ++i)
    {
      const double dx = std::cos(turn * i / numVertices), dy = std::sin(turn * i / numVertices);
      const double reach =
          isOne ? std::max(distanceToRim(lower, radius, origin, dx, dy), distanceToRim(upper, radius, origin, dx, dy))
                : radius;
      outline.push_back({origin.x + reach * dx, origin.y + reach * dy, z});
    }
    result.push_back(outline);
  }
  return result;
}
} // namespace vessel

namespace fibres
{
bool isPresent(int fibre, double z)
{
  const double middle = (6 + 7 * fibre) * sliceSpacing;
  return std::abs(z - middle) < 3.5 * sliceSpacing;
}

double y(int fibre, double x, double z)
{
  const double base[number] = {21, -19, 24.5};
  return base[fibre] + 1.8 * std::sin(x / 6 + 2 * fibre) + 0.25 * (z - 15);
}
} // namespace fibres

std::vector<Vesicle> vesicles()
{
  std::vector<Vesicle> found;
  for (unsigned trial = 0; found.size() < 72; ++trial)
  {
    const int slice = static_cast<int>(hashed(trial, 0, 0, 7) * numSlices);
    const Point p = {52 * hashed(trial, 1, 0, 7) - 26, 52 * hashed(trial, 2, 0, 7) - 26, slice * sliceSpacing};
    const double level = nucleus.level(p);
    if (level > 1.3 && level < 4 && vessel::distance(p) > 2) found.push_back({p, slice});
  }
  return found;
}

double stain(const Point& p)
{
  const double x = (p.x - 13) / 9, y = (p.y + 17) / 6, z = (p.z - 13) / 9;
  const double r = std::sqrt(x * x + y * y + z * z) + 0.18 * noise(p.x / 4, p.y / 4, p.z / 6, 5);
  return 1 - ramp(0.8, 1.2, r);
}

double hashed(unsigned i, unsigned j, unsigned k, unsigned seed)
{
  // The finaliser of splitmix64: Steele, Lea and Flood, "Fast splittable pseudorandom number generators", 2014.
  std::uint64_t h = (seed + 1) * 0xd1342543de82ef95u; // seeds far apart: neighbouring keys must not meet
  for (const unsigned key : {i, j, k})
  {
    h = (h + key + 1) * 0x9e3779b97f4a7c15u;
    h = (h ^ (h >> 30)) * 0xbf58476d1ce4e5b9u;
    h = (h ^ (h >> 27)) * 0x94d049bb133111ebu;
    h ^= h >> 31;
  }
  return static_cast<double>(h >> 11) / 9007199254740992.0;
}

double noise(double x, double y, double z, unsigned seed)
{
  const double fx = std::floor(x), fy = std::floor(y), fz = std::floor(z);
  const auto cell = [](double f) { return static_cast<unsigned>(static_cast<int>(f)); };
  const double wx = ramp(0, 1, x - fx), wy = ramp(0, 1, y - fy), wz = ramp(0, 1, z - fz);
  double sum = 0;
  for (unsigned corner = 0; corner < 8; ++corner)
  {
    const unsigned dx = corner & 1, dy = corner >> 1 & 1, dz = corner >> 2;
    const double weight = (dx ? wx : 1 - wx) * (dy ? wy : 1 - wy) * (dz ? wz : 1 - wz);
    sum += weight * (2 * hashed(cell(fx) + dx, cell(fy) + dy, cell(fz) + dz, seed) - 1);
  }
  return sum;
}
} // namespace anatomy
