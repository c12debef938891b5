// What is drawn of an image, pixel by pixel, beside the pixel that the formulas name.

#include "app/core/nyxpreferences.h"
#include "image/image.h"
#include "image/imagesourcevoxelmatrixplane.h"
#include "numeric/colormap.h"
#include "numeric/randomgenerator.h"
#include "slice/image/nyximageproxy.h"
#include "slice/image/nyximagewidgetcanvas.h"

#include <gtest/gtest.h>

#include <QTest>

#include <cmath>
#include <cstring>

namespace
{
enum class Palette
{
  None,
  Identity,
  Colors
};

Image noise(int width, int height, int depth, Palette palette, RandomGenerator& random)
{
  Image image(width, height, depth);
  for (std::size_t i = 0; i < image.dataLength(); ++i)
    image.getData()[i] = static_cast<unsigned char>(random.uniformL(256));
  Colormap colormap(256);
  for (int i = 0; i < 256; ++i)
  {
    const auto level = [i](int factor) { return static_cast<unsigned char>(i * factor); };
    colormap.setColor(i, palette == Palette::Colors ? Colormap::Color{level(3), level(7), level(5)}
                                                    : Colormap::Color{level(1), level(1), level(1)});
  }
  if (palette != Palette::None) image.setColormap(colormap);
  return image;
}

/// Red, green or blue of a pixel as a share of the largest level.
double componentOf(const Image& image, int x, int y, int component)
{
  const unsigned char* const pixel = image.getLine(y) + std::ptrdiff_t(x) * image.bytesPerPixel();
  if (image.isIndexed()) return image.getColormap().getColor(*pixel)[static_cast<std::size_t>(component)] / 255.0;
  if (image.getDepth() == 8) return *pixel / 255.0;
  if (image.getDepth() > 16) return pixel[component] / 255.0;
  unsigned short level = 0;
  std::memcpy(&level, pixel, sizeof level);
  return level / 65535.0;
}

class ImagePicture : public testing::Test
{
protected:
  ImagePicture() : _background(NYXPreferences::getImageCanvasBackgroundColor())
  {
    NYXPreferences::setImageCanvasBackgroundColor(QColor(200, 0, 100));
    canvas.resize(120, 90);
    canvas.show();
    EXPECT_TRUE(QTest::qWaitForWindowExposed(&canvas));
  }
  ~ImagePicture() override { NYXPreferences::setImageCanvasBackgroundColor(_background); }

  /// The levels, the first of which gives the size.
  void show(const std::vector<Image>& levels, float ratio, float zoom, const QPoint& origin)
  {
    const Image& image = levels.front();
    const ImageSourceVoxelMatrixPlane source(
        std::make_shared<const VoxelMatrix<unsigned char>>(image.getHeight(), image.getWidth(), 1));
    NYXImageProxy& proxy = canvas.getImageProxy();
    proxy.clearImage();
    proxy.setImageSource(&source);
    PixelCalibration calibration;
    calibration.setAspectRatio(ratio);
    proxy.setPixelCalibration(calibration);
    for (const Image& level : levels) proxy.appendImage(level);
    canvas.setBestFitMode(false, true);
    canvas.updateImageSize();
    canvas.setZoomFactor(zoom);
    canvas.setViewOrigin(origin);
  }

  struct Axis
  {
    int offset; // of the canvas from the level, in canvas pixels
    double zoom;
    int extent;

    /// The pixel of the level under the centre of a canvas pixel; -1 beside the image, -2 too close to a border to say.
    int at(int position) const
    {
      const double place = (offset + position + 0.5) / zoom;
      const double toBorder = std::abs(place - std::round(place)); // on a border the pixel behind it counts
      if (toBorder > 0 && toBorder < 1e-3) return -2;
      return place < extent ? static_cast<int>(place) : -1;
    }
  };

