// The shipped example is what its program makes, and its numbers are those of the shapes that were drawn.
#include "examples/anatomy.h"
#include "geometry/reconstruction/modelmorphometry.h"
#include "geometry/reconstruction/modelsurface.h"
#include "model/io/stackreader.h"
#include "model/io/stackwriter.h"
#include "model/model.h"
#include "model/stack.h"
#include "tests/support/manifold.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <numbers>

namespace
{
namespace fs = std::filesystem;
using std::numbers::pi;

std::string contents(const fs::path& file)
{
  std::ifstream stream(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), {}};
}

TEST(Specimen, IsMadeAnewWithTheSameBytes)
{
  const fs::path folder = fs::path(testing::TempDir()) / "mirelo-specimen";
  fs::remove_all(folder);
  ASSERT_EQ(std::system((std::string(MIRELO_MAKE_SPECIMEN) + " " + folder.string()).c_str()), 0);
  std::uintmax_t size = 0;
  int numFiles = 0;
  for (const auto& entry : fs::directory_iterator(MIRELO_EXAMPLE_DIR))
  {
    EXPECT_TRUE(contents(entry.path()) == contents(folder / entry.path().filename())) << entry.path();
    size += entry.file_size();
    ++numFiles;
  }
  EXPECT_EQ(numFiles, anatomy::numSlices + 1);
  EXPECT_LT(size, 3u << 20);
  fs::remove_all(folder);
}

TEST(Specimen, ReadsWithoutAWordAndIsWrittenAsItIs)
{
  Stack stack;
  StackReader reader;
  reader.read(stack, MIRELO_EXAMPLE_DIR "/specimen.sdf");
  EXPECT_TRUE(reader.getLog().empty());
  for (const auto geometry : {MPrimitive::Polygon, MPrimitive::Polyline, MPrimitive::Polypoint, MPrimitive::Region})
    EXPECT_TRUE(stack.hasGeometryModelItems(geometry));

  // Beside the images, so that the paths are the same; the folder may be read-only elsewhere.
  const fs::path folder = fs::path(testing::TempDir()) / "mirelo-specimen-copy";
  fs::remove_all(folder);
  fs::create_directories(folder);
  fs::copy(MIRELO_EXAMPLE_DIR, folder);
  Stack copied;
  reader.read(copied, (folder / "specimen.sdf").string());
  StackWriter writer;
  writer.write(copied, (folder / "again.sdf").string());
  EXPECT_TRUE(writer.getWarnings().empty());
  EXPECT_EQ(contents(folder / "again.sdf"), contents(MIRELO_EXAMPLE_DIR "/specimen.sdf"));
  fs::remove_all(folder);
}

/// The nucleus as it was drawn: on each slice that it meets, a polygon of 64 vertices on the section of an ellipsoid,
/// the vertices rounded to whole pixels.
class Nucleus : public testing::Test
{
protected:
  static constexpr int numVertices = 64;
  static constexpr double h = anatomy::sliceSpacing;

  Nucleus()
  {
    StackReader().read(stack, MIRELO_EXAMPLE_DIR "/specimen.sdf");
    model = stack.getModel(stack.findModel("nucleus"));
    for (int k = 0; k < anatomy::numSlices; ++k)
    {
      if (const double scale = anatomy::nucleus.sectionScale(k * h); scale > 0) scales.push_back(scale);
    }
  }

  /// Area of the polygon before rounding: that of the ellipse, less the part between arcs and chords.
  static double sectionArea(double scale)
  {
    const auto [center, a, b, c, cosine, sine] = anatomy::nucleus;
    return scale * scale * a * b * numVertices / 2 * std::sin(2 * pi / numVertices);
  }

  /// Four standard deviations of the sum of h times the sections' areas when every coordinate is off by a uniform
  /// rounding error of variance p^2 / 12: a vertex moves the area by half the chord between its neighbours, about 2 P /
  /// n long.
  double roundingBound() const
  {
    double variance = 0;
    for (const double scale : scales)
    {
      const double perimeter = 2 * pi * scale * std::sqrt((13 * 13 + 10 * 10) / 2.0);
      variance += std::pow(h * perimeter * anatomy::pixelSize, 2) / (12 * numVertices);
    }
    return 4 * std::sqrt(variance);
  }

