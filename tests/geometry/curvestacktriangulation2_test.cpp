#include "geometry/curvestacktriangulation2.h"
#include "geometry/optimaltriangulation.h"
#include "geometry/overlaparea.h"
#include "tests/support/curves.h"
#include "tests/support/errors.h"
#include "tests/support/manifold.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <random>

namespace
{

using Tag = CurveStackTriangulationContourTag;
using Triangles = std::vector<std::vector<int>>;

Curve<double> clockwiseEllipse(double radiusX, double radiusY, double z, int n, double centerX = 0, double centerY = 0,
                               double start = 0)
{
  Curve<double> curve = ellipse(radiusX, radiusY, z, n, centerX, centerY, start);
  curve.setClockwise(true, 0, 1);
  return curve;
}

Curve<double> squareAt(double z, double x = 0, double side = 1)
{
  return closedCurve({{x, 0, z}, {x, side, z}, {x + side, side, z}, {x + side, 0, z}}); // clockwise
}

CurveStack<double> stackOf(const std::vector<Curve<double>>& curves, bool open = false)
{
  CurveStack<double> stack(3, open);
  for (const Curve<double>& curve : curves) stack.append(curve);
  return stack;
}

/// The surface of revolution of radius r(z), with begin and end caps.
template <class Radius>
TriMesh<double> capped(Radius radius, double bottom, double top, int numSlices, int n, int method = 0)
{
  CurveStack<double> stack;
  for (int i = 0; i < numSlices; ++i)
  {
    const double z = bottom + (top - bottom) * i / (numSlices - 1);
    stack.append(clockwiseEllipse(radius(z), radius(z), z, n + i % 3, 5, -7, 0.1 * i));
  }
  CurveStackTriangulation2<double> triangulation;
  triangulation.setMethod(method);
  triangulation.setTriangulateFirstCaps(true);
  triangulation.setTriangulateLastCaps(true);
  triangulation.apply(stack);
  return triangulation.getTriMesh();
}

Triangles trianglesOf(const TriMesh<double>& mesh)
{
  Triangles triangles;
  for (int i = 0; i < mesh.getNumTriangleSlots(); ++i)
    triangles.push_back({mesh.corners(i)[0], mesh.corners(i)[1], mesh.corners(i)[2]});
  return triangles;
}

struct TagCase
{
  const char* name;
  std::vector<Curve<double>> curves;
  Vector<Tag> tags;
  bool caps, firstCaps, lastCaps;
  double volume;   // signed, of the closed parts
  int numBoundary; // edges
  int numVertices;
};

} // namespace

TEST(CurveStackTriangulation, AlternatesBetweenTwoEqualSquares)
{
  CurveStackTriangulation2<double> triangulation;
  triangulation.apply(stackOf({squareAt(0), squareAt(1)}));
  // Every first step is a tie, which advances on the second curve.
  EXPECT_EQ(trianglesOf(triangulation.getTriMesh()),
            (Triangles{{0, 4, 5}, {0, 5, 1}, {1, 5, 6}, {1, 6, 2}, {2, 6, 7}, {2, 7, 3}, {3, 7, 4}, {3, 4, 0}}));
  const Triangles upright = trianglesOf(triangulation.getTriMesh());
  triangulation.apply(stackOf({squareAt(1), squareAt(0)}));
  Triangles turned = trianglesOf(triangulation.getTriMesh());
  for (std::vector<int>& triangle : turned) std::swap(triangle[1], triangle[2]);
  EXPECT_EQ(turned, upright); // the other winding, since the second curve lies below the first
}

TEST(CurveStackTriangulation, WindsTheSameWayWhicheverCurveComesFirst)
{
  for (const bool descending : {false, true})
  {
    std::vector<Curve<double>> curves = {squareAt(0), clockwiseEllipse(1, 2, 1, 9), squareAt(3)};
    if (descending) std::reverse(curves.begin(), curves.end());
    CurveStackTriangulation2<double> triangulation;
    triangulation.setTriangulateFirstCaps(true);
    triangulation.setTriangulateLastCaps(true);
    triangulation.apply(stackOf(curves));
    EXPECT_TRUE(isClosedManifold(triangulation.getTriMesh()));
    EXPECT_GT(signedVolume(triangulation.getTriMesh()), 0);
  }
}

