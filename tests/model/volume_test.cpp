// Stacks as volumes and volumes as stacks, over real files.

#include "image/imagereader.h"
#include "model/io/stackreader.h"
#include "model/stackvolume.h"
#include "tests/support/errors.h"
#include "tests/support/stacks.h"
#include "tests/support/temporaryfolder.h"

#include <filesystem>
#include <gtest/gtest.h>

namespace
{
template <class T> VoxelMatrix<T> ramp(int rows, int columns, int planes, T first, T step)
{
  VoxelMatrix<T> volume(rows, columns, planes);
  T value = first;
  for (std::size_t i = 0; i < volume.getNumVoxels(); ++i, value = static_cast<T>(value + step))
    volume.data()[i] = value;
  VoxelCalibration calibration;
  calibration.setLengthUnit(LengthUnit(-6));
  calibration.setVoxelSize({0.5f, 0.25f, 9.0f});
  volume.setVoxelCalibration(calibration);
  return volume;
}

/// Counts the reports of a step and cancels it after the given number.
class Reports : public ProgressSubject, private ProgressObserver
{
public:
  explicit Reports(int limit = -1) : _limit(limit) { addObserver(*this); }
  int count = 0;

private:
  void started(const std::string&) override {}
  void progressed(double) override
  {
    if (++count == _limit) cancel();
  }
  void finished() override {}

  int _limit;
};
} // namespace

TEST(Volume, OfBytesBecomesAStackOfImagesAndAVolumeAgain)
{
  const TemporaryFolder folder;
  const auto volume = ramp<unsigned char>(5, 4, 3, 0, 4);
  Reports reports;
  EXPECT_TRUE(saveVolumeAsStack(volume, folder.file("sections"), 2, false, reports).empty());
  EXPECT_GE(reports.count, 3);
  EXPECT_EQ(folder.getNumFiles(), 4);
  EXPECT_TRUE(std::filesystem::exists(folder.file("sections-0003.tif")));

  Stack stack;
  StackReader reader;
  reader.read(stack, folder.file("sections.sdf"));
  EXPECT_TRUE(reader.getLog().empty());
  ASSERT_EQ(stack.getNumSlices(), 3);
  EXPECT_EQ(stack.absolutePositions(), (std::vector<float>{0, 2, 4}));
  EXPECT_EQ(stack.colorContent(), ImageColorContent::Grayscale);
  VoxelMatrix<unsigned short> again;
  Reports reading;
  stackToVolume(again, stack, ImageColorContent::Grayscale, reading);
  EXPECT_GE(reading.count, 3);
  EXPECT_EQ(again.toType<unsigned char>(), volume);
  EXPECT_EQ(again.getVoxelCalibration().getVoxelSize(), (Vector<float>{0.5f, 0.25f, 2.0f}));
  EXPECT_EQ(again.getVoxelCalibration().getLengthUnit(), LengthUnit(-6));
  Reports converting;
  EXPECT_EQ(stack.toVoxelMatrix<unsigned char>(ImageColorContent::GreenOnly, &converting), volume);
  EXPECT_GE(converting.count, 3);
  EXPECT_EQ(stack.toVoxelMatrix<unsigned char>(ImageColorContent::BlueOnly), volume);
}

template <class T> class WideVolume : public testing::Test
{
};
using WideTypes = testing::Types<char, short, unsigned short, int, float, double>;
TYPED_TEST_SUITE(WideVolume, WideTypes);

TYPED_TEST(WideVolume, BecomesPlanesOfOneFile)
{
  const TemporaryFolder folder;
  const bool isSigned = std::is_signed_v<TypeParam>;
  const auto volume = ramp<TypeParam>(3, 4, 2, static_cast<TypeParam>(isSigned ? -20 : 300), TypeParam(3));
  Reports nobody;
  saveVolumeAsStack(volume, folder.file("wide.sdf"), 1, false, nobody);
  EXPECT_EQ(folder.getNumFiles(), 2);
  Stack stack;
  StackReader().read(stack, folder.file("wide.sdf"));
  ASSERT_EQ(stack.getNumSlices(), 2);
  using Stored = std::conditional_t<sizeof(TypeParam) < 4 && std::is_signed_v<TypeParam>, int, TypeParam>;
  EXPECT_EQ(VoxelMatrix<Stored>(folder.file("wide.vm")).template toType<double>(), volume.template toType<double>());
  EXPECT_EQ(stack.toVoxelMatrix<TypeParam>(ImageColorContent::Grayscale), volume);
  Image image; // the second plane is the brighter half of the range
  stack.getSlice(1)->load(image);
  EXPECT_EQ(image.getWidth(), 4);
  EXPECT_EQ(image.getHeight(), 3);
}

TEST(Volume, LeavesNothingBehindWhenItCannotBeSaved)
{
  const TemporaryFolder folder;
  const auto volume = ramp<unsigned char>(5, 4, 3, 0, 1);
  folder.write("a-0002.tif", "precious");
  Reports nobody;
  expectError<FileWriteError>("File already exists",
                              [&] { saveVolumeAsStack(volume, folder.file("a"), 1, false, nobody); });
  Reports impatient(2);
  EXPECT_THROW(saveVolumeAsStack(volume, folder.file("b"), 1, false, impatient), Cancelled);
  expectError<SizeError>("empty", [&] { saveVolumeAsStack(VoxelMatrix<int>(), folder.file("c"), 1, false, nobody); });
  EXPECT_EQ(folder.getNumFiles(), 1);
  EXPECT_EQ(contentOf(folder.file("a-0002.tif")), "precious");
}

TEST(Volume, NeedsImagesOfOneSizeThatFitItsType)
{
  const TemporaryFolder folder;
  Stack stack;
  Reports nobody;
  VoxelMatrix<unsigned char> volume = ramp<unsigned char>(1, 1, 1, 3, 1);
  const VoxelMatrix<unsigned char> before = volume;
  const auto read = [&] { stackToVolume(volume, stack, ImageColorContent::Mixed, nobody); };
  expectError<SizeError>("no slices", read);
  const auto add = [&](const auto& pixels, const std::string& name)
  {
    saveVolumeAsStack(pixels, folder.file(name), 1, false, nobody);
    Stack other;
    StackReader().read(other, folder.file(name));
    stack.addSlice(other.removeSlice(0)).setName(name);
  };
  add(ramp<unsigned char>(3, 3, 1, 0, 1), "small");
  add(ramp<unsigned char>(4, 3, 1, 0, 1), "large");
  expectError<SizeError>("slice \"large\" has another size", read);
  stack.deleteSlice(1);
  add(ramp<unsigned short>(3, 3, 1, 250, 1), "bright");
  expectError<RangeError>("Slice \"bright\"", read);
  stack.deleteSlice(1);
  StackSlice& missing = addSlice(stack, 3, 3);
  expectError<FileReadError>("No such file", read);
  missing.setImageSource(ImageSourceFile(""));
  EXPECT_THROW(read(), Exception);
  EXPECT_EQ(volume, before);
}
