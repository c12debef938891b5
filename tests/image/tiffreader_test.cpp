#include "image/image.h"
#include "image/imagereader.h"
#include "image/imagesourcefile.h"
#include "image/imagesourcefilemosaic.h"
#include "image/imagesourcelsmstackplane.h"
#include "image/imagesourcetiffstackplane.h"
#include "tests/support/errors.h"
#include "tests/support/temporaryfolder.h"
#include "tests/support/tifffiles.h"

#include <algorithm>
#include <cstring>
#include <gtest/gtest.h>

namespace
{
int sampleOf(const Image& image, int x, int y, int s)
{
  const unsigned char* const pixel = image.getLine(y) + x * image.bytesPerPixel();
  if (image.getDepth() != 16) return pixel[s];
  std::uint16_t level;
  std::memcpy(&level, pixel, sizeof level);
  return level;
}

void expectPixels(const Image& image, const TiffRecipe& recipe, int plane, int tolerance = 0)
{
  ASSERT_EQ(image.getWidth(), recipe.width);
  ASSERT_EQ(image.getHeight(), recipe.height);
  ASSERT_EQ(image.getDepth(), recipe.bits * recipe.samples);
  const int white = recipe.bits == 16 ? 65535 : 255;
  int worst = 0;
  for (int y = 0; y < recipe.height; ++y)
    for (int x = 0; x < recipe.width; ++x)
      for (int s = 0; s < recipe.samples; ++s)
      {
        const int value = recipe.sample(x, y, s, plane);
        const int expected = recipe.photometric == PHOTOMETRIC_MINISWHITE ? white - value : value;
        worst = std::max(worst, std::abs(sampleOf(image, x, y, s) - expected));
      }
  EXPECT_LE(worst, tolerance);
}
} // namespace

TEST(TiffReader, ReadsWhatOtherProgramsWrite)
{
  const struct
  {
    const char* name;
    TiffRecipe recipe;
    int tolerance = 0;
  } cases[] = {
      {"8 bits", {}},
      {"16 bits", {.bits = 16}},
      {"24 bits", {.samples = 3, .photometric = PHOTOMETRIC_RGB}},
      {"32 bits", {.samples = 4, .photometric = PHOTOMETRIC_RGB}},
      {"palette", {.photometric = PHOTOMETRIC_PALETTE}},
      {"palette without low bytes", {.photometric = PHOTOMETRIC_PALETTE, .paletteScale = 256}},
      {"palette of 8 bits", {.photometric = PHOTOMETRIC_PALETTE, .paletteScale = 1}},
      {"min is white", {.photometric = PHOTOMETRIC_MINISWHITE}},
      {"min is white, 16 bits", {.bits = 16, .photometric = PHOTOMETRIC_MINISWHITE}},
      {"one pixel", {.width = 1, .height = 1, .rowsPerStrip = 1}},
      {"one strip", {.rowsPerStrip = 23}},
      {"behind a thumbnail", {.hasThumbnails = true}},
      {"LZW", {.bits = 16, .compression = COMPRESSION_LZW}},
      {"Deflate", {.samples = 3, .photometric = PHOTOMETRIC_RGB, .compression = COMPRESSION_ADOBE_DEFLATE}},
      {"PackBits", {.compression = COMPRESSION_PACKBITS}},
      {"JPEG", {.compression = COMPRESSION_JPEG, .rowsPerStrip = 8, .isSmooth = true}, 4},
      {"JPEG in YCbCr",
       {.samples = 3,
        .photometric = PHOTOMETRIC_YCBCR,
        .compression = COMPRESSION_JPEG,
        .rowsPerStrip = 16,
        .isSmooth = true},
       8},
      {"tiles", {.tileSize = 16}},
      {"colour tiles, LZW",
       {.samples = 3, .photometric = PHOTOMETRIC_RGB, .compression = COMPRESSION_LZW, .tileSize = 16}},
      {"a tile larger than the image", {.bits = 16, .tileSize = 64}},
      {"big-endian", {.bits = 16, .mode = "wb"}},
      {"big-endian tiles", {.bits = 16, .compression = COMPRESSION_LZW, .tileSize = 16, .mode = "wb"}},
      {"BigTIFF", {.mode = "w8"}},
      {"one sample in a separate plane", {.planarConfig = PLANARCONFIG_SEPARATE}},
  };
  const TemporaryFolder folder;
  for (const auto& c : cases)
  {
    SCOPED_TRACE(c.name);
    c.recipe.write(folder.file("a.tif"));
    Image image;
    ImageReader::read(image, folder.file("a.tif"));
    expectPixels(image, c.recipe, 0, c.tolerance);
    const ImageSourceFile source(folder.file("a.tif"));
    EXPECT_EQ(source.getSize(), (std::vector<int>{c.recipe.height, c.recipe.width}));
    EXPECT_EQ(source.getDepth(), image.getDepth());
    EXPECT_EQ(image.isIndexed(), c.recipe.photometric == PHOTOMETRIC_PALETTE);
    if (!image.isIndexed()) continue;
    EXPECT_EQ(image.getColormap().getColor(200), (Colormap::Color{200, 55, 7}));
  }
}

