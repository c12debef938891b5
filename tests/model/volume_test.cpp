// Stacks as volumes and volumes as stacks, over real files.

#include "image/imagereader.h"
#include "image/imagesourcetiffstackplane.h"
#include "image/imagesourcevoxelmatrixfileplane.h"
#include "image/imagesourcevoxelmatrixplane.h"
#include "model/io/stackreader.h"
#include "model/stackvolume.h"
#include "tests/support/errors.h"
#include "tests/support/stacks.h"
#include "tests/support/temporaryfolder.h"

#include <cmath>
#include <filesystem>
#include <gtest/gtest.h>
#include <limits>
#include <map>

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

template <class T> class OverwritingVolume : public testing::Test
{
};
using OverwritingTypes = testing::Types<unsigned char, float, short>;
TYPED_TEST_SUITE(OverwritingVolume, OverwritingTypes);

TYPED_TEST(OverwritingVolume, ReplacesAllFilesOrNone)
{
  const TemporaryFolder folder;
  const std::string name = folder.file("a.sdf");
  Reports nobody;
  const auto old = ramp<TypeParam>(5, 4, 20, 0, 1);
  saveVolumeAsStack(old, name, 1, false, nobody);
  const auto contents = [&folder]
  {
    std::map<std::string, std::string> result;
    for (const auto& entry : std::filesystem::directory_iterator(folder.file("")))
      result[entry.path().filename()] = contentOf(entry.path());
    return result;
  };
  const auto before = contents();
  auto fresh = ramp<TypeParam>(6, 3, 20, 100, -1);
  const VoxelCalibration calibration = fresh.getVoxelCalibration();
  for (const float width : {0.0f, -1.0f, std::numeric_limits<float>::infinity(), 1e-16f})
  {
    VoxelCalibration wrong = calibration;
    wrong.setVoxelWidth(width);
    fresh.setVoxelCalibration(wrong);
    EXPECT_THROW(saveVolumeAsStack(fresh, name, 1, true, nobody), FileWriteError) << width;
  }
  fresh.setVoxelCalibration(calibration);
  expectError<FileWriteError>("not finite", [&] { saveVolumeAsStack(fresh, name, NAN, true, nobody); });
  expectError<ValueError>("must not hold", [&] { saveVolumeAsStack(fresh, folder.file("a\tb"), 1, true, nobody); });
  Reports counting;
  saveVolumeAsStack(old, name, 1, true, counting);
  EXPECT_GE(counting.count, 20);
  for (int limit = 1; limit <= 20; ++limit)
  {
    Reports impatient(limit);
    EXPECT_THROW(saveVolumeAsStack(fresh, name, 1, true, impatient), Cancelled) << limit;
  }
  EXPECT_EQ(contents(), before);

  saveVolumeAsStack(fresh, name, 1, true, nobody);
  EXPECT_EQ(contents().size(), before.size());
  Stack stack;
  StackReader().read(stack, name);
  EXPECT_EQ(stack.toVoxelMatrix<TypeParam>(ImageColorContent::Grayscale), fresh);
  std::filesystem::remove(folder.file("a.vm")); // what the stack file says of it stays
  if (before.count("a.vm") == 1)
  {
    StackReader().read(stack, name);
    EXPECT_EQ(stack.getSlice(0)->getImageSource()->getSize(), (std::vector<int>{6, 3}));
  }
}

namespace
{
template <class T> StackSlice& addPlane(Stack& stack, const VoxelMatrix<T>& matrix, int plane = 0)
{
  StackSlice& slice = stack.addSlice(std::make_unique<StackSlice>());
  slice.setName("p");
  slice.setImageSource(ImageSourceVoxelMatrixPlane(std::make_shared<const VoxelMatrix<T>>(matrix), plane));
  return slice;
}

template <class T> std::string failureOf(const Stack& stack)
{
  try
  {
    stack.toVoxelMatrix<T>(ImageColorContent::Grayscale);
  }
  catch (const RangeError& error)
  {
    return error.getWhat();
  }
  return "";
}
} // namespace

