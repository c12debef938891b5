#include "image/image.h"
#include "image/imagereader.h"
#include "image/imagesourcetiffstackplane.h"
#include "image/voxelmatrix.h"
#include "tests/support/errors.h"
#include "tests/support/temporaryfolder.h"
#include "tests/support/tifffiles.h"

#include <cmath>
#include <gtest/gtest.h>

namespace
{
template <class T> void expectVoxels(const VoxelMatrix<T>& matrix, const TiffRecipe& recipe)
{
  ASSERT_EQ(matrix.getSize(), (Vector<int>{recipe.height, recipe.width, recipe.planes}));
  const int white = recipe.bits == 16 ? 65535 : 255;
  int numWrong = 0;
  for (int k = 0; k < recipe.planes; ++k)
    for (int i = 0; i < recipe.height; ++i)
      for (int j = 0; j < recipe.width; ++j)
      {
        int sum = 0;
        for (int s = 0; s < recipe.samples; ++s) sum += recipe.sample(j, i, s, k);
        const int level = sum / recipe.samples;
        const int expected = recipe.photometric == PHOTOMETRIC_MINISWHITE ? white - level : level;
        numWrong += matrix(i, j, k) != static_cast<T>(expected) ? 1 : 0;
      }
  EXPECT_EQ(numWrong, 0);
}

template <class T> VoxelMatrix<T> loaded(const std::string& name)
{
  VoxelMatrix<T> matrix;
  matrix.load(name);
  return matrix;
}

/// A stack as ImageJ writes it beyond 4 GB: one directory, the pixels of all planes one after another.
void writeStackOfOneDirectory(const std::string& name, TiffRecipe recipe, int numPlanes, const std::string& description)
{
  const int height = recipe.height;
  recipe.height *= numPlanes;
  recipe.rowsPerStrip = recipe.height;
  recipe.description = description;
  recipe.resolutionUnit = RESUNIT_NONE;
  recipe.write(name);
  TIFF* const tiff = TIFFOpen(name.c_str(), "r+");
  TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, height);
  TIFFSetField(tiff, TIFFTAG_ROWSPERSTRIP, height);
  TIFFRewriteDirectory(tiff);
  TIFFClose(tiff);
}
} // namespace

TEST(TiffStack, IsLoadedWhateverItsEncoding)
{
  const struct
  {
    const char* name;
    TiffRecipe recipe;
  } cases[] = {
      {"8 bits", {.planes = 7}},
      {"one strip a plane", {.planes = 3, .rowsPerStrip = 23}},
      {"16 bits", {.planes = 3, .bits = 16}},
      {"16 bits, big-endian", {.planes = 3, .bits = 16, .mode = "wb"}},
      {"Deflate", {.planes = 5, .compression = COMPRESSION_ADOBE_DEFLATE}},
      {"LZW, big-endian BigTIFF", {.planes = 2, .bits = 16, .compression = COMPRESSION_LZW, .mode = "w8b"}},
      {"tiles", {.planes = 2, .tileSize = 16}},
      {"min is white", {.planes = 2, .bits = 16, .photometric = PHOTOMETRIC_MINISWHITE}},
      {"colours", {.planes = 2, .samples = 3, .photometric = PHOTOMETRIC_RGB}},
      {"thumbnails", {.planes = 3, .hasThumbnails = true}},
      {"many planes", {.width = 1, .height = 1, .planes = 2500}},
      {"one pixel", {.width = 1, .height = 1, .rowsPerStrip = 1}},
  };
  const TemporaryFolder folder;
  for (const auto& c : cases)
  {
    SCOPED_TRACE(c.name);
    c.recipe.write(folder.file("a.TIFF"));
    expectVoxels(loaded<unsigned short>(folder.file("a.TIFF")), c.recipe);
    expectVoxels(loaded<float>(folder.file("a.TIFF")), c.recipe);
    if (c.recipe.bits == 8) expectVoxels(loaded<unsigned char>(folder.file("a.TIFF")), c.recipe);
  }
}

TEST(TiffStack, TakesTheMeanOfAPalette)
{
  const TemporaryFolder folder;
  TiffRecipe{.photometric = PHOTOMETRIC_PALETTE}.write(folder.file("a.tif")); // entry i is (i, 255 - i, 7)
  EXPECT_EQ(loaded<unsigned char>(folder.file("a.tif"))(3, 4, 0), 262 / 3);
}

