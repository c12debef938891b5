#include "geometry/polygontriangulation.h"
#include "tests/support/curves.h"
#include "tests/support/manifold.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <map>
#include <random>
#include <set>

namespace
{

double twiceTriangleArea(const TriMesh<double>& mesh, int i)
{
  const Vertices<double> corners = mesh.triangle(i);
  return Curve<double>(corners).twiceArea(0, 1);
}

/// n - 2 triangles of the right total area, none of them clockwise; together they have the polygon as their boundary.
void expectTriangulation(const Curve<double>& polygon, bool flatTrianglesAllowed = false)
{
  PolygonTriangulation<double> triangulation;
  const TriMesh<double>& mesh = triangulation.apply(polygon, 0, 1);
  ASSERT_EQ(mesh.getNumTriangles(), polygon.getSize() - 2);
  double sum = 0;
  for (int i = 0; i < mesh.getNumTriangleSlots(); ++i)
  {
    const double area = twiceTriangleArea(mesh, i);
    EXPECT_TRUE(flatTrianglesAllowed ? area >= 0 : area > 0) << "triangle " << i << " has twice the area " << area;
    sum += area;
  }
  EXPECT_NEAR(sum, polygon.twiceArea(0, 1), 1e-9 * std::abs(sum));
  const EdgeCounts counts = countEdges(mesh);
  EXPECT_EQ(counts.numBoundary, polygon.getSize());
  EXPECT_EQ(counts.numNonManifold + counts.numInconsistent, 0);
}

/// Star-shaped around the origin, with n vertices in pixels.
Curve<double> randomStar(int n, std::mt19937& generator)
{
  std::uniform_real_distribution<double> radius(20, 1000);
  Curve<double> curve(2, n);
  for (int i = 0; i < n; ++i)
  {
    const double angle = 2 * std::numbers::pi * i / n;
    const double r = radius(generator);
    curve[i][0] = r * std::cos(angle);
    curve[i][1] = r * std::sin(angle);
  }
  return curve;
}

/// A line and its way back beside it, wound in a spiral.
Curve<double> spiral(int numPerSide)
{
  std::vector<std::vector<double>> points;
  for (int i = 0; i < 2 * numPerSide; ++i)
  {
    const int k = i < numPerSide ? i : 2 * numPerSide - 1 - i;
    const double angle = 0.2 * k, radius = 1 + angle + (i < numPerSide ? 2 : 0);
    points.push_back({radius * std::cos(angle), radius * std::sin(angle)});
  }
  return closedCurve(points);
}

Curve<double> comb(int numTeeth)
{
  std::vector<std::vector<double>> points = {{0, 0}, {2. * numTeeth, 0}};
  for (int i = numTeeth - 1; i >= 0; --i)
  {
    points.push_back({2. * i + 2, 10});
    points.push_back({2. * i + 1, 1});
  }
  points.push_back({0, 10});
  return closedCurve(points);
}

using Cell = std::pair<int, int>;

/// Directions 0 to 3 are right, up, left and down.
Cell neighbour(const Cell& cell, int direction)
{
  const int dx[] = {1, 0, -1, 0}, dy[] = {0, 1, 0, -1};
  return {cell.first + dx[direction], cell.second + dy[direction]};
}

/// A random tree of neighbouring cells: for each cell the directions to its neighbours in the tree.
std::map<Cell, std::set<int>> randomTree(int numCells, std::mt19937& generator)
{
  std::map<Cell, std::set<int>> tree = {{{0, 0}, {}}};
  std::vector<Cell> cells = {{0, 0}};
  while (static_cast<int>(cells.size()) < numCells)
  {
    const Cell from = cells[generator() % cells.size()];
    const int direction = static_cast<int>(generator() % 4);
    const Cell to = neighbour(from, direction);
    if (tree.contains(to)) continue;
    tree[from].insert(direction);
    tree[to].insert((direction + 2) % 4);
    cells.push_back(to);
  }
  return tree;
}

/// The way around a tree of cells. It runs along itself wherever cells touch that are not neighbours in the tree.
Curve<double> outline(const std::map<Cell, std::set<int>>& tree)
{
  const int cornerX[] = {1, 1, 0, 0}, cornerY[] = {0, 1, 1, 0}; // where the side in each direction begins
  Cell cell = tree.begin()->first;                              // has no cell to its left
  int side = 2;
  std::vector<std::vector<double>> points;
  do
  {
    points.push_back({1. * cell.first + cornerX[side], 1. * cell.second + cornerY[side]});
    side = (side + 1) % 4;
    while (tree.at(cell).contains(side))
    {
      cell = neighbour(cell, side);
      side = (side + 3) % 4;
    }
  } while (cell != tree.begin()->first || side != 2);
  return closedCurve(points);
}

/// Cells that hang together by sides or corners.
std::set<Cell> randomCells(std::mt19937& generator)
{
  const auto below = [&](int n) { return static_cast<int>(generator() % static_cast<unsigned>(n)); };
  const int width = 2 + below(6), height = 2 + below(6);
  std::set<Cell> cells = {{width / 2, height / 2}};
  for (int trial = 3 + below(2 * width * height); trial > 0; --trial)
  {
    const int x = below(width), y = below(height);
    for (int k = 0; k < 9; ++k)
      if (cells.contains({x + k / 3 - 1, y + k % 3 - 1}))
      {
        cells.insert({x, y});
        break;
      }
  }
  return cells;
}

/// The outer border of cells, counter-clockwise; at a corner that two of them share it crosses from one to the other.
Curve<double> outerBorder(const std::set<Cell>& cells)
{
  const auto runsBetween = [&](const Cell& p, int direction)
  {
    const int dx[] = {0, -1, -1, 0}, dy[] = {0, 0, -1, -1}; // the cell to the left; to the right is the one before
    const int right = (direction + 3) % 4;
    return cells.contains({p.first + dx[direction], p.second + dy[direction]}) &&
           !cells.contains({p.first + dx[right], p.second + dy[right]});
  };
  const Cell start = *cells.begin(); // no cell left of it, nor below
  Cell p = start;
  int direction = 0;
  std::vector<std::vector<double>> points;
  do
  {
    points.push_back({1. * p.first, 1. * p.second});
    p = neighbour(p, direction);
    direction = (direction + 3) % 4;
    while (!runsBetween(p, direction)) direction = (direction + 1) % 4;
  } while (p != start || direction != 0);
  return closedCurve(points);
}

} // namespace

