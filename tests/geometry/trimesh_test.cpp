#include "tests/support/curves.h"
#include "tests/support/errors.h"
#include "tests/support/manifold.h"

#include <gtest/gtest.h>
#include <iostream>
#include <limits>
#include <sstream>

namespace
{

/// The right triangle (0, 0, 0), (3, 0, 0), (0, 4, 0), seen from above.
template <class T = double> TriMesh<T> rightTriangle()
{
  TriMesh<T> mesh(static_cast<const Vertices<T>&>(curveThrough<T>({{0, 0, 0}, {3, 0, 0}, {0, 4, 0}})));
  mesh.addTriangle(0, 1, 2);
  return mesh;
}

TriMesh<double> unitCube()
{
  TriMesh<double> mesh;
  mesh.cube();
  return mesh;
}

std::vector<int> valuesOf(const Vector<int>& vector)
{
  return std::vector<int>(vector.begin(), vector.end());
}

} // namespace

TEST(TriMeshMeasures, OfTheUnitCube)
{
  TriMesh<double> cube = unitCube();
  EXPECT_TRUE(isClosedManifold(cube));
  EXPECT_DOUBLE_EQ(signedVolume(cube), 1);
  EXPECT_DOUBLE_EQ(cube.volume(), 1);
  EXPECT_DOUBLE_EQ(cube.area(), 6);
  EXPECT_DOUBLE_EQ(cube.equivalentRadius(), std::cbrt(3 / (4 * std::numbers::pi)));
  EXPECT_EQ(cube.centerOfGravity(), (Vector<double>{0.5, 0.5, 0.5}));

  TriMesh<double> inward(static_cast<const Vertices<double>&>(cube));
  for (int i = 0; i < 12; ++i) inward.addTriangle(cube.corners(i)[0], cube.corners(i)[2], cube.corners(i)[1]);
  EXPECT_DOUBLE_EQ(inward.volume(), 1);

  cube.removeTriangle(3);
  cube.removeTriangle(3);
  EXPECT_EQ(cube.getNumTriangles(), 11);
  EXPECT_EQ(cube.getNumTriangleSlots(), 12);
  EXPECT_DOUBLE_EQ(cube.area(), 5.5);
}

TEST(TriMeshMeasures, OfPixelMeshesAndOfFlatOnes)
{
  EXPECT_DOUBLE_EQ(rightTriangle<int>().area(), 6);
  TriMesh<double> flat(static_cast<const Vertices<double>&>(closedCurve({{0, 0}, {3, 0}, {0, 4}})));
  flat.addTriangle(2, 1, 0);
  EXPECT_DOUBLE_EQ(flat.area(), 6);
  EXPECT_THROW(flat.volume(), SizeError);
  try
  {
    flat.equivalentRadius();
    ADD_FAILURE() << "nothing was thrown";
  }
  catch (int error)
  {
    EXPECT_EQ(error, 1);
  }
  EXPECT_EQ(TriMesh<double>().volume(), 0);
  EXPECT_EQ(TriMesh<double>().area(), 0);
}

TEST(TriMeshMeasures, RefuseTrianglesWithoutVertices)
{
  TriMesh<double> mesh = rightTriangle();
  expectError<RangeError>("does not exist", [&] { mesh.addTriangle(0, 1, 3); });
  expectError<RangeError>("does not exist", [&] { mesh.addTriangle(-1, 1, 2); });
  mesh.setSize(2);
  expectError<SizeError>("does not exist", [&] { mesh.area(); });
  expectError<SizeError>("does not exist", [&] { mesh.volume(); });
  expectError<SizeError>("does not exist", [&] { mesh.write(std::cerr); });
  expectError<RangeError>("no vertex 2", [&] { mesh.triangle(0); });
  EXPECT_EQ(valuesOf(mesh.neighbours(0)), (std::vector<int>{1}));
}

