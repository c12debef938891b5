#include "image/segmentation/cubetriangulation.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>
#include <random>
#include <set>
#include <string>
#include <vector>

namespace
{
int configurationOf(const double (&values)[8])
{
  int configuration = 0;
  for (int n = 0; n < 8; ++n)
    if (values[n] >= 0) configuration |= 1 << n;
  return configuration;
}

CubeTiling tilingOf(const double (&values)[8], InteriorTest test)
{
  return CubeTriangulation<double>(values, test).getTiling(configurationOf(values));
}

/// Components of a graph of numbered nodes.
class Components
{
public:
  explicit Components(int numNodes) : _parents(static_cast<std::size_t>(numNodes))
  {
    std::iota(_parents.begin(), _parents.end(), 0);
  }
  void join(int a, int b) { parent(rootOf(a)) = rootOf(b); }
  int rootOf(int node)
  {
    while (parent(node) != node) node = parent(node) = parent(parent(node));
    return node;
  }
  template <class Predicate> int count(Predicate predicate)
  {
    int count = 0;
    for (int node = 0; node < static_cast<int>(_parents.size()); ++node)
      count += rootOf(node) == node && predicate(node);
    return count;
  }

private:
  int& parent(int node) { return _parents[static_cast<std::size_t>(node)]; }
  std::vector<int> _parents;
};

int countSurfaces(const CubeTiling& tiling)
{
  Components components(13);
  bool isUsed[13] = {};
  for (int n = 0; n < 3 * tiling.numTriangles; ++n)
  {
    isUsed[tiling.edges[n]] = true;
    components.join(tiling.edges[n], tiling.edges[n - n % 3]);
  }
  return components.count([&isUsed](int edge) { return isUsed[edge]; });
}

/// Number of regions into which the zeros of the trilinear interpolant divide the cube, from samples of the cube.
int countRegions(const double (&v)[8], int size)
{
  const int last = size - 1, area = size * size;
  const auto sample = [&](int node)
  {
    const double x = double(node % size) / last, y = double(node / size % size) / last, z = double(node / area) / last;
    const auto face = [x, y](double a, double b, double c, double d)
    { return (1 - y) * ((1 - x) * a + x * b) + y * ((1 - x) * d + x * c); };
    return (1 - z) * face(v[0], v[1], v[2], v[3]) + z * face(v[4], v[5], v[6], v[7]);
  };
  std::vector<bool> signs(static_cast<std::size_t>(area * size));
  for (int node = 0; node < area * size; ++node) signs[static_cast<std::size_t>(node)] = sample(node) >= 0;
  Components components(area * size);
  const auto joinIfEqual = [&](int a, int b)
  {
    if (signs[static_cast<std::size_t>(a)] == signs[static_cast<std::size_t>(b)]) components.join(a, b);
  };
  for (int node = 0; node < area * size; ++node)
  {
    if (node % size < last) joinIfEqual(node, node + 1);
    if (node / size % size < last) joinIfEqual(node, node + size);
    if (node / area < last) joinIfEqual(node, node + area);
  }
  return components.count([](int) { return true; });
}
} // namespace

