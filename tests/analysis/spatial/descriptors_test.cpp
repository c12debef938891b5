// The distance functions against slower second methods, for every coordinate type.
#include "analysis/spatial/distancesort.h"
#include "analysis/spatial/spatialdescriptorfunctionb.h"
#include "analysis/spatial/spatialdescriptorfunctionf.h"
#include "analysis/spatial/spatialdescriptorfunctiong.h"
#include "analysis/spatial/spatialdescriptorfunctionh.h"
#include "tests/analysis/spatial/patterns.h"
#include "tests/support/errors.h"

#include <gtest/gtest.h>
#include <limits>

namespace
{

template <class T> T apart(const Vertices<T>& a, int i, const Vertices<T>& b, int j)
{
  return a[i].distance(b[j]);
}

template <class T> Vector<T> valuesOf(const SpatialDescriptor<T>& descriptor, const Vertices<T>& pattern)
{
  Vector<T> values, cdf;
  descriptor.eval(pattern, values, cdf);
  EXPECT_EQ(values.getSize(), cdf.getSize());
  return values;
}

template <class T> void expectNear(const Vector<T>& values, std::vector<T> expected, T tolerance)
{
  std::sort(expected.begin(), expected.end());
  ASSERT_EQ(values.getSize(), static_cast<int>(expected.size()));
  for (int i = 0; i < values.getSize(); ++i) ASSERT_NEAR(values[i], expected[static_cast<std::size_t>(i)], tolerance);
}

template <class T> class Descriptors : public testing::Test
{
};
using Types = testing::Types<float, double, long double>;
TYPED_TEST_SUITE(Descriptors, Types);

TYPED_TEST(Descriptors, AgreeWithTrialOfAllPairs)
{
  using T = TypeParam;
  const T tolerance = 100 * std::numeric_limits<T>::epsilon();
  for (const int space : {2, 3})
  {
    const Vertices<T> pattern = randomPattern<T>(space, 60, 10, 1), positions = randomPattern<T>(space, 80, 10, 2);
    std::vector<T> g, f, h;
    for (int i = 0; i < pattern.getSize(); ++i)
    {
      T nearest = std::numeric_limits<T>::max();
      for (int j = 0; j < pattern.getSize(); ++j)
        if (j != i) nearest = std::min(nearest, apart(pattern, i, pattern, j));
      g.push_back(nearest);
      for (int j = 0; j < i; ++j) h.push_back(apart(pattern, i, pattern, j));
    }
    for (int i = 0; i < positions.getSize(); ++i)
    {
      T nearest = std::numeric_limits<T>::max();
      for (int j = 0; j < pattern.getSize(); ++j) nearest = std::min(nearest, apart(positions, i, pattern, j));
      f.push_back(nearest);
    }
    SpatialDescriptorFunctionF<T> descriptorF;
    descriptorF.setEvaluationPositions(positions);
    expectNear(valuesOf(SpatialDescriptorFunctionG<T>(), pattern), g, 10 * tolerance);
    expectNear(valuesOf(SpatialDescriptorFunctionH<T>(), pattern), h, 10 * tolerance);
    expectNear(valuesOf(descriptorF, pattern), f, 10 * tolerance);
  }
}

TYPED_TEST(Descriptors, DistanceToTheBorderAgreesWithTheClosestPoint)
{
  using T = TypeParam;
  const T tolerance = 1000 * std::numeric_limits<T>::epsilon();
  Curve<T> curve(2, 400);
  RandomGenerator generator(3);
  for (int i = 0; i < 400; ++i)
  {
    const T radius = 2 + 3 * static_cast<T>(generator.uniformLF()), angle = static_cast<T>(i) / 400 * T(6.2831853);
    curve[i][0] = 5 + radius * std::cos(angle);
    curve[i][1] = 5 + radius * std::sin(angle);
  }
  const auto boundary = makeBoundary(curve);
  const Vertices<T> points = randomPattern<T>(2, 500, 10, 4);
  std::vector<T> b;
  for (int i = 0; i < points.getSize(); ++i)
  {
    b.push_back(points[i].distance(curve.closestPoint(points[i])));
    EXPECT_EQ(boundary->contains(points.data(i)), curve.contains(points[i]));
  }
  SpatialDescriptorFunctionB<T> descriptor;
  descriptor.setCurve(curve);
  expectNear(valuesOf(descriptor, points), b, tolerance);

  const TriMesh<T> mesh = gridCube<T>(3);
  descriptor.setTriMesh(mesh);
  Vector<T> values, cdf;
  descriptor.eval3D(patternOf<T>({{1.5, 1.5, 1}, {1, 1.5, 2.75}, {1, 2, 5}}), values, cdf);
  expectNear(values, {T(0.25), 1, 2}, tolerance);
  expectError<UsageError>("no boundary curve", [&] { descriptor.eval2D(points, values, cdf); });
  expectError<SizeError>("another dimension", [&] { descriptor.eval3D(points, values, cdf); });
}

TEST(DescriptorsAtTheLimits, SmallPatterns)
{
  const Vertices<double> none(2), one = patternOf({{1, 2}}), equal = patternOf({{1, 2}, {1, 2}, {4, 6}});
  SpatialDescriptorFunctionF<double> f;
  f.setEvaluationPositions(equal);
  const SpatialDescriptorFunctionG<double> g;
  const SpatialDescriptorFunctionH<double> h;
  for (const Vertices<double>& pattern : {none, one})
  {
    EXPECT_EQ(valuesOf(g, pattern).getSize(), 0);
    EXPECT_EQ(valuesOf(h, pattern).getSize(), 0);
  }
  EXPECT_EQ(valuesOf(f, none).getSize(), 0);
  EXPECT_EQ(valuesOf(f, one), Vector<double>({0, 0, 5}));
  EXPECT_EQ(valuesOf(g, equal), Vector<double>({0, 0, 5}));
  EXPECT_EQ(valuesOf(h, equal), Vector<double>({0, 5, 5}));
  expectError<UsageError>("no boundary", [&] { valuesOf(SpatialDescriptorFunctionB<double>(), one); });
}

TEST(DescriptorsAtTheLimits, SetsOfPatterns)
{
  ShapeSet<double> patterns;
  patterns.append(patternOf({{0, 0}, {0, 1}, {0, 3}}));
  patterns.append(patternOf({{0, 0}, {0, 4}, {0, 8}}));
  Matrix<double> values;
  const SpatialDescriptorFunctionG<double> g;
  g.eval(patterns, values);
  EXPECT_EQ(values, Matrix<double>({{1, 1, 2}, {4, 4, 4}}));
  Vector<double> average;
  g.evalAverage(patterns, average);
  EXPECT_EQ(average, Vector<double>({2.5, 2.5, 3}));
  patterns.append(patternOf({{0, 0}, {0, 4}}));
  expectError<SizeError>("different numbers", [&] { g.eval(patterns, values); });
}

TEST(DescriptorsAtTheLimits, BoundariesWithoutInsideAreRefused)
{
  const double inf = std::numeric_limits<double>::infinity();
  for (const Curve<double>& curve :
       {Curve<double>(2), closedCurve({{0, 0}, {1, 1}}), closedCurve({{0, 0}, {1, 1}, {2, 2}}),
        openCurve({{0, 0}, {1, 0}, {1, 1}}), closedCurve({{0, 0}, {inf, 0}, {1, 1}})})
    expectError<UsageError>("boundary", [&] { makeBoundary(curve); });
  TriMesh<double> flat(patternOf({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}}));
  expectError<UsageError>("no volume", [&] { makeBoundary(flat); });
  flat.addTriangle(0, 1, 2);
  expectError<UsageError>("no volume", [&] { makeBoundary(flat); });
}

