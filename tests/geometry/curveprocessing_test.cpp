#include "geometry/curveprocessing/curvedecimation.h"
#include "geometry/curveprocessing/douglaspeuckercurvedecimation.h"
#include "geometry/curveprocessing/fourierdescriptors.h"
#include "geometry/curveprocessing/iterativeclosestpoint.h"
#include "tests/support/curves.h"
#include "tests/support/errors.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <random>

namespace
{
constexpr double pi = std::numbers::pi;

template <class Decimation, class T> Curve<T> decimated(const Curve<T>& curve, double tolerance)
{
  Curve<T> out;
  Decimation(tolerance).apply(curve, out);
  return out;
}

Curve<double> randomWalk(int n, bool open, unsigned seed)
{
  std::mt19937 engine(seed);
  std::normal_distribution<double> step;
  Curve<double> curve(2, n);
  curve.setOpen(open);
  for (int i = 1; i < n; ++i)
    for (int k = 0; k < 2; ++k) curve[i][k] = curve[i - 1][k] + step(engine);
  return curve;
}

/// How far point p deviates from the edge from a to b: from its line, or beyond its ends.
double deviation(const std::vector<double>& p, const std::vector<double>& a, const std::vector<double>& b)
{
  const double length = std::hypot(b[0] - a[0], b[1] - a[1]);
  const double x = length > 0 ? (b[0] - a[0]) / length : 1, y = length > 0 ? (b[1] - a[1]) / length : 0;
  const double along = (p[0] - a[0]) * x + (p[1] - a[1]) * y, across = (p[1] - a[1]) * x - (p[0] - a[0]) * y;
  return std::max({std::abs(across), -along, along - length});
}

/// Douglas-Peucker as it is defined, searching all vertices.
void keepBySearch(const std::vector<std::vector<double>>& points, std::size_t first, std::size_t last, double tolerance,
                  std::vector<bool>& isKept)
{
  isKept[first] = isKept[last] = true;
  double largest = tolerance;
  std::size_t split = 0;
  for (std::size_t i = first + 1; i < last; ++i)
    if (const double candidate = deviation(points[i], points[first], points[last]); candidate > largest)
    {
      largest = candidate;
      split = i;
    }
  if (split == 0) return;
  keepBySearch(points, first, split, tolerance, isKept);
  keepBySearch(points, split, last, tolerance, isKept);
}

std::vector<std::vector<double>> decimatedBySearch(const Curve<double>& curve, double tolerance)
{
  std::vector<std::vector<double>> points = pointsOf(curve);
  const std::size_t size = points.size();
  std::vector<bool> isKept(size + 1);
  if (curve.isOpen())
    keepBySearch(points, 0, size - 1, tolerance, isKept);
  else
  {
    std::size_t farthest = 1;
    for (std::size_t i = 2; i < size; ++i)
      if (curve[static_cast<int>(i)].distance(curve[0]) > curve[static_cast<int>(farthest)].distance(curve[0]))
        farthest = i;
    points.push_back(points[0]);
    keepBySearch(points, 0, farthest, tolerance, isKept);
    keepBySearch(points, farthest, size, tolerance, isKept);
  }
  std::vector<std::vector<double>> kept;
  for (std::size_t i = 0; i < size; ++i)
    if (isKept[i]) kept.push_back(points[i]);
  return kept;
}
} // namespace

TEST(CurveDecimation, KeepsTheCorners)
{
  const Curve<double> square = closedCurve({{0, 0}, {1, 0}, {2, 0}, {2, 1}, {2, 2}, {1, 2}, {0, 2}, {0, 1}});
  const std::vector<std::vector<double>> corners = {{0, 0}, {2, 0}, {2, 2}, {0, 2}};
  const struct
  {
    const char* name;
    Curve<double> curve;
    double tolerance;
    std::vector<std::vector<double>> kept;
  } cases[] = {
      {"square", square, 0.1, corners},
      {"without a tolerance", square, 0, corners},
      {"a tolerance that swallows it", square, 5, {{0, 0}, {2, 2}}},
      {"line", openCurve({{0, 0}, {1, 0.4}, {2, 0}, {3, 1}}), 0.7, {{0, 0}, {3, 1}}},
      {"spike back and forth along the line", openCurve({{0, 0}, {9, 0}, {1, 0}}), 0.5, {{0, 0}, {9, 0}, {1, 0}}},
      {"one place", closedCurve({{1, 1}, {1, 1}, {1, 1}}), 1, {{1, 1}, {1, 1}}},
      {"two vertices", closedCurve({{0, 0}, {1, 1}}), 9, {{0, 0}, {1, 1}}},
      {"no vertices", closedCurve({}), 1, {}},
  };
  for (const auto& c : cases)
  {
    SCOPED_TRACE(c.name);
    EXPECT_EQ(pointsOf(decimated<CurveDecimation<double>>(c.curve, c.tolerance)), c.kept);
    EXPECT_EQ(pointsOf(decimated<DouglasPeuckerCurveDecimation<double>>(c.curve, c.tolerance)), c.kept);
    EXPECT_EQ(decimated<CurveDecimation<double>>(c.curve, c.tolerance).isOpen(), c.curve.isOpen());
  }
  expectError<ValueError>("negative", [] { CurveDecimation<double>(-1); });
  expectError<ValueError>("negative", [] { DouglasPeuckerCurveDecimation<int>(std::nan("")); });
}