TEST(TiffStack, HasItsPixelSizesCrossed)
{
  const TemporaryFolder folder;
  TiffRecipe{.planes = 10,
             .resolutionUnit = RESUNIT_NONE,
             .xResolution = 2.f,
             .yResolution = 8.f,
             .description = "ImageJ=1.52\nimages=10\nunit=um\nspacing=0.25\nloop=false"}
      .write(folder.file("a.tif"));
  const VoxelCalibration calibration = loaded<int>(folder.file("a.tif")).getVoxelCalibration();
  EXPECT_FLOAT_EQ(calibration.getVoxelHeight(), 0.5f); // the pixel width
  EXPECT_FLOAT_EQ(calibration.getVoxelWidth(), 0.125f);
  EXPECT_FLOAT_EQ(calibration.getVoxelDepth(), 0.25f);
  EXPECT_EQ(calibration.getLengthUnit().getScale(), -6);
}

TEST(TiffStack, MayHaveOneDirectoryForAllPlanes)
{
  const TemporaryFolder folder;
  const std::string name = folder.file("a.tif");
  for (const int bits : {8, 16})
    for (const char* mode : {"w", "wb"})
    {
      const TiffRecipe recipe = {.bits = bits, .mode = mode};
      writeStackOfOneDirectory(name, recipe, 4, "ImageJ=1.53t\nimages=4\nslices=4\nunit=nm\nspacing=3\n");
      ImageSourceTiffStackPlane source(name, 2);
      ASSERT_EQ(source.getNumImages(), 4);
      EXPECT_EQ(source.getVoxelSizeZ(), 3);
      const VoxelMatrix<unsigned short> matrix = loaded<unsigned short>(name);
      ASSERT_EQ(matrix.getSize3(), 4);
      EXPECT_EQ(matrix(5, 6, 3), recipe.sample(6, 5 + 3 * recipe.height, 0, 0));
      Image image;
      ImageReader::read(image, source);
      PixelMatrix<unsigned short> plane(image);
      EXPECT_EQ(plane, matrix[2]);
      expectError<FileFormatError>("There is no plane 4",
                                   [&] { ImageReader::read(image, ImageSourceTiffStackPlane(name, 4)); });
    }
  for (const char* description : {"ImageJ=1.53t\nimages=-2\n", "images=4\n"})
  {
    writeStackOfOneDirectory(name, TiffRecipe(), 4, description);
    EXPECT_EQ(loaded<unsigned char>(name).getSize3(), 1) << description;
  }
  writeStackOfOneDirectory(name, TiffRecipe(), 4, "ImageJ=1.53t\nimages=9\n");
  expectError<FileFormatError>("too short for the 9 images", [&] { loaded<unsigned char>(name); });
}

TEST(TiffStack, IsNotTakenForAPageWhenItIsCut)
{
  const struct
  {
    const char* name;
    int numBytes;  // behind the directory, for planes of 20
    int numPlanes; // 0: refused
  } cases[] = {
      {"whole", 80, 4},           {"more behind it", 95, 4}, {"one byte missing", 79, 0},
      {"a plane missing", 60, 0}, {"one and a half", 30, 0}, {"a page with this description", 20, 1},
      {"a padded page", 21, 1},   {"half a page", 10, 0},
  };
  const TemporaryFolder folder;
  for (const auto& c : cases)
  {
    SCOPED_TRACE(c.name);
    const std::string pixels(static_cast<std::size_t>(c.numBytes), '\7');
    const std::string name = folder.write(
        std::string(c.name) + ".tif", handmadeTiff(5, 4, COMPRESSION_NONE, pixels, 20, 0, "ImageJ=1.53t\nimages=4\n"));
    testing::internal::CaptureStderr();
    if (c.numPlanes == 0)
      expectError<FileFormatError>("too short for the 4 images", [&] { loaded<int>(name); });
    else
      EXPECT_EQ(loaded<int>(name).getSize3(), c.numPlanes);
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              c.numPlanes == 1 ? "KOVA Image Lib: " + name +
                                     ": The file has one plane only, not the 4 images of its "
                                     "description\n"
                               : "");
  }
  const TiffRecipe page = {.description = "ImageJ=1.53t\nimages=4\n"}; // its directory lies behind the pixels
  page.write(folder.file("page.tif"));
  testing::internal::CaptureStderr();
  expectVoxels(loaded<int>(folder.file("page.tif")), page);
  EXPECT_NE(testing::internal::GetCapturedStderr(), "");
}