TEST(CurveStackTriangulation, ConvergesToSolidsOfRevolution)
{
  const double pi = std::numbers::pi;
  const struct
  {
    const char* name;
    double (*radius)(double);
    double bottom, top, volume, area;
  } cases[] = {
      {"cylinder", [](double) { return 2.; }, 0, 5, 20 * pi, 28 * pi},
      {"cone frustum", [](double z) { return 1 + z; }, 0, 2, 26 * pi / 3, pi * (4 * std::sqrt(8.) + 1 + 9)},
      {"sphere between two parallels", [](double z) { return std::sqrt(1 - z * z); }, -0.999, 0.999,
       2 * pi * (0.999 - 0.999 * 0.999 * 0.999 / 3), 2 * pi * 2 * 0.999 + 2 * pi * (1 - 0.999 * 0.999)},
  };
  for (const auto& c : cases)
    for (const int method : {0, 1})
    {
      SCOPED_TRACE(c.name);
      const TriMesh<double> coarse = capped(c.radius, c.bottom, c.top, 20, 24, method);
      const TriMesh<double> fine = capped(c.radius, c.bottom, c.top, 80, 96, method);
      EXPECT_TRUE(isClosedManifold(coarse) && isClosedManifold(fine));
      EXPECT_EQ(eulerCharacteristic(fine), 2);
      EXPECT_NEAR(signedVolume(fine), fine.volume(), 1e-9);
      EXPECT_NEAR(fine.volume(), c.volume, 0.005 * c.volume);
      EXPECT_NEAR(fine.area(), c.area, 0.005 * c.area);
      EXPECT_LT(std::abs(fine.volume() - c.volume), std::abs(coarse.volume() - c.volume) / 6);
    }
}

TEST(CurveStackTriangulation, FollowsTagsAndCapSwitches)
{
  const Tag none = Tag::None, begin = Tag::Begin, end = Tag::End;
  const std::vector<Curve<double>> three = {squareAt(0), squareAt(1), squareAt(2)};
  const std::vector<TagCase> cases = {
      {"no caps", three, {}, false, false, false, 0, 8, 12},
      {"first and last caps close an untagged stack", three, {}, false, true, true, 2, 0, 12},
      {"the caps switch alone needs tags", three, {}, true, false, false, 0, 8, 12},
      {"tagged ends", three, {begin, none, end}, true, false, false, 2, 0, 12},
      {"Begin at a middle level: nothing joins it to the level below",
       three,
       {none, begin, none},
       true,
       true,
       true,
       1,
       4,
       12},
      {"End at a middle level is not carried on", three, {none, end, none}, true, true, true, 1, 4, 12},
      {"End on the first level is ignored", three, {end, none, none}, true, true, true, 0, 4, 8},
      {"End is capped once", three, {none, none, end}, true, true, true, 2, 0, 12},
      {"Begin on the last level gets no end cap", three, {none, end, begin}, true, true, true, 1, 4, 12},
      {"tags without caps", three, {begin, end, none}, false, false, false, 0, 8, 12},
      {"a single level has a begin cap only", {squareAt(0)}, {}, true, true, true, 0, 4, 4},
      {"nothing", {}, {}, true, true, true, 0, 0, 0},
      {"two surfaces side by side",
       {squareAt(0), squareAt(0, 10), squareAt(1, 10), squareAt(1)},
       {},
       false,
       true,
       true,
       2,
       0,
       16},
      {"one surface ends where another begins",
       {squareAt(0), squareAt(1), squareAt(1, 10), squareAt(2, 10)},
       {none, end, begin, none},
       true,
       true,
       true,
       2,
       0,
       16},
  };
  for (const TagCase& c : cases)
  {
    SCOPED_TRACE(c.name);
    CurveStackTriangulation2<double> triangulation;
    triangulation.setContourTags(c.tags);
    triangulation.setTriangulateCaps(c.caps);
    triangulation.setTriangulateFirstCaps(c.firstCaps);
    triangulation.setTriangulateLastCaps(c.lastCaps);
    triangulation.apply(stackOf(c.curves));
    const TriMesh<double>& mesh = triangulation.getTriMesh();
    const EdgeCounts counts = countEdges(mesh);
    EXPECT_EQ(mesh.getSize(), c.numVertices);
    EXPECT_EQ(counts.numBoundary, c.numBoundary);
    EXPECT_EQ(counts.numNonManifold + counts.numInconsistent, 0);
    if (c.numBoundary == 0)
    {
      EXPECT_NEAR(signedVolume(mesh), c.volume, 1e-12);
    }
    EXPECT_EQ(mesh.hasNormals(), c.numVertices > 0);
  }
}

