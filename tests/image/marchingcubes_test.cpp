#include "image/segmentation/marchingcubes.h"
#include "tests/support/errors.h"
#include "tests/support/manifold.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <functional>
#include <limits>
#include <map>
#include <memory>
#include <numbers>
#include <omp.h>
#include <random>
#include <set>
#include <utility>

namespace
{
using Field = std::function<double(int, int, int)>;

template <class T> VoxelMatrix<T> volumeOf(int size1, int size2, int size3, const Field& field)
{
  VoxelMatrix<T> volume(size1, size2, size3);
  for (int k = 0; k < size3; ++k)
    for (int i = 0; i < size1; ++i)
      for (int j = 0; j < size2; ++j) volume(i, j, k) = static_cast<T>(field(i, j, k));
  return volume;
}

template <class T> TriMesh<float> surfaceOf(const VoxelMatrix<T>& volume, Real<T> level, bool closed,
                                            InteriorTest test = InteriorTest::Published)
{
  MarchingCubes<T> marchingCubes;
  marchingCubes.setInteriorTest(test);
  return marchingCubes.buildMesh(volume, level, closed);
}

/// The value of a grid point minus the level; the frame around the volume has -1.
template <class T> long double valueAt(const VoxelMatrix<T>& volume, Real<T> level, int i, int j, int k)
{
  if (!volume.contains(i, j, k)) return -1;
  return static_cast<long double>(volume(i, j, k)) - level;
}

/// The tiling of the cube that begins at a point of the framed grid.
template <class T>
CubeTiling tilingAt(const VoxelMatrix<T>& volume, Real<T> level, int i, int j, int k, InteriorTest test)
{
  const auto at = [&](int di, int dj, int dk) { return valueAt(volume, level, i + di, j + dj, k + dk); };
  const long double corners[8] = {at(0, 0, 0), at(0, 1, 0), at(1, 1, 0), at(1, 0, 0),
                                  at(0, 0, 1), at(0, 1, 1), at(1, 1, 1), at(1, 0, 1)};
  int configuration = 0;
  for (int n = 0; n < 8; ++n)
    if (corners[n] >= 0) configuration |= 1 << n;
  return CubeTriangulation<long double>(corners, test).getTiling(configuration);
}

/// Crossed edges of the framed grid and cubes with a vertex inside, each edge and each cube looked at by itself.
template <class T> int countVertices(const VoxelMatrix<T>& volume, Real<T> level, InteriorTest test)
{
  int count = 0;
  for (int k = -1; k <= volume.getSize3(); ++k)
    for (int i = -1; i <= volume.getSize1(); ++i)
      for (int j = -1; j <= volume.getSize2(); ++j)
      {
        const bool isAbove = valueAt(volume, level, i, j, k) >= 0;
        count += isAbove != (valueAt(volume, level, i + 1, j, k) >= 0);
        count += isAbove != (valueAt(volume, level, i, j + 1, k) >= 0);
        count += isAbove != (valueAt(volume, level, i, j, k + 1) >= 0);
        count += tilingAt(volume, level, i, j, k, test).hasInsideVertex;
      }
  return count;
}

/// For each edge, the number of triangles that run along it upwards less that of those that run downwards: 0
/// everywhere on a closed surface of one orientation.
std::map<std::pair<int, int>, int> edgeBalances(const TriMesh<float>& mesh)
{
  std::map<std::pair<int, int>, int> balances;
  for (int n = 0; n < mesh.getNumTriangles(); ++n)
    for (int c = 0; c < 3; ++c)
    {
      const int a = mesh.corners(n)[c], b = mesh.corners(n)[(c + 1) % 3];
      a < b ? ++balances[{a, b}] : --balances[{b, a}];
    }
  return balances;
}

bool isBalanced(const TriMesh<float>& mesh)
{
  const auto balances = edgeBalances(mesh);
  return std::all_of(balances.begin(), balances.end(), [](const auto& balance) { return balance.second == 0; });
}

int countUsedVertices(const TriMesh<float>& mesh)
{
  std::set<int> used;
  for (int n = 0; n < mesh.getNumTriangles(); ++n) used.insert(mesh.corners(n), mesh.corners(n) + 3);
  return static_cast<int>(used.size());
}

bool areEqual(const TriMesh<float>& a, const TriMesh<float>& b)
{
  if (a.getSize() != b.getSize() || a.getNumTriangles() != b.getNumTriangles()) return false;
  const auto sameBytes = [](const void* p, const void* q, std::size_t size)
  { return size == 0 || std::memcmp(p, q, size) == 0; };
  const std::size_t numBytes = 12 * static_cast<std::size_t>(a.getSize());
  return sameBytes(a.data(), b.data(), numBytes) && sameBytes(a.getNormals().data(), b.getNormals().data(), numBytes) &&
         sameBytes(a.corners(0), b.corners(0), 12 * static_cast<std::size_t>(a.getNumTriangles()));
}

/// Fields that hit every configuration, with and without ties.
Field noise(unsigned seed, double smallest, double largest, bool isWhole)
{
  const auto engine = std::make_shared<std::mt19937>(seed);
  return [=](int, int, int)
  {
    const double value = smallest + (largest - smallest) * ((*engine)() / 4294967296.0);
    return isWhole ? std::floor(value) : value;
  };
}

template <class T>
void expectClosed(const char* name, const VoxelMatrix<T>& volume, Real<T> level, bool isManifold = true)
{
  for (const InteriorTest test : {InteriorTest::Published, InteriorTest::Exact})
  {
    SCOPED_TRACE(testing::Message() << name << (test == InteriorTest::Exact ? ", exact" : ""));
    const TriMesh<float> mesh = surfaceOf(volume, level, true, test);
    EXPECT_GT(mesh.getNumTriangles(), 0);
    EXPECT_EQ(mesh.getSize(), countVertices(volume, level, test));
    EXPECT_EQ(countUsedVertices(mesh), mesh.getSize());
    EXPECT_TRUE(isBalanced(mesh));
    EXPECT_GT(signedVolume(mesh), 0);
    if (isManifold && test == InteriorTest::Published)
    {
      EXPECT_EQ(countEdges(mesh).numNonManifold, 0);
    }
    for (int n = 0; n < mesh.getNumTriangles(); ++n)
    {
      const int* const c = mesh.corners(n);
      EXPECT_TRUE(c[0] != c[1] && c[1] != c[2] && c[2] != c[0]);
    }
  }
}
} // namespace

