// What the tools calculate: splitting, the contour in a rectangle, the brush. Without a window.

#include "geometry/curveprocessing/curvesplitting.h"
#include "image/image.h"
#include "numeric/randomgenerator.h"
#include "slice/nyxcontourvertices.h"
#include "slice/nyxregionbrush.h"
#include "slice/nyxroicontour.h"
#include "tests/support/curves.h"

#include <gtest/gtest.h>

#include <QRect>

#include <algorithm>
#include <cmath>
#include <functional>

namespace
{
using Vertex = std::vector<double>;

std::vector<double> areas(const std::vector<Curve<double>>& pieces)
{
  std::vector<double> list;
  for (const Curve<double>& piece : pieces) list.push_back(piece.twiceArea(0, 1) / 2);
  std::sort(list.begin(), list.end());
  return list;
}
} // namespace

TEST(CurveSplitting, CutsClosedCurvesAlongTheChordsInside)
{
  const std::vector<Vertex> square{{0, 0}, {10, 0}, {10, 10}, {0, 10}};
  const std::vector<Vertex> comb{{0, 0},  {10, 0}, {10, 10}, {8, 10}, {8, 2}, {6, 2}, {6, 10},
                                 {4, 10}, {4, 2},  {2, 2},   {2, 10}, {0, 10}}; // three teeth upwards, of 2 by 8
  const std::vector<Vertex> eight{{0, 0}, {10, 10}, {10, 0}, {0, 10}};          // crosses itself at (5, 5)
  const struct
  {
    const char* name;
    std::vector<Vertex> curve;
    Vertex a, b;
    std::vector<double> areas; // of the pieces, by size
  } cases[] = {
      {"a third", square, {-1, 3}, {11, 3}, {30, 70}},
      {"the other way round", square, {11, 3}, {-1, 3}, {30, 70}},
      {"from border to border", square, {0, 3}, {10, 3}, {30, 70}},
      {"through two corners", square, {-1, -1}, {11, 11}, {50, 50}},
      {"touches a corner", square, {-5, 5}, {5, -5}, {}},
      {"touches two corners", {{0, 0}, {4, 6}, {6, 6}, {10, 0}}, {-5, 6}, {15, 6}, {}},
      {"touches between crossings", {{0, 0}, {10, 0}, {10, 10}, {5, 5}, {0, 10}}, {-1, 5}, {11, 5}, {25, 50}},
      {"through a corner and an edge", square, {-1, -2}, {6, 12}, {25, 75}},
      {"along an edge", square, {-1, 0}, {11, 0}, {}},
      {"ends inside", square, {-1, 3}, {5, 3}, {}},
      {"lies inside", square, {2, 3}, {5, 3}, {}},
      {"misses", square, {-1, 11}, {11, 11}, {}},
      {"a point", square, {5, 5}, {5, 5}, {}},
      {"clockwise", {{0, 10}, {10, 10}, {10, 0}, {0, 0}}, {-1, 3}, {11, 3}, {-70, -30}},
      {"all teeth", comb, {-1, 5}, {11, 5}, {10, 10, 10, 38}},
      {"two teeth", comb, {3, 5}, {11, 5}, {10, 10, 48}},
      {"a tooth and a half", comb, {-1, 5}, {5, 5}, {10, 58}},
      {"crosses itself", eight, {2, -1}, {2, 11}, {-16, 16}},
  };
  for (const auto& c : cases)
  {
    SCOPED_TRACE(c.name);
    for (const auto& [from, to] : {std::pair(c.a, c.b), std::pair(c.b, c.a)}) // either way
    {
      const auto pieces = splitCurve(closedCurve(c.curve), Vector<double>(from), Vector<double>(to));
      const std::vector<double> found = areas(pieces);
      ASSERT_EQ(found.size(), c.areas.size());
      for (std::size_t i = 0; i < found.size(); ++i) EXPECT_NEAR(found[i], c.areas[i], 1e-12);
      for (const Curve<double>& piece : pieces) EXPECT_FALSE(piece.isOpen());
    }
  }
}

