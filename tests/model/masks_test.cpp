// Contours and regions as masks, against the definition pixel by pixel.

#include "image/voxelmatrix.h"
#include "model/contourscan.h"
#include "tests/support/errors.h"
#include "tests/support/stacks.h"

#include <gtest/gtest.h>
#include <limits>
#include <numeric>
#include <random>

namespace
{
constexpr int size = 24;
const BoundingBox<int> window(Vector<int>{0, 0}, Vector<int>{size - 1, size - 1});

std::int64_t cross(const int* a, const int* b, const int* p)
{
  return (std::int64_t{b[0]} - a[0]) * (std::int64_t{p[1]} - a[1]) -
         (std::int64_t{b[1]} - a[1]) * (std::int64_t{p[0]} - a[0]);
}

/// Even-odd rule in integers, points on the contour being inside.
bool isInside(const Vertices<int>& contour, int x, int y)
{
  const int p[] = {x, y};
  bool isOdd = false;
  for (int i = 0, previous = contour.getSize() - 1; i < contour.getSize(); previous = i++)
  {
    const int *a = contour.data(previous), *b = contour.data(i);
    const bool isWithin = std::min(a[0], b[0]) <= x && x <= std::max(a[0], b[0]) && std::min(a[1], b[1]) <= y &&
                          y <= std::max(a[1], b[1]);
    if (isWithin && cross(a, b, p) == 0) return true;
    if ((a[1] > y) == (b[1] > y)) continue;
    const bool isLeft = cross(a, b, p) > 0;
    if (isLeft == (b[1] > a[1])) isOdd = !isOdd;
  }
  return isOdd;
}

Vertices<int> randomContour(std::mt19937& random)
{
  std::vector<std::vector<int>> points;
  const int count = static_cast<int>(random() % 12);
  const int range = random() % 3 == 0 ? 6 : 40;
  const auto draw = [&] { return static_cast<int>(random() % static_cast<unsigned>(range)) - (range > 20 ? 8 : -4); };
  for (int i = 0; i < count; ++i) points.push_back({draw(), draw()});
  return curveThrough<int>(points);
}

int sumOf(const PixelMatrix<unsigned char>& plane)
{
  return std::accumulate(plane.data(), plane.data() + plane.getNumElements(), 0);
}

/// Three slices and a model of each geometry that masks are painted of.
class Masks : public testing::Test
{
protected:
  Masks()
  {
    for (int k = 0; k < 3; ++k) addSlice(stack, size, size);
    addModel(stack, "contours", MPrimitive::Polygon);
    addModel(stack, "regions", MPrimitive::Region);
    addModel(stack, "lines", MPrimitive::Polyline);
    volume.fill(0);
  }

  Stack stack;
  VoxelMatrix<unsigned char> volume{size, size, 3};
};
} // namespace

TEST_F(Masks, HoldThePixelsInsideByTheEvenOddRule)
{
  std::mt19937 random(7);
  for (int round = 0; round < 2000; ++round)
  {
    const Vertices<int> contour = randomContour(random);
    SCOPED_TRACE(round);
    RLEItemSet region;
    region.setContour(contour, window);
    ModelItem& item = ModelItem::create(*stack.getModel(0), *stack.getSlice(1));
    item.setVertices(contour);
    volume.fill(0);
    stack.writeModelItemMask(volume, item, 200);
    int numWrong = 0;
    for (int y = 0; y < size; ++y)
      for (int x = 0; x < size; ++x)
      {
        const bool expected = isInside(contour, x, y);
        numWrong += expected != region.contains(x, y);
        numWrong += (expected ? 200 : 0) != volume(y, x, 1);
      }
    ASSERT_EQ(numWrong, 0);
    RLEItemSet fromMask;
    fromMask.fromMask<unsigned char>(volume[1], 200);
    ASSERT_EQ(fromMask, region);
    PixelMatrix<unsigned char> mask(size, size);
    mask.fill(0);
    region.toMask<unsigned char>(mask, 200);
    ASSERT_EQ(mask, volume[1]);
    delete &item;
  }
}

TEST_F(Masks, OfWholeModelsHaveTheirLabelsOnTheirSlices)
{
  addItem(*stack.getModel(0), *stack.getSlice(0), {{2, 2}, {5, 2}, {5, 5}, {2, 5}});
  addItem(*stack.getModel(0), *stack.getSlice(2), {{-5, -5}, {1, -5}, {1, 1}, {-5, 1}}); // only a corner is seen
  ModelItem& region = ModelItem::create(*stack.getModel(1), *stack.getSlice(0));
  region.setRLEItemSet(RLEItemSet({RLEItem(5, 4, 100), RLEItem(-1, 3, 2), RLEItem(size, 0, 3)}));
  addItem(*stack.getModel(2), *stack.getSlice(1), {{0, 0}, {9, 0}, {9, 9}});
  stack.writeModelMasks(volume);
  EXPECT_EQ(sumOf(volume[0]), 16 - 2 + 2 * (size - 4)); // the region lies over two pixels of the contour
  EXPECT_EQ(volume(4, 5, 0), 2);
  EXPECT_EQ(volume(4, 4, 0), 1);
  EXPECT_EQ(sumOf(volume[1]), 0);
  EXPECT_EQ(sumOf(volume[2]), 4);

  expectError<RangeError>("label 256", [&] { stack.writeModelMask(volume, *stack.getModel(0), 256); });
  expectError<RangeError>("label -1", [&] { stack.writeModelMask(volume, *stack.getModel(0), -1); });
  VoxelMatrix<float> tooFew(size, size, 2);
  expectError<SizeError>("2 planes, the stack 3 slices", [&] { stack.writeModelMasks(tooFew); });
  ModelItem homeless(stack.getModel(0));
  expectError<UsageError>("no slice of the stack", [&] { stack.writeModelItemMask(volume, homeless, 1); });
}

TEST(ContourScan, CopesWithTheWholeRangeOfCoordinates)
{
  constexpr int least = std::numeric_limits<int>::min(), greatest = std::numeric_limits<int>::max();
  const Vertices<int> triangle = curveThrough<int>({{least, least}, {greatest, least}, {greatest, greatest}});
  ContourScan scan(triangle, ContourScan::Lines::Rows, -1000, 1000);
  for (int line = -1000; line <= 1000; ++line)
  {
    ASSERT_TRUE(scan.next());
    ASSERT_EQ(scan.getLine(), line);
    ASSERT_EQ(scan.getRuns().size(), 1u);
    EXPECT_EQ(scan.getRuns()[0].first, line); // the diagonal passes through the pixels (y, y)
    EXPECT_EQ(scan.getRuns()[0].last, greatest);
  }
  EXPECT_FALSE(scan.next());
}
