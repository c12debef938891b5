#include "image/imageconversion.h"
#include "image/pixelmatrix.h"
#include "tests/support/errors.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace
{
using testing::ElementsAre;

std::vector<int> bytesOf(const Image& image)
{
  return std::vector<int>(image.getData(), image.getData() + image.dataLength());
}

/// Pixels 3 and 4, whose colours are (30, 3, 0) and (40, 4, 0).
Image indexedImage()
{
  Image image(2, 1, 8);
  Colormap colormap(256);
  for (int i = 0; i < 256; ++i)
    colormap.setColor(i, {static_cast<unsigned char>(10 * i), static_cast<unsigned char>(i), 0});
  image.setColormap(colormap);
  image.getData()[0] = 3;
  image.getData()[1] = 4;
  return image;
}
} // namespace

TEST(ImageConversion, TurnsIndexedImagesGray)
{
  Image image = indexedImage(), plain;
  ImageConversion(true, false, 8).apply(plain, image);
  EXPECT_FALSE(plain.isIndexed());
  EXPECT_THAT(bytesOf(plain), ElementsAre(11, 14)); // thirds of 33 and 44
  EXPECT_FALSE(image.isGrayscale());                // the source stays

  ImageConversion(true, true, 8).apply(image);
  EXPECT_TRUE(image.isIndexed() && image.isGrayscale());
  EXPECT_THAT(bytesOf(image), ElementsAre(3, 4));
  ImageConversion(true, false, 8).apply(image); // gray already, but indexed
  EXPECT_THAT(bytesOf(image), ElementsAre(11, 14));
}

TEST(ImageConversion, LeavesOtherImagesAndSaysSo)
{
  const struct
  {
    bool isGrayscale, isIndexed;
    int depth;
    bool isTold;
  } cases[] = {{false, true, 8, false}, {false, false, 24, true}, {true, false, 16, true}, {false, false, 8, true}};
  for (const auto& c : cases)
  {
    Image image = indexedImage();
    testing::internal::CaptureStderr();
    ImageConversion(c.isGrayscale, c.isIndexed, c.depth).apply(image);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), c.isTold ? "KOVA Image Lib: Conversion not implemented\n" : "");
    EXPECT_EQ(image.getColormap(), indexedImage().getColormap());
    EXPECT_THAT(bytesOf(image), ElementsAre(3, 4));
  }
}

TEST(ImageChannels, AreTakenAndSet)
{
  Image image = indexedImage();
  EXPECT_EQ(image.channel(ImageChannel::Red)(0, 1), 40);
  EXPECT_EQ(image.channel(ImageChannel::Green)(0, 1), 4);
  PixelMatrix<unsigned char> levels(1, 2);
  levels(0, 0) = 7;
  levels(0, 1) = 8;
  expectError<DepthError>("no such channel", [&] { image.setChannel(ImageChannel::Red, levels); });
  image.make24bits();
  image.setChannel(ImageChannel::Blue, levels);
  EXPECT_THAT(bytesOf(image), ElementsAre(30, 3, 7, 40, 4, 8));
  EXPECT_EQ(image.channel(ImageChannel::Blue)(0, 1), 8);
  expectError<DepthError>("no such channel", [&] { image.setChannel(ImageChannel::Alpha, levels); });
  expectError<SizeError>("This image and pixelMatrix have different sizes",
                         [&] { image.setChannel(ImageChannel::Red, PixelMatrix<unsigned char>(2, 1)); });
  expectError<DepthError>("16 bits", [] { Image(1, 1, 16).channel(ImageChannel::Red); });
  image.make32bits();
  image.setChannel(ImageChannel::Alpha, levels);
  EXPECT_THAT(bytesOf(image), ElementsAre(30, 3, 7, 7, 40, 4, 8, 8));
}