TEST(CurveSplitting, CutsOpenCurvesWhereverTheSegmentCrosses)
{
  const std::vector<Vertex> zigzag{{0, 0}, {2, 4}, {4, 0}, {6, 4}, {8, 0}};
  const struct
  {
    const char* name;
    Vertex a, b;
    std::vector<std::vector<Vertex>> pieces;
  } cases[] = {
      {"all edges",
       {-1, 2},
       {9, 2},
       {{{0, 0}, {1, 2}},
        {{1, 2}, {2, 4}, {3, 2}},
        {{3, 2}, {4, 0}, {5, 2}},
        {{5, 2}, {6, 4}, {7, 2}},
        {{7, 2}, {8, 0}}}},
      {"one edge", {0, 2}, {2, 2}, {{{0, 0}, {1, 2}}, {{1, 2}, {2, 4}, {4, 0}, {6, 4}, {8, 0}}}},
      {"misses", {-1, 5}, {9, 5}, {}},
      {"touches a vertex", {0, 4}, {4, 4}, {}},
      {"touches its ends", {-1, 0}, {9, 0}, {}},
      {"through a vertex", {2, 0}, {2, 8}, {{{0, 0}, {2, 4}}, {{2, 4}, {4, 0}, {6, 4}, {8, 0}}}},
  };
  for (const auto& c : cases)
  {
    SCOPED_TRACE(c.name);
    for (const auto& [from, to] : {std::pair(c.a, c.b), std::pair(c.b, c.a)}) // either way
    {
      const auto pieces = splitCurve(openCurve(zigzag), Vector<double>(from), Vector<double>(to));
      ASSERT_EQ(pieces.size(), c.pieces.size());
      for (std::size_t i = 0; i < pieces.size(); ++i)
      {
        EXPECT_TRUE(pieces[i].isOpen());
        std::vector<Vertex> points = pointsOf(pieces[i]);
        points.erase(std::unique(points.begin(), points.end()), points.end());
        EXPECT_EQ(points, c.pieces[i]);
      }
    }
  }
}

TEST(RegionBrush, PaintsACapsule)
{
  RandomGenerator random(3);
  const BoundingBox<int> box(Vector<int>{0, 0}, Vector<int>{59, 39});
  for (int k = 0; k < 60; ++k)
  {
    const int radius = k % 12;
    const Vector<int> a{static_cast<int>(random.uniformLF(0, 60)), static_cast<int>(random.uniformLF(0, 40))};
    const Vector<int> b{static_cast<int>(random.uniformLF(0, 60)), static_cast<int>(random.uniformLF(0, 40))};
    const RLEItemSet stroke = brushStroke(box, a, b, radius);
    for (int x = -15; x < 75; ++x)
      for (int y = -15; y < 55; ++y)
      {
        const double dx = b[0] - a[0], dy = b[1] - a[1], squared = dx * dx + dy * dy;
        const double share = squared > 0 ? std::clamp(((x - a[0]) * dx + (y - a[1]) * dy) / squared, 0., 1.) : 0;
        const double distance = std::hypot(x - a[0] - share * dx, y - a[1] - share * dy);
        const bool isPainted = stroke.contains(x, y);
        const bool isInBox = x >= 0 && x < 60 && y >= 0 && y < 40;
        ASSERT_TRUE(!isPainted || (isInBox && distance <= radius + 0.75)) << x << ", " << y;
        ASSERT_TRUE(isPainted || !isInBox || distance > radius - 0.75) << x << ", " << y;
      }
  }
  EXPECT_TRUE(brushStroke(box, Vector<int>{-30, -30}, Vector<int>{-20, -20}, 5).isEmpty());
}

namespace
{
/// An image of 100 by 80 pixels.
Image imageOf(int depth, const std::function<int(int x, int y)>& level, int channel = -1)
{
  Image image(100, 80, depth);
  for (int y = 0; y < 80; ++y)
    for (int x = 0; x < 100; ++x)
    {
      unsigned char* const pixel = image.getLine(y) + x * image.bytesPerPixel();
      std::fill_n(pixel, image.bytesPerPixel(), static_cast<unsigned char>(0));
      if (depth == 16)
        reinterpret_cast<unsigned short*>(image.getLine(y))[x] = static_cast<unsigned short>(level(x, y));
      else if (channel >= 0)
        pixel[channel] = static_cast<unsigned char>(level(x, y));
      else
        pixel[0] = static_cast<unsigned char>(level(x, y));
    }
  return image;
}

double distanceFromDisc(int x, int y)
{
  return std::hypot(x - 50, y - 40);
}
} // namespace

