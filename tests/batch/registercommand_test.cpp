// Automatic alignment from the command line, of a specimen that moves and turns by known amounts.

#include "image/image.h"
#include "image/imagesourcefile.h"
#include "image/imagewriter.h"
#include "model/io/stackreader.h"
#include "model/io/stackwriter.h"
#include "tests/batch/batch_fixture.h"
#include "tests/support/specimens.h"

#include <sstream>

namespace
{
/// A stack of three slices on which the specimen turns by 30 degrees and moves; written to stack.sdf, dark or bright.
void writeStack(const std::filesystem::path& folder, bool isDark)
{
  const SpecimenPose poses[] = {{128, 128, 0}, {128, 128, 30}, {148, 118, 30}};
  Stack stack;
  stack.setImagesPath(folder.string());
  for (const SpecimenPose& pose : poses)
  {
    const auto volume = specimenImage({256, 256, 1, 1, 2}, pose, 3);
    Image image;
    PixelMatrix<unsigned char> levels((*volume)[0]);
    if (isDark) levels.apply([](unsigned char level) { return static_cast<unsigned char>(255 - level); });
    levels.convertToImage(image);
    const std::string file = (folder / (std::to_string(stack.getNumSlices()) + ".tif")).string();
    ImageWriter::write(image, file, true);
    addSlice(stack, 0, 0).setImageSource(ImageSourceFile(file));
  }
  stack.getSlice(0)->setRegistration(Registration(1, 2, 3));
  StackWriter().write(stack, (folder / "stack.sdf").string());
}
} // namespace

TEST_F(Batch, RegisterAlignsEverySliceButTheFirst)
{
  for (const std::string option : {"", "--dark"})
  {
    SCOPED_TRACE(option);
    writeStack(folder, !option.empty());
    const Result result = run("register stack.sdf --overwrite --out aligned.sdf " + option);
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.errors, "");
    std::istringstream lines(result.output);
    std::string line, name, number;
    std::getline(lines, line);
    EXPECT_EQ(line, "slice\thorizontalShift\tverticalShift\tangle\tcorrelationBefore\tcorrelationAfter");
    const double expected[][4] = {{0, 0, 330, 0.95}, {-20, 10, 0, 0.95}}; // at least this correlation after
    for (int k = 0; k < 2; ++k)
    {
      int h = 0, v = 0;
      double angle = 0, before = 0, after = 0;
      lines >> name >> number >> h >> v >> angle >> before >> after;
      EXPECT_EQ(name + " " + number, "slice " + std::to_string(k + 1));
      EXPECT_NEAR(h, expected[k][0], 1);
      EXPECT_NEAR(v, expected[k][1], 1);
      EXPECT_NEAR(std::remainder(angle - expected[k][2], 360), 0, 0.3);
      EXPECT_LT(before, 0.9);
      EXPECT_GT(after, expected[k][3]);
    }
  }
  Stack stack;
  StackReader().read(stack, (folder / "aligned.sdf").string());
  EXPECT_TRUE(stack.getSlice(0)->getRegistration() == Registration(1, 2, 3));
  EXPECT_NEAR(stack.getSlice(2)->getRegistration().getHorizontalShift(), -20, 1);
  EXPECT_EQ(stack.getLastRegisteredSlice(), "slice 2");
}

// Slices that were aligned well; then debris on the middle one draws the principal axes away from the specimen.
TEST_F(Batch, RegisterTellsOfSlicesThatCorrelateLess)
{
  writeStack(folder, false);
  ASSERT_EQ(run("register stack.sdf --out aligned.sdf").errors, "");
  Image image;
  auto levels = specimenImage({256, 256, 1, 1, 2}, {128, 128, 30}, 4);
  for (int i = 0; i < 40; ++i)
    for (int j = 200; j < 256; ++j) (*levels)(i, j, 0) = 255;
  (*levels)[0].convertToImage(image);
  ImageWriter::write(image, (folder / "1.tif").string(), true);
  const Result result = run("register aligned.sdf --out again.sdf");
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.errors, "mirelo-batch: 2 of 2 slices correlate less than before: look at them\n") << result.output;
}

TEST_F(Batch, RegisterRefusesWhatItCannotDo)
{
  writeStack(folder, false);
  write(folder / "there.sdf", "kept");
  EXPECT_EQ(run("register stack.sdf --out there.sdf").status, 2);
  EXPECT_EQ(contents(folder / "there.sdf"), "kept");
  EXPECT_EQ(run("register stack.sdf --out aligned.txt").status, 2);
  std::filesystem::remove(folder / "1.tif");
  const Result result = run("register stack.sdf --out aligned.sdf");
  EXPECT_EQ(result.status, 2);
  EXPECT_NE(result.errors.find("1.tif"), std::string::npos) << result.errors;
  EXPECT_FALSE(std::filesystem::exists(folder / "aligned.sdf"));
}
