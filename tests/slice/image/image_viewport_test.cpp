// Which part of an image is shown, and how large; expected values by hand.

#include "slice/image/nyximageviewport.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace
{
PixelCalibration aspect(float ratio)
{
  PixelCalibration calibration;
  calibration.setAspectRatio(ratio);
  return calibration;
}

NYXImageViewport viewportOf(const QSize& image, const QSize& canvas, float ratio = 1)
{
  NYXImageViewport viewport;
  viewport.setImageSize(image);
  viewport.setCanvasSize(canvas);
  viewport.setPixelCalibration(aspect(ratio));
  return viewport;
}

/// Outside of the best-fit mode.
NYXImageViewport zoomed(const QSize& image, const QSize& canvas, float ratio, float zoom)
{
  NYXImageViewport viewport = viewportOf(image, canvas, ratio);
  viewport.setBestFitMode(false, true);
  viewport.setZoomFactor(zoom);
  return viewport;
}
} // namespace

TEST(ImageViewport, ShrinksTheLongerAxisOfAPixel)
{
  constexpr float infinity = std::numeric_limits<float>::infinity();
  const struct
  {
    float ratio;
    double width, height;
  } cases[] = {{1, 1, 1}, {2, 0.5, 1}, {0.25, 1, 0.25}, {0, 1, 1}, {-1, 1, 1}, {NAN, 1, 1}, {infinity, 1, 1}};
  for (const auto& c : cases)
  {
    const NYXImageViewport viewport = viewportOf({10, 10}, {10, 10}, c.ratio);
    EXPECT_EQ(viewport.betaWidth(), c.width) << c.ratio;
    EXPECT_EQ(viewport.betaHeight(), c.height) << c.ratio;
  }
}

TEST(ImageViewport, MapsPositionsTowardsTheOrigin)
{
  const struct
  {
    float ratio, zoom;
    QPoint canvas, image;      // which is under the canvas position
    QPoint position, onCanvas; // and where another one lies
  } cases[] = {{2, 4, {7, 9}, {13, 22}, {13, 22}, {6, 8}},
               {2, 4, {-7, -9}, {7, 18}, {9, 19}, {-2, -4}},
               {0.5F, 0.25F, {3, 3}, {22, 44}, {13, 29}, {0, 1}},
               {0.5F, 0.25F, {0, -1}, {10, 12}, {5, 3}, {-1, -2}},
               {1, 3, {2, 3}, {10, 21}, {11, 22}, {3, 6}}};
  for (const auto& c : cases)
  {
    NYXImageViewport viewport = zoomed({400, 300}, {640, 480}, c.ratio, c.zoom);
    viewport.setViewOrigin({10, 20});
    EXPECT_EQ(viewport.convertToImagePosition(c.canvas), c.image);
    EXPECT_EQ(viewport.convertToCanvasPosition(c.position), c.onCanvas);
  }
}

TEST(ImageViewport, ShowsAsMuchAsTheCanvasTakes)
{
  const struct
  {
    float ratio, zoom;
    QSize size;
    QPoint maximum;
  } cases[] = {{1, 1, {400, 300}, {0, 0}},     {1, 2, {320, 240}, {80, 60}},     {2, 4, {320, 120}, {80, 180}},
               {1, 3, {214, 160}, {186, 140}}, {0.5F, 4, {160, 240}, {240, 60}}, {1, 1000, {1, 1}, {399, 299}},
               {1, 0.01F, {400, 300}, {0, 0}}};
  for (const auto& c : cases)
  {
    NYXImageViewport viewport = zoomed({400, 300}, {640, 480}, c.ratio, c.zoom);
    EXPECT_EQ(viewport.computeMaxViewSize(), c.size) << c.zoom;
    EXPECT_EQ(viewport.computeMaxViewOrigin(), c.maximum) << c.zoom;
    viewport.setBestFitMode(true, true);
    EXPECT_EQ(viewport.currentView(), QRect(0, 0, 400, 300));
    EXPECT_EQ(viewport.computeMaxViewOrigin(), QPoint(0, 0));
  }
  const NYXImageViewport empty = zoomed(QSize(), {640, 480}, 1, 2);
  EXPECT_EQ(empty.computeMaxViewSize(), QSize(0, 0));
  EXPECT_EQ(empty.computeMaxViewOrigin(), QPoint(0, 0));
}

