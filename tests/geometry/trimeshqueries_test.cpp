#include "geometry/coordinates.h"
#include "geometry/quadmesh.h"
#include "tests/support/curves.h"
#include "tests/support/errors.h"
#include "tests/support/meshes.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <limits>
#include <random>
#include <thread>

namespace
{

/// How often the surface winds around a point, from the solid angles of its triangles.
/// Source: Van Oosterom and Strackee, "The solid angle of a plane triangle", 1983.
int windingNumber(const TriMesh<double>& mesh, const Vector<double>& p)
{
  double sum = 0;
  for (int i = 0; i < mesh.getNumTriangleSlots(); ++i)
  {
    if (!mesh.hasTriangle(i)) continue;
    Vector3d<double> a[3];
    for (int k = 0; k < 3; ++k) a[k] = difference<double>(mesh.data(mesh.corners(i)[k]), p.data());
    const double la = norm(a[0]), lb = norm(a[1]), lc = norm(a[2]);
    sum += std::atan2(dotProduct(a[0], crossProduct(a[1], a[2])), la * lb * lc + dotProduct(a[0], a[1]) * lc +
                                                                      dotProduct(a[0], a[2]) * lb +
                                                                      dotProduct(a[1], a[2]) * la);
  }
  return static_cast<int>(std::lround(sum / (2 * std::numbers::pi)));
}

double distanceToBox(const Vector<double>& p, double size)
{
  double outside = 0, inside = size;
  for (const double x : p)
  {
    outside += std::pow(std::max({-x, x - size, 0.}), 2);
    inside = std::min({inside, x, size - x});
  }
  return outside > 0 ? std::sqrt(outside) : inside;
}

Vector<double> randomPoint(std::mt19937& generator, double low, double high)
{
  std::uniform_real_distribution<double> coordinate(low, high);
  return Vector<double>{coordinate(generator), coordinate(generator), coordinate(generator)};
}

} // namespace

// Rays from grid points meet the edges and vertices of the grid, and run along its upright sides.
TEST(TriMeshContains, IsExactAboveEdgesAndVertices)
{
  const int n = 4;
  const TriMesh<double> cube = gridCube<double>(n);
  const TriMesh<int> pixels = gridCube<int>(n);
  for (int i = -2; i <= 2 * n + 2; ++i)
    for (int j = -2; j <= 2 * n + 2; ++j)
      for (int k = -2; k <= 2 * n + 2; ++k)
      {
        const bool inside = std::min({i, j, k}) >= 0 && std::max({i, j, k}) <= 2 * n;
        EXPECT_EQ(cube.contains(Vector<double>{i / 2., j / 2., k / 2.}), inside) << i << " " << j << " " << k;
        EXPECT_EQ(pixels.contains(Vector<int>{i, j, k}), std::min({i, j, k}) >= 0 && std::max({i, j, k}) <= n);
      }
  const double above = std::nextafter(4., 5.), below = std::nextafter(0., -1.);
  EXPECT_FALSE(cube.contains(Vector<double>{1, 1, above}));
  EXPECT_FALSE(cube.contains(Vector<double>{below, 1, 1}));
}

TEST(TriMeshContains, AgreesWithTheWindingNumber)
{
  std::mt19937 generator(3);
  TriMesh<double> mesh = torus(3, 1, 40, 20);
  std::normal_distribution<double> noise(0, 0.03);
  for (int i = 0; i < 3 * mesh.getSize(); ++i) mesh.data()[i] += noise(generator);
  int numInside = 0;
  for (int i = 0; i < 2000; ++i)
  {
    const Vector<double> p = randomPoint(generator, -4, 4);
    numInside += mesh.contains(p);
    ASSERT_EQ(mesh.contains(p), windingNumber(mesh, p) != 0) << p[0] << " " << p[1] << " " << p[2];
  }
  EXPECT_GT(numInside, 50);
  for (int i = 0; i < mesh.getSize(); ++i) EXPECT_TRUE(mesh.contains(Vector<double>(mesh[i]))); // its own vertices
}

