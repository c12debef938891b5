// What is told of an image and its pixels in words.

#include "image/image.h"
#include "numeric/colormap.h"
#include "slice/image/nyximagewidgetstatusbar.h"
#include "slice/image/nyxpixelinfodelegate.h"
#include "slice/image/nyxrulerdelegate.h"
#include "slice/image/nyxslicewidgetstatusbar.h"
#include "tests/support/stacks.h"

#include <gtest/gtest.h>

#include <cstring>

TEST(ImageTexts, ChooseTheUnitByThousandsAndCountBy1024)
{
  const std::pair<std::int64_t, const char*> cases[] = {{0, "5x7 [0 bytes]"},
                                                        {999, "5x7 [999 bytes]"},
                                                        {1000, "5x7 [0 Kb]"},
                                                        {1023, "5x7 [0 Kb]"},
                                                        {1024, "5x7 [1 Kb]"},
                                                        {999999, "5x7 [976 Kb]"},
                                                        {1000000, "5x7 [0.954 Mb]"},
                                                        {12582912, "5x7 [12 Mb]"},
                                                        {999999999, "5x7 [954 Mb]"},
                                                        {1000000000, "5x7 [0.931 Gb]"},
                                                        {std::int64_t{5} << 32, "5x7 [20 Gb]"}};
  for (const auto& [numBytes, text] : cases) EXPECT_EQ(NYXImageWidgetStatusBar::imageSizeText({5, 7}, numBytes), text);
}

TEST(ImageTexts, TellTheZoomInPercent)
{
  const std::pair<float, const char*> cases[] = {{1, "100%"},   {0.5F, " 50%"},    {0.0625F, "  6%"},
                                                 {16, "1600%"}, {0.3325F, " 33%"}, {1.6F, "160%"}};
  for (const auto& [zoom, text] : cases) EXPECT_EQ(NYXImageWidgetStatusBar::zoomText(zoom), text);
}

TEST(ImageTexts, TellThePixelByItsKind)
{
  const auto textOf = [](int depth, const std::vector<unsigned char>& bytes, bool isIndexed)
  {
    Image image(4, 3, depth);
    image.reset();
    std::memcpy(image.getLine(1) + std::ptrdiff_t{2} * image.bytesPerPixel(), bytes.data(), bytes.size());
    Colormap colormap(256);
    colormap.setColor(7, {10, 20, 30});
    if (isIndexed) image.setColormap(colormap);
    return NYXPixelInfoDelegate::pixelText({2, 1}, &image);
  };
  const unsigned short level = 40000;
  std::vector<unsigned char> bytes(2);
  std::memcpy(bytes.data(), &level, 2);
  EXPECT_EQ(textOf(8, {7}, false), "X=2, Y=1, G=7");
  EXPECT_EQ(textOf(8, {7}, true), "X=2, Y=1, RGB=10,20,30");
  EXPECT_EQ(textOf(16, bytes, false), "X=2, Y=1, G=40000");
  EXPECT_EQ(textOf(24, {1, 2, 255}, false), "X=2, Y=1, RGB=1,2,255");
  EXPECT_EQ(textOf(32, {1, 2, 255, 9}, false), "X=2, Y=1, RGB=1,2,255");
  const Image image(4, 3, 8);
  for (const QPoint& outside : {QPoint(-1, 0), QPoint(4, 0), QPoint(0, 3), QPoint(0, -1)})
    EXPECT_FALSE(NYXPixelInfoDelegate::pixelText(outside, &image).contains("G="));
  EXPECT_EQ(NYXPixelInfoDelegate::pixelText({3, 2}, nullptr), "X=3, Y=2");
}

TEST(ImageTexts, MeasureInCalibratedUnits)
{
  PixelCalibration calibration;
  calibration.setPixelWidth(0.5F);
  calibration.setPixelHeight(2);
  calibration.setLengthUnit(LengthUnit(-6));
  const std::pair<QPoint, const char*> cases[] = {
      {{10, 10}, "0 µm, 0.0°"},   {{16, 10}, "3 µm, 0.0°"},         {{18, 8}, "5.65685 µm, 45.0°"},
      {{10, 8}, "4 µm, 90.0°"},   {{2, 8}, "5.65685 µm, 135.0°"},   {{4, 10}, "3 µm, 180.0°"},
      {{10, 12}, "4 µm, -90.0°"}, {{2, 12}, "5.65685 µm, -135.0°"}, {{18, 12}, "5.65685 µm, -45.0°"}};
  for (const auto& [to, text] : cases) EXPECT_EQ(NYXRulerDelegate::measureText({10, 10}, to, calibration), text);
}

TEST(ImageTexts, CountWhatIsDrawnOnASlice)
{
  Stack stack;
  StackSlice& slice = addSlice(stack, 100, 100);
  EXPECT_EQ(NYXSliceWidgetStatusBar::sliceText(slice), "");
  Model& points = addModel(stack, "points", MPrimitive::Polypoint);
  ModelItem& some = addItem(points, slice, {{1, 1}, {2, 2}, {3, 3}});
  EXPECT_EQ(NYXSliceWidgetStatusBar::sliceText(slice), "3 point(s)");
  addItem(addModel(stack, "region", MPrimitive::Region), slice, {});
  addItem(addModel(stack, "open", MPrimitive::Polyline), slice, {{1, 1}, {2, 2}});
  addItem(addModel(stack, "closed", MPrimitive::Polygon), slice, {{1, 1}, {2, 2}, {3, 1}});
  addItem(points, slice, {{4, 4}});
  EXPECT_EQ(NYXSliceWidgetStatusBar::sliceText(slice), "3 contour(s), 4 point(s)");
  some.setVertices(Vertices<int>(2));
  points.getItem(1)->setVertices(Vertices<int>(2));
  EXPECT_EQ(NYXSliceWidgetStatusBar::sliceText(slice), "3 contour(s)");
}
