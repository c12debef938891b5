#include "tests/support/curves.h"
#include "tests/support/errors.h"

#include <gtest/gtest.h>
#include <limits>

TEST(VertexServer, RaisesTheCapacityInStepsOfTheGrowth)
{
  const struct
  {
    int size, capacity, growth, newSize, expectedCapacity;
  } cases[] = {
      {4, 0, 0, 4, 4},   {4, 0, 0, 5, 8}, {4, 6, 3, 6, 6},   {4, 6, 3, 7, 9},
      {4, 6, 3, 13, 15}, {0, 0, 0, 3, 3}, {5, 2, 10, 5, 12},
  };
  for (const auto& c : cases)
  {
    VertexServer<float> server(3, c.size, c.capacity, c.growth);
    server.setSize(c.newSize);
    EXPECT_EQ(server.getSize(), c.newSize);
    EXPECT_EQ(server.getCapacity(), c.expectedCapacity);
  }
}

TEST(VertexServer, KeepsVerticesAndViewsTogetherWhileItGrows)
{
  Vertices<double> vertices(3);
  for (int i = 0; i < 1000; ++i) vertices.append(Vector<double>{1. * i, 2. * i, 3. * i});
  for (int i = 0; i < 1000; ++i)
  {
    ASSERT_EQ(std::as_const(vertices)[i].data(), std::as_const(vertices).data() + 3 * i);
    ASSERT_EQ(vertices[i], (Vector<double>{1. * i, 2. * i, 3. * i}));
  }
  vertices.append(Vector<double>(vertices[7])); // a vertex of the set itself
  vertices.insert(0, vertices[1000]);
  EXPECT_EQ(vertices[0], (Vector<double>{7, 14, 21}));
}

TEST(VertexServer, ShrunkAndGrownAgainHoldsZeros)
{
  Vertices<int> vertices = curveThrough<int>({{1, 2}, {3, 4}});
  vertices.setSize(1);
  vertices.setSize(2);
  EXPECT_EQ(pointsOf(vertices), (std::vector<std::vector<int>>{{1, 2}, {0, 0}}));
}

TEST(Vertices, RefuseIndexesAndDimensionsThatDoNotFit)
{
  Curve<double> curve = closedCurve({{0, 0}, {1, 0}});
  expectError<RangeError>("vertex 3", [&] { curve.insert(3, Vector<double>{0, 0}); });
  expectError<RangeError>("vertex 2", [&] { curve.remove(2); });
  expectError<RangeError>("vertex 1", [&] { curve.remove(1, 0); });
  expectError<RangeError>("vertex -1", [&] { curve.setOrigin(-1); });
  expectError<SizeError>("dimension", [&] { curve.insert(0, Vector<double>{0, 0, 0}); });
  expectError<SizeError>("dimension", [&] { curve.append(closedCurve({{0, 0, 0}})); });
  expectError<SizeError>("no vertices", [] { Vertices<float>(3).cog(); });
  EXPECT_EQ(pointsOf(curve), (std::vector<std::vector<double>>{{0, 0}, {1, 0}}));
}

TEST(VerticesMatching, FindsTheShiftThatRealigns)
{
  const Curve<double> curve =
      closedCurve({{0, 0}, {5, 1}, {7, 4}, {6, 9}, {2, 8}, {-1, 6}, {-2, 3}, {-3, 2}, {-2, 1}, {-1, 0.5}, {-0.5, 0.1}});
  for (int rotation = 0; rotation < curve.getSize(); ++rotation)
  {
    Curve<double> rotated = curve;
    rotated.setOrigin(rotation);
    EXPECT_EQ(curve.findMatch(rotated), rotation);
    rotated.match(curve);
    EXPECT_EQ(pointsOf(rotated), pointsOf(curve));
  }
}

TEST(VerticesMatching, PrefersTheSmallestShiftOnATie)
{
  const Curve<int> square = curveThrough<int>({{1, 1}, {-1, 1}, {-1, -1}, {1, -1}});
  const Curve<int> origin = curveThrough<int>({{0, 0}, {0, 0}, {0, 0}, {0, 0}});
  EXPECT_EQ(square.findMatch(origin), 0);
  const Curve<int> twice = curveThrough<int>({{-1, 0}, {1, 0}, {-1, 0}, {1, 0}});
  EXPECT_EQ(twice.findMatch(curveThrough<int>({{1, 0}, {-1, 0}, {1, 0}, {-1, 0}})), 1);
}

TEST(VerticesMatching, DoesNotOverflowOnLargePixelCoordinates)
{
  const int most = std::numeric_limits<int>::max();
  const Curve<int> curve = curveThrough<int>({{most, most}, {0, most}, {0, 0}});
  Curve<int> rotated = curve;
  rotated.setOrigin(2);
  EXPECT_EQ(curve.findMatch(rotated), 2);
}

TEST(VerticesMatching, RefusesASetOfAnotherSize)
{
  const Curve<double> square = closedCurve({{0, 0}, {1, 0}, {1, 1}, {0, 1}});
  expectError<SizeError>("Size mismatch", [&] { square.findMatch(closedCurve({{0, 0}, {1, 0}, {1, 1}})); });
}

TEST(Vertices, ClosestPointsAreTheFirstClosestPair)
{
  int i = -1;
  int j = -1;
  closedCurve({{0, 0}, {4, 0}, {8, 0}}).closestPoints(closedCurve({{5, 5}, {8, 1}, {4, -1}}), i, j);
  EXPECT_EQ(i, 1);
  EXPECT_EQ(j, 2);
}

TEST(Vertices, CenterOfGravityOfPixelsIsNotRounded)
{
  Curve<int> pixels = curveThrough<int>({{0, 0}, {2, 0}, {3, 0}, {2, 5}});
  EXPECT_EQ(pixels.cog(), (Vector<double>{1.75, 1.25}));
  pixels.center(); // to the nearest pixel
  EXPECT_EQ(pointsOf(pixels)[0], (std::vector<int>{-2, -1}));
}

TEST(ShapeType, HasAName)
{
  EXPECT_EQ(getShapeTypeName(Curve<float>().getShapeType()), "ClosedCurve");
  EXPECT_EQ(getShapeTypeName(CurveStack<float>(3, true).getShapeType()), "OpenCurveStack");
  EXPECT_EQ(getShapeTypeName(TriMeshShape), "TriMesh");
  EXPECT_EQ(getShapeTypeName(9), "UnkwownShape");
  EXPECT_EQ(getShapeTypeName(-1), "UnkwownShape");
}

TEST(Shape, MomentsAreThoseOfAllLevels)
{
  CurveStack<double> stack;
  stack.append(curveThrough<double>({{0, 0, 0}, {4, 0, 0}}));
  stack.append(curveThrough<double>({{0, 0, 2}, {4, 4, 2}}));
  EXPECT_EQ(stack.cog(), (Vector<double>{2, 1, 1}));
  EXPECT_EQ(stack.inertia(), (SquareMatrix<double>{{4, 2, 0}, {2, 3, 1}, {0, 1, 1}}));
  EXPECT_EQ(stack.boundingBox().getMaximum(), (Vector<double>{4, 4, 2}));
  stack.multiply(SquareMatrix<double>{{0, -1, 0}, {1, 0, 0}, {0, 0, 3}});
  EXPECT_EQ(stack[1][1], (Vector<double>{-4, 4, 6}));
  stack.center();
  EXPECT_EQ(stack.cog(), (Vector<double>{0, 0, 0}));
}