TEST(PolygonTriangulation, OfSimplePolygons)
{
  const struct
  {
    const char* name;
    Curve<double> polygon;
  } cases[] = {
      {"triangle", closedCurve({{0, 0}, {1, 0}, {0, 1}})},
      {"arrow", closedCurve({{0, 0}, {2, 1}, {0, 2}, {1, 1}})},
      {"square with vertices on its sides",
       closedCurve({{0, 0}, {1, 0}, {2, 0}, {3, 0}, {3, 1}, {3, 3}, {2, 3}, {0, 3}, {0, 2}, {0, 1}})},
      {"triangle with vertices on one side", closedCurve({{0, 0}, {1, 0}, {2, 0}, {3, 0}, {4, 0}, {2, 5}})},
      {"comb", comb(100)},
      {"spiral", spiral(150)},
      {"staircase of pixels",
       closedCurve({{0, 0}, {4, 0}, {4, 1}, {3, 1}, {3, 2}, {2, 2}, {2, 3}, {1, 3}, {1, 4}, {0, 4}})},
  };
  for (const auto& c : cases)
  {
    SCOPED_TRACE(c.name);
    for (int origin = 0; origin < c.polygon.getSize(); ++origin)
    {
      Curve<double> polygon = c.polygon;
      polygon.setOrigin(origin);
      if (polygon.isClockwise(0, 1)) polygon.reverse();
      expectTriangulation(polygon);
    }
  }
}

TEST(PolygonTriangulation, OfRandomPolygons)
{
  std::mt19937 generator(1);
  for (int n = 3; n < 200; ++n)
  {
    SCOPED_TRACE(n);
    expectTriangulation(randomStar(n, generator));
  }
}

