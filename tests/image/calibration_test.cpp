#include "image/image.h"
#include "image/imagereader.h"
#include "image/imagewriter.h"
#include "image/voxelmatrix.h"
#include "tests/support/errors.h"
#include "tests/support/temporaryfolder.h"
#include "tests/support/tifffiles.h"

#include <cmath>
#include <gtest/gtest.h>

TEST(PixelCalibration, DerivesWhatWasNotSet)
{
  PixelCalibration calibration;
  calibration.setPixelWidth(2);
  calibration.setAspectRatio(3);
  calibration.compute(); // all three set: width and aspect win
  EXPECT_EQ(calibration.getPixelHeight(), 6);
  calibration.clearFlags();
  calibration.setPixelWidth(4);
  calibration.setPixelHeight(2);
  calibration.compute();
  EXPECT_EQ(calibration.getAspectRatio(), 0.5f);
  calibration.clearFlags();
  calibration.setPixelHeight(3);
  calibration.setAspectRatio(2);
  calibration.compute();
  EXPECT_EQ(calibration.getPixelWidth(), 1.5f);
  EXPECT_FLOAT_EQ(calibration.pixelDiagonal(), std::sqrt(11.25f));
}

TEST(TiffCalibration, FollowsTheTags)
{
  constexpr float unset = 1;
  const struct
  {
    const char* name;
    TiffRecipe recipe;
    int scale;
    float width, height, spacing = unset;
  } cases[] = {
      {"nothing", {}, 0, 1, 1},
      {"inch", {.resolutionUnit = RESUNIT_INCH, .xResolution = 254.f, .yResolution = 127.f}, -2, 0.01f, 0.02f},
      {"centimetre", {.resolutionUnit = RESUNIT_CENTIMETER, .xResolution = 4.f, .yResolution = 8.f}, -2, 0.25f, 0.125f},
      {"resolution without a unit",
       {.xResolution = 4.f, .yResolution = 4.f, .description = "unit=um"},
       0,
       0.25f,
       0.25f},
      {"one direction", {.resolutionUnit = RESUNIT_NONE, .yResolution = 4.f}, 0, 0.25f, 0.25f},
      {"resolution 0", {.resolutionUnit = RESUNIT_NONE, .xResolution = 0.f, .yResolution = 2.f}, 0, 0.5f, 0.5f},
      {"micrometres and spacing",
       {.planes = 10,
        .resolutionUnit = RESUNIT_NONE,
        .xResolution = 2.f,
        .yResolution = 2.f,
        .description = "ImageJ=1.52\nunit=um\nspacing=0.5\nloop=false"},
       -6,
       0.5f,
       0.5f,
       0.5f},
      {"spacing of a single plane", {.resolutionUnit = RESUNIT_NONE, .description = "unit=cm\nspacing=0.5"}, -2, 1, 1},
      {"spacing behind loop",
       {.planes = 2, .resolutionUnit = RESUNIT_NONE, .description = "spacing=loop=0.5"},
       0,
       1,
       1},
      {"spacing that is no number",
       {.planes = 2, .resolutionUnit = RESUNIT_NONE, .description = "spacing=inf"},
       0,
       1,
       1},
      {"spacing behind blanks and a plus sign",
       {.planes = 2, .resolutionUnit = RESUNIT_NONE, .description = "spacing=  +0.25"},
       0,
       1,
       1,
       0.25f},
      {"spacing with two signs",
       {.planes = 2, .resolutionUnit = RESUNIT_NONE, .description = "spacing=+-0.25"},
       0,
       1,
       1},
      {"spacing at the very end",
       {.planes = 2, .resolutionUnit = RESUNIT_NONE, .description = "unit=nm spacing"},
       -9,
       1,
       1},
      {"millimetre", {.resolutionUnit = RESUNIT_NONE, .description = "unit=mm"}, -3, 1, 1},
      {"micron", {.resolutionUnit = RESUNIT_NONE, .description = "unit=micron"}, -6, 1, 1},
      {"micro sign in UTF-8", {.resolutionUnit = RESUNIT_NONE, .description = "unit=\xC2\xB5m"}, -6, 1, 1},
      {"Greek mu", {.resolutionUnit = RESUNIT_NONE, .description = "unit=\xCE\xBCm"}, -6, 1, 1},
      {"micro sign in Latin-1", {.resolutionUnit = RESUNIT_NONE, .description = "unit=\xB5m"}, -6, 1, 1},
      {"micro sign escaped", {.resolutionUnit = RESUNIT_NONE, .description = "unit=\\u00B5m"}, -6, 1, 1},
      {"a later unit overrides", {.resolutionUnit = RESUNIT_NONE, .description = "unit=nm unit=cm"}, -9, 1, 1},
  };
  const TemporaryFolder folder;
  for (const auto& c : cases)
  {
    SCOPED_TRACE(c.name);
    c.recipe.write(folder.file("a.tif"));
    ImageHeader header;
    ImageReader::read(header, folder.file("a.tif"));
    const PixelCalibration& calibration = header.getPixelCalibration();
    EXPECT_EQ(calibration.getLengthUnit().getScale(), c.scale);
    EXPECT_FLOAT_EQ(calibration.getPixelWidth(), c.width);
    EXPECT_FLOAT_EQ(calibration.getPixelHeight(), c.height);
    EXPECT_FLOAT_EQ(calibration.getAspectRatio(), c.height / c.width);
    EXPECT_EQ(header.getVoxelSizeZ(), c.spacing);
    EXPECT_EQ(header.getNumPlanes(), c.recipe.planes);
  }
}

