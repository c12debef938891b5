#include "model/stackcreation.h"

#include "image/image.h"
#include "image/voxelmatrix.h"
#include "model/stack.h"
#include "model/stackslice.h"
#include "numeric/progresssubject.h"
#include "tests/support/canceller.h"
#include "tests/support/errors.h"
#include "tests/support/lsmfiles.h"
#include "tests/support/temporaryfolder.h"
#include "tests/support/tifffiles.h"

#include <gtest/gtest.h>

namespace
{
std::vector<std::string> slicesOf(const Stack& stack)
{
  std::vector<std::string> names;
  for (int i = 0; i < stack.getNumSlices(); ++i) names.push_back(stack.getSlice(i)->getName());
  return names;
}

int pixelOf(const Stack& stack, int slice, int row, int column)
{
  Image image;
  stack.getSlice(slice)->load(image);
  return image.getPixels()[row][column];
}

class StackCreation : public testing::Test
{
protected:
  std::string file(const std::string& name, const TiffRecipe& recipe)
  {
    const std::string path = _folder.file(name);
    recipe.write(path);
    return path;
  }

  TemporaryFolder _folder;
  ProgressSubject _subject;
};
} // namespace

TEST_F(StackCreation, TakesImageFilesWithTheirCalibration)
{
  const std::string plain = file("plain.tif", {});
  const std::string fine =
      file("a.tif",
           {.resolutionUnit = RESUNIT_NONE, .xResolution = 4, .yResolution = 2, .description = "ImageJ=1\nunit=um\n"});
  std::filesystem::create_directory(_folder.file("b"));
  const std::string coarse = file(
      "b/a.tif",
      {.resolutionUnit = RESUNIT_NONE, .xResolution = 100, .yResolution = 100, .description = "ImageJ=1\nunit=mm\n"});
  Stack stack;
  addImageFiles(stack, {plain, fine, coarse}, true, _subject);
  EXPECT_EQ(slicesOf(stack), (std::vector<std::string>{"plain", "a", "a-2"}));
  EXPECT_EQ(stack.getLengthUnit().getScale(), -6);
  const float widths[] = {0.25f, 0.25f, 10}, heights[] = {0.5f, 0.5f, 10};
  for (int i = 0; i < 3; ++i)
  {
    EXPECT_FLOAT_EQ(stack.getSlice(i)->getPixelCalibration().getPixelWidth(), widths[i]) << i;
    EXPECT_FLOAT_EQ(stack.getSlice(i)->getPixelCalibration().getPixelHeight(), heights[i]) << i;
  }
  EXPECT_EQ(pixelOf(stack, 0, 2, 3), 2 * 13 + 3 * 7);

  addImageFiles(stack, {fine}, false, _subject);
  EXPECT_EQ(stack.getLastSlice()->getName(), "a-3");
  EXPECT_EQ(stack.getLastSlice()->getPixelCalibration(), stack.getDefaultPixelCalibration());
}

TEST_F(StackCreation, AddsNothingWhenAFileIsNoImageOrTheUserStopsIt)
{
  const std::string good = file("good.tif", {});
  Stack stack;
  const auto add = [&](const std::vector<std::string>& files) { addImageFiles(stack, files, true, _subject); };
  EXPECT_THROW(add({good, _folder.file("missing.tif")}), FileReadError);
  EXPECT_THROW(add({good, _folder.write("text.tif", "no image")}), FileFormatError);
  for (const double share : {0.4, 1.0})
  {
    Canceller canceller(_subject, share);
    EXPECT_THROW(add({good, good, good}), Cancelled) << share;
  }
  EXPECT_THROW(add({file("tab\t.tif", {})}), ValueError);
  EXPECT_THROW(addPlanesOf(stack, _folder.file("tab\t.tif")), ValueError);
  EXPECT_EQ(stack.getNumSlices(), 0);
}

TEST_F(StackCreation, TakesThePlanesOfAFile)
{
  VoxelMatrix<unsigned char> volume(3, 4, 2);
  volume.setZeros();
  volume[1](2, 3) = 9;
  VoxelCalibration voxel;
  voxel.setVoxelSize({2, 1, 5});
  voxel.setLengthUnit(LengthUnit(-9));
  volume.setVoxelCalibration(voxel);
  volume.save(_folder.file("volume.vm"), true);
  LsmRecipe{}.write(_folder.file("confocal.lsm"));
  const std::string spaced = "ImageJ=1\nunit=um\nspacing=0.5\nloop=false\n";
  file("spaced.tif", {.planes = 3,
                      .resolutionUnit = RESUNIT_NONE,
                      .xResolution = 4,
                      .yResolution = 4,
                      .description = spaced,
                      .hasThumbnails = true});
  file("bare.tiff", {.planes = 2});
  file("one.tif", {.planes = 2,
                   .resolutionUnit = RESUNIT_NONE,
                   .xResolution = 2,
                   .yResolution = 2,
                   .description = "ImageJ=1\nunit=um\nspacing=1.0\nloop=false\n"});
  voxel.setVoxelSize({0, 0, 5}); // that no stack file can hold
  volume.setVoxelCalibration(voxel);
  volume.save(_folder.file("flat.vm"), true);

  const struct
  {
    const char* file;
    int channel;
    std::vector<std::string> names;
    int unit;
    float width, height, distance;
    int pixel; // of plane 1, row 2, column 3
  } cases[] = {
      {"volume.vm", 0, {"0000", "0001"}, -9, 1, 2, 5, 9},
      {"confocal.lsm", 0, {"000", "001"}, -6, 0.25f, 0.5f, 2, 2 * 13 + 3 * 7 + 31},
      {"confocal.lsm", 2, {"000", "001"}, -6, 0.25f, 0.5f, 2, 2 * 13 + 3 * 7 + 31 + 100},
      {"spaced.tif", 0, {"000", "001", "002"}, -6, 0.25f, 0.25f, 0.5f, 2 * 13 + 3 * 7 + 31},
      {"bare.tiff", 0, {"000", "001"}, -6, 1, 1, 0, 2 * 13 + 3 * 7 + 31},
      {"one.tif", 0, {"000", "001"}, -6, 0.5f, 0.5f, 1, 2 * 13 + 3 * 7 + 31},
      {"flat.vm", 0, {"0000", "0001"}, -6, 1, 1, 0, 9},
  };
  for (const auto& [name, channel, names, unit, width, height, distance, pixel] : cases)
  {
    SCOPED_TRACE(name);
    Stack stack;
    addPlanesOf(stack, _folder.file(name), channel);
    EXPECT_EQ(slicesOf(stack), names);
    EXPECT_EQ(stack.getLengthUnit().getScale(), unit);
    EXPECT_FLOAT_EQ(stack.getSlice(1)->getPixelCalibration().getPixelWidth(), width);
    EXPECT_FLOAT_EQ(stack.getSlice(1)->getPixelCalibration().getPixelHeight(), height);
    EXPECT_FLOAT_EQ(stack.getDefaultSliceSpacing(), distance);
    EXPECT_EQ(pixelOf(stack, 1, 2, 3), pixel);
  }
  EXPECT_EQ(numChannelsOf(_folder.file("confocal.lsm")), 3);
  EXPECT_EQ(numChannelsOf(_folder.file("bare.tiff")), 1);
  Stack stack;
  EXPECT_THROW(addPlanesOf(stack, _folder.file("confocal.lsm"), 3), FileFormatError);
  EXPECT_THROW(addPlanesOf(stack, _folder.write("bad.vm", "no volume")), FileFormatError);
  EXPECT_EQ(stack.getNumSlices(), 0);
}
