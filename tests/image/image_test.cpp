#include "image/image.h"
#include "image/imagewriter.h"
#include "tests/support/errors.h"
#include "tests/support/temporaryfolder.h"

#include <cstring>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace
{
/// One line of bytes.
Image imageOf(int depth, const std::vector<unsigned char>& bytes)
{
  Image image(static_cast<int>(bytes.size()) * 8 / depth, 1, depth);
  std::memcpy(image.getData(), bytes.data(), bytes.size());
  return image;
}

Image image16(const std::vector<std::uint16_t>& levels)
{
  Image image(static_cast<int>(levels.size()), 1, 16);
  std::memcpy(image.getData(), levels.data(), image.dataLength());
  return image;
}

std::vector<int> bytesOf(const Image& image)
{
  return std::vector<int>(image.getData(), image.getData() + image.dataLength());
}

/// Entry i is (2 i, i, 0), modulo 256.
Colormap brown()
{
  Colormap colormap(256);
  for (int i = 0; i < 256; ++i)
    colormap.setColor(i, {static_cast<unsigned char>(2 * i), static_cast<unsigned char>(i), 0});
  return colormap;
}
} // namespace

using testing::ElementsAre;

TEST(Image, RefusesDepthsAndSizesItCannotHave)
{
  Image image(3, 2, 24);
  expectError<DepthError>("Invalid depth value", [&] { image.init(3, 2, 12); });
  expectError<SizeError>("Negative image size", [&] { image.init(-3, 2, 8); });
  EXPECT_EQ(image.dataLength(), 18u);
  const unsigned char* const data = image.getData();
  image.init(3, 2, 24);
  EXPECT_EQ(image.getData(), data);
  expectError<SizeError>("fewer than 256", [&] { image.setColormap(Colormap(12)); });
}

TEST(Image, BecomesGray)
{
  Image low = image16({0, 200, 17}), high = image16({1000, 500, 2, 0});
  low.make8bitsGrayscale();
  EXPECT_THAT(bytesOf(low), ElementsAre(0, 200, 17));
  high.make8bitsGrayscale();
  EXPECT_THAT(bytesOf(high), ElementsAre(255, 128, 1, 0)); // halves go up
  Image white = image16({65535, 32768});
  white.make8bitsGrayscale();
  EXPECT_THAT(bytesOf(white), ElementsAre(255, 128));
  Image colors = imageOf(24, {10, 20, 31, 255, 255, 255});
  colors.make8bitsGrayscale();
  EXPECT_THAT(bytesOf(colors), ElementsAre(20, 255));
  EXPECT_EQ(colors.getHeader().getNumChannels(), 1);
  Image indexed = imageOf(8, {10, 20});
  indexed.setColormap(brown());
  indexed.make8bitsGrayscale();
  EXPECT_THAT(bytesOf(indexed), ElementsAre(10, 20));
  EXPECT_EQ(indexed.getColormap().getColor(10), (Colormap::Color{10, 10, 10}));
}

TEST(Image, GetsColors)
{
  Image indexed = imageOf(8, {10, 200});
  indexed.setColormap(brown());
  indexed.make24bits();
  EXPECT_FALSE(indexed.hasColormap());
  EXPECT_THAT(bytesOf(indexed), ElementsAre(20, 10, 0, 144, 200, 0));
  EXPECT_EQ(indexed.getHeader().getNumChannels(), 3);
  expectError<DepthError>("Cannot convert non-8 bits images", [&] { indexed.make24bits(); });
  indexed.make32bits();
  EXPECT_THAT(bytesOf(indexed), ElementsAre(20, 10, 0, 255, 144, 200, 0, 255));
  EXPECT_EQ(indexed.getHeader().getNumChannels(), 4);
  indexed.make8bitsGrayscale();
  EXPECT_EQ(indexed.getHeader().getNumChannels(), 1);
}