TEST(Volume, WritesOverImagesWithTheirPermissionsAndWhereLinksLead)
{
  namespace fs = std::filesystem;
  const TemporaryFolder folder;
  ProgressSubject subject;
  VoxelMatrix<unsigned char> volume(2, 3, 2);
  volume.setZeros();
  const auto save = [&] { saveVolumeAsStack(volume, folder.file("v.sdf"), 1, true, subject); };
  save();
  fs::permissions(folder.file("v-0001.tif"), fs::perms(0640));
  fs::create_directory(folder.file("real"));
  fs::rename(folder.file("v-0002.tif"), folder.file("real/x.tif"));
  fs::create_symlink("real/x.tif", folder.file("v-0002.tif"));
  volume[1](1, 2) = 9;
  save();
  EXPECT_EQ(fs::status(folder.file("v-0001.tif")).permissions(), fs::perms(0640));
  EXPECT_TRUE(fs::is_symlink(folder.file("v-0002.tif")));
  Image image;
  ImageReader::read(image, folder.file("real/x.tif"));
  EXPECT_EQ(image.getPixels()[1][2], 9);
}

TEST(Volume, TakesPlanesInMemoryAsTheyAre)
{
  Stack stack;
  VoxelMatrix<double> values(1, 3, 2);
  const double numbers[] = {0, 0, 0, -5.5, 1000.25, NAN};
  std::copy(std::begin(numbers), std::end(numbers), values.data());
  addPlane(stack, values, 1);
  const auto volume = stack.toVoxelMatrix<float>(ImageColorContent::RedOnly);
  EXPECT_EQ(volume(0, 0, 0), -5.5f);
  EXPECT_EQ(volume(0, 1, 0), 1000.25f);
  EXPECT_TRUE(std::isnan(volume(0, 2, 0)));
  EXPECT_EQ(failureOf<short>(stack), "Slice \"p\": The value -5.5 does not fit voxels of type short");
}

TEST(Volume, RefusesValuesThatItsTypeDoesNotHold)
{
  constexpr double infinity = std::numeric_limits<double>::infinity();
  Stack stack;
  VoxelMatrix<double> values(1, 1, 1);
  const auto failure = [&](double value)
  {
    values(0, 0, 0) = value;
    stack.clear();
    addPlane(stack, values);
    return failureOf<float>(stack);
  };
  EXPECT_EQ(failure(1e300), "Slice \"p\": The value 1e+300 does not fit voxels of type float");
  EXPECT_EQ(failure(-3.5e38), "Slice \"p\": The value -3.5e+38 does not fit voxels of type float");
  EXPECT_EQ(failure(1e-300), ""); // rounded
  EXPECT_EQ(failure(-infinity), "");
  EXPECT_EQ(failureOf<int>(stack), "Slice \"p\": The value -inf does not fit voxels of type int");
}

TEST(Volume, NamesTheSliceWithoutAnImageOrPlane)
{
  const TemporaryFolder folder;
  ramp<float>(1, 1, 3, 0, 1).save(folder.file("a.vm"), false);
  Stack stack;
  StackSlice& slice = addSlice(stack, 0, 0);
  const auto read = [&] { stack.toVoxelMatrix<float>(ImageColorContent::Grayscale); };
  expectError<UsageError>("The slice \"slice 0\" has no image", read);
  const std::unique_ptr<ImageSource> unnamed[] = {ImageSourceFile("").clone(), ImageSourceTiffStackPlane("", 0).clone(),
                                                  ImageSourceVoxelMatrixFilePlane("", 0).clone(),
                                                  ImageSourceVoxelMatrixPlane().clone()};
  for (const auto& source : unnamed)
  {
    slice.setImageSource(*source);
    expectError<UsageError>("The slice \"slice 0\" has no image", read);
  }
  slice.setImageSource(ImageSourceVoxelMatrixFilePlane(folder.file("a.vm"), 3));
  expectError<FileFormatError>("Slice \"slice 0\": There is no plane 3", read);
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