TEST(TiffReader, ReadsAnyPlaneOfAStack)
{
  const TemporaryFolder folder;
  ImageSourceTiffStackPlane source(folder.file("stack.tif"));
  for (const char* mode : {"w", "wb", "w8", "w8b", "with thumbnails"})
  {
    const TiffRecipe recipe = {
        .planes = 10, .compression = COMPRESSION_LZW, .mode = mode, .hasThumbnails = mode[1] == 'i'};
    recipe.write(folder.file("stack.tif"));
    ImageHeader header;
    ImageReader::read(header, folder.file("stack.tif"));
    EXPECT_EQ(header.getNumPlanes(), recipe.hasThumbnails ? 20 : 10); // all directories
    for (const int plane : {9, 0, 4})
    {
      source.setPlane(plane);
      EXPECT_EQ(source.getNumImages(), 10);
      Image image;
      ImageReader::read(image, static_cast<const ImageSource&>(source));
      expectPixels(image, recipe, plane);
    }
  }
  TiffRecipe{.planes = 2}.write(folder.file("stack.tif")); // the directories of the old file are forgotten
  source.setPlane(2);
  Image image(1, 1, 8);
  expectError<FileFormatError>("There is no plane 2", [&] { ImageReader::read(image, source); });
  EXPECT_EQ(image.getWidth(), 1);
}

TEST(TiffReader, EndsAChainOfDirectoriesThatLeadsBack)
{
  const TemporaryFolder folder;
  std::string bytes = handmadeTiff(4, 1, COMPRESSION_NONE, "abcd", 4);
  bytes[8 + 2 + 10 * 12] = 8; // the next directory is this one
  const ImageSourceTiffStackPlane source(folder.write("loop.tif", bytes));
  EXPECT_EQ(source.getNumImages(), 1);
}

TEST(TiffReader, RefusesDirectoriesBeyondAllOffsets)
{
  const TemporaryFolder folder;
  for (const char last : {'\xff', '\xfe', '\xf8'}) // with the size of a number they overflow, which asan finds
  {
    const std::string offset = last + std::string(7, '\xff');
    const std::string file = folder.write("a.tif", std::string("II+\0\10\0\0\0", 8) + offset + std::string(600, '\1'));
    EXPECT_THROW(ImageSourceTiffStackPlane(file).getNumImages(), FileFormatError);
  }
}

TEST(TiffReader, RefusesWhatAnImageCannotHold)
{
  const struct
  {
    const char* what;
    TiffRecipe recipe;
  } cases[] = {
      {"Cannot read TIFF with 12 bits per sample", {.bits = 12}},
      {"Cannot read TIFF with 32 bits per sample", {.bits = 32, .sampleFormat = SAMPLEFORMAT_IEEEFP}},
      {"Cannot read TIFF with 2 samples per pixel", {.samples = 2}},
      {"signed or floating-point", {.bits = 16, .sampleFormat = SAMPLEFORMAT_INT}},
      {"Invalid depth value", {.bits = 16, .samples = 3, .photometric = PHOTOMETRIC_RGB}},
      {"Cannot read TIFF with separate planes",
       {.samples = 3, .photometric = PHOTOMETRIC_RGB, .planarConfig = PLANARCONFIG_SEPARATE}},
      {"photometric interpretation 5", {.samples = 4, .photometric = PHOTOMETRIC_SEPARATED}},
  };
  const TemporaryFolder folder;
  for (const auto& c : cases)
  {
    c.recipe.write(folder.file("a.tif"));
    Image image;
    expectError<FileFormatError>(c.what, [&] { image.readFile(folder.file("a.tif")); });
  }
}

