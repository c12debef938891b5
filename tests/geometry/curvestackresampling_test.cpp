#include "geometry/quadmesh.h"
#include "tests/support/curves.h"
#include "tests/support/errors.h"
#include "tests/support/manifold.h"

#include <gtest/gtest.h>

#include <limits>
#include <random>

namespace
{
constexpr double pi = std::numbers::pi;

QuadMesh<double> resampled(const CurveStack<double>& stack, int width, int height)
{
  QuadMesh<double> mesh(3, width, height);
  stack.resample(mesh);
  return mesh;
}

/// Ellipses of n vertices, each begun somewhere else and drawn in either sense.
CurveStack<double> carelesslyDrawnColumn(const std::vector<double>& heights, int n, unsigned seed)
{
  std::mt19937 engine(seed);
  CurveStack<double> stack;
  for (const double z : heights)
  {
    Curve<double> curve = ellipse<double>(6, 4, z, n);
    curve.setOrigin(static_cast<int>(engine() % static_cast<unsigned>(n)));
    if (engine() % 2 == 0) curve.reverse();
    stack.append(curve);
  }
  return stack;
}

TEST(CurveStackResampling, RowsAreSpreadOverTheCurves)
{
  CurveStack<double> stack;
  const std::vector<double> heights = {0, 1, 10};
  for (const double z : heights) stack.append(ellipse<double>(3 + z, 3 + z, z, 8));
  const struct
  {
    int height;
    std::vector<double> heights;
  } cases[] = {
      {1, {0}}, {2, {0, 10}}, {3, {0, 1, 10}}, {4, {0, 2. / 3, 4, 10}}, {5, {0, 0.5, 1, 5.5, 10}}, {0, {}},
  };
  for (const auto& c : cases)
  {
    const QuadMesh<double> mesh = resampled(stack, 8, c.height);
    ASSERT_EQ(mesh.getHeight(), c.height);
    for (int r = 0; r < c.height; ++r)
      for (int j = 0; j < 8; ++j)
      {
        const double z = c.heights[static_cast<std::size_t>(r)];
        EXPECT_NEAR(mesh[r][j][2], z, 1e-12);
        EXPECT_NEAR(std::hypot(mesh[r][j][0], mesh[r][j][1]), 3 + z, 1e-12);
      }
  }
}

TEST(CurveStackResampling, StartAndSenseOfTheContoursDoNotMatter)
{
  const int n = 40;
  for (unsigned seed = 0; seed < 10; ++seed)
  {
    for (const double direction : {1., -1.})
    {
      const CurveStack<double> stack = carelesslyDrawnColumn({0, direction, 3 * direction}, n, seed);
      QuadMesh<double> mesh = resampled(stack, n, 7);
      mesh.buildCaps();
      const TriMesh<double> surface = mesh.toTriMesh(true);
      EXPECT_TRUE(isClosedManifold(surface));
      EXPECT_EQ(mesh.toTriMesh(false).getNumTriangles(), 2 * n * 6);
      // The rows agree to half a step, about, and cut the corners of the polygon as far as chords cut an ellipse.
      for (int j = 0; j < n; ++j)
        EXPECT_LT(std::hypot(mesh[6][j][0] - mesh[0][j][0], mesh[6][j][1] - mesh[0][j][1]), 0.75 * 6 * 2 * pi / n);
      EXPECT_NEAR(signedVolume(surface), 3 * pi * 24, std::pow(2 * pi / n, 2) / 2 * 3 * pi * 24);
    }
  }
}

// A cylinder of float coordinates, which are 0.001 apart at the far place.
TEST(CurveStackResampling, SurfacesDoNotTwistFarFromTheOrigin)
{
  const int n = 40, height = 19;
  const float radius = 5;
  const double area = n * radius * radius * std::sin(2 * pi / n) / 2, girth = 2 * n * radius * std::sin(pi / n);
  for (const float center : {0.F, 12500.F})
  {
    std::mt19937 engine(1);
    CurveStack<float> stack;
    for (int z = 0; z <= height; ++z)
    {
      stack.append(ellipse<float>(radius, radius, static_cast<float>(z), n, center, center));
      stack.level(z).setOrigin(static_cast<int>(engine() % n));
    }
    QuadMesh<float> mesh(3, n, 2 * height + 1);
    stack.resample(mesh);
    EXPECT_NEAR(mesh.toTriMesh(false).area(), girth * height, 1e-3 * girth * height);
    mesh.buildCaps();
    EXPECT_NEAR(mesh.toTriMesh(true).volume(), area * height, 1e-3 * area * height);
  }
}

TEST(CurveStackResampling, OpenCurvesAreReversedWhereThatFitsBetter)
{
  CurveStack<double> stack(3, true);
  stack.append(openCurve({{0, 0, 0}, {4, 0, 0}}));
  stack.append(openCurve({{4, 1, 1}, {0, 1, 1}}));
  const QuadMesh<double> mesh = resampled(stack, 5, 3);
  EXPECT_TRUE(mesh.isOpen());
  EXPECT_EQ(pointsOf(mesh[1]), (std::vector<std::vector<double>>{
                                   {0, 0.5, 0.5}, {1, 0.5, 0.5}, {2, 0.5, 0.5}, {3, 0.5, 0.5}, {4, 0.5, 0.5}}));
  const TriMesh<double> surface = mesh.toTriMesh(true);
  EXPECT_EQ(surface.getNumTriangles(), 2 * 4 * 2);
  EXPECT_NEAR(surface.area(), 4 * std::sqrt(2), 1e-12);
}

TEST(CurveStackResampling, FlatAndPixelStacks)
{
  CurveStack<int> stack(2);
  stack.append(curveThrough<int>({{0, 0}, {8, 0}, {8, 8}, {0, 8}}));
  stack.append(curveThrough<int>({{9, 9}, {0, 9}, {0, 0}, {9, 0}}));
  QuadMesh<int> mesh(2, 4, 2);
  stack.resample(mesh);
  EXPECT_EQ(pointsOf(mesh[0]), (std::vector<std::vector<int>>{{0, 0}, {0, 8}, {8, 8}, {8, 0}}));
  EXPECT_EQ(pointsOf(mesh[1]), (std::vector<std::vector<int>>{{0, 0}, {0, 9}, {9, 9}, {9, 0}}));
}

TEST(CurveStackResampling, RefusesEmptyStacksAndCurves)
{
  CurveStack<double> stack;
  expectError<SizeError>("no curves", [&] { resampled(stack, 4, 4); });
  stack.append(Curve<double>(3));
  expectError<SizeError>("no vertices", [&] { resampled(stack, 4, 4); });
  expectError<SizeError>("mesh has no vertices", [&] { stack.interpolate(QuadMesh<double>()); });
  expectError<SizeError>("stack has no vertices", [&] { stack.resamplingError(QuadMesh<double>(3, 4, 4)); });
  expectError<SizeError>("dimensions", [&] { stack.interpolate(QuadMesh<double>(2, 4, 4)); });
  EXPECT_EQ(resampled(carelesslyDrawnColumn({1}, 9, 1), 5, 3)[2][0][2], 1); // one curve: a column of it
}

TEST(CurveStackResampling, InterpolationUndoesIt)
{
  const CurveStack<double> stack = carelesslyDrawnColumn({0, 1, 5, 6}, 30, 3);
  CurveStack<double> cut = stack;
  cut.interpolate(resampled(stack, 30, 7)); // rows 0, 2, 4 and 6 are the curves
  const QuadMesh<double> curves = resampled(stack, 30, 4);
  for (int k = 0; k < 4; ++k)
    for (int i = 0; i < 3 * 30; ++i) EXPECT_NEAR(cut[k].data()[i], curves[k].data()[i], 1e-12);
}

TEST(CurveStackResampling, ErrorIsTheDistanceToTheMesh)
{
  CurveStack<double> stack;
  for (const double z : {0., 1.}) stack.append(closedCurve({{0, 0, z}, {2, 0, z}, {2, 2, z}, {0, 2, z}}));
  EXPECT_NEAR(stack.resamplingError(resampled(stack, 8, 2)), 0, 1e-12);
  QuadMesh<double> lifted = resampled(stack, 4, 2);
  lifted.translate(Vector<double>{0, 0, 0.5});
  EXPECT_NEAR(stack.resamplingError(lifted), 0.5, 1e-12);
  // A triangle of three vertices at equal distances along the square: only (0, 0) stays, (2, 2) and the others are off.
  EXPECT_GT(stack.resamplingError(resampled(stack, 3, 2)), 0.3);
}

TEST(CurveStackResampling, OptimalMeshHasTheFewestColumns)
{
  CurveStack<double> stack;
  for (int k = 0; k < 3; ++k) stack.append(ellipse<double>(10, 7, k, 200));
  for (const double maxError : {1., 0.1, 0.02})
  {
    const QuadMesh<double> mesh = stack.optimalResampling(maxError);
    EXPECT_EQ(mesh.getHeight(), 3);
    EXPECT_LE(stack.resamplingError(mesh), maxError);
    EXPECT_GT(stack.resamplingError(resampled(stack, mesh.getWidth() - 1, 3)), maxError);
  }
  EXPECT_EQ(stack.optimalResampling(1e9).getWidth(), 3);
  EXPECT_EQ(stack.optimalResampling(-1).getWidth(), 800);
}

// Only with the corners among the columns are polygons met exactly, which no bisection finds.
TEST(CurveStackResampling, OptimalMeshTriesTheNumbersOfVertices)
{
  CurveStack<double> squares, polygons;
  for (const double z : {0., 1.})
  {
    squares.append(closedCurve({{0, 0, z}, {0, 2, z}, {2, 2, z}, {2, 0, z}}));
    polygons.append(ellipse<double>(10, 10, z, 2003)); // a prime number
  }
  EXPECT_EQ(squares.optimalResampling(1e-12).getWidth(), 4);
  EXPECT_EQ(polygons.optimalResampling(1e-12).getWidth(), 2003);
}

TEST(CurveStackResampling, ClosestPointsAreThoseOfAllPairs)
{
  const CurveStack<double> stack = carelesslyDrawnColumn({0, 2, 5}, 11, 4);
  const CurveStack<double> other = carelesslyDrawnColumn({0.4, 1, 6, 7}, 17, 5);
  const CurveStack<double> map = stack.closestPointMap(other);
  for (int k = 0; k < 3; ++k)
    for (int i = 0; i < 11; ++i)
    {
      double least = std::numeric_limits<double>::infinity();
      for (int b = 0; b < 4; ++b)
        for (int j = 0; j < 17; ++j) least = std::min(least, stack[k][i].distance(other[b][j]));
      EXPECT_NEAR(stack[k][i].distance(map[k][i]), least, 1e-12);
    }
  expectError<SizeError>("no vertices", [&] { stack.closestPointMap(CurveStack<double>()); });
  expectError<SizeError>("dimensions", [&] { stack.closestPointMap(CurveStack<double>(2)); });
}
} // namespace
