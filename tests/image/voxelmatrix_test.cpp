#include "image/image.h"
#include "image/imagereader.h"
#include "image/imagesourcevoxelmatrixfileplane.h"
#include "image/imagesourcevoxelmatrixplane.h"
#include "image/voxelmatrix.h"
#include "numeric/randomgenerator.h"
#include "tests/support/errors.h"
#include "tests/support/temporaryfolder.h"

#include <cmath>
#include <cstring>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>

namespace
{
template <class T> VoxelMatrix<T> sequence(int size1, int size2, int size3)
{
  VoxelMatrix<T> matrix(size1, size2, size3);
  T next = T(0);
  matrix.apply([&next](T) { return next++; });
  return matrix;
}

std::vector<unsigned char> bytesOf(const Image& image)
{
  return std::vector<unsigned char>(image.getData(), image.getData() + image.dataLength());
}

/// Bytes of little-endian numbers.
template <class... Numbers> std::string packed(Numbers... numbers)
{
  std::string bytes;
  (bytes.append(reinterpret_cast<const char*>(&numbers), sizeof numbers), ...);
  return bytes;
}

std::string format1(int typeId, int size1, int size2, int size3, std::size_t numBytes)
{
  return packed(0, 0, 0, 1, typeId, size1, size2, size3, -6, 2.f, 3.f, 4.f) + std::string(numBytes, '\1');
}

template <class T> class VoxelMatrixOf : public testing::Test
{
};
using AllTypes =
    testing::Types<char, unsigned char, short, unsigned short, int, unsigned int, float, double, long double>;
TYPED_TEST_SUITE(VoxelMatrixOf, AllTypes);

TYPED_TEST(VoxelMatrixOf, LiesInOneBlockPlaneAfterPlane)
{
  using T = TypeParam;
  VoxelMatrix<T> matrix = sequence<T>(2, 3, 4);
  EXPECT_EQ(matrix(1, 2, 3), T(23));
  EXPECT_EQ(&matrix[2][1][0], matrix.data() + 2 * 6 + 3);
  EXPECT_TRUE(matrix.contains(1, 2, 3));
  EXPECT_FALSE(matrix.contains(2, 0, 0) || matrix.contains(0, 3, 0) || matrix.contains(0, 0, -1));
  const T* const block = matrix.data();
  matrix.setSize(2, 3, 4);
  EXPECT_EQ(matrix.data(), block);

  VoxelMatrix<T> reversed = matrix;
  reversed.reverse();
  EXPECT_EQ(reversed(0, 0, 0), T(18));
  EXPECT_EQ(reversed(0, 0, 1), T(12));
  EXPECT_EQ(matrix.copy(0, 1, 2, 1, 1, 3).cat(), (Vector<T>{T(13), T(16), T(19), T(22)}));
  matrix.paste(0, 1, 2, VoxelMatrix<T>(reversed.copy(0, 0, 0, 0, 1, 0)));
  EXPECT_EQ(matrix(0, 2, 2), T(19));
  expectError<RangeError>("not inside", [&] { matrix.paste(1, 2, 3, reversed.copy(0, 0, 0, 0, 1, 0)); });
  expectError<RangeError>("not inside", [&] { matrix.copy(0, 0, 0, 2, 0, 0); });
}

TYPED_TEST(VoxelMatrixOf, KeepsItsPlanesWhenTheyAreMovedOrSwapped)
{
  using T = TypeParam;
  VoxelMatrix<T> matrix = sequence<T>(2, 3, 2);
  const PixelMatrix<T> first = matrix[0], second = matrix[1];
  std::swap(matrix[0], matrix[1]); // the general one
  EXPECT_EQ(matrix.copy(0, 0, 0, 1, 2, 0)[0], second);
  EXPECT_EQ(matrix.copy(0, 0, 1, 1, 2, 1)[0], first);
  using std::swap;
  swap(matrix[0], matrix[1]);
  PixelMatrix<T> taken = std::move(matrix[0]);
  EXPECT_EQ(taken, first);
  taken.setZeros();
  EXPECT_EQ(matrix, (sequence<T>(2, 3, 2)));
  for (int k = 0; k < 2; ++k) EXPECT_EQ(matrix[k].data(), matrix.data() + 6 * k);
  const T* const block = taken.data();
  EXPECT_EQ(PixelMatrix<T>(std::move(taken)).data(), block); // an owner gives its block away
}

TYPED_TEST(VoxelMatrixOf, RefusesSizesBeyondCounting)
{
  using T = TypeParam;
  constexpr int huge = std::numeric_limits<int>::max();
  VoxelMatrix<T> matrix = sequence<T>(2, 3, 2);
  for (const auto& [i, j, k] :
       {std::tuple(huge, huge, huge), {huge, 1 << 30, 8}, {0, 3, huge}, {0, 0, 1 << 17}, {1, 1, -1}})
    EXPECT_THROW(matrix.setSize(i, j, k), SizeError) << i << " " << j << " " << k;
  EXPECT_EQ(matrix, (sequence<T>(2, 3, 2)));
  matrix.setSize(0, 3, 5);
  EXPECT_EQ(matrix[4].getSize2(), 3);
}

TYPED_TEST(VoxelMatrixOf, ComputesVoxelByVoxel)
{
  using T = TypeParam;
  VoxelMatrix<T> a = sequence<T>(2, 2, 2), b(2, 2, 2);
  b.fill(T(2));
  ((a += b) *= b) -= T(1);
  EXPECT_EQ(a.cat(), (Vector<T>{T(3), T(5), T(7), T(9), T(11), T(13), T(15), T(17)}));
  EXPECT_EQ(a.sum(), 80);
  EXPECT_EQ(a.range(), (Vector<T>{T(3), T(17)}));
  EXPECT_EQ(a.histogram(2.5, 5, 3), (Vector<long>{3, 2, 3}));
  VoxelMatrix<T> mask(2, 2, 2);
  mask.setZeros();
  mask(1, 1, 1) = T(7);
  EXPECT_EQ(a.histogram(2.5, 5, 3, mask), (Vector<long>{0, 0, 1}));
  expectError<SizeError>("different sizes", [&] { a += VoxelMatrix<T>(2, 2, 1); });
  expectError<SizeError>("empty", [] { static_cast<void>(VoxelMatrix<T>().range()); });
  if constexpr (std::is_integral_v<T>)
  {
    const VoxelMatrix<T> before = a;
    b(1, 0, 1) = T(0);
    EXPECT_THROW(a /= b, MathError);
    EXPECT_EQ(a, before);
    EXPECT_THROW(a /= b.copy(1, 0, 1, 1, 0, 1), SizeError); // a zero of another size
  }
}

TYPED_TEST(VoxelMatrixOf, IsWrittenAndReadBack)
{
  using T = TypeParam;
  const TemporaryFolder folder;
  VoxelMatrix<T> matrix = sequence<T>(2, 3, 4);
  matrix(0, 0, 0) = std::numeric_limits<T>::lowest();
  matrix(0, 1, 0) = std::numeric_limits<T>::max();
  VoxelCalibration calibration;
  calibration.setVoxelSize({0.25f, 0.5f, 3});
  calibration.setLengthUnit(LengthUnit(-6));
  matrix.setVoxelCalibration(calibration);
  matrix.save(folder.file("a"), false);
  EXPECT_EQ(contentOf(folder.file("a.vm")).size(), 48 + 24 * sizeof(T));
  expectError<FileWriteError>("File already exists", [&] { matrix.save(folder.file("a.vm"), false); });
  matrix.save(folder.file("a.vm"), true);

  const VoxelMatrix<T> read(folder.file("a.vm"));
  EXPECT_EQ(read, matrix);
  EXPECT_EQ(read.getVoxelCalibration(), calibration);
  EXPECT_EQ(read[1].getPixelCalibration().getPixelWidth(), 0.5f);
  EXPECT_EQ(VoxelMatrix<T>::loadHeader(folder.file("a.vm")).size2, 3);
}

TEST(VoxelMatrixFile, HasTheDocumentedBytes)
{
  const TemporaryFolder folder;
  VoxelMatrix<float> matrix(1, 2, 1);
  matrix(0, 0, 0) = 1;
  matrix(0, 1, 0) = -2.5;
  matrix.save(folder.file("a.vm"), false);
  EXPECT_EQ(contentOf(folder.file("a.vm")), packed(0, 0, 0, 1, 5, 1, 2, 1, 0, 1.f, 1.f, 1.f, 1.f, -2.5f));
}

TEST(VoxelMatrixFile, BareFormIsStillRead)
{
  const TemporaryFolder folder;
  const VoxelMatrix<unsigned short> matrix(folder.write("a.vm", packed(1, 2, 1) + packed(short{3}, short{500})));
  EXPECT_EQ(matrix.cat(), (Vector<unsigned short>{3, 500}));
  EXPECT_EQ(VoxelMatrix<double>(folder.write("b.vm", packed(1, 1, 2, 0.5, -1.))).cat(), (Vector<double>{0.5, -1}));
  expectError<TypeError>("Type mismatch", [&] { VoxelMatrix<double>{folder.file("a.vm")}; });
}

TEST(VoxelMatrixFile, SmallIntegersAreConvertedWhenTheyFit)
{
  const TemporaryFolder folder;
  VoxelMatrix<unsigned char> bytes = sequence<unsigned char>(1, 2, 2);
  bytes(0, 1, 1) = 200;
  bytes.save(folder.file("bytes.vm"), false);
  EXPECT_EQ(VoxelMatrix<unsigned short>(folder.file("bytes.vm")).cat(), (Vector<unsigned short>{0, 1, 2, 200}));
  EXPECT_EQ(VoxelMatrix<short>(folder.file("bytes.vm"))(0, 1, 1), 200);
  bytes.toType<int>().save(folder.file("ints.vm"), false);
  VoxelMatrix<unsigned short> wide(1, 1, 1);
  wide(0, 0, 0) = 256;
  wide.save(folder.file("wide.vm"), false);
  expectError<RangeError>("256 does not fit", [&] { bytes.load(folder.file("wide.vm")); });
  expectError<TypeError>("Type mismatch between template instantiation and file contents",
                         [&] { bytes.load(folder.file("ints.vm")); });
  EXPECT_EQ(bytes(0, 1, 1), 200);
}

TEST(VoxelMatrixFile, LyingFilesAreRefused)
{
  const TemporaryFolder folder;
  const int huge = std::numeric_limits<int>::max();
  const struct
  {
    const char* name;
    std::string content;
    const char* text;
  } cases[] = {
      {"empty", "", "empty"},
      {"no header", "abc", "too short"},
      {"half a header", packed(0, 0, 0, 1, 5), "too short"},
      {"version", packed(0, 0, 0, 2) + std::string(100, '\0'), "version 2"},
      {"type 1", format1(1, 1, 1, 1, 4), "data type 1"},
      {"type -3", format1(-3, 1, 1, 1, 4), "data type -3"},
      {"negative", format1(5, -1, -1, 1, 4), "Invalid voxel matrix size"},
      {"zero", format1(5, 1, 0, 1, 4), "Invalid voxel matrix size"},
      {"zero in bare form", packed(1, 0, 1), "Invalid voxel matrix size"},
      {"overflow", format1(5, huge, huge, huge, 4), "too short"},
      {"truncated", format1(5, 1, 1, 2, 7), "too short"},
      {"too long", format1(5, 1, 1, 2, 9), "does not fit"},
      {"three bytes each", format1(0, 1, 1, 2, 6), "does not fit"},
      {"unit", packed(0, 0, 0, 1, 5, 1, 1, 1, 25, 1.f, 1.f, 1.f, 0.f), "Invalid length unit scale 25"},
      {"least unit", packed(0, 0, 0, 1, 5, 1, 1, 1, -2147483647 - 1, 1.f, 1.f, 1.f, 0.f), "Invalid length unit"},
      {"text", "This is no voxel matrix at all, but text.", "too short"},
  };
  VoxelMatrix<float> matrix = sequence<float>(1, 1, 3);
  for (const auto& c : cases)
  {
    SCOPED_TRACE(c.name);
    const std::string file = folder.write("a.vm", c.content);
    expectError<FileFormatError>(c.text, [&] { matrix.load(file); });
    EXPECT_EQ(matrix.cat(), (Vector<float>{0, 1, 2}));
  }
  expectError<FileReadError>("Cannot open file for reading", [&] { matrix.load(folder.file("none.vm")); });
  expectError<FileReadError>("Cannot open file for reading", [&] { matrix.load(folder.getPath()); });
}

TEST(VoxelMatrixFile, SizesThatAreNoNumberCountAsOne)
{
  const TemporaryFolder folder;
  const std::string header = packed(0, 0, 0, 1, 0, 1, 1, 1, -24, 2.f, std::nanf(""), -INFINITY);
  testing::internal::CaptureStderr();
  for (int i = 0; i < 2; ++i)
  {
    const VoxelMatrix<char> matrix(folder.write("a.vm", header + "a"));
    EXPECT_EQ(matrix.getVoxelCalibration().getVoxelSize(), (Vector<float>{2, 1, 1}));
  }
  EXPECT_THROW(VoxelMatrix<char>(folder.write("b.vm", header + "abc")), FileFormatError);
  const std::string told = testing::internal::GetCapturedStderr();
  EXPECT_EQ(told, "KOVA Image Lib: " + folder.file("a.vm") + ": A voxel size is no finite number; it is taken as 1\n");
}

TEST(VoxelMatrixPlanes, BecomeImages)
{
  const TemporaryFolder folder;
  const auto imagesOf = [&folder]<class T>(const VoxelMatrix<T>& matrix, int plane)
  {
    matrix.save(folder.file("a.vm"), true);
    Image ofFile, ofMemory;
    ImageReader::read(ofFile, ImageSourceVoxelMatrixFilePlane(folder.file("a.vm"), plane));
    ImageReader::read(ofMemory, ImageSourceVoxelMatrixPlane(std::make_shared<const VoxelMatrix<T>>(matrix), plane));
    EXPECT_EQ(bytesOf(ofFile), bytesOf(ofMemory));
    EXPECT_EQ(ofFile.getDepth(), ofMemory.getDepth());
    return ofFile;
  };
  EXPECT_THAT(bytesOf(imagesOf(sequence<unsigned char>(1, 2, 2), 1)), testing::ElementsAre(2, 3));
  EXPECT_EQ(imagesOf(sequence<unsigned short>(1, 2, 2), 1).getDepth(), 16);
  VoxelMatrix<float> values(1, 3, 2);
  values.fill(-1);
  values[1][0] = Vector<float>{0, 1, std::nanf("")};
  EXPECT_THAT(bytesOf(imagesOf(values, 0)), testing::Each(0));
  EXPECT_THAT(bytesOf(imagesOf(values, 1)), testing::ElementsAre(128, 255, 0)); // the range is -1 to 1
  constexpr double infinity = std::numeric_limits<double>::infinity(), greatest = std::numeric_limits<double>::max();
  const struct
  {
    Vector<double> voxels;
    std::vector<unsigned char> levels;
  } cases[] = {
      {{0, 1, 2, infinity, -infinity}, {0, 128, 255, 255, 0}},
      {{-greatest, 0, greatest, infinity, NAN}, {0, 128, 255, 255, 0}},
      {{0, 1e-306, 2e-306, 1.5e-306, 0}, {0, 128, 255, 191, 0}},
      {{7, 7, infinity, -infinity, NAN}, {0, 0, 255, 0, 0}},
      {{infinity, -infinity, NAN, NAN, infinity}, {255, 0, 0, 0, 255}},
  };
  for (const auto& c : cases)
  {
    VoxelMatrix<double> matrix(1, 5, 1);
    matrix[0][0] = c.voxels;
    EXPECT_EQ(bytesOf(imagesOf(matrix, 0)), c.levels);
  }
  Image image;
  expectError<FileFormatError>("no plane 2", [&]
                               { ImageReader::read(image, ImageSourceVoxelMatrixFilePlane(folder.file("a.vm"), 2)); });
  EXPECT_FALSE(ImageSourceVoxelMatrixPlane().isDefined());
}

TEST(PixelMatrix, TakesImagesAndGivesThem)
{
  Image colors(2, 1, 24);
  const unsigned char bytes[] = {10, 20, 31, 255, 255, 255};
  std::memcpy(colors.getData(), bytes, sizeof bytes);
  EXPECT_EQ(PixelMatrix<float>(colors)[0], (Vector<float>{20, 255}));
  PixelMatrix<unsigned char> blue;
  blue.convertFromImage(colors, ImageChannel::Blue);
  EXPECT_EQ(blue[0], (Vector<unsigned char>{31, 255}));
  expectError<RangeError>("255 does not fit elements of type char", [&] { PixelMatrix<char>{colors}; });
  expectError<DepthError>("no fourth channel", [&] { blue.convertFromImage(colors, ImageChannel::Alpha); });

  PixelMatrix<double> values(1, 3);
  values[0] = Vector<double>{-0.4, 254.6, 7.5};
  Image image;
  values.convertToImage(image);
  EXPECT_THAT(bytesOf(image), testing::ElementsAre(0, 255, 8));
  values(0, 0) = -0.6;
  expectError<RangeError>("no grey level", [&] { values.convertToImage(image); });
  values(0, 0) = std::nan("");
  EXPECT_THROW(values.convertToImage(image), RangeError);
  values.convertToImage(image, 7.5, 7.5);
  EXPECT_THAT(bytesOf(image), testing::Each(0));
}

TEST(PixelMatrix, FillsFrames)
{
  PixelMatrix<int> matrix(4, 5);
  matrix.setZeros();
  matrix.fillBorder(1);
  EXPECT_EQ(matrix.cat().sum(), 14);
  matrix.fillBorder(2, 3); // leaves nothing of four rows
  EXPECT_EQ(matrix.cat().sum(), 60);
  matrix.fillBorder(0, 9);
  EXPECT_EQ(matrix.cat().sum(), 60);
}

TEST(PixelMatrix, RandomValuesFillTheRange)
{
  RandomGenerator generator(7);
  PixelMatrix<char> bytes(100, 100);
  bytes.randomise(generator);
  EXPECT_EQ(bytes.range(), (Vector<char>{-128, 127}));
  PixelMatrix<float> values(100, 100);
  values.randomise(generator);
  EXPECT_NEAR(values.mean2(), 0.5, 4 / std::sqrt(12 * 1e4)); // four standard errors
  EXPECT_TRUE(values.range()[0] >= 0 && values.range()[1] <= 1);
}

TEST(Histogram, CountsManyBlocksLikeOneByOne)
{
  RandomGenerator generator(3);
  VoxelMatrix<short> matrix(300, 301, 37); // several blocks, and a rest
  for (int k = 0; k < matrix.getSize3(); ++k) matrix[k].randomise(generator);
  Vector<long> expected(50);
  expected.setZeros();
  const double origin = -20000.5, width = 700;
  for (const short x : matrix.cat()) ++expected[std::clamp(static_cast<int>(std::floor((x - origin) / width)), 0, 49)];
  EXPECT_EQ(matrix.histogram(origin, width, 50), expected);
  EXPECT_EQ(matrix.toType<int>().histogram(origin, width, 50), expected);
  EXPECT_EQ(matrix.toType<float>().histogram(-20000.5f, 700.f, 50), expected);
  EXPECT_THROW(static_cast<void>(matrix.histogram(0, 1, 0)), ValueError);
}
} // namespace