TEST(MarchingCubes, SurroundsASingleVoxelByAnOctahedron)
{
  VoxelMatrix<unsigned char> volume = volumeOf<unsigned char>(3, 5, 7, [](int, int, int) { return 10; });
  volume(1, 2, 3) = 30;
  const TriMesh<float> mesh = surfaceOf(volume, 20, false);
  ASSERT_EQ(mesh.getSize(), 6);
  const float expected[6][3] = {{0.5, 2, 3}, {1.5, 2, 3}, {1, 1.5, 3}, {1, 2.5, 3}, {1, 2, 2.5}, {1, 2, 3.5}};
  for (int n = 0; n < 6; ++n)
    for (int axis = 0; axis < 3; ++axis)
    {
      EXPECT_EQ(mesh[n][axis], expected[n][axis]) << n;
      EXPECT_NEAR(mesh.getNormal(n)[axis], 2 * (expected[n][axis] - (1 + static_cast<float>(axis))), 1e-6);
    }
  EXPECT_EQ(mesh.getNumTriangles(), 8);
  EXPECT_TRUE(isClosedManifold(mesh));
  EXPECT_FLOAT_EQ(static_cast<float>(signedVolume(mesh)), 1.f / 6);
  EXPECT_TRUE(areEqual(mesh, surfaceOf(volume, 20, true)));
}

TEST(MarchingCubes, ClosesEveryField)
{
  constexpr int n = 14;
  expectClosed("noise", volumeOf<double>(n, n, n, noise(1, -1, 1, false)), 0, false);
  expectClosed("two values: every face a tie", volumeOf<unsigned char>(n, n, 70, noise(2, 0, 2, true)), 0.5, false);
  expectClosed("zeros", volumeOf<char>(n, 70, n, noise(3, -2, 3, true)), 0, false);
  expectClosed("tiny", volumeOf<double>(n, n, n, noise(4, -1e-300, 1e-300, false)), 0, false);
  expectClosed("tiny floats", volumeOf<float>(n, n, n, noise(5, -1e-44, 1e-44, false)), 0, false);
  expectClosed("huge", volumeOf<double>(n, n, n, noise(6, -1e308, 1e308, false)), 0, false);
  expectClosed("int", volumeOf<int>(n, n, n, noise(7, -2147483648., 2147483647., true)), 2147483646.5 / 3, false);
  expectClosed("long double", volumeOf<long double>(n, n, n, noise(8, -1, 1, false)), 0.1L, false);
  expectClosed("full", volumeOf<float>(3, 64, 5, noise(9, 1, 2, false)), 0.5f);
  expectClosed("smooth",
               volumeOf<float>(20, 130, 20,
                               [](int i, int j, int k)
                               { return std::sin(0.6 * i) + std::cos(0.5 * j + 1) + std::sin(0.4 * k + 2); }),
               0.2f);
}