  void expectPicture(const Image& level, double black, double white)
  {
    const QSize size = canvas.viewport().getImageSize();
    const double sx = level.getWidth() / static_cast<double>(size.width());
    const double sy = level.getHeight() / static_cast<double>(size.height());
    const QPoint origin = canvas.getViewOrigin();
    const double zoomX = canvas.viewport().scaleX(), zoomY = canvas.viewport().scaleY();
    const Axis columns{static_cast<int>(std::round(origin.x() * zoomX)), zoomX / sx, level.getWidth()};
    const Axis rows{static_cast<int>(std::round(origin.y() * zoomY)), zoomY / sy, level.getHeight()};
    const QImage picture = canvas.grabFramebuffer();
    ASSERT_EQ(picture.size(), canvas.size());
    int numCompared = 0;
    for (int y = 0; y < picture.height(); ++y)
      for (int x = 0; x < picture.width(); ++x)
      {
        const int i = rows.at(y), j = columns.at(x);
        if (i == -2 || j == -2) continue;
        const QColor color = picture.pixelColor(x, y);
        const int shown[] = {color.red(), color.green(), color.blue()};
        const int background[] = {200, 0, 100};
        for (int k = 0; k < 3; ++k)
        {
          double expected = background[k];
          if (i >= 0 && j >= 0)
            expected = 255 * std::clamp((componentOf(level, j, i, k) - black) / (white - black), 0.0, 1.0);
          ASSERT_NEAR(shown[k], expected, 1.01) << "at " << x << ", " << y << " component " << k;
        }
        ++numCompared;
      }
    EXPECT_GT(numCompared, canvas.width() * canvas.height() / 4);
    EXPECT_EQ(picture, canvas.grabFramebuffer()); // nothing of a frame's state is left to the next one
  }

  NYXImageWidgetCanvas canvas;

private:
  QColor _background;
};
} // namespace

TEST_F(ImagePicture, ShowsEveryKindOfImageAsItsPixels)
{
  RandomGenerator random(5);
  const std::tuple<int, Palette> kinds[] = {{8, Palette::None},  {16, Palette::None},    {24, Palette::None},
                                            {32, Palette::None}, {8, Palette::Identity}, {8, Palette::Colors}};
  const struct
  {
    float ratio, zoom;
    QPoint origin;
    float black, white;
  } views[] = {{1, 1, {0, 0}, 0, 1},           {1, 2, {13, 7}, 0, 1},       {1, 3, {57, 31}, 0.25F, 0.75F},
               {2, 2, {5, 10}, 0, 0.5F},       {0.5F, 3, {5, 10}, 0.5F, 1}, {1, 5, {90, 55}, 0, 1},
               {0.75F, 2, {3, 4}, 0.1F, 0.2F}, {1, 0.7F, {3, 4}, 0, 1}};
  for (const auto& [depth, palette] : kinds)
  {
    const std::vector<Image> levels = {noise(97, 61, depth, palette, random)};
    for (const auto& v : views)
    {
      SCOPED_TRACE(testing::Message() << depth << " bits, palette " << static_cast<int>(palette) << ", zoom " << v.zoom
                                      << ", ratio " << v.ratio);
      show(levels, v.ratio, v.zoom, v.origin);
      canvas.setBlackAndWhite(v.black, v.white);
      const bool hasLevels = palette != Palette::Colors; // colours of a palette are shown as they are
      expectPicture(levels[0], hasLevels ? static_cast<double>(v.black) : 0,
                    hasLevels ? static_cast<double>(v.white) : 1);
    }
  }
}

TEST_F(ImagePicture, ShowsTheLevelThatTheZoomAsksFor)
{
  RandomGenerator random(6);
  const std::vector<Image> levels = {noise(397, 241, 8, Palette::None, random),
                                     noise(198, 120, 8, Palette::None, random),
                                     noise(99, 60, 8, Palette::None, random)};
  const struct
  {
    float ratio, zoom;
    QPoint origin;
    std::size_t level;
  } views[] = {{1, 1, {50, 30}, 0}, {1, 0.6F, {50, 30}, 0}, {1, 0.5F, {50, 31}, 0},   {1, 0.375F, {51, 32}, 1},
               {1, 0.25F, {}, 1},   {1, 0.2F, {10, 10}, 2}, {1.6F, 0.4F, {20, 40}, 1}};
  for (const auto& v : views)
  {
    SCOPED_TRACE(testing::Message() << "zoom " << v.zoom << ", ratio " << v.ratio);
    show(levels, v.ratio, v.zoom, v.origin);
    expectPicture(levels[v.level], 0, 1);
  }
}

