#include "tests/support/curves.h"
#include "tests/support/errors.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <limits>
#include <random>

namespace
{

using Pixel = std::vector<int>;

long long cross(const Pixel& a, const Pixel& b, const Pixel& c)
{
  return 1LL * (b[0] - a[0]) * (c[1] - a[1]) - 1LL * (b[1] - a[1]) * (c[0] - a[0]);
}

bool isOn(const Pixel& a, const Pixel& b, const Pixel& p)
{
  return cross(a, b, p) == 0 && std::min(a[0], b[0]) <= p[0] && p[0] <= std::max(a[0], b[0]) &&
         std::min(a[1], b[1]) <= p[1] && p[1] <= std::max(a[1], b[1]);
}

int sign(long long x)
{
  return x > 0 ? 1 : x < 0 ? -1 : 0;
}

bool share(const Pixel& a, const Pixel& b, const Pixel& c, const Pixel& d)
{
  return (sign(cross(a, b, c)) * sign(cross(a, b, d)) < 0 && sign(cross(c, d, a)) * sign(cross(c, d, b)) < 0) ||
         isOn(a, b, c) || isOn(a, b, d) || isOn(c, d, a) || isOn(c, d, b);
}

/// By the edges below the point, in integers.
bool isInside(const std::vector<Pixel>& polygon, const Pixel& p)
{
  bool isOdd = false;
  for (std::size_t k = 0; k < polygon.size(); ++k)
  {
    const Pixel &a = polygon[k], &b = polygon[(k + 1) % polygon.size()];
    if (isOn(a, b, p)) return true;
    if ((a[0] <= p[0]) != (b[0] <= p[0]) && (cross(a, b, p) > 0) == (b[0] > a[0])) isOdd = !isOdd;
  }
  return isOdd;
}

std::vector<Pixel> randomPixels(std::mt19937& generator, int size, int range)
{
  std::vector<Pixel> pixels;
  for (int i = 0; i < size; ++i)
    pixels.push_back({static_cast<int>(generator() % (range + 1)), static_cast<int>(generator() % (range + 1))});
  return pixels;
}

template <class T> class CurvePlane : public testing::Test
{
};
using CoordinateTypes = testing::Types<int, float, double, long double>;
TYPED_TEST_SUITE(CurvePlane, CoordinateTypes);

template <class T> Curve<T> curveOf(const std::vector<Pixel>& pixels, bool open = false)
{
  Curve<T> curve(2, static_cast<int>(pixels.size()));
  curve.setOpen(open);
  for (int i = 0; i < curve.getSize(); ++i)
    for (int k = 0; k < 2; ++k) curve[i][k] = static_cast<T>(pixels[static_cast<std::size_t>(i)][k]);
  return curve;
}

/// Whether two edges of a curve meet elsewhere than at a common vertex of neighbours, by all pairs.
bool meetsItself(std::vector<Pixel> points, bool open)
{
  points.erase(std::unique(points.begin(), points.end()), points.end());
  while (!open && points.size() > 1 && points.back() == points.front()) points.pop_back();
  const int size = static_cast<int>(points.size()), numEdges = open ? size - 1 : size < 2 ? 0 : size;
  const auto at = [&](int i) { return points[static_cast<std::size_t>(i % size)]; };
  for (int i = 0; i < numEdges; ++i)
    for (int j = i + 1; j < numEdges; ++j)
    {
      const bool follows = j == i + 1, precedes = (j + 1) % size == i && !open;
      if (!follows && !precedes && share(at(i), at(i + 1), at(j), at(j + 1))) return true;
      if (follows && (isOn(at(i), at(i + 1), at(j + 1)) || isOn(at(j), at(j + 1), at(i)))) return true;
      if (precedes && (isOn(at(j), at(j + 1), at(i + 1)) || isOn(at(i), at(i + 1), at(j)))) return true;
    }
  return false;
}

} // namespace

TYPED_TEST(CurvePlane, AgreesWithAllPairsInIntegers)
{
  using T = TypeParam;
  std::mt19937 generator(1);
  int numSimple = 0;
  for (int round = 0; round < 400; ++round)
  {
    const int size = static_cast<int>(generator() % 9), range = 2 + round % 8;
    const std::vector<Pixel> pixels = randomPixels(generator, size, range), others = randomPixels(generator, 6, range);
    const bool open = round % 3 == 0;
    const Curve<T> curve = curveOf<T>(pixels, open), other = curveOf<T>(others);
    for (int x = -1; x <= range + 1; ++x)
      for (int y = -1; y <= range + 1; ++y)
        ASSERT_EQ(curve.contains(Vector<T>{T(x), T(y)}), !open && isInside(pixels, {x, y})) << round;
    ASSERT_EQ(curve.selfIntersects(), meetsItself(pixels, open)) << round;
    numSimple += size > 3 && !curve.selfIntersects();
    std::vector<std::pair<int, int>> expected;
    for (int i = 0; i < curve.getNumEdges(); ++i)
      for (int j = 0; j < 6; ++j)
        if (share(pixels[i], pixels[(i + 1) % size], others[j], others[(j + 1) % 6])) expected.emplace_back(i, j);
    ASSERT_EQ(curve.intersectionIndexes(other), expected);
    ASSERT_EQ(curve.intersects(other), !expected.empty());
  }
  EXPECT_GT(numSimple, 20);
}