TEST(CurveDecimation, LeavesNothingOutsideTheTolerance)
{
  for (unsigned seed = 0; seed < 20; ++seed)
  {
    const Curve<double> curve = randomWalk(200, true, seed);
    const Curve<double> kept = decimated<CurveDecimation<double>>(curve, 1.5);
    EXPECT_LT(kept.getSize(), 150);
    int next = 0; // the kept vertex behind vertex i
    for (int i = 0; i < 200; ++i)
    {
      if (next < kept.getSize() && curve[i] == kept[next])
      {
        ++next;
        continue;
      }
      ASSERT_GT(next, 0);
      const Vector<double>&a = kept[next - 1], &b = kept[next];
      const double share = std::clamp((curve[i] - a).scalarProduct(b - a) / (b - a).scalarProduct(b - a), 0., 1.);
      EXPECT_LE(curve[i].distance(a + (b - a) * share), 1.5 + 1e-12);
    }
    EXPECT_EQ(next, kept.getSize());
  }
}

TEST(DouglasPeuckerCurveDecimation, IsThatByASearchOfAllVertices)
{
  unsigned seed = 0;
  for (const int n : {3, 31, 32, 33, 64, 65, 100, 500, 1000})
    for (const double tolerance : {0., 0.5, 2., 10.})
      for (const bool open : {false, true})
      {
        SCOPED_TRACE(std::to_string(n) + " vertices, tolerance " + std::to_string(tolerance));
        const Curve<double> curve = randomWalk(n, open, ++seed);
        EXPECT_EQ(pointsOf(decimated<DouglasPeuckerCurveDecimation<double>>(curve, tolerance)),
                  decimatedBySearch(curve, tolerance));
      }
}

TEST(DouglasPeuckerCurveDecimation, OfPixelsAndSlicesAndHostileCurves)
{
  const Curve<int> pixels = curveThrough<int>({{0, 0}, {5, 1}, {10, 0}, {10, 10}, {0, 10}});
  EXPECT_EQ(pointsOf(decimated<DouglasPeuckerCurveDecimation<int>>(pixels, 1)),
            (std::vector<std::vector<int>>{{0, 0}, {10, 0}, {10, 10}, {0, 10}}));
  const Curve<double> slice = closedCurve({{0, 0, 7}, {5, 0, 7}, {9, 0, 7}, {9, 9, 7}});
  EXPECT_EQ(decimated<DouglasPeuckerCurveDecimation<double>>(slice, 1).getSize(), 3);
  expectError<MathError>("finite",
                         [] {
                           decimated<DouglasPeuckerCurveDecimation<double>>(closedCurve({{0, 0}, {NAN, 1}, {2, 2}}), 1);
                         });
  // A zigzag with teeth that shrink towards one end divides into the most unequal pieces: a search of all vertices
  // takes 10^10 steps.
  const int n = 200000;
  Curve<double> zigzag(2, n);
  zigzag.setOpen(true);
  for (int i = 0; i < n; ++i)
  {
    zigzag[i][0] = i;
    zigzag[i][1] = (i % 2 == 0 ? 1 : -1) * (3. * n - i);
  }
  EXPECT_EQ(decimated<DouglasPeuckerCurveDecimation<double>>(zigzag, 1).getSize(), n);
}

TEST(FourierDescriptors, OfASquareAreThoseByIntegration)
{
  // By symmetry, from the middle of a side on, x and y of the square of half side 1 are trapezoid waves; the first
  // harmonic of one is 8 sqrt(2) / pi^2.
  const Curve<double> square = closedCurve({{1, 0}, {1, 1}, {-1, 1}, {-1, -1}, {1, -1}});
  FourierDescriptors<double> descriptors;
  descriptors.compute(square, 9);
  const double first = 8 * std::sqrt(2) / (pi * pi);
  for (int n = 1; n <= 9; ++n)
  {
    const double magnitude = n % 2 == 0 ? 0 : first / (n * n);
    EXPECT_NEAR(std::abs(descriptors.getCosine(n, 0)), magnitude, 1e-12);
    EXPECT_NEAR(std::abs(descriptors.getSine(n, 1)), magnitude, 1e-12);
    EXPECT_NEAR(descriptors.getSine(n, 0), 0, 1e-12);
    EXPECT_NEAR(descriptors.getCosine(n, 1), 0, 1e-12);
  }
  // The variance along the square is 4/3.
  EXPECT_NEAR(descriptors.fidelity(1), first * first / (4. / 3), 1e-12);
  EXPECT_EQ(descriptors.numHarmonicsFor(0.98), 1);
  EXPECT_EQ(descriptors.numHarmonicsFor(0.997), 3);
  EXPECT_EQ(descriptors.numHarmonicsFor(0.999), 5);
  EXPECT_EQ(descriptors.numHarmonicsFor(2), 9);
}

