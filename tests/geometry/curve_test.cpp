#include "tests/support/curves.h"
#include "tests/support/errors.h"

#include <gtest/gtest.h>
#include <limits>

TEST(CurveOrientation, FollowsTheSignedArea)
{
  const struct
  {
    const char* name;
    Curve<double> curve;
    double twiceArea;
    int sign;
    double length;
  } cases[] = {
      {"counter-clockwise square", closedCurve({{0, 0}, {1, 0}, {1, 1}, {0, 1}}), 2, 1, 4},
      {"clockwise square", closedCurve({{0, 0}, {0, 1}, {1, 1}, {1, 0}}), -2, -1, 4},
      {"open square", openCurve({{0, 0}, {1, 0}, {1, 1}, {0, 1}}), 0, 0, 3},
      {"vertices on one line", closedCurve({{0, 0}, {3, 4}, {6, 8}}), 0, 0, 20},
      {"two vertices", closedCurve({{0, 0}, {3, 4}}), 0, 0, 10},
      {"one vertex", closedCurve({{5, 5}}), 0, 0, 0},
      {"nothing", closedCurve({}), 0, 0, 0},
      {"nothing, open", openCurve({}), 0, 0, 0},
      {"below the tolerance", closedCurve({{0, 0}, {2e-8, 0}, {0, 2e-8}}), 4e-16, 0, 4e-8 + 2e-8 * std::sqrt(2.)},
  };
  for (const auto& c : cases)
  {
    SCOPED_TRACE(c.name);
    EXPECT_DOUBLE_EQ(c.curve.twiceArea(0, 1), c.twiceArea);
    EXPECT_EQ(c.curve.projectedAreaSign(0, 1), c.sign);
    EXPECT_EQ(c.curve.isClockwise(0, 1), c.sign == -1);
    EXPECT_DOUBLE_EQ(c.curve.length(), c.length);
    for (const bool clockwise : {true, false})
    {
      Curve<double> turned = c.curve;
      turned.setClockwise(clockwise, 0, 1);
      EXPECT_EQ(turned.projectedAreaSign(0, 1), c.sign == 0 ? 0 : clockwise ? -1 : 1);
      if (c.sign == 0)
      {
        EXPECT_EQ(pointsOf(turned), pointsOf(c.curve));
      }
    }
  }
}

TEST(CurveOrientation, OfPixelsNeitherOverflowsNorRounds)
{
  const Curve<int> curve = curveThrough<int>({{0, 0}, {100000, 0}, {100000, 100000}, {0, 100000}});
  EXPECT_EQ(curve.twiceArea(0, 1), 2e10);
  EXPECT_DOUBLE_EQ(curveThrough<int>({{0, 0}, {1, 0}, {1, 1}}).length(), 2 + std::sqrt(2.));
}

TEST(CurveEdges, JoinTheLastVertexOnlyWhenClosed)
{
  using Pairs = std::vector<std::pair<int, int>>;
  const auto edgesOf = [](const Shape<double>& shape)
  {
    Pairs edges;
    for (auto edge = shape.edgeIterator(); !edge.isAtEnd(); edge.next())
      edges.emplace_back((*edge).getBegin(), (*edge).getEnd());
    return edges;
  };
  Curve<double> triangle = closedCurve({{0, 0}, {1, 0}, {1, 1}});
  CurveStack<double> stack(2, true);
  for (const Curve<double>& curve : {triangle, openCurve({}), openCurve({{7, 7}}), triangle}) stack.append(curve);
  EXPECT_EQ(edgesOf(triangle), (Pairs{{0, 1}, {1, 2}, {2, 0}}));
  EXPECT_EQ(edgesOf(stack), (Pairs{{0, 1}, {1, 2}, {0, 1}, {1, 2}}));
  EXPECT_EQ(edgesOf(Vertices<double>(triangle)), Pairs());
  for (auto edge = stack.edgeIterator(); !edge.isAtEnd(); edge.next()) (*edge).getEndVertex()[0] += 10;
  EXPECT_EQ(pointsOf(stack[3]), (std::vector<std::vector<double>>{{0, 0}, {11, 0}, {11, 1}}));
  EXPECT_TRUE(triangle.getEdge(0).isNext(triangle.getEdge(2)));
  EXPECT_TRUE(triangle.getEdge(0).isPrevious(triangle.getEdge(1)));
  triangle.setOpen(true);
  EXPECT_EQ(triangle.getNumEdges(), 2);
  EXPECT_FALSE(triangle.getEdge(0).isNext(triangle.getEdge(1)));
  EXPECT_EQ(openCurve({}).getNumEdges(), 0);
}

TEST(CurveResampling, SpacesVerticesEvenly)
{
  using Points = std::vector<std::vector<double>>;
  const Curve<double> square = closedCurve({{0, 0}, {2, 0}, {2, 2}, {0, 2}});
  const Curve<double> line = openCurve({{0, 0}, {1, 0}, {4, 0}});
  const struct
  {
    const char* name;
    const Curve<double>& curve;
    Points expected;
  } cases[] = {
      {"same corners", square, {{0, 0}, {2, 0}, {2, 2}, {0, 2}}},
      {"mid-edge", square, {{0, 0}, {1, 0}, {2, 0}, {2, 1}, {2, 2}, {1, 2}, {0, 2}, {0, 1}}},
      {"fewer", square, {{0, 0}, {2, 2}}},
      {"one", square, {{0, 0}}},
      {"none", square, {}},
      {"open keeps both ends", line, {{0, 0}, {2, 0}, {4, 0}}},
      {"open, one", line, {{0, 0}}},
  };
  for (const auto& c : cases)
  {
    SCOPED_TRACE(c.name);
    const Curve<double> resampled = c.curve.resample(static_cast<int>(c.expected.size()));
    EXPECT_EQ(pointsOf(resampled), c.expected);
    EXPECT_EQ(resampled.isOpen(), c.curve.isOpen());
  }
}

TEST(CurveResampling, OfACurveWithoutLengthRepeatsItsVertex)
{
  const std::vector<std::vector<double>> point(3, {3, 4});
  EXPECT_EQ(pointsOf(closedCurve({{3, 4}}).resample(3)), point);
  EXPECT_EQ(pointsOf(closedCurve({{3, 4}, {3, 4}}).resample(3)), point);
  expectError<SizeError>("no vertices", [] { closedCurve({}).resample(3); });
}

TEST(CurveStack, BranchesWhenALevelHoldsSeveralCurves)
{
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const struct
  {
    std::vector<double> heights;
    bool isBranching;
  } cases[] = {{{}, false},        {{1}, false},      {{1, 2, 3}, false},
               {{1, 2, 1}, false}, {{1, 2, 2}, true}, {{nan, nan}, false}};
  for (const auto& c : cases)
  {
    CurveStack<double> stack;
    for (const double height : c.heights) stack.append(ellipse(1., 1., height, 3));
    EXPECT_EQ(stack.isBranching(), c.isBranching);
  }
}
