// What the program does with image files and volumes.
#include "batch_fixture.h"
#include "image/image.h"
#include "image/imagereader.h"
#include "image/voxelmatrix.h"
#include "tests/support/lsmfiles.h"
#include "tests/support/tifffiles.h"

#include <algorithm>
#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

namespace
{
namespace fs = std::filesystem;
using nlohmann::json;
using testing::HasSubstr;

VoxelCalibration calibration(float height, float width, float depth)
{
  VoxelCalibration result;
  result.setVoxelSize({height, width, depth});
  result.setLengthUnit(LengthUnit(-6));
  return result;
}

class BatchImages : public Batch
{
protected:
  std::string path(const std::string& name) const { return (folder / name).string(); }

  json info(const std::string& name) const { return json::parse(run("info --json " + name).output); }

  /// Four planes of two cubes of 3 x 3 x 2 voxels, 200 and 90 on 10.
  template <class T> void writeCubes(const std::string& name) const
  {
    VoxelMatrix<T> volume(8, 10, 4), cube(3, 3, 2);
    volume.fill(T(10));
    cube.fill(T(200));
    volume.paste(1, 1, 1, cube);
    cube.fill(T(90));
    volume.paste(4, 6, 2, cube);
    volume.setVoxelCalibration(calibration(0.5f, 0.25f, 2));
    volume.save(path(name), true);
  }
};

TEST_F(BatchImages, InfoTellsOfEveryKind)
{
  TiffRecipe{.planes = 2,
             .bits = 16,
             .resolutionUnit = RESUNIT_NONE,
             .xResolution = 4.f,
             .yResolution = 2.f,
             .description = "ImageJ=1\nunit=um\nspacing=1.5\n"}
      .write(path("stack.tif"));
  EXPECT_EQ(info("stack.tif"), (json{{"width", 37},
                                     {"height", 23},
                                     {"planes", 2},
                                     {"depth", 16},
                                     {"channels", 1},
                                     {"pixelWidth", 0.25},
                                     {"pixelHeight", 0.5},
                                     {"pixelAspect", 2.0},
                                     {"voxelSizeZ", 1.5},
                                     {"unit", "micrometer"}}));
  writeCubes<float>("cubes.vm");
  EXPECT_EQ(info("cubes.vm"), (json{{"format", 1},
                                    {"version", 1},
                                    {"type", "float"},
                                    {"unit", "micrometer"},
                                    {"voxel", {0.5, 0.25, 2.0}},
                                    {"size", {8, 10, 4}}}));
  LsmRecipe().write(path("confocal.lsm"));
  const Result confocal = run("info confocal.lsm --json");
  EXPECT_EQ(json::parse(confocal.output)["channels"], 3);
  EXPECT_THAT(confocal.errors, HasSubstr("S32MagicNumber :"));
}

TEST_F(BatchImages, ConvertsBackAndForth)
{
  TiffRecipe{.planes = 3, .resolutionUnit = RESUNIT_CENTIMETER, .xResolution = 40000.f, .yResolution = 20000.f}.write(
      path("stack.tif"));
  ASSERT_EQ(run("image stack.tif --out stack.vm").status, 0);
  const VoxelMatrix<unsigned char> volume(path("stack.vm"));
  EXPECT_EQ(volume(5, 7, 2), TiffRecipe().sample(7, 5, 0, 2));
  EXPECT_FLOAT_EQ(volume.getVoxelCalibration().getVoxelWidth(), 0.25e-4f);
  EXPECT_FLOAT_EQ(volume.getVoxelCalibration().getVoxelHeight(), 0.5e-4f);
  ASSERT_EQ(run("image stack.vm --out again.tif").status, 0);
  ASSERT_EQ(run("image again.tif --out again.vm").status, 0);
  EXPECT_EQ(contents(folder / "again.vm"), contents(folder / "stack.vm"));

  LsmRecipe lsm;
  lsm.write(path("confocal.lsm"));
  ASSERT_EQ(run("image confocal.lsm --channel 2 --out channel.vm").status, 0);
  EXPECT_EQ(VoxelMatrix<unsigned char>(path("channel.vm"))(3, 4, 1), lsm.sample(4, 3, 2, 1));
  EXPECT_EQ(run("image confocal.lsm --channel 3 --out none.vm").status, 2);
  EXPECT_EQ(run("image confocal.lsm --channel 1 --out again.vm --overwrite").errors, "S32MagicNumber :67127628\n");
}

TEST_F(BatchImages, ScalesToGreyLevels)
{
  VoxelMatrix<unsigned short> wide(1, 3, 2);
  wide.setZeros();
  wide(0, 0, 0) = 1000;
  wide(0, 1, 1) = 500;
  wide.save(path("wide.vm"), true);
  ASSERT_EQ(run("image wide.vm --out grey.tif --grey8").status, 0);
  VoxelMatrix<unsigned char> grey(path("grey.tif"));
  EXPECT_EQ(grey.cat(), (Vector<unsigned char>{255, 0, 0, 0, 128, 0}));

  const Result refused = run("image wide.vm --out wide.tif");
  EXPECT_EQ(refused.status, 2);
  EXPECT_THAT(refused.errors, HasSubstr("wide.tif: TIFF files are written with 8 bits"));
  EXPECT_FALSE(fs::exists(folder / "wide.tif"));

  TiffRecipe{.samples = 3, .photometric = PHOTOMETRIC_RGB}.write(path("color.tif"));
  ASSERT_EQ(run("image color.tif --out copy.tif").status, 0);
  Image image;
  ImageReader::read(image, path("copy.tif"));
  EXPECT_EQ(image.getDepth(), 24);
  TiffRecipe{.samples = 3, .photometric = PHOTOMETRIC_RGB, .hasThumbnails = true}.write(path("thumbnail.tif"));
  EXPECT_EQ(info("thumbnail.tif")["planes"], 1);
  ASSERT_EQ(run("image thumbnail.tif --out thumbnail2.tif").status, 0);
  EXPECT_EQ(contents(folder / "thumbnail2.tif"), contents(folder / "copy.tif"));
  EXPECT_THAT(run("image color.tif --out color.vm").errors, HasSubstr("--grey8 takes grey levels"));
  TiffRecipe{.bits = 16, .samples = 3, .photometric = PHOTOMETRIC_RGB}.write(path("deep.tif"));
  EXPECT_EQ(run("image deep.tif --out deep.vm").errors, "mirelo-batch: deep.tif: Invalid depth value\n");
  EXPECT_EQ(run("image color.tif --out color.vm --grey8").status, 0);

  VoxelMatrix<float> values(1, 4, 1);
  values[0][0] = Vector<float>{0, 1, 2, INFINITY};
  values.save(path("infinite.vm"), true);
  ASSERT_EQ(run("image infinite.vm --out levels.vm --grey8").status, 0);
  EXPECT_EQ(VoxelMatrix<unsigned char>(path("levels.vm")).cat(), (Vector<unsigned char>{0, 128, 255, 255}));
}

TEST_F(BatchImages, SegmentsVolumes)
{
  writeCubes<unsigned char>("bytes.vm");
  const Result otsu = run("threshold bytes.vm --method otsu --out mask.tif");
  ASSERT_EQ(otsu.status, 0) << otsu.errors;
  EXPECT_EQ(otsu.output, "90.5\n"); // the levels are 10, 90 and 200; the split above 90 separates most
  EXPECT_EQ(VoxelMatrix<unsigned char>(path("mask.tif")).histogram(-0.5, 1, 256)[255], 18);

  writeCubes<float>("floats.vm");
  const Result fixed = run("threshold floats.vm --method fixed --level 89.5 --out two.vm");
  EXPECT_EQ(fixed.output, "89.5\n");
  const Result label = run("label two.vm --out labels.tif");
  EXPECT_EQ(label.output, "2\n");
  const VoxelMatrix<unsigned char> labels(path("labels.tif"));
  EXPECT_EQ(labels(1, 1, 1), 1);
  EXPECT_EQ(labels(6, 8, 3), 2);
  EXPECT_EQ(info("two.vm")["voxel"], (json{0.5, 0.25, 2.0}));

  const Result isodata = run("threshold floats.vm --method isodata --out mask.vm");
  EXPECT_GT(std::stod(isodata.output), 90) << isodata.errors;
  EXPECT_EQ(run("threshold floats.vm --method fixed --out none.vm").status, 2);
  EXPECT_EQ(run("threshold floats.vm --method otsu --level 3 --out none.vm").status, 2);
}

TEST_F(BatchImages, LabelsTakeTheFewestBits)
{
  VoxelMatrix<unsigned char> dots(40, 40, 1);
  dots.setZeros();
  for (int i = 0; i < 40; i += 2)
    for (int j = 0; j < 40; j += 2) dots(i, j, 0) = 1;
  dots.save(path("dots.vm"), true);
  EXPECT_EQ(run("label dots.vm --out labels.vm").output, "400\n");
  EXPECT_EQ(info("labels.vm")["type"], "unsigned short");
  const Result refused = run("label dots.vm --out labels.tif");
  EXPECT_EQ(refused.status, 2);
  EXPECT_EQ(refused.output, "");
}

TEST_F(BatchImages, FiltersVolumes)
{
  writeCubes<float>("floats.vm");
  ASSERT_EQ(run("filter floats.vm --kind mean --size 3 --out mean.vm").status, 0);
  // At the first cube's centre column: 3 x 3 x 2 of 27 voxels are 200.
  EXPECT_FLOAT_EQ(VoxelMatrix<float>(path("mean.vm"))(2, 2, 1), (18 * 200 + 9 * 10) / 27.f);
  ASSERT_EQ(run("filter floats.vm --kind gaussian --sigma 0 --out same.vm").status, 0);
  EXPECT_EQ(contents(folder / "same.vm"), contents(folder / "floats.vm"));
  EXPECT_THAT(run("filter floats.vm --kind nope --out x.vm").errors, HasSubstr("gaussian, mean"));
  EXPECT_EQ(run("filter floats.vm --kind mean --sigma 1 --out x.vm").status, 2);
  EXPECT_EQ(run("filter floats.vm --kind mean --size -3 --out x.vm").status, 2);
}

TEST_F(BatchImages, BadInputGivesOneLine)
{
  write(folder / "garbage.tif", std::string(3000, '\xff'));
  write(folder / "garbage.vm", std::string(3000, '\xff'));
  write(folder / "empty.vm", "");
  // A sparse file of 2 TiB that tells the truth about its size.
  const std::int32_t header[] = {0, 0, 0, 1, 6, 1 << 13, 1 << 13, 1 << 12, -6, 0, 0, 0};
  write(folder / "huge.vm", std::string(reinterpret_cast<const char*>(header), sizeof header));
  std::error_code notSparse;
  fs::resize_file(folder / "huge.vm", (std::uintmax_t{1} << 41) + 48, notSparse);
  const struct
  {
    const char* arguments;
    const char* text;
  } cases[] = {
      {"info none.tif", "none.tif"},
      {"info garbage.tif", "garbage.tif"},
      {"label garbage.vm --out x.vm", "garbage.vm"},
      {"filter empty.vm --kind mean --out x.vm", "empty.vm"},
      {"label huge.vm --out x.vm", "huge.vm"},
      {"label note.txt --out x.vm", "note.txt: the name of an image file ends with"},
      {"image garbage.vm --out x.png", "x.png"},
      {"image garbage.vm --out x.vm", "garbage.vm"},
      {"image garbage.vm --out nowhere/x.vm", "nowhere/x.vm: there is no folder nowhere"},
      {"isosurface garbage.tif --level 1 --out x.stl", "garbage.tif"},
  };
  for (const auto& c : cases)
  {
    const Result result = run(c.arguments);
    EXPECT_EQ(result.status, 2) << c.arguments;
    EXPECT_EQ(result.output, "") << c.arguments;
    EXPECT_THAT(result.errors, testing::AllOf(testing::StartsWith("mirelo-batch: "), HasSubstr(c.text))) << c.arguments;
    EXPECT_EQ(std::ranges::count(result.errors, '\n'), 1) << result.errors;
    EXPECT_FALSE(fs::exists(folder / "x.vm") || fs::exists(folder / "x.stl"));
  }
}
} // namespace