TEST(RoiContour, GoesAlongTheOutermostPixelsOfTheObject)
{
  RandomGenerator random(5);
  const auto disc = [](int dark, int bright)
  { return [=](int x, int y) { return distanceFromDisc(x, y) <= 20 ? bright : dark; }; };
  const struct
  {
    const char* name;
    Image image;
    int halfSize;
    double tolerance;
  } cases[] = {
      {"bright", imageOf(8, disc(50, 200)), 0, 0.75},
      {"dark", imageOf(8, disc(200, 50)), 0, 0.75},
      {"faint", imageOf(8, disc(50, 51)), 0, 0.75},
      {"16 bits", imageOf(16, disc(1000, 60000)), 0, 0.75},
      {"red", imageOf(24, disc(20, 90), 0), 0, 0.75},
      {"green", imageOf(24, disc(20, 90), 1), 0, 0.75},
      {"blue", imageOf(24, disc(20, 90), 2), 0, 0.75},
      {"with a hole",
       imageOf(8,
               [](int x, int y)
               {
                 const double distance = distanceFromDisc(x, y);
                 return distance <= 20 && distance > 8 ? 200 : 50;
               }),
       0, 0.75},
      {"beside a smaller one",
       imageOf(8,
               [](int x, int y) { return distanceFromDisc(x, y) <= 20 || std::hypot(x - 85, y - 15) < 6 ? 200 : 50; }),
       0, 0.75},
      {"in noise",
       imageOf(8, [&](int x, int y)
               { return static_cast<int>((distanceFromDisc(x, y) <= 20 ? 150 : 90) + random.uniformLF(-60, 60)); }),
       3, 2.5},
  };
  for (const auto& c : cases)
  {
    SCOPED_TRACE(c.name);
    const auto contour = contourInRoi(c.image, QRect(20, 10, 75, 65), c.halfSize);
    ASSERT_TRUE(contour);
    EXPECT_GT(contour->twiceArea(0, 1), 0);
    EXPECT_NEAR(contour->twiceArea(0, 1) / 2, M_PI * 19.6 * 19.6, 60 * c.tolerance);
    for (int i = 0; i < contour->getSize(); ++i)
      EXPECT_NEAR(distanceFromDisc(contour->data(i)[0], contour->data(i)[1]), 19.6, c.tolerance);
  }
}

TEST(RoiContour, IsExactForASquareAndStaysInTheRectangle)
{
  const Image image = imageOf(8, [](int x, int y) { return x >= 30 && x <= 60 && y >= 20 && y <= 40 ? 200 : 50; });
  const auto whole = contourInRoi(image, QRect(0, 0, 100, 80), 0);
  EXPECT_EQ(whole->twiceArea(0, 1), 2 * 30 * 20); // through the centres of the border's pixels
  const auto part = contourInRoi(image, QRect(45, 0, 55, 80), 0);
  EXPECT_EQ(part->twiceArea(0, 1), 2 * 15 * 20);
  EXPECT_EQ(part->boundingBox().getMinimum()[0], 45);
}

TEST(RoiContour, NeedsTwoGreyLevelsWithinTheImage)
{
  const Image image = imageOf(8, [](int x, int) { return x < 50 ? 50 : 200; });
  EXPECT_FALSE(contourInRoi(image, QRect(0, 0, 40, 40), 0));
  EXPECT_FALSE(contourInRoi(image, QRect(10, 10, 1, 1), 50));
  EXPECT_THROW(contourInRoi(image, QRect(60, 0, 41, 10), 0), SizeError);
  EXPECT_THROW(contourInRoi(image, QRect(), 0), SizeError);
}

TEST(ContourVertices, AreRoundedAndKeptOnce)
{
  const Vertices<int> rounded = roundedVertices(closedCurve({{-0.5, 0.5}, {1.49, -1.5}, {2, 3}}));
  EXPECT_EQ(pointsOf(rounded), (std::vector<std::vector<int>>{{-1, 1}, {1, -2}, {2, 3}}));
  const auto repeated = curveThrough<int>({{1, 1}, {1, 1}, {2, 2}, {1, 1}, {1, 1}});
  EXPECT_EQ(withoutRepetitions(repeated, true).getSize(), 2);
  EXPECT_EQ(withoutRepetitions(repeated, false).getSize(), 3);
  EXPECT_EQ(withoutRepetitions(Vertices<int>(2), true).getSize(), 0);
}