// The tilings of tunnels of case 10, eight triangles without a vertex inside, have triangles in faces of their cube.
TEST(MarchingCubes, IsManifoldUnlessTwoTunnelsOfCase10MeetAtAFace)
{
  constexpr int size = 24;
  int numMeetings = 0;
  for (unsigned seed = 100; seed < 104; ++seed)
  {
    const VoxelMatrix<double> volume = volumeOf<double>(size, size, size, noise(seed, -1, 1, false));
    const auto isTunnel = [&volume](int i, int j, int k)
    {
      const CubeTiling tiling = tilingAt(volume, 0, i, j, k, InteriorTest::Published);
      return tiling.numTriangles == 8 && !tiling.hasInsideVertex;
    };
    int numMeetingsHere = 0;
    for (int k = -1; k < size; ++k)
      for (int i = -1; i < size; ++i)
        for (int j = -1; j < size; ++j)
          if (isTunnel(i, j, k))
            numMeetingsHere += isTunnel(i + 1, j, k) + isTunnel(i, j + 1, k) + isTunnel(i, j, k + 1);
    EXPECT_LE(countEdges(surfaceOf(volume, 0, true)).numNonManifold, numMeetingsHere);
    numMeetings += numMeetingsHere;
  }
  EXPECT_LT(numMeetings, 10);
}

TEST(MarchingCubes, EndsAtTheBorderUnlessClosed)
{
  const VoxelMatrix<float> volume = volumeOf<float>(9, 70, 11, noise(11, -1, 1, false));
  const TriMesh<float> mesh = surfaceOf(volume, 0, false);
  int numBorderEdges = 0;
  for (const auto& [edge, count] : edgeBalances(mesh))
  {
    if (count == 0) continue;
    ++numBorderEdges;
    bool isOnBorder = false;
    for (int axis = 0; axis < 3; ++axis)
      for (const float border : {0, volume.getSize()[axis] - 1})
        isOnBorder |= mesh[edge.first][axis] == border && mesh[edge.second][axis] == border;
    EXPECT_TRUE(isOnBorder && std::abs(count) == 1);
  }
  EXPECT_GT(numBorderEdges, 100);
  EXPECT_EQ(surfaceOf(volumeOf<float>(1, 9, 9, noise(12, -1, 1, false)), 0, false).getSize(), 0);
}

TEST(MarchingCubes, GivesTheSameMeshForEveryElementType)
{
  const auto meshOf = [](auto zero)
  {
    using T = decltype(zero);
    return surfaceOf(volumeOf<T>(12, 13, 40, noise(13, 0, 100, true)), 49, false);
  };
  const TriMesh<float> expected = meshOf(0);
  EXPECT_GT(expected.getNumTriangles(), 1000);
  EXPECT_TRUE(areEqual(meshOf(char(0)), expected));
  EXPECT_TRUE(areEqual(meshOf(static_cast<unsigned char>(0)), expected));
  EXPECT_TRUE(areEqual(meshOf(static_cast<unsigned short>(0)), expected));
  EXPECT_TRUE(areEqual(meshOf(0.f), expected));
  EXPECT_TRUE(areEqual(meshOf(0.), expected));
  EXPECT_TRUE(areEqual(meshOf(0.L), expected));
}