TEST(CurveStackTriangulation, CapsFaceAwayFromTheStack)
{
  for (const bool descending : {false, true})
  {
    CurveStackTriangulation2<double> triangulation;
    triangulation.setTriangulateFirstCaps(true);
    triangulation.setMethod(7); // joins nothing
    std::vector<Curve<double>> curves = {squareAt(0), squareAt(1)};
    if (descending) std::reverse(curves.begin(), curves.end());
    triangulation.apply(stackOf(curves));
    ASSERT_EQ(triangulation.getTriMesh().getNumTriangles(), 2);
    EXPECT_EQ(triangulation.getTriMesh().getNormal(0), (Vector<double>{0, 0, descending ? 1. : -1.}));
  }
}

TEST(CurveStackTriangulation, GroupsTheCurvesOfTwoLevels)
{
  const Curve<double> near = squareAt(1), far = squareAt(1, 3);
  const struct
  {
    const char* name;
    std::vector<Curve<double>> curves;
    int numComponents;
  } cases[] = {
      {"two upper contours on one lower", {squareAt(0), near, far}, 1},
      {"two lower contours on one upper", {near, far, squareAt(2.5)}, 1},
      {"one to one", {squareAt(0, 3), squareAt(0), near, far}, 2},
      {"a chain of three", {squareAt(0), squareAt(0, 4), squareAt(1, 1.5), squareAt(1, 5)}, 2},
      {"all in one", {squareAt(0), squareAt(0, 4), squareAt(1, 2, 0.5)}, 1},
  };
  for (const unsigned int criterion : {6u, 2u, 3u, 5u, 99u})
    for (const auto& c : cases)
    {
      SCOPED_TRACE(c.name);
      SCOPED_TRACE(criterion);
      CurveStackTriangulation2<double> triangulation;
      triangulation.setCostCriterion(criterion);
      triangulation.setTriangulateFirstCaps(true);
      triangulation.setTriangulateLastCaps(true);
      triangulation.apply(stackOf(c.curves));
      EXPECT_TRUE(isClosedManifold(triangulation.getTriMesh()));
      EXPECT_EQ(eulerCharacteristic(triangulation.getTriMesh()), 2 * c.numComponents);
      EXPECT_GT(signedVolume(triangulation.getTriMesh()), 0);
    }
}

TEST(CurveCorrespondence, CostsAreThoseOfTheCriteria)
{
  const Curve<double> square = squareAt(0), moved = squareAt(2, 0.5), small = squareAt(2, 0, 0.5);
  const struct
  {
    unsigned int criterion;
    const Curve<double>& upper;
    double cost;
  } cases[] = {
      {6, moved, 4.25},
      {2, moved, 4.25},
      {3, moved, (2 + std::sqrt(4.25)) / 2}, // each curve: two vertices 0.5 off the other one's side, two above it
      {4, moved, 1 - 0.5 / 1.5},
      {4, small, 0.75},
      {4, square, 0},
      {5, moved, 2 * 4.25},
      {5, small, 4 + 4 + 0.5},
  };
  for (const auto& c : cases)
  {
    SCOPED_TRACE(c.criterion);
    EXPECT_NEAR((meshCost<double>(c.criterion, {&square}, {&c.upper})(0, 0)), c.cost, 1e-12);
  }
  const Curve<double> bow = closedCurve({{0, 0}, {1, 1}, {0, 1}, {1, 0}}); // crosses itself: two triangles
  EXPECT_NEAR(overlapArea(bow, bow), 0.5, 1e-12);
  EXPECT_NEAR(overlapArea(bow, closedCurve({{0, 0.5}, {1, 0.5}, {1, 3}, {0, 3}})), 0.25, 1e-12);
}

