// What the program tells and makes of volumes: surfaces, progress, what it refuses.
#include "batch_fixture.h"
#include "geometry/trimesh.h"
#include "image/voxelmatrix.h"
#include "tests/support/randomvolumes.h"
#include "tests/support/tifffiles.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <functional>
#include <gmock/gmock.h>
#include <limits>
#include <sstream>
#include <sys/resource.h>
#include <sys/wait.h>

namespace
{
namespace fs = std::filesystem;
using testing::HasSubstr;

using Point = std::array<float, 3>;
using Triangle = std::array<Point, 3>;

class BatchVolumes : public Batch
{
protected:
  std::string path(const std::string& name) const { return (folder / name).string(); }

  /// A volume of 4 x 5 x 6 voxels of 0 and one of `highest` in the middle.
  void writeDot(const std::string& name, const Vector<float>& voxelSize, float highest = 1) const
  {
    VoxelMatrix<float> volume(4, 5, 6);
    volume.setZeros();
    volume(2, 2, 3) = highest;
    VoxelCalibration calibration;
    calibration.setVoxelSize(voxelSize);
    volume.setVoxelCalibration(calibration);
    volume.save(path(name), true);
  }
};

/// Volume that triangles enclose, positive when they face outward.
double enclosedVolume(const std::vector<Triangle>& triangles)
{
  double sixfold = 0;
  for (const Triangle& triangle : triangles)
    for (std::size_t x = 0; x < 3; ++x) // a determinant
    {
      const auto at = [&](std::size_t corner, std::size_t axis) { return double{triangle[corner][axis % 3]}; };
      sixfold += at(0, x) * (at(1, x + 1) * at(2, x + 2) - at(1, x + 2) * at(2, x + 1));
    }
  return sixfold / 6;
}

std::vector<Triangle> trianglesOfObj(const std::string& file)
{
  std::istringstream lines(file);
  std::vector<Point> vertices;
  std::vector<Triangle> triangles;
  for (std::string line; std::getline(lines, line);)
  {
    std::istringstream words(line);
    std::string kind;
    words >> kind;
    if (kind == "v") words >> vertices.emplace_back()[0] >> vertices.back()[1] >> vertices.back()[2];
    if (kind != "f") continue;
    for (Point& corner : triangles.emplace_back())
    {
      words >> kind;
      corner = vertices.at(std::stoul(kind) - 1);
    }
  }
  return triangles;
}

std::vector<Triangle> trianglesOfStl(const std::string& file)
{
  std::istringstream words(file);
  std::vector<Triangle> triangles;
  std::size_t numCorners = 0;
  for (std::string word; words >> word;)
  {
    if (word != "vertex") continue;
    if (numCorners % 3 == 0) triangles.emplace_back();
    Point& corner = triangles.back()[numCorners++ % 3];
    words >> corner[0] >> corner[1] >> corner[2];
  }
  return triangles;
}

/// Of a file of float coordinates and normals.
std::vector<Triangle> trianglesOfPly(const std::string& file)
{
  const auto numberBehind = [&file](const std::string& text)
  { return std::stoul(file.substr(file.find(text) + text.size())); };
  const std::size_t vertexSize = 6 * sizeof(float), faceSize = 1 + 3 * sizeof(std::int32_t);
  const char* const vertices = file.data() + file.find("end_header\n") + std::strlen("end_header\n");
  const char* const faces = vertices + numberBehind("element vertex ") * vertexSize;
  std::vector<Triangle> triangles(numberBehind("element face "));
  EXPECT_EQ(faces + triangles.size() * faceSize, file.data() + file.size());
  for (std::size_t n = 0; n < triangles.size(); ++n)
    for (std::size_t k = 0; k < 3; ++k)
    {
      std::int32_t index;
      std::memcpy(&index, faces + n * faceSize + 1 + k * sizeof index, sizeof index);
      float point[3];
      std::memcpy(point, vertices + static_cast<std::size_t>(index) * vertexSize, sizeof point);
      std::copy_n(point, 3, triangles[n][k].begin());
    }
  return triangles;
}

std::vector<Triangle> trianglesOfMesh(const std::string& path)
{
  const TriMesh<float> mesh(path);
  std::vector<Triangle> triangles(static_cast<std::size_t>(mesh.getNumTriangles()));
  for (std::size_t n = 0; n < triangles.size(); ++n)
    for (std::size_t k = 0; k < 3; ++k)
      std::copy_n(mesh.data(mesh.corners(static_cast<int>(n))[k]), 3, triangles[n][k].begin());
  return triangles;
}

TEST_F(BatchVolumes, SurfacesAreInPhysicalUnits)
{
  constexpr double radius = 4.03;      // no voxel is at the level
  VoxelMatrix<float> ball(40, 80, 20); // of voxels of 0.25 x 0.125 x 0.5
  for (int k = 0; k < 20; ++k)
    for (int i = 0; i < 40; ++i)
      for (int j = 0; j < 80; ++j)
        ball(i, j, k) = static_cast<float>(radius - std::hypot(i * 0.25 - 5, j * 0.125 - 5, k * 0.5 - 5));
  VoxelCalibration calibration;
  calibration.setVoxelSize({0.25f, 0.125f, 0.5f});
  ball.setVoxelCalibration(calibration);
  ball.save(path("ball.vm"), true);
  for (const char* name : {"ball.OBJ", "ball.stl", "ball.Ply", "ball.mesh"})
    EXPECT_EQ(run(std::string("isosurface ball.vm --level 0 --out ") + name).status, 0) << name;

  const std::vector<Triangle> expected = trianglesOfObj(contents(folder / "ball.OBJ"));
  // The chords of a sampled ball lie inside it: the loss is below h^2 / (2 R) times its area for steps h.
  const double exact = 4. / 3 * M_PI * std::pow(radius, 3), area = 4 * M_PI * radius * radius;
  const double volume = enclosedVolume(expected);
  EXPECT_LE(volume, exact * (1 + 1e-5));
  EXPECT_GE(volume, exact - area * 0.25 / (2 * radius));
  const TriMesh<float> mesh(path("ball.mesh"));
  for (int i = 0; i < mesh.getSize(); ++i) // as on a sphere, whose normals are its radii
    for (int k = 0; k < 3; ++k) ASSERT_NEAR(mesh.getNormal(i)[k], (mesh[i][k] - 5) / radius, 0.06) << i;

  EXPECT_EQ(trianglesOfMesh(path("ball.mesh")), expected);
  EXPECT_EQ(trianglesOfPly(contents(folder / "ball.Ply")), expected);
  const std::vector<Triangle> rounded = trianglesOfStl(contents(folder / "ball.stl"));
  EXPECT_EQ(rounded.size(), expected.size());
  EXPECT_NEAR(enclosedVolume(rounded), volume, 1e-3); // six digits

  EXPECT_EQ(run("isosurface ball.vm --level 0 --out ball.stl").status, 2);
  EXPECT_EQ(run("isosurface ball.vm --level 0 --out ball.vrml").status, 2);
}

TEST_F(BatchVolumes, ShowProgressOnATerminal)
{
  writeDot("dot.vm", {1, 1, 1});
  const struct
  {
    const char* arguments;
    const char* share;
  } cases[] = {
      {"threshold dot.vm --method otsu --out mask.vm", "33%"}, // the range of the voxels is known
      {"label dot.vm --out labels.vm", "100%"},
      {"filter dot.vm --kind mean --out mean.vm", "100%"},
      {"isosurface dot.vm --level 1 --out dot.stl", "100%"},
  };
  for (const auto& c : cases)
  {
    const std::string program = "script -qec '" MIRELO_BATCH " " + std::string(c.arguments) + "' /dev/null";
    ASSERT_EQ(std::system(("cd " + folder.string() + "; " + program + " >terminal 2>&1 </dev/null").c_str()), 0);
    EXPECT_THAT(contents(folder / "terminal"), HasSubstr(c.share)) << c.arguments;
  }
}

TEST_F(BatchVolumes, AreRefusedWithTheirNameAndTheReason)
{
  const float nan = std::nanf(""), infinity = std::numeric_limits<float>::infinity();
  writeDot("dot.vm", {1, 1, 1});
  writeDot("infinite.vm", {1, 1, 1}, infinity);
  writeDot("zero.vm", {0.5f, 0, 2});
  writeDot("negative.vm", {-1, 1, 1});
  VoxelMatrix<float> nothing(2, 2, 2);
  nothing.fill(nan);
  nothing.save(path("nothing.vm"), true);
  TiffRecipe().write(path("page.tif"));
  TiffRecipe().write(path("depths.tif"));
  TiffRecipe{.bits = 16, .mode = "a"}.write(path("depths.tif")); // a second page
  const struct
  {
    const char* arguments;
    const char* text;
  } cases[] = {
      {"isosurface zero.vm --level 1 --out x.stl", "zero.vm: the voxel size 0.5 x 0 x 2"},
      {"isosurface negative.vm --level 1 --out x.stl", "negative.vm: the voxel size -1 x 1 x 1"},
      {"isosurface dot.vm --level nan --out x.stl", "--level is not a finite number"},
      {"isosurface dot.vm --level 1e300 --out x.stl", "dot.vm: --level is beyond the range of the voxels' type, float"},
      {"isosurface dot.vm --level 99 --out x.stl", "dot.vm: there is no surface at this level"},
      {"threshold dot.vm --method fixed --level nan --out x.vm", "--level is not a finite number"},
      {"threshold dot.vm --method fixed --level inf --out x.vm", "--level is not a finite number"},
      {"threshold dot.vm --method fixed --level=-1e300 --out x.vm", "dot.vm: --level is beyond the range"},
      {"threshold infinite.vm --method otsu --out x.vm", "infinite.vm: a voxel is infinite"},
      {"threshold nothing.vm --method isodata --out x.vm", "nothing.vm: no voxel is a number"},
      {"filter dot.vm --kind mean --size 4 --out x.vm", "dot.vm: The size of a mean filter must be odd"},
      {"image dot.vm --channel 1 --out x.vm", "dot.vm: only confocal stacks (.lsm) have channels"},
      {"image page.tif --channel 1 --out x.tif", "page.tif: only confocal stacks (.lsm) have channels"},
      {"image depths.tif --out x.vm", "depths.tif: plane 1: The grey level"},
      {"image dot.vm --overwrite --out .vm", ".vm: volumes are written to files whose name ends with"},
  };
  for (const auto& c : cases)
  {
    const Result result = run(c.arguments);
    EXPECT_EQ(result.status, 2) << c.arguments;
    EXPECT_EQ(result.output, "") << c.arguments;
    EXPECT_THAT(result.errors, HasSubstr(c.text)) << c.arguments;
    EXPECT_FALSE(fs::exists(folder / "x.vm") || fs::exists(folder / "x.stl")) << c.arguments;
  }
}

/// Runs the program with two threads and gives the largest memory it took, in bytes.
double peakMemory(const std::string& arguments)
{
  const std::string command = "OMP_NUM_THREADS=2 exec " MIRELO_BATCH " " + arguments;
  const pid_t child = fork();
  if (child == 0)
  {
    execl("/bin/sh", "sh", "-c", command.c_str(), nullptr);
    _exit(127);
  }
  int status = 0;
  rusage usage = {};
  EXPECT_EQ(wait4(child, &status, 0, &usage), child);
  EXPECT_EQ(status, 0) << command;
  return 1024. * static_cast<double>(usage.ru_maxrss);
}

/// Does work in a process of its own, so that a program that is started later does not inherit its memory's peak.
void doElsewhere(const std::function<void()>& work)
{
  const pid_t child = fork();
  if (child == 0)
  {
    work();
    _exit(0);
  }
  int status = 0;
  EXPECT_EQ(waitpid(child, &status, 0), child);
  EXPECT_EQ(status, 0);
}

TEST_F(BatchVolumes, TakeLittleMoreMemoryThanInputAndOutput)
{
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
  GTEST_SKIP() << "the checks take memory of their own";
#endif
  constexpr double program = 16e6; // with its libraries
  doElsewhere(
      [&]
      {
        randomVolume<unsigned char>(256, 256, 128, [](double u) { return 255 * u; }).save(path("bytes.vm"), true);
        randomVolume<float>(256, 256, 128, [](double u) { return u; }).save(path("floats.vm"), true);
        randomVolume<unsigned char>(80, 80, 80, [](double u) { return 255 * u; }).save(path("noise.vm"), true);
      });
  EXPECT_LT(peakMemory("threshold " + path("floats.vm") + " --method otsu --out " + path("mask.vm")),
            1.1 * static_cast<double>(fs::file_size(path("floats.vm")) + fs::file_size(path("bytes.vm"))) + program);
  for (const std::string name : {"bytes.vm", "floats.vm"})
    for (const char* size : {"255", "20001"})
      EXPECT_LT(
          peakMemory("filter " + path(name) + " --kind mean --overwrite --out " + path("x.vm") + " --size " + size),
          2.25 * static_cast<double>(fs::file_size(path(name))) + program)
          << name << ", " << size;
  const double peak = peakMemory("isosurface " + path("noise.vm") + " --level 127 --out " + path("x.ply"));
  EXPECT_LT(peak, 1.1 * static_cast<double>(fs::file_size(path("x.ply"))) + program);
}

TEST_F(BatchVolumes, AreRefusedWhenTheWorkOnThemTakesTooMuchMemory)
{
  const double memory = static_cast<double>(sysconf(_SC_PHYS_PAGES)) * static_cast<double>(sysconf(_SC_PAGESIZE));
  // A sparse file of seven tenths of the memory.
  constexpr int side = 4096;
  const auto numPlanes = static_cast<std::int32_t>(0.7 * memory / (side * side));
  const std::int32_t header[] = {0, 0, 0, 1, 0, side, side, numPlanes, -6, 0, 0, 0};
  write(folder / "large.vm", std::string(reinterpret_cast<const char*>(header), sizeof header));
  std::error_code notSparse;
  fs::resize_file(folder / "large.vm", sizeof header + std::uintmax_t{side} * side * numPlanes, notSparse);
  if (notSparse) GTEST_SKIP() << "the folder takes no large file";
  for (const char* arguments : {"threshold large.vm --method otsu --out x.vm", "label large.vm --out x.vm"})
  {
    const Result result = run(arguments);
    EXPECT_EQ(result.status, 2) << arguments;
    EXPECT_THAT(result.errors, HasSubstr("large.vm: the volume and the work on it take")) << arguments;
  }
}
} // namespace