TEST(MarchingCubes, GivesTheSameMeshForEveryNumberOfThreads)
{
  const VoxelMatrix<float> volume = volumeOf<float>(20, 33, 75, noise(14, -1, 1, false));
  const int numThreads = omp_get_max_threads();
  omp_set_num_threads(1);
  const TriMesh<float> expected = surfaceOf(volume, 0, true);
  for (const int n : {2, 3, 7})
  {
    omp_set_num_threads(n);
    EXPECT_TRUE(areEqual(surfaceOf(volume, 0, true), expected)) << n;
  }
  omp_set_num_threads(numThreads);
}

TEST(MarchingCubes, ConvergesToTheSphere)
{
  double error = 1;
  for (const int size : {16, 32, 64})
  {
    const double radius = 0.4 * size, center = 0.5 * size - 0.3;
    const VoxelMatrix<float> volume = volumeOf<float>(
        size, size, size, [=](int i, int j, int k) { return radius - std::hypot(i - center, j - center, k - center); });
    const TriMesh<float> mesh = surfaceOf(volume, 0, false);
    EXPECT_TRUE(isClosedManifold(mesh));
    EXPECT_EQ(eulerCharacteristic(mesh), 2);
    const double area = 4 * std::numbers::pi * radius * radius;
    const double areaError = std::abs(mesh.area() / area - 1);
    const double volumeError = std::abs(signedVolume(mesh) * 3 / (area * radius) - 1);
    EXPECT_LT(areaError, error / 3); // of second order: a quarter at half the voxel size
    EXPECT_LT(volumeError, error / 3);
    error = std::max(areaError, volumeError);
    for (int n = 0; n < mesh.getSize(); n += 7)
      for (int axis = 0; axis < 3; ++axis)
        EXPECT_NEAR(mesh.getNormal(n)[axis], (mesh[n][axis] - center) / radius, 1.5 / radius);
  }
  EXPECT_LT(error, 0.002);
}

TEST(MarchingCubes, TakesAnyVoxelAndLevel)
{
  const VoxelMatrix<unsigned char> bytes = volumeOf<unsigned char>(3, 4, 5, noise(15, 0, 256, true));
  for (const double level : {255.5, 1e9}) EXPECT_EQ(surfaceOf(bytes, level, true).getSize(), 0) << level;
  for (const double level : {0., -0.5, -1e9})
    EXPECT_EQ(surfaceOf(bytes, level, true).getSize(), 2 * (3 * 4 + 4 * 5 + 5 * 3)) << level; // the frame is crossed
  EXPECT_EQ(surfaceOf(bytes, -1, false).getSize(), 0);
  EXPECT_EQ(surfaceOf(VoxelMatrix<float>(), 0, true).getSize(), 0);
  EXPECT_EQ(surfaceOf(VoxelMatrix<float>(4, 0, 4), 0, true).getSize(), 0);
  EXPECT_EQ(surfaceOf(volumeOf<float>(1, 1, 1, noise(16, 1, 2, false)), 0, true).getNumTriangles(), 8);

  const double infinity = std::numeric_limits<double>::infinity();
  const double odd[] = {-infinity, infinity, std::nan(""), -1, 0, 1};
  const VoxelMatrix<float> volume = volumeOf<float>(
      9, 9, 9, [&odd, index = noise(17, 0, 6, true)](int, int, int) { return odd[int(index(0, 0, 0))]; });
  const TriMesh<float> mesh = surfaceOf(volume, 0, true);
  EXPECT_TRUE(isBalanced(mesh));
  for (int n = 0; n < mesh.getSize(); ++n)
    for (int axis = 0; axis < 3; ++axis) EXPECT_TRUE(mesh[n][axis] >= -1 && mesh[n][axis] <= 9);
  expectError<ValueError>("not a finite number", [&] { surfaceOf(volume, std::nanf(""), true); });
}

TEST(MarchingCubes, LeavesOutNormalsAndRefusesLargeMeshesWhenAsked)
{
  VoxelMatrix<unsigned char> volume(3, 3, 3);
  volume.setZeros();
  volume(1, 1, 1) = 2;
  MarchingCubes<unsigned char> step;
  step.setNormalsWanted(false);
  step.setMemoryLimit(6 * 24 + 8 * 12); // an octahedron: 6 vertices with normals, 8 triangles
  EXPECT_FALSE(step.buildMesh(volume, 1, true).hasNormals());
  step.setMemoryLimit(6 * 24 + 8 * 12 - 1);
  expectError<SizeError>("The surface takes 1 MiB", [&] { step.buildMesh(volume, 1, true); });
}