TEST_F(ImagePicture, SamplesALevelThatIsMuchFinerThanTheScreen)
{
  constexpr int width = 2040, height = 1020;
  for (const int depth : {8, 16, 24, 32})
  {
    std::vector<Image> levels;
    levels.emplace_back(width, height, depth);
    for (int i = 0; i < height; ++i)
      for (int j = 0; j < width; ++j) // red and grey grow to the right; colours also downwards, in green
      {
        const auto level = static_cast<unsigned short>(j * 32);
        unsigned char pixel[4] = {static_cast<unsigned char>(j / 8), static_cast<unsigned char>(i / 4), 7, 9};
        if (depth == 16) std::memcpy(pixel, &level, 2);
        std::memcpy(levels[0].getLine(i) + std::ptrdiff_t(j) * depth / 8, pixel, static_cast<std::size_t>(depth) / 8);
      }
    for (const QPoint& origin : {QPoint(0, 0), QPoint(777, 333)})
    {
      constexpr double zoom = 1.0 / 16;
      SCOPED_TRACE(testing::Message() << depth << " bits from " << origin.x());
      show(levels, 1, static_cast<float>(zoom), origin);
      const QImage picture = canvas.grabFramebuffer();
      const int w = std::min(120, static_cast<int>((width - origin.x()) * zoom) - 1);
      const int h = static_cast<int>((height - origin.y()) * zoom) - 1;
      for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x)
        {
          ASSERT_NEAR(picture.pixelColor(x, y).red(), (origin.x() + (x + 0.5) / zoom) / 8, 3) << x << ", " << y;
          if (depth <= 16) continue;
          ASSERT_NEAR(picture.pixelColor(x, y).green(), (origin.y() + (y + 0.5) / zoom) / 4, 5) << x << ", " << y;
          ASSERT_EQ(picture.pixelColor(x, y).blue(), 7);
        }
      EXPECT_EQ(picture.pixelColor(5, h + 3), QColor(200, 0, 100));
    }
  }
}

TEST_F(ImagePicture, ShowsAThinImageAsALine)
{
  RandomGenerator random(7);
  const std::vector<Image> levels = {noise(5000, 1, 8, Palette::None, random)};
  show(levels, 1, 1, {});
  canvas.setBestFitMode(true, true);
  const QImage picture = canvas.grabFramebuffer();
  for (const int x : {0, 60, 119})
  {
    EXPECT_EQ(picture.pixelColor(x, 0).red(), picture.pixelColor(x, 0).green()); // grey
    EXPECT_EQ(picture.pixelColor(x, 1), QColor(200, 0, 100));
  }
}

TEST_F(ImagePicture, MarksTheBordersOfLargePixels)
{
  RandomGenerator random(8);
  const std::vector<Image> levels = {noise(9, 9, 8, Palette::None, random)};
  show(levels, 1, 20, {4, 5});
  const QImage picture = canvas.grabFramebuffer();
  for (int i = 0; i < 4; ++i)
    for (int j = 0; j < 5; ++j)
    {
      const int level = levels[0].getLine(i + 5)[j + 4];
      EXPECT_NEAR(picture.pixelColor(20 * j + 10, 20 * i + 10).red(), level, 1);
      const int border = picture.pixelColor(20 * j + 10, 20 * i).red();
      EXPECT_TRUE(std::abs(border - level) > 1 || std::abs(level - 128) < 8) << i << ", " << j;
    }
}

TEST_F(ImagePicture, IsTheBackgroundWithoutAnImage)
{
  RandomGenerator random(8);
  const std::vector<Image> levels = {noise(300, 300, 8, Palette::None, random)};
  show(levels, 1, 1, {});
  canvas.clear();
  const QImage picture = canvas.grabFramebuffer();
  canvas.getImageProxy().clearImage();
  const QImage empty = canvas.grabFramebuffer();
  for (const QPoint& place : {QPoint(0, 0), QPoint(60, 45), QPoint(119, 89)})
    EXPECT_EQ(empty.pixelColor(place), QColor(200, 0, 100));
  EXPECT_EQ(picture, empty);
}