TEST(CurveStackTriangulation, LeavesDegenerateCurvesOut)
{
  const double nan = std::nan("");
  CurveStackTriangulation2<double> triangulation;
  triangulation.setTriangulateCaps(true);
  triangulation.setContourTags({Tag::None, Tag::Begin, Tag::End, Tag::End, Tag::End, Tag::None});
  triangulation.setTriangulateFirstCaps(true);
  triangulation.setTriangulateLastCaps(true);
  triangulation.apply(
      stackOf({squareAt(0), closedCurve({{0, 0, 1}, {1, 1, 1}}), closedCurve({{5, 5, 1}, {5, 5, 1}, {5, 5, 1}}),
               closedCurve({{0, 0, 1}, {1, nan, 1}, {1, 1, 1}}), Curve<double>(3), squareAt(2)}));
  EXPECT_EQ(triangulation.getIgnoredCurves(), (std::vector<int>{1, 2, 3, 4}));
  EXPECT_TRUE(isClosedManifold(triangulation.getTriMesh()));
  EXPECT_DOUBLE_EQ(signedVolume(triangulation.getTriMesh()), 2); // joined across the level left out
  expectError<SizeError>("contour tags", [&] { triangulation.apply(stackOf({squareAt(0)})); });
}

TEST(CurveStackTriangulation, EndsOnRepeatedVertices)
{
  Curve<double> stuttering(3);
  for (int i = 0; i < 40; ++i) stuttering.Vertices<double>::append(squareAt(1)[i / 10]);
  CurveStackTriangulation2<double> triangulation;
  triangulation.apply(stackOf({squareAt(0), stuttering, squareAt(2)}));
  EXPECT_GE(triangulation.getTriMesh().getNumTriangles(), 88);
}

TEST(CurveStackTriangulation, JoinsOpenCurvesWithoutAClosingEdge)
{
  const Curve<double> line = openCurve({{0, 0, 0}, {1, 0, 0}, {2, 0, 0}, {3, 0, 0}});
  Curve<double> backwards = openCurve({{3, 0, 2}, {1.5, 0, 2}, {0, 0, 2}});
  for (const int method : {0, 1})
  {
    CurveStackTriangulation2<double> triangulation;
    triangulation.setMethod(method);
    triangulation.setTriangulateFirstCaps(true); // open curves have none
    triangulation.apply(stackOf({line, backwards, openCurve({{0, 0, 3}, {3, 0, 3}})}, true));
    const TriMesh<double>& mesh = triangulation.getTriMesh();
    EXPECT_EQ(mesh.getNumTriangles(), 3 + 2 + 2 + 1);
    EXPECT_DOUBLE_EQ(mesh.area(), 9);
    const EdgeCounts counts = countEdges(mesh);
    EXPECT_EQ(counts.numInconsistent + counts.numNonManifold, 0);
    EXPECT_EQ(counts.numBoundary, 3 + 1 + 4);
  }
}

TEST(CurveStackTriangulation, BranchingOpenCurvesFaceOneWayHoweverTheyWereDrawn)
{
  // Two sheets, drawn in opposite directions for two levels, become one, and fork again.
  const auto left = [](double z) { return openCurve({{0, 0, z}, {1, 0, z}, {2, 0, z}}); };
  const auto right = [](double z) { return openCurve({{5, 0, z}, {4, 0, z}, {3, 0, z}}); };
  const auto whole = [](double z) { return openCurve({{5, 0, z}, {2.5, 0, z}, {0, 0, z}}); };
  CurveStackTriangulation2<double> triangulation;
  triangulation.apply(
      stackOf({left(0), right(0), left(1), right(1), whole(2), whole(3), left(4), right(4), left(5), right(5)}, true));
  const TriMesh<double>& mesh = triangulation.getTriMesh();
  EXPECT_NEAR(mesh.area(), 4 + 5 + 5 + 5 + 4, 1e-9); // a fork is as wide as what it forks from
  const EdgeCounts counts = countEdges(mesh);
  EXPECT_EQ(counts.numInconsistent + counts.numNonManifold, 0);
}