// Contacts lie at least 1 / 992 of an edge apart when coordinates are up to 4, so that no part escapes the samples.
TEST(CurveContains, AnotherCurveWhenAllPointsOfItAreInside)
{
  const int numSamples = 2003;
  std::mt19937 generator(2);
  int numInside = 0;
  for (int round = 0; round < 6000; ++round)
  {
    std::vector<Pixel> border = randomPixels(generator, 4 + round % 5, 4), line = randomPixels(generator, 2, 4);
    if (meetsItself(border, false)) continue;
    bool expected = true;
    for (int t = 0; t <= numSamples && expected; ++t)
    {
      const auto mix = [&](int k) { return line[0][k] * (numSamples - t) + line[1][k] * t; };
      std::vector<Pixel> scaled = border;
      for (Pixel& pixel : scaled) pixel = {pixel[0] * numSamples, pixel[1] * numSamples};
      expected = isInside(scaled, {mix(0), mix(1)});
    }
    numInside += expected;
    ASSERT_EQ(curveOf<double>(border).contains(curveOf<double>(line, true)), expected) << round;
    ASSERT_EQ(curveOf<int>(border).contains(curveOf<int>(line)), expected) << round;
  }
  EXPECT_GT(numInside, 50);
}

TEST(CurveContains, InAPlaneOfThreeDimensions)
{
  const Curve<double> curve = ellipse(3., 2., 7., 40);
  EXPECT_TRUE(curve.contains(Vector<double>{1, 1, -100}));
  EXPECT_TRUE(curve.contains(Vector<double>{1, 0, 7}, 0, 2)); // there it is a line
  EXPECT_FALSE(curve.contains(Vector<double>{1, 0, 6}, 0, 2));
  EXPECT_TRUE(curve.contains(curve));
  EXPECT_TRUE(curve.contains(ellipse(2., 1., 0., 10)));
  EXPECT_FALSE(ellipse(2., 1., 0., 10).contains(curve));
  EXPECT_FALSE(curve.contains(Curve<double>(3)));
  expectError<RangeError>("plane", [&] { curve.contains(Vector<double>{1, 1, 1}, 0, 3); });
  expectError<RangeError>("plane", [&] { curve.selfIntersects(1, 1); });
  expectError<RangeError>("plane", [&] { closedCurve({{0}, {1}, {2}, {3}}).isClockwise(0, 1); });
  expectError<RangeError>("plane", [&] { curve.intersects(closedCurve({{0, 0}}), 1, 2); });
}

TEST(CurvePlane, OfHostileCurves)
{
  const double nan = std::nan(""), infinity = std::numeric_limits<double>::infinity();
  const Curve<double> hostile = closedCurve({{0, 0}, {nan, 1}, {4, 0}, {infinity, 3}, {4, 4}, {0, 4}});
  EXPECT_FALSE(hostile.contains(Vector<double>{nan, 1}));
  EXPECT_TRUE(hostile.contains(Vector<double>{0, 4}));
  hostile.selfIntersects();
  hostile.intersects(hostile);
  hostile.normals(0, 1);
  const Curve<double> point = closedCurve({{1, 2}});
  EXPECT_TRUE(point.contains(Vector<double>{1, 2}));
  EXPECT_FALSE(point.selfIntersects());
  EXPECT_FALSE(closedCurve({}).contains(Vector<double>{0, 0}));
  EXPECT_TRUE(closedCurve({{0, 0}, {1, 1}}).selfIntersects()); // back along the same line
}

TEST(CurveNormals, PointOutOfCounterClockwiseCurves)
{
  const int n = 24;
  const Curve<double> circle = ellipse(5., 5., 1., n);
  const Vertices<double> normals = circle.normals(0, 1);
  for (int i = 0; i < n; ++i)
  {
    EXPECT_NEAR(normals[i][0], circle[i][0] / 5, 1e-14);
    EXPECT_NEAR(normals[i][1], circle[i][1] / 5, 1e-14);
    EXPECT_EQ(normals[i][2], 0);
  }
  EXPECT_EQ(pointsOf(openCurve({{0, 0}, {2, 0}, {2, 0}, {0, 0}}).normals(0, 1)),
            (std::vector<std::vector<double>>{{0, -1}, {0, -1}, {0, 1}, {0, 1}}));
  EXPECT_EQ(pointsOf(curveThrough<int>({{0, 0}, {3, 4}}, true).normals(0, 1)),
            (std::vector<std::vector<double>>{{0.8, -0.6}, {0.8, -0.6}}));
}