  Stack stack;
  const Model* model;
  std::vector<double> scales; // of the sections' axes, slice after slice
};

TEST_F(Nucleus, SlabVolumeIsThatOfTheEllipsoid)
{
  ModelMorphometry morphometry;
  morphometry.setModel(*model);
  morphometry.run();
  double slabs = 0;
  for (const double scale : scales) slabs += h * sectionArea(scale);
  EXPECT_NEAR(morphometry.getVolume(), slabs, roundingBound());
  // Against the ellipsoid itself: slabs of slices in the middle of each give h^2 / 24 of the curvature too much
  // (+0.13%), chords lose (2 pi / n)^2 / 6 (-0.16%), rounding is below 0.2%.
  const double ellipsoid = 4.0 / 3 * pi * 13 * 10 * 12;
  EXPECT_NEAR(morphometry.getVolume(), ellipsoid, 0.005 * ellipsoid);
  EXPECT_NEAR(morphometry.getEquivRadius(), std::cbrt(3 * morphometry.getVolume() / (4 * pi)), 1e-9);
  for (int i = 0; i < 3; ++i)
  {
    const auto [x, y, z] = anatomy::nucleus.center;
    EXPECT_NEAR(morphometry.getIsobarycenter()[i], i == 0 ? x : i == 1 ? y : z, 0.02);
  }
}

TEST_F(Nucleus, CappedSurfaceIsAClosedManifoldOfTheRightVolume)
{
  StackReconstruction<double> reconstruction(stack);
  ModelSurface<double> surface(reconstruction);
  surface.setCaps({.tagged = false, .first = true, .last = true});
  surface.apply(*model);
  const TriMesh<double>& mesh = surface.getTriMesh();
  EXPECT_TRUE(isClosedManifold(mesh));
  EXPECT_EQ(eulerCharacteristic(mesh), 2);
  EXPECT_GT(signedVolume(mesh), 0);

  // Between two sections of one shape the surface is that of a frustum.
  double frusta = 0;
  for (std::size_t k = 1; k < scales.size(); ++k)
  {
    const double lower = sectionArea(scales[k - 1]), upper = sectionArea(scales[k]);
    frusta += h / 3 * (lower + upper + std::sqrt(lower * upper));
  }
  EXPECT_NEAR(mesh.volume(), frusta, roundingBound());
  // The ellipsoid cut off at the first and at the last section; frusta and chords lie inside it.
  const double end = std::sqrt(1 - scales.front() * scales.front());
  const double zone = pi * 13 * 10 * 12 * (2 * end - 2 * end * end * end / 3);
  EXPECT_NEAR(mesh.volume(), zone, 0.007 * zone);
}

/// Area of the ellipsoid between heights -w c and w c, by the midpoint rule.
double zoneArea(double a, double b, double c, double w)
{
  constexpr int n = 2000;
  double area = 0;
  for (int i = 0; i < n; ++i)
  {
    const double t = w * (2 * (i + 0.5) / n - 1), s = std::sqrt(1 - t * t);
    for (int j = 0; j < 400; ++j)
    {
      const double co = std::cos(2 * pi * (j + 0.5) / 400), si = std::sin(2 * pi * (j + 0.5) / 400);
      area += std::hypot(b * c * s * co, a * c * s * si, a * b * t) * (2 * w / n) * (2 * pi / 400);
    }
  }
  return area;
}

TEST_F(Nucleus, SurfaceAreaIsThatOfTheEllipsoid)
{
  ModelMorphometry morphometry;
  morphometry.setModel(*model);
  morphometry.run();
  // Rounded vertices make the surface rough: slopes of 0.07 um over edges of 0.9 and 1.2 um add about 1%; chords take
  // 0.5% away.
  const double area = zoneArea(13, 10, 12, std::sqrt(1 - scales.front() * scales.front()));
  EXPECT_NEAR(morphometry.getArea(), area, 0.02 * area);
}
} // namespace