TEST(PolygonTriangulation, OfPolygonsThatTouchThemselves)
{
  const struct
  {
    const char* name;
    Curve<double> polygon;
  } cases[] = {
      {"repeated vertex", closedCurve({{0, 0}, {2, 0}, {2, 0}, {2, 2}, {0, 2}, {0, 2}, {0, 2}})},
      {"spike", closedCurve({{0, 0}, {2, 0}, {2, 2}, {2, 3}, {2, 2}, {0, 2}})},
      {"two squares at one corner", closedCurve({{0, 0}, {1, 0}, {1, 1}, {2, 1}, {2, 2}, {1, 2}, {1, 1}, {0, 1}})},
      {"hole joined by a bridge",
       closedCurve({{0, 0}, {9, 0}, {9, 9}, {0, 9}, {0, 0}, {3, 3}, {3, 6}, {6, 6}, {6, 3}, {3, 3}})},
      {"four squares in a row that meet at corners", closedCurve({{2, 4},
                                                                  {3, 4},
                                                                  {3, 5},
                                                                  {4, 5},
                                                                  {4, 6},
                                                                  {5, 6},
                                                                  {5, 7},
                                                                  {4, 7},
                                                                  {4, 6},
                                                                  {3, 6},
                                                                  {3, 5},
                                                                  {2, 5},
                                                                  {2, 6},
                                                                  {1, 6},
                                                                  {1, 5},
                                                                  {2, 5}})},
      {"two squares joined by a line",
       closedCurve({{0, 0}, {1, 0}, {1, 1}, {2, 2}, {3, 2}, {3, 3}, {2, 3}, {2, 2}, {1, 1}, {0, 1}})},
      {"three triangles at one repeated point",
       closedCurve({{0, 0}, {0, 0}, {2, -1}, {2, 1}, {0, 0}, {0, 2}, {-1, 2}, {0, 0}, {-1, -2}, {1, -2}})},
      {"notch that reaches a vertex", closedCurve({{0, 0}, {4, 0}, {4, 4}, {3, 4}, {0, 0}, {1, 4}, {0, 4}})},
  };
  for (const auto& c : cases)
  {
    SCOPED_TRACE(c.name);
    for (int origin = 0; origin < c.polygon.getSize(); ++origin)
    {
      SCOPED_TRACE(origin);
      Curve<double> polygon = c.polygon;
      polygon.setOrigin(origin);
      expectTriangulation(polygon, true);
    }
  }
}

TEST(PolygonTriangulation, OfPolygonsThatRunAlongThemselves)
{
  std::mt19937 generator(3);
  for (int round = 0; round < 500; ++round)
  {
    SCOPED_TRACE(round);
    Curve<double> polygon = outline(randomTree(2 + round % 30, generator));
    polygon.setOrigin(static_cast<int>(generator() % static_cast<unsigned>(polygon.getSize())));
    expectTriangulation(polygon, true);
  }
}

TEST(PolygonTriangulation, OfCellsThatMeetAtCorners)
{
  std::mt19937 generator(11);
  for (int round = 0; round < 5000; ++round)
  {
    SCOPED_TRACE(round);
    Curve<double> polygon = outerBorder(randomCells(generator));
    polygon.setOrigin(static_cast<int>(generator() % static_cast<unsigned>(polygon.getSize())));
    expectTriangulation(polygon, true);
  }
}

// A time that grows with the square of the size would be seen here.
TEST(PolygonTriangulation, OfManyVertices)
{
  std::mt19937 generator(4);
  expectTriangulation(randomStar(50000, generator));
  expectTriangulation(comb(20000));
  Curve<double> scribble(2, 50000);
  for (int i = 0; i < 100000; ++i) scribble.data()[i] = static_cast<double>(generator());
  PolygonTriangulation<double> triangulation;
  EXPECT_EQ(triangulation.apply(scribble, 0, 1).getNumTriangles(), 49998);
}

TEST(PolygonTriangulation, NeverFailsOnWhatIsNoPolygon)
{
  std::mt19937 generator(2);
  std::uniform_int_distribution<int> pixel(0, 9);
  for (int n = 0; n < 60; ++n)
  {
    Curve<float> scribble(2, n);
    for (int i = 0; i < 2 * n; ++i) scribble.data()[i] = static_cast<float>(pixel(generator));
    PolygonTriangulation<float> triangulation;
    EXPECT_EQ(triangulation.apply(scribble, 0, 1).getNumTriangles(), std::max(n - 2, 0));
  }
  const double nan = std::nan("");
  PolygonTriangulation<double> triangulation;
  EXPECT_EQ(triangulation.apply(closedCurve({{0, 0}, {nan, 0}, {1, nan}, {0, 1}}), 0, 1).getNumTriangles(), 2);
  EXPECT_EQ(triangulation.apply(closedCurve({{0, 0}, {1, 1}, {3, 3}, {2, 2}}), 0, 1).getNumTriangles(), 2);
}