TEST(CubeTriangulation, ChoosesTheSubcaseByTheValues)
{
  const struct
  {
    const char* subcase; // by the exact test; *: that of the configuration with all signs changed
    double values[8];
    int numTriangles, numTrianglesPublished;
  } cases[] = {
      {"4_1", {-1, -1, -1, 1, -1, 1, -1, -1}, 2, 2},
      {"4_2", {-1, -1, -1, 4, -1, 3, -1, -1}, 6, 6},
      {"6_1_1", {1, 1, -1, -1, -2, -1, -1, 1}, 3, 3},
      {"6_1_2", {4, 1, -2, -2, -1, -2, 3, -1}, 9, 3},
      {"6_2", {1, 1, -1, 1, -1, 1, -2, 1}, 5, 5},
      {"7_1", {-1, 1, 1, 1, 2, -1, 1, -1}, 3, 3},
      {"7_2", {1, 1, 2, -2, -2, 2, -1, 2}, 5, 5},
      {"7_3", {-2, 1, -1, -1, 1, -1, 2, -1}, 9, 9},
      {"7_4_1", {-1, 2, -1, 2, -1, -1, 1, -1}, 5, 5},
      {"7_4_2", {-1, -2, -1, 2, 2, -1, 2, -3}, 9, 5},
      {"10_1_1", {1, 1, -1, -1, -2, -2, 1, 1}, 4, 4},
      {"10_1_1_", {-1, -1, 2, 2, 1, 1, -1, -1}, 4, 4},
      {"10_1_2", {-2, 1, -2, 3, -3, 4, -2, 1}, 8, 8},
      {"10_1_2*", {-3, 2, -1, 2, -1, 3, -4, 2}, 8, 4},
      {"10_2", {-1, -1, 2, 1, 1, 1, -1, -2}, 8, 8},
      {"10_2_", {1, -2, 1, -1, 2, -1, 1, -1}, 8, 8},
      {"12_1_1", {1, -1, 1, -2, 1, -1, -1, 1}, 4, 4},
      {"12_1_1_", {1, -1, -1, 1, -1, 2, -1, 1}, 4, 4},
      {"12_1_2", {3, -1, -1, 1, 1, -1, 2, -3}, 8, 4},
      {"12_1_2*", {3, -1, 1, -2, -1, -3, 1, 1}, 8, 4},
      {"12_2", {-1, -2, 1, 1, -1, 1, -1, 2}, 8, 8},
      {"12_2_", {-1, 2, -1, 1, 1, 1, -1, -2}, 8, 8},
      {"13_1", {1, -2, 1, -2, -1, 1, -2, 1}, 4, 4},
      {"13_1_", {-1, 2, -1, 1, 2, -1, 2, -1}, 4, 4},
      {"13_2", {1, -2, 1, -1, -3, 1, -1, 2}, 6, 6},
      {"13_2_", {1, -1, 2, -1, -2, 3, -1, 1}, 6, 6},
      {"13_3", {-2, 1, -1, 1, 1, -2, 3, -2}, 10, 10},
      {"13_3_", {-1, 2, -1, 2, 2, -3, 1, -1}, 10, 10},
      {"13_4", {1, -1, 1, -2, -1, 2, -1, 1}, 12, 12},
      {"13_5_1", {2, -1, 2, -2, -2, 2, -2, 1}, 6, 6},
      {"13_5_2", {4, -3, 3, -1, -3, 2, -3, 4}, 10, 6},
      {"13_5_2*", {-4, 3, -3, 2, 3, -2, 3, -4}, 10, 6},
      {"4_1, in which the published test sees a tunnel", {1, 3, -1, 1, -1, 2, 1, 3}, 2, 2},
  };
  for (const auto& c : cases)
  {
    SCOPED_TRACE(c.subcase);
    const CubeTiling exact = tilingOf(c.values, InteriorTest::Exact);
    EXPECT_EQ(exact.numTriangles, c.numTriangles);
    EXPECT_EQ(exact.isReversed, std::string(c.subcase).ends_with('*'));
    EXPECT_EQ(tilingOf(c.values, InteriorTest::Published).numTriangles, c.numTrianglesPublished);
    const int numRegions = countRegions(c.values, 41);
    EXPECT_EQ(countSurfaces(exact) + 1, numRegions); // each surface divides a region of the cube
  }
}

TEST(CubeTriangulation, HasTheTopologyOfTheTrilinearInterpolant)
{
  std::mt19937 engine(1);
  for (int numCompared = 0; numCompared < 400;)
  {
    double values[8];
    for (double& value : values) value = static_cast<int>(engine() % 17) - 8 + 0.5;
    if (!cubeConfigurations[static_cast<std::size_t>(configurationOf(values))].isAmbiguous) continue;
    ++numCompared;
    const int numRegions = countSurfaces(tilingOf(values, InteriorTest::Exact)) + 1;
    if (countRegions(values, 31) == numRegions) continue;
    EXPECT_EQ(countRegions(values, 121), numRegions) << testing::PrintToString(values); // a thin tunnel
  }
}

TEST(CubeTriangulation, HasTilingsThatCutExactlyTheCrossedEdges)
{
  std::mt19937 engine(2);
  std::set<const signed char*> tilings; // every row of every table is reached
  for (int n = 0; n < 4000000; ++n)
  {
    double values[8];
    for (double& value : values) value = static_cast<int>(engine() % 2001) - 1000;
    const int configuration = configurationOf(values);
    const CubeTiling tiling = tilingOf(values, n % 2 ? InteriorTest::Exact : InteriorTest::Published);
    if (!tilings.insert(tiling.edges).second) continue;
    int edges = 0;
    for (int e = 0; e < 3 * tiling.numTriangles; ++e) edges |= 1 << tiling.edges[e];
    EXPECT_EQ(edges,
              cubeConfigurations[static_cast<std::size_t>(configuration)].crossedEdges | tiling.hasInsideVertex << 12);
  }
  EXPECT_EQ(tilings.size(), 1u + 728u); // no triangles, and the rows of all tables but the shorter form of 6.1.2
}

TEST(CubeTriangulation, NamesCodesThatNoTableHolds)
{
  const double values[8] = {-1, 1, -1, 1, 1, -1, 1, -1};
  const CubeTriangulation<double> cube(values, InteriorTest::Published);
  testing::internal::CaptureStdout();
  EXPECT_FALSE(cube.testFace(7));
  EXPECT_FALSE(cube.testInterior(6, 7, 12));
  EXPECT_FALSE(cube.testInterior(5, 7, 0));
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "Invalid face code 7\nInvalid edge 12\nInvalid ambiguous case 5\n");
}
