// Smaller copies of images, and reading that stops when it is cancelled.

#include "image/imagereduction.h"

#include "image/imagereader.h"
#include "image/imagesourcefile.h"
#include "image/imagesourcevoxelmatrixfileplane.h"
#include "image/voxelmatrix.h"
#include "tests/support/canceller.h"
#include "tests/support/errors.h"
#include "tests/support/temporaryfolder.h"
#include "tests/support/threads.h"
#include "tests/support/tifffiles.h"

#include <cstring>
#include <gtest/gtest.h>
#include <random>

namespace
{
Image noise(int width, int height, int depth)
{
  std::mt19937 random(7);
  Image image(width, height, depth);
  for (std::size_t i = 0; i < image.dataLength(); ++i) image.getData()[i] = static_cast<unsigned char>(random());
  return image;
}

int numNumbers(const Image& image) // per pixel
{
  return image.getDepth() == 16 ? 1 : image.bytesPerPixel();
}

long numberAt(const Image& image, int x, int y, int c)
{
  const unsigned char* const line = image.getLine(y);
  if (image.getDepth() != 16) return line[x * numNumbers(image) + c];
  std::uint16_t level;
  std::memcpy(&level, line + 2 * x, sizeof level);
  return level;
}

/// The mean, rounded, of the part of a window that lies inside the image.
long meanOf(const Image& image, int x0, int x1, int y0, int y1, int c)
{
  double sum = 0, count = 0;
  for (int y = std::max(y0, 0); y <= std::min(y1, image.getHeight() - 1); ++y)
    for (int x = std::max(x0, 0); x <= std::min(x1, image.getWidth() - 1); ++x, ++count)
      sum += static_cast<double>(numberAt(image, x, y, c));
  return std::lround(sum / count);
}

/// Compares every number with expected(x, y, c).
template <class Expected> void expectNumbers(const Image& image, const Expected& expected)
{
  for (int y = 0; y < image.getHeight(); ++y)
    for (int x = 0; x < image.getWidth(); ++x)
      for (int c = 0; c < numNumbers(image); ++c)
        ASSERT_EQ(numberAt(image, x, y, c), expected(x, y, c)) << x << ", " << y << ", " << c;
}

/// Expects that reading stops at its begin and on the way, and leaves the image as it was.
void expectStops(const ImageSource& source)
{
  for (const double share : {0.0, 0.1, 0.45})
  {
    Image image;
    ProgressSubject subject;
    const Canceller canceller(subject, share);
    EXPECT_THROW(ImageReader::read(image, source, subject), Cancelled) << "at " << share;
    EXPECT_EQ(image.getSize(), 0u);
  }
}

const int depths[] = {8, 16, 24, 32};
} // namespace

TEST(ImageReduction, HalvesToMeansOfTwoByTwo)
{
  const struct
  {
    int width, height;
  } sizes[] = {{2, 2}, {3, 3}, {63, 64}, {64, 65}, {65, 63}, {131, 2}, {2, 131}, {1030, 517}};
  ProgressSubject subject;
  for (const int depth : depths)
  {
    for (const auto& [width, height] : sizes)
    {
      SCOPED_TRACE(testing::Message() << width << " x " << height << " x " << depth);
      const Image image = noise(width, height, depth);
      const Image half = halved(image, subject);
      ASSERT_EQ(half.getWidth(), width / 2);
      ASSERT_EQ(half.getHeight(), height / 2);
      ASSERT_EQ(half.getDepth(), depth);
      expectNumbers(half, [&](int x, int y, int c) { return meanOf(image, 2 * x, 2 * x + 1, 2 * y, 2 * y + 1, c); });
    }
    expectError<SizeError>("too small", [&] { halved(noise(1, 9, depth), subject); });
    expectError<SizeError>("too small", [&] { halved(noise(9, 1, depth), subject); });
  }
}

