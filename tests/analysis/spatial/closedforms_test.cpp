// Distances of complete randomness against the distributions that geometry gives.
#include "analysis/spatial/spatialdescriptorfunctionb.h"
#include "analysis/spatial/spatialdescriptorfunctionf.h"
#include "analysis/spatial/spatialdescriptorfunctiong.h"
#include "analysis/spatial/spatialdescriptorfunctionh.h"
#include "analysis/spatial/spatialmodelcompleterandomness.h"
#include "tests/analysis/spatial/patterns.h"

#include <gtest/gtest.h>
#include <numbers>

namespace
{
using Randomness = SpatialModelCompleteRandomness<double, unsigned char>;
constexpr double pi = std::numbers::pi;

std::vector<double> valuesOf(const SpatialDescriptor<double>& descriptor, const Vertices<double>& pattern)
{
  Vector<double> values, cdf;
  descriptor.eval(pattern, values, cdf);
  return {values.begin(), values.end()};
}

/// A circle that is a polygon of its area to within 1e-6.
const Curve<double> circle = regularPolygon<double>(1, 4000);

TEST(ClosedForms, DistancesToTheBorderOfADiscAndABall)
{
  RandomGenerator generator(11);
  Randomness model;
  model.setRandomGenerator(generator);
  SpatialDescriptorFunctionB<double> b;
  model.setBoundary(circle);
  b.setCurve(circle);
  const int n = 20000;
  EXPECT_LT(kolmogorovDistance(valuesOf(b, model.drawSample(n)), [](double t) { return 1 - (1 - t) * (1 - t); }),
            kolmogorovLimit(n));
  const TriMesh<double> ball = sphere<double>(1, 5);
  model.setTriMesh(ball);
  b.setTriMesh(ball);
  EXPECT_LT(kolmogorovDistance(valuesOf(b, model.drawSample(n)), [](double t) { return 1 - std::pow(1 - t, 3); }),
            kolmogorovLimit(n));
}

/// Nearest neighbours of n points in a unit disc or ball, of those that are further from the border than most
/// neighbours are from each other: 1 - exp(-n share(t)), share(t) being that of a disc of radius t in the domain.
void expectNearestDistances(Randomness& model, int space, int n)
{
  const double reach = 3 / std::pow(n, 1.0 / space), inside = (1 - reach) * (1 - reach);
  const Vertices<double> pattern = model.drawSample(n), everywhere = model.drawSample(n);
  Vertices<double> positions(space);
  for (int i = 0; i < n; ++i)
    if (everywhere[i].snorm() < inside) positions.append(everywhere[i]);
  SpatialDescriptorFunctionF<double> f;
  f.setEvaluationPositions(positions);
  const auto expected = [=](double t) { return 1 - std::exp(-n * std::pow(t, space)); };
  // The distances are not independent of each other: neighbouring ones share their object.
  EXPECT_LT(kolmogorovDistance(valuesOf(f, pattern), expected), 2 * kolmogorovLimit(static_cast<std::size_t>(n)));

  const Vector<double> squared = pattern.squareNearestNeighborDistances();
  std::vector<double> g;
  for (int i = 0; i < n; ++i)
    if (pattern[i].snorm() < inside) g.push_back(std::sqrt(squared[i]));
  std::sort(g.begin(), g.end());
  EXPECT_LT(kolmogorovDistance(g, expected), 2 * kolmogorovLimit(g.size()));
  // All distances are within the share of objects near the border of those inside.
  const double near = 1 - std::pow(1 - reach, space);
  EXPECT_LT(kolmogorovDistance(valuesOf(SpatialDescriptorFunctionG<double>(), pattern), expected),
            near + 2 * kolmogorovLimit(g.size()));
}

TEST(ClosedForms, NearestNeighboursInDenseRandomness)
{
  RandomGenerator generator(12);
  Randomness model;
  model.setRandomGenerator(generator);
  model.setBoundary(circle);
  expectNearestDistances(model, 2, 40000);
  model.setTriMesh(sphere<double>(1, 5));
  expectNearestDistances(model, 3, 40000);
}

/// Source: the distribution of the distance between two random points of a disc, in M. G. Kendall and P. A. P. Moran,
/// "Geometrical probability", 1963, for radius 1, by integration of its density.
double pairsOfADisc(double t)
{
  const auto density = [](double s)
  { return 4 * s / pi * std::acos(s / 2) - 2 * s * s / pi * std::sqrt(std::max(0.0, 1 - s * s / 4)); };
  const int steps = 400;
  double sum = 0;
  for (int i = 0; i < steps; ++i) sum += density((i + 0.5) * t / steps);
  return sum * t / steps;
}

TEST(ClosedForms, PairsOfADisc)
{
  ASSERT_NEAR(pairsOfADisc(2), 1, 1e-5);
  RandomGenerator generator(13);
  Randomness model;
  model.setRandomGenerator(generator);
  model.setBoundary(circle);
  // Pairs that share no object are independent: one from each of many patterns of two.
  std::vector<double> distances;
  for (int i = 0; i < 5000; ++i)
    distances.push_back(valuesOf(SpatialDescriptorFunctionH<double>(), model.drawSample(2)).front());
  std::sort(distances.begin(), distances.end());
  EXPECT_LT(kolmogorovDistance(distances, pairsOfADisc), kolmogorovLimit(distances.size()));
  EXPECT_LT(kolmogorovDistance(valuesOf(SpatialDescriptorFunctionH<double>(), model.drawSample(300)), pairsOfADisc),
            kolmogorovLimit(300));
}
} // namespace
