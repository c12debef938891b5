#include "geometry/quadmesh.h"
#include "tests/support/curves.h"
#include "tests/support/errors.h"
#include "tests/support/manifold.h"
#include "tests/support/shapetext.h"

#include <gtest/gtest.h>

#include <limits>
#include <random>

namespace
{
constexpr double pi = std::numbers::pi;

/// A clockwise regular polygon.
Curve<double> polygon(double radius, double z, int n)
{
  Curve<double> curve = ellipse<double>(radius, radius, z, n);
  curve.reverse();
  return curve;
}

double polygonArea(double radius, int n)
{
  return n * radius * radius * std::sin(2 * pi / n) / 2;
}

QuadMesh<double> column(const std::vector<double>& radii, double step, int n)
{
  QuadMesh<double> mesh;
  for (std::size_t i = 0; i < radii.size(); ++i) mesh.append(polygon(radii[i], step * static_cast<double>(i), n));
  return mesh;
}

/// A mesh of random vertices.
template <class T> QuadMesh<T> randomMesh(int width, int height, unsigned seed, bool open = false)
{
  std::mt19937 engine(seed);
  std::uniform_real_distribution<double> coordinates(-100, 100);
  QuadMesh<T> mesh(3, width, height, open);
  for (int i = 0; i < height; ++i)
    for (int j = 0; j < 3 * width; ++j) mesh[i].data()[j] = static_cast<T>(coordinates(engine));
  return mesh;
}

TEST(QuadMesh, TrianglesFollowTheSizes)
{
  const struct
  {
    int width, height;
    bool open;
    int numTriangles;
  } cases[] = {
      {5, 4, false, 30}, {5, 4, true, 24}, {3, 2, false, 6}, {2, 2, true, 2},
      {5, 1, false, 0},  {1, 4, true, 0},  {0, 3, false, 0}, {4, 0, true, 0},
  };
  for (const auto& c : cases)
  {
    SCOPED_TRACE(std::to_string(c.width) + " x " + std::to_string(c.height));
    const QuadMesh<float> mesh = randomMesh<float>(c.width, c.height, 1, c.open);
    EXPECT_EQ(mesh.toTriMesh(false).getNumTriangles(), c.numTriangles);
    EXPECT_EQ(mesh.toTriMesh(true).getSize(), c.width * c.height);
    EXPECT_EQ(mesh.getShapeType(), c.open ? OpenQuadMeshShape : ClosedQuadMeshShape);
  }
  expectError<SizeError>("negative", [] { QuadMesh<double>(3, -1, 2); });
}

TEST(QuadMesh, CappedColumnsHaveTheVolumesOfTheirClosedForms)
{
  const int n = 24;
  const double a = polygonArea(2, n), b = polygonArea(5, n);
  const struct
  {
    const char* name;
    std::vector<double> radii;
    double step, volume;
  } cases[] = {
      {"prism", {2, 2, 2}, 1.5, 3 * a},
      {"descending prism", {2, 2}, -3, 3 * a},
      {"frustum", {2, 3, 4, 5}, 1, a + b + std::sqrt(a * b)},
      {"descending frustum", {5, 2}, -3, a + b + std::sqrt(a * b)},
  };
  for (const auto& c : cases)
  {
    SCOPED_TRACE(c.name);
    QuadMesh<double> mesh = column(c.radii, c.step, n);
    mesh.buildCaps();
    const TriMesh<double> surface = mesh.toTriMesh(true);
    EXPECT_TRUE(isClosedManifold(surface));
    EXPECT_EQ(eulerCharacteristic(surface), 2);
    EXPECT_NEAR(signedVolume(surface), c.volume, 1e-12 * c.volume);
    EXPECT_EQ(countEdges(mesh.toTriMesh(false)).numBoundary, 2 * n);

    mesh.extendToCaps(); // the caps' centres become rows of vertices in one place
    EXPECT_EQ(mesh.getHeight(), static_cast<int>(c.radii.size()) + 2);
    EXPECT_FALSE(mesh.hasAnyCap());
    EXPECT_NEAR(signedVolume(mesh.toTriMesh(true)), c.volume, 1e-12 * c.volume);
  }
}

TEST(QuadMesh, CapsCoverOutlinesOfAnyForm)
{
  // An L of area 5, whose centre of gravity lies outside of it.
  const std::vector<std::vector<double>> outline = {{0, 0}, {0, 3}, {1, 3}, {1, 1}, {3, 1}, {3, 0}};
  QuadMesh<double> mesh;
  for (const double z : {0., 2.})
  {
    Curve<double> row(3);
    for (const auto& point : outline) row.Vertices<double>::append(Vector<double>{point[0], point[1], z});
    mesh.append(row);
  }
  mesh.buildBeginCap();
  EXPECT_TRUE(mesh.hasBeginCap() && mesh.hasAnyCap() && !mesh.hasEndCap() && !mesh.hasAllCaps());
  EXPECT_DOUBLE_EQ(mesh.toTriMesh(true).area(), 24 + 5);
  mesh.buildEndCap();
  EXPECT_DOUBLE_EQ(mesh.toTriMesh(true).area(), 24 + 10);
  EXPECT_DOUBLE_EQ(signedVolume(mesh.toTriMesh(true)), 10);
  EXPECT_EQ(pointsOf(mesh.getEndCap()[0]), pointsOf(mesh.getLastCurve()));
  EXPECT_EQ(mesh.getBeginCap()[0][4], (Vector<double>{8. / 6, 8. / 6, 0}));
  mesh.destroyCaps();
  EXPECT_DOUBLE_EQ(mesh.toTriMesh(true).area(), 24);
  expectError<UsageError>("no such cap", [&] { mesh.getEndCap(); });
  mesh.setOpen(true);
  expectError<UsageError>("open", [&] { mesh.buildCaps(); });
}

TEST(QuadMesh, CapsCloseEndRowsWithoutArea)
{
  const double nan = std::nan("");
  const struct
  {
    const char* name;
    std::vector<std::vector<double>> row;
    bool isClosed;
  } cases[] = {
      {"a line", {{-1, 0, 0}, {1, 0, 0}, {2, 0, 0}, {0, 0, 0}}, true},
      {"a line along z", {{0, 0, 0}, {0, 0, -1}, {0, 0, -2}, {0, 0, -1}}, true},
      {"a point", {{1, 1, 0}, {1, 1, 0}, {1, 1, 0}, {1, 1, 0}}, true},
      {"an upright square", {{0, 0, 0}, {0, 0, -1}, {1, 0, -1}, {1, 0, 0}}, true},
      {"not finite", {{0, 0, 0}, {nan, 0, 0}, {1, 1, 0}, {1, 0, 0}}, false},
  };
  for (const auto& c : cases)
  {
    SCOPED_TRACE(c.name);
    QuadMesh<double> mesh;
    mesh.append(closedCurve(c.row));
    mesh.append(polygon(2, 3, 4));
    mesh.buildCaps();
    EXPECT_EQ(isClosedManifold(mesh.toTriMesh(true)), c.isClosed);
    EXPECT_EQ(countEdges(mesh.toTriMesh(true)).numBoundary, c.isClosed ? 0 : 4);
  }
}

TEST(QuadMesh, RowsHaveOneSize)
{
  QuadMesh<double> mesh = column({1, 2}, 1, 6);
  CurveStack<double>& asStack = mesh;
  expectError<SizeError>("size", [&] { mesh.append(polygon(1, 5, 7)); });
  expectError<SizeError>("size", [&] { asStack.prepend(polygon(1, 5, 5)); });
  expectError<SizeError>("dimension", [&] { mesh.insert(1, Curve<double>(2, 6)); });
  expectError<RangeError>("level", [&] { mesh.insert(3, polygon(1, 5, 6)); });
  mesh.insert(1, polygon(7, 0.5, 6));
  mesh.prepend(polygon(8, -1, 6));
  EXPECT_EQ(mesh.getHeight(), 4);
  EXPECT_EQ(mesh.getHeight(2), 0.5);
  CurveStack<double> uneven;
  uneven.append(polygon(1, 0, 6));
  uneven.append(polygon(1, 1, 7));
  expectError<SizeError>("size", [&] { QuadMesh<double> rows(uneven); });
  mesh[2].remove(0); // no grid any more
  expectError<SizeError>("differ in size", [&] { mesh.toTriMesh(false); });
  expectError<SizeError>("differ in size", [&] { textOf(mesh); });
  expectError<SizeError>("differ in size", [&] { mesh.findMatch(mesh); });
  expectError<SizeError>("differ in size", [&] { uneven.interpolate(mesh); });
}

/// The first shift of the smallest sum of squared distances.
template <class T> int matchBySearch(const QuadMesh<T>& mesh, const QuadMesh<T>& other)
{
  int best = 0;
  double least = std::numeric_limits<double>::infinity();
  for (int shift = 0; shift < mesh.getWidth(); ++shift)
  {
    double sum = 0;
    for (int i = 0; i < mesh.getHeight(); ++i)
      for (int j = 0; j < mesh.getWidth(); ++j)
        for (int k = 0; k < 3; ++k) sum += std::pow(mesh[i][(j + shift) % mesh.getWidth()][k] - other[i][j][k], 2);
    if (sum < least) best = shift;
    least = std::min(least, sum);
  }
  return best;
}

TEST(QuadMesh, MatchesBySquaredDistances)
{
  for (unsigned seed = 0; seed < 40; ++seed)
  {
    const int width = 1 + static_cast<int>(seed) % 20;
    QuadMesh<double> mesh = randomMesh<double>(width, 3, seed);
    const QuadMesh<double> other = randomMesh<double>(width, 3, seed + 100), before = mesh;
    const int best = matchBySearch(mesh, other);
    EXPECT_EQ(mesh.findMatch(other), best);
    mesh.match(other);
    EXPECT_EQ(pointsOf(mesh[2])[0], pointsOf(before[2])[static_cast<std::size_t>(best)]);
    QuadMesh<int> period = randomMesh<int>(width, 2, seed), twice(3, 2 * width, 2); // two shifts are equally good
    for (int i = 0; i < 2; ++i)
    {
      twice[i] = period[i];
      twice[i].append(Vertices<int>(twice[i]));
    }
    QuadMesh<int> turned = twice;
    for (int i = 0; i < 2; ++i) turned[i].setOrigin(width / 2);
    EXPECT_EQ(twice.findMatch(turned), width / 2);
  }
  expectError<SizeError>("Size mismatch", [] { randomMesh<float>(4, 3, 0).match(randomMesh<float>(3, 4, 0)); });
  EXPECT_EQ(randomMesh<double>(5, 2, 1, true).findMatch(randomMesh<double>(5, 2, 2, true)), 0);
}

TEST(QuadMesh, MatchesFarFromTheOriginAndFromEachOther)
{
  const int n = 40;
  QuadMesh<float> mesh, other;
  for (const float z : {0.F, 1.F, 2.F})
  {
    mesh.append(ellipse<float>(5, 3, z, n, 12500, -9000));
    other.append(ellipse<float>(5, 3, z + 10, n, 200000, 7, std::numbers::pi_v<float> / 2)); // a quarter further
  }
  EXPECT_EQ(mesh.findMatch(other), n / 4);
}

TEST(QuadMesh, MeanAndVarianceOfMatchedMeshes)
{
  const QuadMesh<double> center = randomMesh<double>(4, 3, 5);
  std::vector<QuadMesh<double>> meshes(3, center);
  meshes[0].translate(Vector<double>{3, 0, 4});
  meshes[1].translate(Vector<double>{-3, 0, -4});
  const QuadMesh<double> mean = QuadMesh<double>::mean(meshes);
  const Matrix<double> variances = QuadMesh<double>::varianceMap(mean, meshes);
  for (int i = 0; i < 3; ++i)
    for (int j = 0; j < 4; ++j)
    {
      for (int k = 0; k < 3; ++k) EXPECT_NEAR(mean[i][j][k], center[i][j][k], 1e-12);
      EXPECT_NEAR(variances(i, j), 50. / 3, 1e-12);
    }
  expectError<SizeError>("no meshes", [] { QuadMesh<double>::mean({}); });
  meshes.push_back(randomMesh<double>(3, 4, 5));
  expectError<SizeError>("Size mismatch", [&] { QuadMesh<double>::varianceMap(mean, meshes); });
}

TEST(QuadMesh, ColoursSpanTheFiniteValues)
{
  QuadMesh<double> mesh = randomMesh<double>(3, 2, 7);
  const double infinity = std::numeric_limits<double>::infinity();
  Colormap colormap(3);
  for (int i = 0; i < 3; ++i) colormap.setColor(i, {static_cast<unsigned char>(i), 0, 0});
  mesh.buildVertexColors({{-2, 0.9, 0.1}, {std::nan(""), infinity, 2}}, colormap);
  const std::vector<std::vector<int>> reds = {{0, 1, 1}, {0, 2, 2}};
  const TriMesh<double> surface = mesh.toTriMesh(false);
  for (int i = 0; i < 2; ++i)
    for (int j = 0; j < 3; ++j)
    {
      EXPECT_EQ(mesh.getVertexColors()[i][j][0], reds[i][j]);
      EXPECT_EQ(surface.getVertexColors()[3 * i + j][0], reds[i][j]);
    }
  mesh.buildVertexColors({{1, 1, 1}, {1, 1, 1}}, colormap);
  EXPECT_EQ(mesh.getVertexColors()[1][2][0], 0);
  mesh.buildVertexColors({{0, 1, 2}, {0, 1, 2}}, colormap);
  QuadMesh<double> turned = mesh;
  for (int i = 0; i < 2; ++i) turned[i].setOrigin(2);
  mesh.match(turned); // the colours go with their vertices
  EXPECT_EQ(mesh.getVertexColors()[1][0][0], 2);
  expectError<SizeError>("Size", [&] { mesh.buildVertexColors(Matrix<double>(3, 2), colormap); });
  expectError<SizeError>("no colours", [&] { mesh.buildVertexColors(Matrix<double>(2, 3), Colormap()); });
  mesh.prepend(mesh[1]);
  expectError<UsageError>("no colours", [&] { mesh.getVertexColors(); });
  mesh.remove(2); // two rows again, though others
  expectError<UsageError>("no colours", [&] { mesh.getVertexColors(); });
}
} // namespace