TEST(ImageReduction, ResizesToMeansAroundThePixelAtTheCentre)
{
  const struct
  {
    int width, height, newWidth, newHeight, halfSize;
  } cases[] = {{100, 60, 10, 6, 5}, {99, 61, 10, 6, 4}, {20, 20, 10, 10, 0}, {21, 20, 10, 10, 1},
               {10, 10, 7, 7, 0},   {5, 4, 10, 8, 0},   {300, 9, 1, 1, 150}, {1, 1, 3, 3, 0}};
  ProgressSubject subject;
  for (const int depth : depths)
  {
    for (const auto& c : cases)
    {
      SCOPED_TRACE(testing::Message() << c.width << " to " << c.newWidth << " x " << depth);
      const Image image = noise(c.width, c.height, depth);
      const Image copy = resized(image, c.newWidth, c.newHeight, subject);
      ASSERT_EQ(copy.getWidth(), c.newWidth);
      ASSERT_EQ(copy.getHeight(), c.newHeight);
      const auto center = [](int i, int n, int size) { return static_cast<int>((i + 0.5) * size / n); };
      const auto mean = [&](int x, int y, int channel)
      {
        const int x0 = center(x, c.newWidth, c.width), y0 = center(y, c.newHeight, c.height), h = c.halfSize;
        return meanOf(image, x0 - h, x0 + h, y0 - h, y0 + h, channel);
      };
      expectNumbers(copy, mean);
    }
  }
  expectError<SizeError>("no size", [&] { resized(noise(4, 4, 8), 0, 2, subject); });
  expectError<SizeError>("no size", [&] { resized(Image(), 2, 2, subject); });
}

TEST(ImageReduction, ExpandsColormaps)
{
  ProgressSubject subject;
  Colormap colors(256), grays(256);
  for (int i = 0; i < 256; ++i)
  {
    const auto level = static_cast<unsigned char>(i);
    const auto other = static_cast<unsigned char>(255 - i);
    colors.setColor(i, {level, other, 7});
    grays.setColor(i, {other, other, other});
  }
  const Image indexes = noise(37, 23, 8);
  Image gray = indexes, color = indexes, plain = indexes;
  gray.setColormap(grays);
  color.setColormap(colors);
  for (Image* image : {&gray, &color, &plain}) expandColormap(*image, subject);
  ASSERT_FALSE(gray.hasColormap() || color.hasColormap());
  ASSERT_EQ(gray.getDepth(), 8);
  ASSERT_EQ(color.getDepth(), 24);
  expectNumbers(plain, [&](int x, int y, int) { return numberAt(indexes, x, y, 0); });
  expectNumbers(gray, [&](int x, int y, int) { return 255 - numberAt(indexes, x, y, 0); });
  expectNumbers(color,
                [&](int x, int y, int c)
                {
                  const long index = numberAt(indexes, x, y, 0);
                  return c == 0 ? index : c == 1 ? 255 - index : 7;
                });
}

TEST(ImageReduction, StopsWhenCancelled)
{
  const NumThreads oneThread(1);
  const Image image = noise(3000, 3000, 8);
  ProgressSubject subject;
  const Canceller canceller(subject, 0.3);
  EXPECT_THROW(halved(image, subject), Cancelled);
  EXPECT_THROW(resized(image, 100, 100, subject), Cancelled);
}

TEST(ImageReading, StopsWhenCancelled)
{
  const NumThreads oneThread(1);
  const TemporaryFolder folder;
  constexpr int size = 2100;
  const struct
  {
    const char* name;
    TiffRecipe recipe;
  } files[] = {
      {"plain", {}},
      {"swapped", {.bits = 16, .mode = "wb"}},
      {"inverted", {.photometric = PHOTOMETRIC_MINISWHITE}},
      {"strips", {.compression = COMPRESSION_LZW, .rowsPerStrip = 16}},
      {"lines", {.compression = COMPRESSION_ADOBE_DEFLATE, .rowsPerStrip = size}},
      {"tiles", {.compression = COMPRESSION_LZW, .tileSize = 128}},
  };
  for (const auto& [name, small] : files)
  {
    TiffRecipe recipe = small;
    recipe.width = recipe.height = size;
    const std::string filename = folder.file(name);
    recipe.write(filename);
    expectStops(ImageSourceFile(filename));
    Image image;
    image.readFile(filename);
    const int sign = recipe.photometric == PHOTOMETRIC_MINISWHITE ? -1 : 1, shift = sign < 0 ? 255 : 0;
    for (const int y : {0, 1, size / 2, size - 1})
      for (const int x : {0, 1, size / 2, size - 1})
        ASSERT_EQ(numberAt(image, x, y, 0), shift + sign * recipe.sample(x, y, 0, 0)) << name;
  }
  VoxelMatrix<unsigned char>(size, size, 1).save(folder.file("bytes.vm"), true);
  VoxelMatrix<float>(size, size, 1).save(folder.file("floats.vm"), true);
  for (const char* name : {"bytes.vm", "floats.vm"}) expectStops(ImageSourceVoxelMatrixFilePlane(folder.file(name), 0));
}