namespace
{

/// The least cost over all start rows, without any bounds between their paths.
double exhaustiveCost(const Curve<double>& a, const Curve<double>& b)
{
  const int na = a.getSize(), nb = b.getSize();
  double best = std::numeric_limits<double>::infinity();
  for (int start = 0; start < na; ++start)
  {
    std::vector<std::vector<double>> cost(na + 1, std::vector<double>(nb + 1, std::numeric_limits<double>::infinity()));
    cost[0][0] = 0;
    const auto pair = [&](int k, int l) { return a[(start + k) % na].sdistance(b[l % nb]); };
    for (int k = 0; k <= na; ++k)
      for (int l = 0; l <= nb; ++l)
      {
        if (k > 0) cost[k][l] = std::min(cost[k][l], cost[k - 1][l] + pair(k - 1, l) + pair(k, l));
        if (l > 0) cost[k][l] = std::min(cost[k][l], cost[k][l - 1] + pair(k, l - 1) + pair(k, l));
      }
    best = std::min(best, cost[na][nb]);
  }
  return best;
}

/// The cost of a stitching, triangle by triangle.
double costOf(const TriangulationCode& code, const Curve<double>& a, const Curve<double>& b)
{
  double cost = 0;
  int i = code.startA, j = code.startB;
  for (const bool onB : code.stepsOnB)
  {
    cost += a[i].sdistance(b[j]);
    (onB ? j : i) = (onB ? j + 1 : i + 1) % (onB ? b : a).getSize();
    cost += a[i].sdistance(b[j]);
  }
  EXPECT_EQ(i, code.startA);
  EXPECT_EQ(j, code.startB);
  return cost;
}

} // namespace

TEST(OptimalTriangulation, CostsWhatAnExhaustiveSearchFinds)
{
  std::mt19937 generator(3);
  std::uniform_int_distribution<int> size(3, 25);
  std::uniform_real_distribution<double> coordinate(0, 10);
  for (int trial = 0; trial < 300; ++trial)
  {
    Curve<double> a(3, size(generator)), b(3, size(generator));
    for (Curve<double>* curve : {&a, &b})
      for (int i = 0; i < 3 * curve->getSize(); ++i) curve->data()[i] = i % 3 == 2 ? 0 : coordinate(generator);
    double cost = 0;
    const TriangulationCode code = computeOptimalTriangulationCode(a, b, &cost);
    EXPECT_EQ(static_cast<int>(code.stepsOnB.size()), a.getSize() + b.getSize());
    EXPECT_EQ(std::count(code.stepsOnB.begin(), code.stepsOnB.end(), true), b.getSize());
    EXPECT_NEAR(cost, exhaustiveCost(a, b), 1e-9 * cost);
    EXPECT_NEAR(cost, costOf(code, a, b), 1e-9 * cost);
  }
}

TEST(CurveStackTriangulation, ClosesRandomStacks)
{
  std::mt19937 generator(4);
  std::uniform_int_distribution<int> size(3, 40), number(2, 6);
  std::uniform_real_distribution<double> share(0.05, 1), shift(-0.5, 0.5);
  for (int trial = 0; trial < 1000; ++trial)
  {
    SCOPED_TRACE(trial);
    const int numLevels = number(generator), numColumns = number(generator) / 2;
    CurveStack<double> stack;
    for (int level = 0; level < numLevels; ++level)
      for (int column = 0; column < numColumns; ++column)
      {
        const int n = size(generator);
        std::vector<double> angles(n);
        for (double& angle : angles) angle = -2 * std::numbers::pi * share(generator);
        std::sort(angles.rbegin(), angles.rend());
        Curve<double> curve(3, n);
        for (int i = 0; i < n; ++i)
          curve[i] = Vector<double>{10. * column + share(generator) * std::cos(angles[i]) + shift(generator),
                                    share(generator) * std::sin(angles[i]), 1. * level};
        curve.setClockwise(true, 0, 1); // it may cross itself
        stack.append(curve);
      }
    CurveStackTriangulation2<double> triangulation;
    triangulation.setTriangulateFirstCaps(true);
    triangulation.setTriangulateLastCaps(true);
    triangulation.apply(stack);
    ASSERT_TRUE(isClosedManifold(triangulation.getTriMesh()));
    ASSERT_EQ(eulerCharacteristic(triangulation.getTriMesh()), 2 * numColumns);
  }
}