TEST(TiffStack, MayMixCompressions)
{
  const TemporaryFolder folder;
  const std::string name = folder.file("a.tif");
  TiffRecipe recipe = {.width = 256, .height = 256, .rowsPerStrip = 256, .isSmooth = true};
  recipe.write(name);
  recipe.planes = 9;
  recipe.compression = COMPRESSION_ADOBE_DEFLATE;
  recipe.mode = "a";
  recipe.write(name);
  ASSERT_LT(contentOf(name).size(), 3u * 256 * 256);
  recipe.planes = 10;
  expectVoxels(loaded<unsigned char>(name), recipe);

  // Two directories that claim the same pixels.
  constexpr std::size_t start = 8, size = 2 + 10 * 12 + 4;
  std::string bytes = handmadeTiff(100, 50, COMPRESSION_NONE, std::string(5000, '\7'), 5000);
  bytes += bytes.substr(start, size);
  const std::size_t second = bytes.size() - size;
  bytes[start + size - 4] = static_cast<char>(second & 0xFF);
  bytes[start + size - 3] = static_cast<char>(second >> 8);
  expectError<FileFormatError>("too short for its 2 planes",
                               [&] { loaded<unsigned char>(folder.write("b.tif", bytes)); });
}

TEST(TiffStack, LeavesTheMatrixWhenItCannotBeLoaded)
{
  const TemporaryFolder folder;
  const std::string name = folder.file("a.tif");
  VoxelMatrix<char> matrix(1, 1, 1);
  matrix.fill(5);
  TiffRecipe{.planes = 3}.write(name);
  expectError<RangeError>("does not fit", [&] { matrix.load(name); }); // levels above 127
  TiffRecipe{.planes = 3, .isSmooth = true}.write(name);
  std::string bytes = contentOf(name);
  bytes.resize(bytes.size() - 20); // the last directory
  folder.write("a.tif", bytes);
  EXPECT_THROW(matrix.load(name), FileFormatError);
  TiffRecipe{.isSmooth = true}.write(name);
  TiffRecipe{.width = 36, .mode = "a", .isSmooth = true}.write(name);
  expectError<FileFormatError>("Plane 1 has another size", [&] { matrix.load(name); });
  expectError<FileReadError>("No such file", [&] { matrix.loadTiffStackFile(folder.file("b.tif")); });
  EXPECT_EQ(matrix.getSize3(), 1);
  EXPECT_EQ(matrix(0, 0, 0), 5);
}

TEST(TiffStack, IsReadBackAsItWasSaved)
{
  const TemporaryFolder folder;
  const std::string name = folder.file("a.tif");
  for (const int scale : {-9, -6, -3, -2, 0})
  {
    VoxelMatrix<int> matrix(40, 30, 3);
    for (int i = 0; i < 3600; ++i) matrix.data()[i] = i * i % 256;
    VoxelCalibration calibration;
    calibration.setVoxelSize({0.25f, 3.5f, 0.7f});
    calibration.setLengthUnit(LengthUnit(scale));
    matrix.setVoxelCalibration(calibration);
    matrix.saveAsTiff(name, true);
    const VoxelMatrix<int> result = loaded<int>(name);
    EXPECT_EQ(result, matrix);
    EXPECT_EQ(result.getVoxelCalibration().getLengthUnit().getScale(), scale);
    for (int i = 0; i < 3; ++i)
      EXPECT_NEAR(result.getVoxelCalibration().getVoxelSize()[i] / calibration.getVoxelSize()[i], 1, 1e-6);
  }
  TIFF* const tiff = TIFFOpen(name.c_str(), "r"); // as other programs see it
  EXPECT_EQ(TIFFNumberOfDirectories(tiff), 3);
  TIFFSetDirectory(tiff, 2);
  float resolution = 0;
  TIFFGetField(tiff, TIFFTAG_XRESOLUTION, &resolution);
  EXPECT_FLOAT_EQ(resolution, 4); // the first component is the pixel width
  unsigned char line[30];
  TIFFReadScanline(tiff, line, 1, 0);
  EXPECT_EQ(line[7], 2437 * 2437 % 256);
  TIFFClose(tiff);
}

TEST(TiffStack, SaysWhatItCannotSave)
{
  const TemporaryFolder folder;
  const std::string name = folder.write("a.tif", "old");
  VoxelMatrix<double> matrix(2, 2, 2);
  for (const double x : {0.5, -1.0, 256.0, double{NAN}, double{INFINITY}})
  {
    matrix.setZeros();
    matrix(1, 1, 1) = x;
    expectError<FileWriteError>("Only whole numbers of 0 to 255", [&] { matrix.saveAsTiff(name, true); });
  }
  VoxelMatrix<char> negative(1, 1, 1);
  negative.fill(-1);
  expectError<FileWriteError>("Only whole numbers", [&] { negative.saveAsTiff(name, true); });
  expectError<FileWriteError>("File already exists", [&] { matrix.saveAsTiff(name, false); });
  expectError<FileWriteError>("without voxels", [&] { VoxelMatrix<float>(2, 0, 2).saveAsTiff(name, true); });
  EXPECT_EQ(contentOf(name), "old");
  EXPECT_EQ(folder.getNumFiles(), 1);
}