TEST(ImageViewport, StaysOnTheImageAndKeepsItsCentre)
{
  NYXImageViewport viewport = zoomed({400, 300}, {640, 480}, 1, 4); // 160 x 120 pixels
  const std::pair<QPoint, QPoint> origins[] = {
      {{-5, 7}, {0, 7}}, {{300, 200}, {240, 180}}, {{240, -1}, {240, 0}}, {{1 << 30, 1 << 30}, {240, 180}}};
  for (const auto& [origin, rectified] : origins)
  {
    viewport.setViewOrigin(origin);
    viewport.rectifyViewOrigin();
    EXPECT_EQ(viewport.getViewOrigin(), rectified);
  }
  viewport.setViewCenter({101, 99});
  EXPECT_EQ(viewport.getViewOrigin(), QPoint(21, 39));
  viewport.setCanvasSize({643, 481}); // 161 x 121
  viewport.setViewCenter({101, 99});
  EXPECT_EQ(viewport.getViewOrigin(), QPoint(21, 39));
  EXPECT_EQ(viewport.viewCenter(), QPoint(101, 99));
  viewport.setZoomFactor(0.5F); // larger than the image
  viewport.rectifyViewOrigin();
  EXPECT_EQ(viewport.getViewOrigin(), QPoint(0, 0));
}

TEST(ImageViewport, FitsTheWholeImage)
{
  const struct
  {
    QSize image, canvas;
    float ratio;
    double zoom;
  } cases[] = {{{400, 300}, {640, 480}, 1, 1.6},
               {{400, 300}, {640, 100}, 1, 133. / 400},
               {{400, 300}, {100, 480}, 1, 0.25},
               {{400, 300}, {640, 480}, 2, 1.6},           // 200 x 300
               {{401, 300}, {640, 480}, 0.5F, 239. / 150}, // 401 x 150
               {{1, 1}, {640, 480}, 1, 480},
               {{1000, 8}, {64, 64}, 1, 0.125},
               {{100000, 1}, {64, 80}, 1, 64. / 100000}, // less than half a pixel high
               {{1, 100000}, {80, 64}, 1, 64. / 100000},
               {{3, 300}, {100, 300}, 10, 1}, // narrower than a pixel
               {{65536, 65536}, {1, 1}, 1, 1. / 65536}};
  for (const auto& c : cases)
  {
    NYXImageViewport viewport = viewportOf(c.image, c.canvas, c.ratio);
    viewport.setBestFitZoomFactor();
    EXPECT_FLOAT_EQ(viewport.getZoomFactor(), static_cast<float>(c.zoom)) << c.image.width() << "x" << c.image.height();
  }
  for (const auto& [image, canvas] : {std::pair(QSize(), QSize(10, 10)), std::pair(QSize(10, 10), QSize(0, 10))})
  {
    NYXImageViewport viewport = viewportOf(image, canvas);
    viewport.setZoomFactor(7);
    viewport.setBestFitZoomFactor();
    EXPECT_EQ(viewport.getZoomFactor(), 7);
  }
}

TEST(ImageViewport, ZoomsInSteps)
{
  const struct
  {
    float zoom, in, out;
  } cases[] = {{1, 2, 0.5F},          {2, 3, 1},          {0.5F, 1, 0.25F},
               {0.25F, 0.5F, 0.125F}, {1.5F, 2.5F, 0.5F}, {0.75F, 1.5F, 0.375F}};
  for (const auto& c : cases)
  {
    NYXImageViewport viewport = zoomed({400, 300}, {640, 480}, 1, c.zoom);
    viewport.stepZoomFactor(true);
    EXPECT_EQ(viewport.getZoomFactor(), c.in) << c.zoom;
    viewport.setZoomFactor(c.zoom);
    viewport.stepZoomFactor(false);
    EXPECT_EQ(viewport.getZoomFactor(), c.out) << c.zoom;
  }
}

TEST(ImageViewport, LeavesTheBestFitForAFullZoom)
{
  const struct
  {
    float fitted, in, out;
  } cases[] = {{0.3F, 0.5F, 0.25F},
               {0.7F, 1, 0.5F},
               {2.6F, 3, 2},
               {0.5F, 1, 0.5F},
               {1, 1, 1},
               {1.01F, 2, 1},
               {2, 2, 2},
               {0.25F, 0.25F, 0.25F},
               {0.26F, 0.5F, 0.25F},
               {0.249F, 0.25F, 0.125F},
               {0.01F, 1.F / 64, 1.F / 128}};
  for (const auto& c : cases)
  {
    for (const bool zoomingIn : {true, false})
    {
      NYXImageViewport viewport = viewportOf({400, 300}, {640, 480});
      viewport.setZoomFactor(c.fitted);
      viewport.setBestFitMode(false, zoomingIn);
      EXPECT_EQ(viewport.getZoomFactor(), zoomingIn ? c.in : c.out) << c.fitted;
      viewport.setBestFitMode(false, zoomingIn); // is off already
      EXPECT_EQ(viewport.getZoomFactor(), zoomingIn ? c.in : c.out) << c.fitted;
    }
  }
}