TEST(FourierDescriptors, LowPassKeepsAnEllipseAndConverges)
{
  const Curve<double> circle = ellipse<double>(5, 5, 2, 400, 30, -20);
  FourierDescriptors<double> descriptors;
  descriptors.compute(circle, 1);
  const Curve<double> smooth = descriptors.reconstruct(1, 400);
  for (int i = 0; i < 400; ++i) EXPECT_LT(smooth[i].distance(circle[i]), 1e-3);
  EXPECT_EQ(pointsOf(descriptors.reconstruct(0, 1)).size(), 1u);
  EXPECT_NEAR(descriptors.reconstruct(0, 1)[0][0], 30, 1e-12);

  const Curve<double> walk = randomWalk(30, false, 3).resample(500);
  double before = std::numeric_limits<double>::infinity();
  for (const int numHarmonics : {5, 50, 500})
  {
    descriptors.compute(walk, numHarmonics);
    const Curve<double> back = descriptors.reconstruct(numHarmonics, 500);
    double largest = 0;
    // Resampling leaves corners out, so that vertices lie near, not at, equal shares of its length.
    for (int i = 0; i < 500; ++i) largest = std::max(largest, back[i].distance(walk[i]));
    EXPECT_LT(largest, before);
    before = largest;
  }
  EXPECT_LT(before, 1);
}

TEST(FourierDescriptors, RefusesWhatHasNone)
{
  FourierDescriptors<float> descriptors;
  expectError<UsageError>("open", [&] { descriptors.compute(curveThrough<float>({{0, 0}, {1, 1}}, true), 2); });
  expectError<SizeError>("no vertices", [&] { descriptors.compute(Curve<float>(2), 2); });
  expectError<SizeError>("negative", [&] { descriptors.compute(curveThrough<float>({{0, 0}, {1, 1}}), -1); });
  expectError<MathError>("finite", [&] { descriptors.compute(curveThrough<float>({{0, 0}, {1, INFINITY}}), 1); });
  descriptors.compute(curveThrough<float>({{3, 4}, {3, 4}, {3, 4}}), 2);
  EXPECT_EQ(pointsOf(descriptors.reconstruct(2, 2)), (std::vector<std::vector<float>>{{3, 4}, {3, 4}}));
  EXPECT_EQ(descriptors.fidelity(0), 1);
  expectError<RangeError>("descriptors", [&] { descriptors.reconstruct(3, 5); });
}

TEST(IterativeClosestPoint, FindsAMotionInThePlaneAndInSpace)
{
  for (const int space : {2, 3})
  {
    Curve<double> target(space, 60);
    std::mt19937 engine(5);
    std::uniform_real_distribution<double> coordinates(-10, 10);
    for (int i = 0; i < 60 * space; ++i) target.data()[i] = coordinates(engine);
    const double c = std::cos(0.03), s = std::sin(0.03);
    Curve<double> shape = target;
    shape.multiply(space == 2 ? SquareMatrix<double>{{c, -s}, {s, c}}
                              : SquareMatrix<double>{{1, 0, 0}, {0, c, -s}, {0, s, c}});
    shape.translate(Vector<double>(space, target.data()) * 0.01);

    IterativeClosestPoint<double> registration;
    registration.apply(shape, target);
    EXPECT_NEAR(registration.getRmsDistance(), 0, 1e-9);
    shape.transform(registration.getTransform());
    EXPECT_NEAR(shape.rmsDistance(target), 0, 1e-9);
  }
}

TEST(IterativeClosestPoint, EachIterationComesCloser)
{
  const Curve<double> shape = ellipse<double>(8, 4, 0, 50, 1, 2), target = ellipse<double>(7, 5, 0, 80);
  double before = std::numeric_limits<double>::infinity();
  for (int maxIterations = 0; maxIterations < 20; ++maxIterations)
  {
    IterativeClosestPoint<double> registration;
    registration.setMaxIterations(maxIterations);
    registration.apply(shape, target);
    EXPECT_LE(registration.getRmsDistance(), before);
    EXPECT_LE(registration.getNumIterations(), maxIterations);
    Curve<double> moved = shape; // what it tells is the distance of the moved shape
    moved.transform(registration.getTransform());
    const Vector<double> distances = moved.squareNearestNeighborDistances(target);
    EXPECT_NEAR(registration.getRmsDistance(), std::sqrt(distances.sum() / 50), 1e-12);
    before = registration.getRmsDistance();
  }
}

TEST(IterativeClosestPoint, HostileShapes)
{
  IterativeClosestPoint<float> registration;
  const Curve<float> point = curveThrough<float>({{1, 2}});
  expectError<SizeError>("no vertices", [&] { registration.apply(point, Curve<float>(2)); });
  expectError<SizeError>("no vertices", [&] { registration.apply(curveThrough<float>({{NAN, 0}}), point); });
  expectError<SizeError>("dimensions", [&] { registration.apply(point, Curve<float>(3, 1)); });
  registration.apply(curveThrough<float>({{4, 6}, {NAN, 0}}), point);
  EXPECT_EQ(registration.getTransform().translation, (Vector<float>{-3, -4}));
  EXPECT_EQ(registration.getRmsDistance(), 0);
}
