// Shapes whose sections branch: their surfaces have the right topology, the right volume, and do not cross themselves.

#include "geometry/curvestacktriangulation2.h"
#include "tests/support/curves.h"
#include "tests/support/manifold.h"
#include "tests/support/meshcrossings.h"

#include <functional>
#include <gtest/gtest.h>

namespace
{
using Tag = CurveStackTriangulationContourTag;
using Contours = std::vector<Curve<double>>;

Curve<double> oval(double x, double y, double radiusX, double radiusY, double z, int n = 24)
{
  Curve<double> curve = ellipse(radiusX, radiusY, z, n, x, y, 0.1);
  curve.setClockwise(true, 0, 1);
  return curve;
}

TriMesh<double> capped(const std::vector<Contours>& levels)
{
  CurveStack<double> stack;
  for (const Contours& level : levels)
    for (const Curve<double>& contour : level) stack.append(contour);
  CurveStackTriangulation2<double> triangulation;
  triangulation.setTriangulateFirstCaps(true);
  triangulation.setTriangulateLastCaps(true);
  triangulation.apply(stack);
  return triangulation.getTriMesh();
}

/// Sections along the axis of a torus that stands upright, at the middles of equal steps of its angle.
std::vector<Contours> torus(double radius, double tube, int numLevels, int n)
{
  std::vector<Contours> levels;
  for (int k = 0; k < numLevels; ++k)
  {
    const double z = (radius + tube) * (2 * (k + 0.5) / numLevels - 1);
    // In the plane at z, x is the axis' distance: the ring (sqrt(y^2 + z^2) - R)^2 + x^2 = r^2.
    const double outer = std::sqrt((radius + tube) * (radius + tube) - z * z);
    const double inner = std::abs(z) < radius - tube ? std::sqrt((radius - tube) * (radius - tube) - z * z) : -1;
    const auto halfWidth = [&](double y)
    {
      const double fromRing = std::hypot(y, z) - radius;
      return std::sqrt(std::max(0.0, tube * tube - fromRing * fromRing));
    };
    const auto outline = [&](double from, double to)
    {
      Curve<double> curve(3, n);
      for (int i = 0; i < n; ++i)
      {
        const double angle = 2 * std::numbers::pi * i / n;
        const double y = (from + to) / 2 + (to - from) / 2 * std::cos(angle);
        curve[i] = Vector<double>{std::sin(angle) < 0 ? -halfWidth(y) : halfWidth(y), y, z};
      }
      curve.setClockwise(true, 0, 1);
      return curve;
    };
    if (inner < 0)
      levels.push_back({outline(-outer, outer)});
    else
      levels.push_back({outline(-outer, -inner), outline(inner, outer)});
  }
  return levels;
}

/// A trunk that splits in two, `depth` times.
std::vector<Contours> tree(int depth)
{
  std::vector<Contours> levels;
  for (int generation = 0; generation <= depth; ++generation)
    for (int k = 0; k < 3; ++k)
    {
      Contours level;
      const int numBranches = 1 << generation;
      for (int i = 0; i < numBranches; ++i)
      {
        const double x = 32.0 * (i + 0.5) / numBranches - 16;
        const double radius = 8.0 / numBranches;
        level.push_back(oval(x, 0, radius, radius, 3 * generation + k));
      }
      levels.push_back(level);
    }
  return levels;
}
} // namespace

TEST(BranchingSurfaces, HaveTheTopologyOfTheDrawnShape)
{
  const auto pair = [](double z) { return Contours{oval(-3, 0, 2, 2, z), oval(3, 0, 2, 2, z)}; };
  const auto single = [](double z) { return Contours{oval(0, 0, 5, 2, z)}; };
  const auto three = [](double z) { return Contours{oval(-4, 0, 1, 1, z), oval(4, 0, 2, 2, z), oval(0, 6, 1, 2, z)}; };
  const auto four = [](double z) {
    return Contours{oval(-3, -3, 2, 2, z), oval(3, -3, 2, 2, z), oval(-3, 3, 2, 2, z), oval(3, 3, 2, 2, z)};
  };
  const auto nine = [](double z)
  {
    Contours contours;
    for (int i = 0; i < 9; ++i) contours.push_back(oval(5 * (i % 3) - 5, 5 * (i / 3) - 5, 1.5, 1.5, z));
    return contours;
  };
  const struct
  {
    const char* name;
    std::vector<Contours> levels;
    int eulerCharacteristic;
  } cases[] = {
      {"trouser legs", {pair(0), pair(1), single(2), single(3)}, 2},
      {"a fork", {single(0), pair(1)}, 2},
      {"three branches", {single(0), three(1), three(2)}, 2},
      {"four corners of a block", {four(0), {oval(0, 0, 6, 6, 1)}, four(2)}, 2},
      {"a branch that leaves and rejoins", {single(0), pair(1), pair(2), single(3)}, 0},
      {"split and rejoined at one level", {single(0), pair(1), single(2)}, 0},
      {"an H", {pair(0), pair(1), single(2), pair(3), pair(4)}, 2},
      {"two on two", {pair(0), {oval(-0.5, 0, 5.5, 2, 1), oval(30, 0, 1, 1, 1)}}, 2},
      {"nine pillars of a roof", {nine(0), nine(1), {oval(0, 0, 9, 9, 2)}}, 2},
      {"contours of very different size",
       {{oval(0, 0, 10, 10, 0)}, {oval(0, 0, 9, 9, 1), oval(10, 0, 0.1, 0.1, 1)}},
       2},
      {"no overlap in the plane", {{oval(50, 50, 3, 3, 0)}, pair(1)}, 2},
      {"a tree", tree(4), 2},
      {"a torus", torus(3, 1, 24, 64), 0},
  };
  for (const auto& c : cases)
  {
    SCOPED_TRACE(c.name);
    const TriMesh<double> mesh = capped(c.levels);
    EXPECT_TRUE(isClosedManifold(mesh));
    EXPECT_EQ(numSplitVertices(mesh), 0);
    EXPECT_EQ(eulerCharacteristic(mesh), c.eulerCharacteristic);
    EXPECT_GT(signedVolume(mesh), 0);
    EXPECT_EQ(numCrossingTriangles(mesh), 0);
  }
}