TEST(CurveEditing, SplitsAtVertices)
{
  using Pieces = std::vector<std::vector<std::vector<double>>>;
  const Curve<double> line = openCurve({{0}, {1}, {2}, {3}}), ring = closedCurve({{0}, {1}, {2}, {3}});
  const struct
  {
    const char* name;
    const Curve<double>& curve;
    std::vector<int> indexes;
    Pieces expected;
  } cases[] = {
      {"open", line, {2, 1}, {{{0}, {1}}, {{1}, {2}}, {{2}, {3}}}},
      {"open at its ends", line, {0, 3}, {{{0}, {1}, {2}, {3}}}},
      {"closed", ring, {3, 1}, {{{1}, {2}, {3}}, {{3}, {0}, {1}}}},
      {"closed at one vertex", ring, {2, 2}, {{{2}, {3}, {0}, {1}, {2}}}},
      {"nowhere", ring, {}, {{{0}, {1}, {2}, {3}}}},
  };
  for (const auto& c : cases)
  {
    SCOPED_TRACE(c.name);
    Pieces pieces;
    for (const Curve<double>& piece : c.curve.split(c.indexes))
    {
      pieces.push_back(pointsOf(piece));
      EXPECT_EQ(piece.isOpen(), c.curve.isOpen() || !c.indexes.empty());
    }
    EXPECT_EQ(pieces, c.expected);
  }
  EXPECT_EQ(ring.split(0, 2).size(), 2u);
  expectError<RangeError>("vertex 4", [&] { ring.split(0, 4); });
}

TEST(CurveEditing, JoinsWithoutRepeatingAVertex)
{
  Curve<double> curve = openCurve({});
  curve.join(openCurve({{0, 0}, {1, 0}}));
  curve.join(openCurve({{1, 0}, {2, 0}}));
  curve.join(openCurve({{3, 0}}));
  curve.join(openCurve({}));
  EXPECT_EQ(pointsOf(curve), (std::vector<std::vector<double>>{{0, 0}, {1, 0}, {2, 0}, {3, 0}}));
  expectError<SizeError>("dimensions", [&] { curve.join(closedCurve({{0, 0, 0}})); });
  curve.square(3);
  EXPECT_TRUE(curve.isClosed());
  EXPECT_EQ(curve.twiceArea(0, 1), 18);
  EXPECT_EQ(curve.length(), 12);
}

TEST(CurveDistances, AreThoseOfItsEdges)
{
  const Curve<double> square = closedCurve({{0, 0}, {4, 0}, {4, 4}, {0, 4}});
  EXPECT_EQ(square.closestPoint(Vector<double>{1, 2}), (Vector<double>{0, 2})); // on the closing edge
  EXPECT_EQ(square.closestPoint(Vector<double>{9, 9}), (Vector<double>{4, 4}));
  EXPECT_EQ(openCurve({{0, 0}, {4, 0}, {4, 4}, {0, 4}}).closestPoint(Vector<double>{0, 1.5}), (Vector<double>{0, 0}));
  EXPECT_EQ(openCurve({{1, 1}}).closestPoint(Vector<double>{9, 9}), (Vector<double>{1, 1}));
  EXPECT_EQ(curveThrough<int>({{0, 0}, {1, 1}}).closestPoint(Vector<int>{1, 0}), (Vector<double>{0.5, 0.5}));
  EXPECT_EQ(square.resamplingError(square.resample(8)), 0);
  EXPECT_DOUBLE_EQ(square.resamplingError(square.resample(2)), 2); // two of four corners are sqrt(8) from the diagonal
  expectError<SizeError>("finite", [] { closedCurve({}).closestPoint(Vector<double>{1, 1}); });
  expectError<SizeError>("finite", [&] { square.resamplingError(closedCurve({})); });
  expectError<SizeError>("dimension", [&] { square.closestPoint(Vector<double>{1, 1, 1}); });
}

TEST(CurvePlane, OfManyEdgesIsNotQuadratic)
{
  const Curve<float> circle = ellipse<float>(1000, 1000, 0, 300000);
  EXPECT_FALSE(circle.selfIntersects());
  EXPECT_TRUE(circle.contains(ellipse<float>(900, 900, 0, 300000)));
  EXPECT_FALSE(circle.intersects(ellipse<float>(900, 900, 0, 300000)));
}