TEST(TriMeshTopology, FollowsEditing)
{
  TriMesh<double> cube = unitCube();
  EXPECT_EQ(valuesOf(cube.star(0)), (std::vector<int>{0, 1, 4, 5, 8, 9})); // cut through this corner, three faces
  EXPECT_EQ(valuesOf(cube.neighbours(0)), (std::vector<int>{1, 2, 3, 4, 5, 6}));
  EXPECT_EQ(valuesOf(cube.neighbours(1)), (std::vector<int>{0, 3, 5, 7}));
  const int numAround = cube.star(7).getSize();
  cube.computeNormals();
  cube.remove(7);
  EXPECT_EQ(cube.getSize(), 7);
  EXPECT_TRUE(cube.hasNormals());
  EXPECT_EQ(cube.getNumTriangles(), 12 - numAround);
  cube.remove(0);
  for (int i = 0; i < cube.getNumTriangleSlots(); ++i)
  {
    EXPECT_LT(cube.corners(i)[2], 6);
  }
}

TEST(TriMeshNormals, PointOutAndWeighByAngle)
{
  TriMesh<double> cube = unitCube();
  cube.computeNormals();
  for (int i = 0; i < 8; ++i) // three right angles at each corner, however the faces are cut
    for (int k = 0; k < 3; ++k) EXPECT_NEAR(cube.getNormal(i)[k], (cube[i][k] - 0.5) * 2 / std::sqrt(3.), 1e-15);

  TriMesh<float> degenerate(
      static_cast<const Vertices<float>&>(curveThrough<float>({{0, 0, 0}, {1, 1, 1}, {2, 2, 2}})));
  degenerate.addTriangle(0, 1, 2);
  degenerate.computeNormals();
  EXPECT_EQ(degenerate.getNormal(1), (Vector<float>{0, 0, 0}));
  EXPECT_THROW(rightTriangle<int>().computeNormals(), TypeError);
  expectError<UsageError>("no normals", [] { rightTriangle().getNormal(0); });
}

TEST(TriMeshNormals, TurnWithTheTriangles)
{
  TriMesh<double> cube = unitCube();
  cube.removeTriangle(3);
  cube.computeNormals();
  TriMesh<double> flipped = cube, recomputed = cube;
  flipped.flip();
  EXPECT_EQ(flipped.getTriangleIndexes(0), (Vector<int>{cube.corners(0)[0], cube.corners(0)[2], cube.corners(0)[1]}));
  EXPECT_FALSE(flipped.hasTriangle(3));
  recomputed.flip();
  recomputed.computeNormals();
  for (int i = 0; i < 8; ++i)
    for (int k = 0; k < 3; ++k)
    {
      EXPECT_NEAR(flipped.getNormal(i)[k], -cube.getNormal(i)[k], 1e-15);
      EXPECT_NEAR(flipped.getNormal(i)[k], recomputed.getNormal(i)[k], 1e-15);
    }
}

TEST(TriMeshNormals, AreThoseOfATriangleOfAnySizeAndAngle)
{
  for (const double size : {1e-30, 1e-12, 1., 1e15})
    for (const double degrees : {0.01, 1., 30., 45., 60., 90., 120., 179.9})
    {
      SCOPED_TRACE(testing::Message() << size << ", " << degrees);
      // A fan of two triangles at vertex 0: its normal leans to the wider one.
      const double angle = degrees * std::numbers::pi / 180;
      TriMesh<double> mesh(static_cast<const Vertices<double>&>(curveThrough<double>(
          {{0, 0, 0}, {size, 0, 0}, {size * std::cos(angle), size * std::sin(angle), 0}, {0, 0, size}})));
      mesh.addTriangle(0, 1, 2);
      mesh.addTriangle(0, 3, 1);
      TriMesh<float> rounded(3, 4, 0);
      for (int i = 0; i < 12; ++i) rounded.data()[i] = static_cast<float>(mesh.data()[i]);
      rounded.addTriangle(0, 1, 2);
      rounded.addTriangle(0, 3, 1);
      mesh.computeNormals();
      rounded.computeNormals();
      const double length = std::hypot(angle, std::numbers::pi / 2);
      EXPECT_NEAR(mesh.getNormal(0)[1], std::numbers::pi / 2 / length, 1e-14);
      EXPECT_NEAR(mesh.getNormal(0)[2], angle / length, 1e-14);
      EXPECT_NEAR(rounded.getNormal(0)[1], std::numbers::pi / 2 / length, 1e-6);
      EXPECT_NEAR(rounded.getNormal(0)[2], angle / length, 1e-6);
    }
}