TEST(TiffReader, SaysInOneErrorWhyAFileCannotBeRead)
{
  const TemporaryFolder folder;
  const auto expectErrors = [&folder](const std::string& name, const std::string& text, bool isFormatError)
  {
    SCOPED_TRACE(name + " " + text);
    testing::internal::CaptureStderr();
    try
    {
      ImageHeader header;
      ImageReader::read(header, folder.file(name)); // whatever it warns of: the pixels follow
      Image image;
      ImageReader::read(image, folder.file(name));
      ADD_FAILURE() << "was read";
    }
    catch (const FileError& error)
    {
      EXPECT_NE(error.getWhat().find(text), std::string::npos) << error.getWhat();
      EXPECT_EQ(error.getWhat().find('\n'), std::string::npos);
      EXPECT_EQ(error.getWhat().find(folder.getPath()), std::string::npos) << error.getWhat();
      EXPECT_EQ(error.getFilename(), folder.file(name));
      EXPECT_EQ(dynamic_cast<const FileFormatError*>(&error) != nullptr, isFormatError);
    }
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
  };
  expectErrors("missing.tif", "No such file", false);
  expectErrors("", "Is a directory", false);
  folder.write("empty.tif", "");
  expectErrors("empty.tif", "The file is empty", true);
  folder.write("garbage.tif", std::string(1000, 'x'));
  expectErrors("garbage.tif", "Cannot read TIFF file (", true);

  const std::string pixels(5000, '\7');
  folder.write("cut.tif", handmadeTiff(100, 50, COMPRESSION_NONE, pixels, 5000).substr(0, 60));
  expectErrors("cut.tif", "Cannot read TIFF file (", true);
  folder.write("short.tif", handmadeTiff(100, 50, COMPRESSION_NONE, pixels.substr(0, 4000), 5000));
  expectErrors("short.tif", "too short for its image size", true);
  folder.write("beyond.tif", handmadeTiff(100, 50, COMPRESSION_NONE, pixels, 5000, 4000));
  expectErrors("beyond.tif", "Cannot read the pixels (", true);
  for (const std::uint32_t compression : {COMPRESSION_LZW, COMPRESSION_ADOBE_DEFLATE, COMPRESSION_JPEG})
  {
    folder.write("noise.tif", handmadeTiff(100, 50, compression, pixels, 5000));
    expectErrors("noise.tif", "Cannot read the pixels (", true);
  }
  folder.write("counts.tif", handmadeTiff(100, 50, COMPRESSION_ADOBE_DEFLATE, pixels, 0)); // worth a warning
  expectErrors("counts.tif", "Cannot read the pixels (", true);
  folder.write("flat.tif", handmadeTiff(100, 0, COMPRESSION_NONE, pixels, 0));
  expectErrors("flat.tif", "", true);
}

TEST(TiffReader, GivesNoReasonThatWasNone)
{
  const TemporaryFolder folder;
  std::string bytes = handmadeTiff(100, 50, COMPRESSION_NONE, "too few", 5000);
  char& tag = bytes[8 + 2 + 7 * 12];
  tag = static_cast<char>(TIFFTAG_ORIENTATION & 0xFF); // instead of the number of samples
  bytes[8 + 2 + 7 * 12 + 8] = 99;                      // which libtiff complains of, but gets over
  Image image;
  try
  {
    image.readFile(folder.write("a.tif", bytes));
    ADD_FAILURE() << "was read";
  }
  catch (const FileFormatError& error)
  {
    EXPECT_EQ(error.getWhat(), "The file is too short for its image size");
  }
}

TEST(TiffReader, WarnsOfAFileOnce)
{
  const TemporaryFolder folder;
  const std::string pixels(5000, '\7');
  folder.write("counts.tif", handmadeTiff(100, 50, COMPRESSION_NONE, pixels, 0)); // libtiff finds out by itself
  testing::internal::CaptureStderr();
  for (int i = 0; i < 3; ++i)
  {
    Image image;
    ImageReader::read(image, folder.file("counts.tif"));
  }
  const std::string told = testing::internal::GetCapturedStderr();
  EXPECT_EQ(std::count(told.begin(), told.end(), '\n'), 1) << told;
  EXPECT_EQ(told.find("counts.tif"), told.rfind("counts.tif")) << told;
  EXPECT_EQ(told.find("KOVA Image Lib: "), 0u) << told;
}