TEST(TriMeshClosestPoint, OfABoxIsThatOfTheFormula)
{
  std::mt19937 generator(4);
  const TriMesh<double> cube = gridCube<double>(5);
  for (int i = 0; i < 500; ++i)
  {
    const Vector<double> p = randomPoint(generator, -4, 9);
    Vector<double> closest;
    const double distance = cube.closestPoint(p, closest);
    EXPECT_NEAR(distance, distanceToBox(p, 5), 1e-12);
    EXPECT_NEAR(distanceToBox(closest, 5), 0, 1e-12);
    EXPECT_NEAR(std::sqrt(squaredDistance(p.data(), closest.data(), 3)), distance, 1e-12);
  }
}

TEST(TriMeshClosestPoint, OfFlatTrianglesIsOnTheirEdges)
{
  TriMesh<float> mesh(Vertices<float>(3, {0, 0, 0, 2, 0, 0, 1, 0, 0}));
  mesh.addTriangle(0, 1, 2);
  mesh.addTriangle(2, 2, 2);
  Vector<float> closest;
  EXPECT_EQ(mesh.closestPoint(Vector<float>{1.5f, 3, 4}, closest), 5);
  EXPECT_EQ(closest, (Vector<float>{1.5f, 0, 0}));
  EXPECT_TRUE(mesh.contains(Vector<float>{0.5f, 0, 0}));
  EXPECT_FALSE(mesh.contains(Vector<float>{3, 0, 0}));
}

TEST(TriMeshQueries, FollowEveryChange)
{
  TriMesh<double> cube = gridCube<double>(2);
  Vector<double> closest;
  const Vector<double> center = {1, 1, 1}, away = {11, 1, 1};
  EXPECT_TRUE(cube.contains(center));
  const TriMesh<double> copy = cube;
  cube.translate(Vector<double>{10, 0, 0});
  EXPECT_FALSE(cube.contains(center));
  EXPECT_TRUE(cube.contains(away));
  EXPECT_TRUE(copy.contains(center)); // the copy did not move
  cube[0][0] = 7;
  EXPECT_EQ(cube.closestPoint(Vector<double>{7, 0, 0}, closest), 0);
  cube.removeTriangle(0);
  cube.removeTriangle(1); // no other one has the moved vertex
  EXPECT_GT(cube.closestPoint(Vector<double>{7, 0, 0}, closest), 0.);
  const Vector<int> star = cube.star(1);
  cube.addTriangle(1, 5, 9);
  EXPECT_EQ(cube.star(1).getSize(), star.getSize() + 1);
  EXPECT_EQ(cube.neighbours(9)[0], 1);
  cube.Vertices<double>::append(center);
  EXPECT_EQ(cube.star(cube.getSize() - 1).getSize(), 0);
  cube.clear();
  EXPECT_FALSE(cube.contains(away));
  expectError<SizeError>("no surface", [&] { cube.closestPoint(away, closest); });
}

TEST(TriMeshQueries, BuildTheirIndexOnceForAllThreads)
{
  const TriMesh<double> mesh = torus(3, 1, 100, 50);
  std::mt19937 generator(5);
  std::vector<Vector<double>> points;
  for (int i = 0; i < 200; ++i) points.push_back(randomPoint(generator, -4, 4));
  std::vector<char> inside(points.size());
  std::vector<std::thread> threads;
  for (std::size_t t = 0; t < 4; ++t)
    threads.emplace_back(
        [&, t]
        {
          for (std::size_t i = t; i < points.size(); i += 4)
            inside[i] = mesh.contains(points[i]) && mesh.star(0).getSize() == 6;
        });
  for (std::thread& thread : threads) thread.join();
  const TriMesh<double> other = torus(3, 1, 100, 50);
  for (std::size_t i = 0; i < points.size(); ++i) EXPECT_EQ(inside[i] != 0, other.contains(points[i]));
}

TEST(TriMeshQueries, OfHostileMeshes)
{
  const double nan = std::nan(""), infinity = std::numeric_limits<double>::infinity();
  Vector<double> closest;
  TriMesh<double> mesh(Vertices<double>(3, {0, 0, 0, 1, 0, 0, 0, nan, 0, infinity, 0, 0}));
  mesh.addTriangle(0, 1, 2);
  mesh.addTriangle(0, 1, 3);
  EXPECT_FALSE(mesh.contains(Vector<double>{nan, 0, 0}));
  EXPECT_FALSE(mesh.contains(Vector<double>{5, 5, 5}));
  expectError<SizeError>("no surface", [&] { mesh.closestPoint(Vector<double>{nan, 0, 0}, closest); });
  expectError<SizeError>("three dimensions", [&] { mesh.contains(Vector<double>{0, 0}); });
  expectError<RangeError>("vertex 4", [&] { mesh.neighbours(4); });
  mesh.setSize(2);
  expectError<SizeError>("does not exist", [&] { mesh.contains(Vector<double>{0, 0, 0}); });
  EXPECT_EQ(TriMesh<double>(3).contains(Vector<double>{0, 0, 0}), false);
}