TEST(TriMeshBlocks, AreTakenOver)
{
  const BufferVector<float> points = {0, 0, 0, 3, 0, 0, 0, 4, 0};
  const TriMesh<float> mesh(3, BufferVector<float>(points), {0, 1, 2});
  EXPECT_EQ(pointsOf(mesh), pointsOf(rightTriangle<float>()));
  EXPECT_EQ(mesh.area(), 6);
  TriMesh<float> longer = mesh; // the vectors are there before vertices are added, and after
  longer.append(mesh);
  EXPECT_EQ(longer[4], (Vector<float>{3, 0, 0}));
  longer.append(Vector<float>{7, 8, 9});
  EXPECT_EQ(longer[6], (Vector<float>{7, 8, 9}));
  EXPECT_EQ(mesh.getSize(), 3);
  for (const int wrong : {-1, 3, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()})
    expectError<RangeError>("does not exist", [&] { TriMesh<float>(3, BufferVector<float>(points), {0, 1, wrong}); });
  expectError<SizeError>("three vertices", [&] { TriMesh<float>(3, BufferVector<float>(points), {0, 1}); });
  expectError<SizeError>("number of coordinates", [&] { TriMesh<float>(2, BufferVector<float>(points), {}); });
}

TEST(TriMeshFiles, AreNeverOverwrittenUnasked)
{
  const std::string path = testing::TempDir() + "mirelo_trimesh_test.mesh";
  std::remove(path.c_str());
  rightTriangle().save(path, false);
  expectError<FileWriteError>(path + " : file exists", [&] { unitCube().save(path, false); });
  EXPECT_EQ(TriMesh<double>(path).getNumTriangles(), 1);
  unitCube().save(path, true);
  EXPECT_EQ(TriMesh<double>(path).getNumTriangles(), 12);
  std::remove(path.c_str());
  expectError<FileReadError>(path, [&] { TriMesh<double> missing(path); });
  expectError<FileWriteError>("Cannot open file for writing",
                              [] { unitCube().save("/nonexistent/folder/cube.mesh", true); });
}

TEST(TriMeshStl, HasTheNormalsOfItsTrianglesAndSixDigits)
{
  TriMesh<float> mesh = rightTriangle<float>();
  mesh.append(curveThrough<float>({{1e-7f, 123456.7f, -1234567.f}}));
  mesh.addTriangle(0, 3, 3); // no area
  mesh.addTriangle(1, 0, 2);
  mesh.removeTriangle(2);
  mesh.setName("cell\n1");
  std::ostringstream text;
  mesh.export2AsciiSTL(text);
  EXPECT_EQ(text.str(), "solid cell 1\n"
                        "  facet normal 0 0 1\n"
                        "    outer loop\n"
                        "      vertex 0 0 0\n"
                        "      vertex 3 0 0\n"
                        "      vertex 0 4 0\n"
                        "    endloop\n"
                        "  endfacet\n"
                        "  facet normal 0 0 0\n"
                        "    outer loop\n"
                        "      vertex 0 0 0\n"
                        "      vertex 1e-07 123457 -1.23457e+06\n"
                        "      vertex 1e-07 123457 -1.23457e+06\n"
                        "    endloop\n"
                        "  endfacet\n"
                        "endsolid cell 1\n");
}