TEST(TiffReader, TakesNoMemoryForALyingHeader)
{
  const TemporaryFolder folder;
  for (const std::uint32_t compression :
       {COMPRESSION_NONE, COMPRESSION_LZW, COMPRESSION_ADOBE_DEFLATE, COMPRESSION_JPEG, COMPRESSION_PACKBITS})
    for (const std::uint32_t size : {40000u, 2000000000u, 4294967295u})
    {
      folder.write("huge.tif", handmadeTiff(size, size, compression, "some data", size));
      Image image;
      EXPECT_THROW(ImageReader::read(image, folder.file("huge.tif")), FileFormatError);
      if (compression != COMPRESSION_NONE && size == 40000u) continue; // could be one colour
      EXPECT_THROW(ImageSourceFile(folder.file("huge.tif")).getSize(), FileFormatError);
    }
}

TEST(TiffReader, SurvivesFilesThatAreCutOrChangedAnywhere)
{
  const TemporaryFolder folder;
  const TiffRecipe recipe = {.planes = 2, .compression = COMPRESSION_LZW, .tileSize = 16};
  recipe.write(folder.file("whole.tif"));
  const std::string bytes = contentOf(folder.file("whole.tif"));
  testing::internal::CaptureStderr();
  for (std::size_t i = 0; i < bytes.size(); i += i < 20 ? 1 : 3)
  {
    std::string changed = bytes;
    changed[i] = static_cast<char>(~changed[i]);
    for (const std::string& text : {changed, bytes.substr(0, i)}) try
      {
        Image image;
        ImageReader::read(image, ImageSourceTiffStackPlane(folder.write("a.tif", text), 1));
        EXPECT_LE(image.dataLength(), 1u << 24);
      }
      catch (const FileError& error)
      {
        EXPECT_EQ(error.getFilename(), folder.file("a.tif"));
      }
  }
  testing::internal::GetCapturedStderr();
}

TEST(TiffReader, SaysWhichImageIsMissing)
{
  const TemporaryFolder folder;
  Image image;
  expectError<FileReadError>("The slice has no image", [] { ImageSourceFile().getSize(); });
  expectError<FileReadError>("The slice has no image", [&] { ImageReader::read(image, ImageSourceFile()); });
  expectError<FileReadError>("The slice has no image", [] { ImageSourceTiffStackPlane("", 1).getSize(); });
  ImageSourceFileMosaic mosaic(2, 2);
  TiffRecipe().write(folder.file("a.tif"));
  for (const auto& [row, column] : {std::pair(0, 0), {1, 0}, {0, 1}, {1, 1}})
  {
    const std::string what = "no image in row " + std::to_string(row + 1) + ", column " + std::to_string(column + 1);
    expectError<FileReadError>(what, [&] { ImageReader::read(image, mosaic); });
    mosaic.setFilename(row, column, folder.file("a.tif"));
  }
  ImageReader::read(image, mosaic);
}

TEST(MosaicReader, PastesTilesSideBySide)
{
  const TemporaryFolder folder;
  ImageSourceFileMosaic mosaic(2, 2);
  for (int i = 0; i < 4; ++i)
  {
    const std::string name = folder.file(std::to_string(i) + ".tif");
    TiffRecipe{.width = 10 + i % 2, .height = 20 + i / 2}.write(name);
    mosaic.setFilename(i / 2, i % 2, name);
  }
  EXPECT_EQ(mosaic.getSize(), (std::vector<int>{41, 21}));
  Image image;
  ImageReader::read(image, static_cast<const ImageSource&>(mosaic));
  EXPECT_EQ(sampleOf(image, 13, 25, 0), TiffRecipe().sample(3, 5, 0, 0));
  TiffRecipe{.width = 11, .height = 22}.write(folder.file("3.tif"));
  expectError<FileFormatError>("Incompatible image dimensions", [&] { ImageReader::read(image, mosaic); });
  TiffRecipe{.width = 11, .height = 21, .bits = 16}.write(folder.file("3.tif"));
  expectError<FileFormatError>("Incompatible image depths", [&] { ImageReader::read(image, mosaic); });
}