TEST(TiffCalibration, IsReadBackAsItWasWritten)
{
  const TemporaryFolder folder;
  for (const int scale : {-12, -9, -6, -3, -2, 0, 3})
    for (const float width : {0.0645f, 1.f, 250.f})
    {
      Image image(2, 2, 8);
      image.reset();
      PixelCalibration calibration;
      calibration.setPixelWidth(width);
      calibration.setAspectRatio(1.5f);
      calibration.compute();
      calibration.setLengthUnit(LengthUnit(scale));
      image.setPixelCalibration(calibration);
      image.writeFile(folder.file("a.tif"), true);
      Image read;
      read.readFile(folder.file("a.tif"));
      const PixelCalibration& result = read.getPixelCalibration();
      const double factor = std::pow(10.0, result.getLengthUnit().getScale() - scale);
      EXPECT_NEAR(result.getPixelWidth() * factor, width, 1e-6 * width) << scale;
      EXPECT_NEAR(result.getPixelHeight() * factor, 1.5 * width, 2e-6 * width);
      const bool isNamed = scale != -12 && scale != 3; // the others are rescaled
      EXPECT_EQ(result.getLengthUnit().getScale() == scale, isNamed);
    }
}

TEST(TiffCalibration, TakesAnotherUnitWhereTheSizeIsBeyondTheFormat)
{
  const struct
  {
    int scale;
    float width;
    int writtenScale;
  } cases[] = {{0, 1e-11f, -2}, {-9, 1e11f, 0}, {-6, 1e-9f, -6}, {-6, 1e-11f, -9}, {-12, 1e-4f, -9}};
  const TemporaryFolder folder;
  for (const auto& c : cases)
  {
    VoxelMatrix<int> matrix(1, 1, 2), read;
    matrix.setZeros();
    VoxelCalibration calibration;
    calibration.setVoxelSize({c.width, 2 * c.width, 1});
    calibration.setLengthUnit(LengthUnit(c.scale));
    matrix.setVoxelCalibration(calibration);
    matrix.saveAsTiff(folder.file("a.tif"), true);
    read.load(folder.file("a.tif"));
    const VoxelCalibration& result = read.getVoxelCalibration();
    EXPECT_EQ(result.getLengthUnit().getScale(), c.writtenScale);
    const double factor = std::pow(10.0, c.writtenScale - c.scale);
    EXPECT_NEAR(result.getVoxelHeight() * factor / c.width, 1, 1e-6);
    EXPECT_NEAR(result.getVoxelWidth() * factor / c.width, 2, 2e-6);
    EXPECT_NEAR(result.getVoxelDepth() * factor, 1, 1e-6);
  }
}

TEST(TiffCalibration, IsRefusedWhereNoResolutionHoldsIt)
{
  const TemporaryFolder folder;
  const std::string old = folder.write("a.tif", "old");
  for (const float size : {0.f, -1.f, NAN, INFINITY, 1e-30f, 1e30f})
  {
    Image image(2, 2, 8);
    image.reset();
    PixelCalibration pixels;
    pixels.setPixelWidth(size);
    image.setPixelCalibration(pixels);
    expectError<FileWriteError>(" x 1 m cannot be written", [&] { image.writeFile(old, true); });
    VoxelMatrix<int> matrix(1, 1, 2);
    matrix.setZeros();
    VoxelCalibration voxels;
    voxels.setVoxelHeight(size);
    matrix.setVoxelCalibration(voxels);
    expectError<FileWriteError>("The pixel size 1 x ", [&] { matrix.saveAsTiff(old, true); });
    if (std::isfinite(size)) continue;
    voxels.setVoxelSize({1, 1, size});
    matrix.setVoxelCalibration(voxels);
    expectError<FileWriteError>("The distance of planes", [&] { matrix.saveAsTiff(old, true); });
  }
  EXPECT_EQ(contentOf(old), "old");
}