namespace
{
/// Two triangles, one of them removed, with normals and colours.
TriMesh<float> paintedTriangle()
{
  TriMesh<float> mesh = rightTriangle<float>();
  mesh[1][0] = 0.1f;
  mesh.addTriangle(2, 1, 0);
  mesh.removeTriangle(0);
  mesh.computeNormals();
  TriMesh<int> colors(3, 3, 0);
  colors[0] = Vector<int>{255, 0, 51};
  colors[2] = Vector<int>{-1, 300, 102};
  mesh.setVertexColors(colors);
  mesh.setName("solid\nbody");
  return mesh;
}

std::string bytesOf(std::initializer_list<float> numbers)
{
  std::string bytes;
  for (const float number : numbers) bytes.append(reinterpret_cast<const char*>(&number), sizeof number);
  return bytes;
}

std::string bytesOf(std::initializer_list<int> numbers)
{
  std::string bytes;
  for (const int number : numbers) bytes.append(reinterpret_cast<const char*>(&number), sizeof number);
  return bytes;
}
} // namespace

TEST(TriMeshExport, WritesBinaryStl)
{
  std::ostringstream file;
  paintedTriangle().export2BinarySTL(file);
  EXPECT_EQ(file.str(), "Mirelo solid body" + std::string(63, ' ') + bytesOf({1}) +
                            bytesOf({0.f, 0.f, -1.f, 0.f, 4.f, 0.f, 0.1f, 0.f, 0.f, 0.f, 0.f, 0.f}) +
                            std::string(2, '\0'));
}

TEST(TriMeshExport, WritesPly)
{
  std::ostringstream file;
  paintedTriangle().export2PLY(file);
  const std::string normal = bytesOf({0.f, 0.f, -1.f});
  EXPECT_EQ(file.str(), "ply\nformat binary_little_endian 1.0\ncomment solid body\nelement vertex 3\n"
                        "property float x\nproperty float y\nproperty float z\n"
                        "property float nx\nproperty float ny\nproperty float nz\n"
                        "property uchar red\nproperty uchar green\nproperty uchar blue\n"
                        "element face 1\nproperty list uchar int vertex_indices\nend_header\n" +
                            bytesOf({0.f, 0.f, 0.f}) + normal + std::string("\xff\0\x33", 3) +
                            bytesOf({0.1f, 0.f, 0.f}) + normal + std::string(3, '\0') + bytesOf({0.f, 4.f, 0.f}) +
                            normal + std::string("\0\xff\x66", 3) + '\3' + bytesOf({2, 1, 0}));
}

TEST(TriMeshExport, WritesObj)
{
  std::ostringstream painted, bare;
  paintedTriangle().export2OBJ(painted);
  EXPECT_EQ(painted.str(), "o solid body\nv 0 0 0 1 0 0.2\nv 0.1 0 0 0 0 0\nv 0 4 0 0 1 0.4\n"
                           "vn 0 0 -1\nvn 0 0 -1\nvn 0 0 -1\nf 3//3 2//2 1//1\n");
  rightTriangle().export2OBJ(bare);
  EXPECT_EQ(bare.str(), "v 0 0 0\nv 3 0 0\nv 0 4 0\nf 1 2 3\n");
  expectError<SizeError>("three dimensions", [&] { TriMesh<float>(2).export2OBJ(bare); });
}

TEST(TriMeshStl, FormatsNumbersAsStreamsDo)
{
  for (const double number : {0., -0., 1. / 3, 1e5, 1e6, 999999.5, 1e-4, 1e-5, 123456789., 1e300, -2.5e-310})
  {
    TriMesh<double> mesh = rightTriangle();
    mesh[0][0] = number;
    std::ostringstream text, expected;
    mesh.export2AsciiSTL(text);
    expected << "      vertex " << number << " 0 0\n";
    EXPECT_NE(text.str().find(expected.str()), std::string::npos) << expected.str();
  }
}