/// Patterns that a grid of cells suits, and others that only a tree does.
TEST(NearestDistances, AgreeWithTheTreeOfNeighboursForAnyPattern)
{
  RandomGenerator generator(6);
  const auto crowded = [&](double)
  { return generator.uniformLF() < 0.01 ? 1000.0 : std::pow(generator.uniformLF(), 9); };
  const struct
  {
    const char* name;
    std::function<double(double)> coordinate; // given that of the axis before
  } cases[] = {
      {"spread", [&](double) { return generator.uniformLF(); }},
      {"on a line", [&](double before) { return before > 0 ? before : generator.uniformLF(); }},
      {"along an axis", [&](double before) { return before > 0 ? 7.0 : generator.uniformLF(); }},
      {"on a lattice", [&](double) { return static_cast<double>(generator.uniformL(12)); }},
      {"crowded", crowded},
      {"one place", [](double) { return 3.0; }},
  };
  for (const int space : {2, 3})
    for (const int size : {1, 2, 30, 3000})
      for (const auto& c : cases)
      {
        SCOPED_TRACE(c.name);
        Vertices<double> pattern(space, size), places = randomPattern<double>(space, 500, 20, 7);
        for (int i = 0; i < size; ++i)
        {
          double before = 0;
          for (int k = 0; k < space; ++k) before = pattern[i][k] = c.coordinate(before);
        }
        places *= 0.1;
        std::vector<double> expected;
        for (const double squared : pattern.squareNearestNeighborDistances()) expected.push_back(std::sqrt(squared));
        if (size > 1) expectNear(valuesOf(SpatialDescriptorFunctionG<double>(), pattern), expected, 1e-12);
        expected.clear();
        for (const double distance : places.nearestNeighborDistances(pattern)) expected.push_back(distance);
        SpatialDescriptorFunctionF<double> f;
        f.setEvaluationPositions(places);
        expectNear(valuesOf(f, pattern), expected, 1e-12);
      }
}

TEST(DistanceSort, SortsAnyDistribution)
{
  RandomGenerator generator(5);
  const struct
  {
    const char* name;
    std::function<double()> draw;
  } cases[] = {
      {"uniform", [&] { return generator.uniformLF(); }},
      {"few values", [&] { return static_cast<double>(generator.uniformL(3)); }},
      {"one value", [] { return 7.0; }},
      {"crowded", [&] { return std::pow(generator.uniformLF(), 40); }},
      {"over all magnitudes", [&] { return std::ldexp(1, static_cast<int>(generator.uniformL(2000)) - 1000); }},
      {"with infinity", [&] { return generator.uniformL(9) ? 1 + generator.uniformLF() : INFINITY; }},
  };
  for (const auto& c : cases)
    for (const std::size_t size : {0, 1, 100, 5000, 200000})
    {
      SCOPED_TRACE(c.name);
      std::vector<double> values(size);
      for (double& value : values) value = c.draw();
      std::vector<double> expected = values;
      std::sort(expected.begin(), expected.end());
      sortDistances(values);
      EXPECT_EQ(values, expected);
    }
}
} // namespace