TEST(Image, KnowsItsColors)
{
  const struct
  {
    Image image;
    ImageColorContent content;
  } cases[] = {
      {Image(), ImageColorContent::Undefined},
      {imageOf(8, {1}), ImageColorContent::Grayscale},
      {image16({1}), ImageColorContent::Grayscale},
      {imageOf(24, {0, 0, 0}), ImageColorContent::Grayscale},
      {imageOf(24, {5, 0, 0, 9, 0, 0}), ImageColorContent::RedOnly},
      {imageOf(24, {0, 5, 0, 0, 0, 0}), ImageColorContent::GreenOnly},
      {imageOf(32, {0, 0, 5, 77}), ImageColorContent::BlueOnly},
      {imageOf(24, {5, 0, 0, 0, 0, 9}), ImageColorContent::Mixed},
  };
  for (const auto& c : cases) EXPECT_EQ(c.image.colorContent(), c.content);
}

TEST(Image, PastesOnlyWhatFits)
{
  Image target(3, 2, 8), patch = imageOf(8, {7, 8});
  target.reset();
  target.paste(patch, 1, 1);
  EXPECT_THAT(bytesOf(target), ElementsAre(0, 0, 0, 0, 7, 8));
  for (const auto& [x, y] : {std::pair(2, 0), std::pair(0, 2), std::pair(-1, 0), std::pair(2147483647, 0)})
    expectError<SizeError>("Incompatible size and position", [&, x = x, y = y] { target.paste(patch, x, y); });
  expectError<DepthError>("Incompatible image depths", [&] { target.paste(image16({1}), 0, 0); });
  patch.setColormap(brown());
  expectError<ValueError>("Incompatible image colormaps", [&] { target.paste(patch, 0, 0); });
}

TEST(ImageWriter, WritesWhatTheReaderReads)
{
  const TemporaryFolder folder;
  for (const int depth : {8, 24, 32})
    for (const bool isIndexed : {false, true})
    {
      if (isIndexed && depth != 8) continue;
      Image image(300, 5000, depth), read; // several strips
      for (std::size_t i = 0; i < image.dataLength(); ++i) image.getData()[i] = static_cast<unsigned char>(i * i / 7);
      if (isIndexed) image.setColormap(brown());
      image.writeFile(folder.file("a.tif"), true);
      read.readFile(folder.file("a.tif"));
      EXPECT_EQ(read.getDepth(), depth);
      EXPECT_EQ(read.isIndexed(), isIndexed);
      EXPECT_TRUE(std::equal(image.getData(), image.getData() + image.dataLength(), read.getData()));
      EXPECT_TRUE(!isIndexed || read.getColormap() == image.getColormap());
      read.writeFile(folder.file("b.tif"), true);
      EXPECT_EQ(contentOf(folder.file("a.tif")), contentOf(folder.file("b.tif")));
    }
}

TEST(ImageWriter, LeavesAnExistingFileWhenItMustOrFails)
{
  const TemporaryFolder folder;
  const std::string old = folder.write("old.tif", "old");
  const Image image = imageOf(8, {1, 2});
  expectError<FileWriteError>("File already exists", [&] { image.writeFile(old, false); });
  EXPECT_THROW(image.writeFile(std::string(300, 'n') + ".tif", false), FileWriteError); // longer than names can be
  expectError<FileWriteError>("without pixels", [&] { Image().writeFile(old, true); });
  expectError<FileWriteError>("Cannot open file for writing", [&] { image.writeFile(folder.file("no/a.tif"), true); });
  EXPECT_EQ(contentOf(old), "old");
  EXPECT_EQ(folder.getNumFiles(), 1);
  Image wide = image16({1000, 2}); // two samples of 8 bits, which no reader takes for 16 bits
  wide.writeFile(folder.file("wide.tif"), false);
  expectError<FileFormatError>("2 samples per pixel", [&] { wide.readFile(folder.file("wide.tif")); });
}
