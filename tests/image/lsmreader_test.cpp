#include "image/image.h"
#include "image/imagereader.h"
#include "image/imagesourcefile.h"
#include "image/imagesourcelsmstackplane.h"
#include "image/lsmreading.h"
#include "image/tifffile.h"
#include "tests/support/errors.h"
#include "tests/support/lsmfiles.h"
#include "tests/support/temporaryfolder.h"

#include <cmath>
#include <cstring>
#include <gtest/gtest.h>
#include <iostream>
#include <sstream>

namespace
{
class LsmReader : public testing::Test
{
protected:
  LsmReader() { ImageReader::setMagicNumberStream(numbers); }
  ~LsmReader() override { ImageReader::setMagicNumberStream(std::cout); }

  ImageHeader crossedHeader(const LsmRecipe& recipe) const
  {
    recipe.write(name);
    TiffFile file(name);
    ImageHeader header;
    readLSMHeader(header, file);
    return header;
  }

  TemporaryFolder folder;
  std::string name = folder.file("a.lsm");
  std::ostringstream numbers;
};

void expectPixels(const Image& image, const LsmRecipe& recipe, int channel, int plane)
{
  ASSERT_EQ(image.getWidth(), recipe.width);
  ASSERT_EQ(image.getHeight(), recipe.height);
  ASSERT_EQ(image.getDepth(), recipe.bits);
  for (int y = 0; y < recipe.height; ++y)
    for (int x = 0; x < recipe.width; ++x)
    {
      std::uint16_t level = image.getLine(y)[x * image.bytesPerPixel()];
      if (recipe.bits == 16) std::memcpy(&level, image.getLine(y) + 2 * x, sizeof level);
      ASSERT_EQ(level, recipe.sample(x, y, channel, plane)) << x << " " << y;
    }
}
} // namespace

TEST_F(LsmReader, CrossesTheHeader)
{
  LsmRecipe recipe = {.width = 512, .height = 256, .dimensionX = 512, .dimensionY = 256};
  const ImageHeader header = crossedHeader(recipe);
  EXPECT_EQ(header.getHeight(), 512);
  EXPECT_EQ(header.getWidth(), 256);
  EXPECT_EQ(header.getDepth(), 8);
  EXPECT_EQ(header.getNumPlanes(), 4); // all directories
  EXPECT_EQ(header.getNumChannels(), 3);
  EXPECT_FLOAT_EQ(header.getVoxelSizeX(), 0.25f);
  EXPECT_FLOAT_EQ(header.getVoxelSizeY(), 0.5f);
  EXPECT_FLOAT_EQ(header.getVoxelSizeZ(), 2);
  const PixelCalibration& pixels = header.getPixelCalibration();
  EXPECT_FLOAT_EQ(pixels.getPixelHeight(), 0.25f);
  EXPECT_FLOAT_EQ(pixels.getPixelWidth(), 0.5f);
  EXPECT_FLOAT_EQ(pixels.getAspectRatio(), 0.5f);
  EXPECT_EQ(pixels.getLengthUnit().getScale(), -6);
  EXPECT_EQ(numbers.str(), "S32MagicNumber :67127628\n"); // 0x0400494C

  EXPECT_EQ(crossedHeader({.dimensionZ = 1}).getVoxelSizeZ(), 1);
  EXPECT_EQ(crossedHeader({.planes = 1, .dimensionZ = 5, .hasThumbnails = false}).getVoxelSizeZ(), 1);
  EXPECT_EQ(crossedHeader({.magicNumber = 0x0300494C, .voxelSizeX = NAN, .voxelSizeY = -1}).getPixelCalibration(),
            crossedHeader({.voxelSizeX = 1e-6, .voxelSizeY = 0}).getPixelCalibration());
}

TEST_F(LsmReader, ReadsEveryChannelOfEveryPlaneAsTheRasterLies)
{
  const LsmRecipe recipes[] = {
      {},
      {.bits = 16},
      {.channels = 1},
      {.channels = 28, .compression = COMPRESSION_LZW},
      {.planarConfig = PLANARCONFIG_CONTIG},
      {.bits = 16, .planarConfig = PLANARCONFIG_CONTIG, .compression = COMPRESSION_LZW},
      {.hasThumbnails = false},
      {.dimensionX = 100000, .dimensionY = 100000}, // only the raster counts
  };
  for (const LsmRecipe& recipe : recipes)
  {
    SCOPED_TRACE(testing::Message() << recipe.bits << " bits, " << recipe.channels << " channels, "
                                    << recipe.planarConfig << " " << recipe.compression);
    recipe.write(name);
    ImageSourceLSMStackPlane source(name);
    EXPECT_EQ(source.getSize(), (std::vector<int>{recipe.height, recipe.width}));
    EXPECT_FLOAT_EQ(source.getPixelCalibration().getPixelWidth(), 0.25f);
    EXPECT_FLOAT_EQ(source.getPixelCalibration().getPixelHeight(), 0.5f);
    ASSERT_EQ(source.getNumPlanes(), recipe.planes);
    ASSERT_EQ(source.getNumChannels(), recipe.channels);
    Image image;
    for (int i = 0; i < recipe.planes * recipe.channels; ++i)
    {
      source.setPlane(i);
      ImageReader::read(image, static_cast<const ImageSource&>(source));
      expectPixels(image, recipe, i / recipe.planes, i % recipe.planes);
    }
    ImageReader::read(image, ImageSourceFile(name)); // the first image
    expectPixels(image, recipe, 0, 0);
    for (const int plane : {-1, recipe.planes * recipe.channels, 2147483647})
      EXPECT_THROW(ImageReader::read(image, ImageSourceLSMStackPlane(name, plane)), FileFormatError);
    expectPixels(image, recipe, 0, 0);
  }
}

TEST_F(LsmReader, WritesTheMagicNumberOncePerFile)
{
  const std::string line = "S32MagicNumber :67127628\n";
  LsmRecipe().write(name);
  Image image;
  for (const int plane : {0, 1, 0})
  {
    ImageSourceLSMStackPlane source(name, plane);
    EXPECT_EQ(source.getNumPlanes(), 2);
    ImageReader::read(image, source);
    EXPECT_EQ(numbers.str(), line);
  }
  LsmRecipe{.planes = 1}.write(name); // another file
  ImageReader::read(image, ImageSourceLSMStackPlane(name));
  EXPECT_EQ(numbers.str(), line + line);
}

TEST_F(LsmReader, RefusesWhatIsNoConfocalStack)
{
  const struct
  {
    const char* what;
    LsmRecipe recipe;
  } cases[] = {
      {"not an LSM file", {.magicNumber = 0x0500494C}},
      {"not an LSM file", {.blockLength = 63}},
      {"Cannot read TIFF with 32 bits per sample", {.bits = 32, .compression = COMPRESSION_LZW}},
      {"Invalid image size", {.dimensionX = -4}},
  };
  for (const auto& c : cases)
  {
    c.recipe.write(name);
    expectError<FileFormatError>(c.what, [&] { ImageSourceLSMStackPlane(name).getSize(); });
  }
  expectError<FileReadError>("No such file", [&] { ImageSourceLSMStackPlane(folder.file("b.lsm")).getSize(); });
  expectError<FileReadError>("The slice has no image", [] { ImageSourceLSMStackPlane("").getSize(); });
}