TEST(TriMeshSmoothing, RemovesNoiseAndKeepsTheVolume)
{
  std::mt19937 generator(6);
  std::normal_distribution<double> noise(0, 0.03);
  const TriMesh<double> smooth = torus(3, 1, 80, 30);
  TriMesh<double> mesh = smooth;
  for (int i = 0; i < 3 * mesh.getSize(); ++i) mesh.data()[i] += noise(generator);
  const double before = mesh.rmsDistance(smooth);
  mesh.smooth(10);
  EXPECT_NEAR(mesh.volume(), smooth.volume(), 0.01 * smooth.volume());
  EXPECT_LT(mesh.rmsDistance(smooth), before / 2);
  EXPECT_NEAR(mesh.area(), smooth.area(), 0.02 * smooth.area());
}

TEST(TriMeshSmoothing, KeepsTheVolumeOfCoarseClosedMeshes)
{
  QuadMesh<double> rings; // of a sphere, the other way around in z
  for (int i = 1; i < 10; ++i)
  {
    const double angle = i * std::numbers::pi / 10;
    rings.append(ellipse<double>(2 * std::sin(angle), 2 * std::sin(angle), 7 + 2 * std::cos(angle), 20));
  }
  rings.buildCaps();
  TriMesh<double> cube;
  cube.cube();
  TriMesh<double> withLooseVertex = cube;
  withLooseVertex.append(Vector<double>{9, 9, 9});
  TriMesh<double> apart = cube, mirrored = cube; // together they enclose as much as nothing
  mirrored.flip();
  mirrored.translate(Vector<double>{5, 0, 0});
  for (int i = 0; i < 8; ++i) apart.append(mirrored[i]);
  for (int i = 0; i < 12; ++i)
    apart.addTriangle(8 + mirrored.corners(i)[0], 8 + mirrored.corners(i)[1], 8 + mirrored.corners(i)[2]);
  const struct
  {
    const char* name;
    TriMesh<double> mesh;
    int iterations;
  } cases[] = {{"cube", cube, 100},
               {"cube with a loose vertex", withLooseVertex, 100},
               {"sphere", rings.toTriMesh(true), 200},
               {"cube until it is flat", cube, 5000},
               {"cubes that face out and in", apart, 100}};
  for (const auto& c : cases)
  {
    SCOPED_TRACE(c.name);
    TriMesh<double> mesh = c.mesh;
    mesh.smooth(c.iterations);
    EXPECT_NEAR(mesh.volume(), c.mesh.volume(), 1e-6 * std::max(1., c.mesh.volume()));
    for (int i = 0; i < 3 * mesh.getSize(); ++i) EXPECT_LT(std::abs(mesh.data()[i]), 1e4);
  }
  withLooseVertex.smooth(5);
  EXPECT_EQ(withLooseVertex[8], (Vector<double>{9, 9, 9}));
}

TEST(TriMeshSmoothing, LeavesTheBorderAndLooseVertices)
{
  TriMesh<double> fan(Vertices<double>(3, {0, 0, 3, 1, 0, 0, 0, 1, 0, -1, 0, 0, 0, -1, 0, 9, 9, 9}));
  for (int i = 1; i <= 4; ++i) fan.addTriangle(0, i, i % 4 + 1);
  const TriMesh<double> before = fan;
  fan.smooth(1);
  EXPECT_LT(fan[0][2], 3);
  for (int i = 1; i < 6; ++i) EXPECT_EQ(fan[i], before[i]);
  fan.computeNormals();
  fan.smoothNormals(3);
  EXPECT_EQ(fan.getNormal(0), (Vector<double>{0, 0, 1}));
  EXPECT_GT(fan.getNormal(1)[2], std::as_const(before)[1][2]);
  EXPECT_EQ(fan.getNormal(5), (Vector<double>{0, 0, 0}));
  expectError<UsageError>("no normals", [&] { TriMesh<double>(before).smoothNormals(1); });
}
