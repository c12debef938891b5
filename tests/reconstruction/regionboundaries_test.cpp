#include "geometry/reconstruction/regionboundaries.h"
#include "image/segmentation/boundarytracer.h"
#include "model/rleitemset.h"
#include "tests/support/curves.h"

#include <gtest/gtest.h>

#include <limits>
#include <random>

namespace
{
constexpr int size = 14;

/// A random subset of the pixels (x, y), 0 <= x, y < size.
RLEItemSet randomRegion(double share, unsigned seed)
{
  std::mt19937 engine(seed);
  std::bernoulli_distribution isInside(share);
  RLEItemSet region;
  for (int x = 0; x < size; ++x)
    for (int y = 0; y < size; ++y)
      if (isInside(engine)) region.add(x, y);
  return region;
}

/// The same boundaries by walking from pixel to pixel on a mask whose rows are x.
std::vector<std::vector<std::vector<double>>> boundariesByWalking(const RLEItemSet& region)
{
  const auto isInside = [&region](int i, int j) { return region.contains(i, j); };
  std::vector<std::vector<std::vector<double>>> boundaries;
  for (const Curve<int>& walked : allBoundaries(size, size, isInside))
  {
    if (walked.twiceArea(0, 1) < 0) continue; // a hole
    std::vector<std::vector<double>> points;
    for (int k = walked.getSize() - 1; k >= 0; --k) points.push_back({walked[k][1] - 0.5, walked[k][0] - 0.5});
    boundaries.push_back(points);
  }
  return boundaries;
}
} // namespace

TEST(RegionBoundaries, AreThoseOfAWalkAroundThePixels)
{
  for (unsigned seed = 0; seed < 300; ++seed)
  {
    const RLEItemSet region = randomRegion(0.3 + 0.1 * (seed % 6), seed);
    const std::vector<Curve<double>> boundaries = outerBoundaries(region);
    const std::vector<std::vector<std::vector<double>>> expected = boundariesByWalking(region);
    ASSERT_EQ(boundaries.size(), expected.size());
    for (std::size_t i = 0; i < expected.size(); ++i)
    {
      EXPECT_TRUE(std::ranges::is_permutation(pointsOf(boundaries[i]), expected[i]));
      EXPECT_GT(boundaries[i].twiceArea(0, 1), 0);
      EXPECT_DOUBLE_EQ(boundaries[i].length(), closedCurve(expected[i]).length());
      EXPECT_DOUBLE_EQ(boundaries[i].twiceArea(0, 1), closedCurve(expected[i]).twiceArea(0, 1));
    }
  }
  EXPECT_TRUE(outerBoundaries(RLEItemSet()).empty());
}

TEST(RegionBoundaries, OfRunsOfAnyLengthAnywhere)
{
  constexpr int lowest = std::numeric_limits<int>::min(), highest = std::numeric_limits<int>::max();
  const std::vector<Curve<double>> boundaries = outerBoundaries(
      RLEItemSet({RLEItem(highest, 0, highest), RLEItem(lowest, highest, 1), RLEItem(lowest + 1, highest, 1)}));
  ASSERT_EQ(boundaries.size(), 2u);
  const double a = lowest, b = highest;
  EXPECT_EQ(pointsOf(boundaries[0]),
            (std::vector<std::vector<double>>{
                {a + 1.5, b - 0.5}, {a + 1.5, b + 0.5}, {a - 0.5, b + 0.5}, {a - 0.5, b - 0.5}}));
  EXPECT_EQ(pointsOf(boundaries[1]), (std::vector<std::vector<double>>{
                                         {b + 0.5, -0.5}, {b + 0.5, b - 0.5}, {b - 0.5, b - 0.5}, {b - 0.5, -0.5}}));
}
