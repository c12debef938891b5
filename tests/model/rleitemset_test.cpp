#include "model/rleitemset.h"
#include "tests/support/errors.h"

#include <gtest/gtest.h>
#include <limits>
#include <random>
#include <set>

namespace
{
using Pixels = std::set<std::pair<int, int>>;

Pixels pixelsOf(const RLEItemSet& set)
{
  Pixels pixels;
  for (const RLEItem& run : set.getItems())
    for (int y = run.begin(); y <= run.end(); ++y) pixels.emplace(run.getOriginX(), y);
  return pixels;
}

void expectNormal(const RLEItemSet& set)
{
  for (int i = 1; i < set.numItems(); ++i)
  {
    EXPECT_TRUE(set.getItem(i - 1) < set.getItem(i));
    EXPECT_FALSE(set.getItem(i - 1).touches(set.getItem(i)));
  }
}
} // namespace

TEST(RLEItem, RefusesToShrinkToNothing)
{
  RLEItem run(3, 5, 4);
  run.setBegin(8);
  EXPECT_EQ(run.getLength(), 1);
  EXPECT_EQ(run.end(), 8);
  expectError<ProgramError>("Negative length", [&] { run.setBegin(9); });
  expectError<ProgramError>("Negative length", [&] { run.setEnd(7); });
  expectError<ProgramError>("Negative length", [&] { run.setEnd(std::numeric_limits<int>::min()); });
  expectError<ProgramError>("Run beyond", [] { RLEItem(0, std::numeric_limits<int>::max(), 2); });
}

TEST(RLEItemSet, AgreesWithASetOfPixels)
{
  std::mt19937 random(1);
  const auto draw = [&random](int limit) { return static_cast<int>(random() % static_cast<unsigned>(limit)) - 3; };
  for (int round = 0; round < 40; ++round)
  {
    RLEItemSet set;
    Pixels pixels;
    for (int step = 0; step < 60; ++step)
    {
      const RLEItem run(draw(6), draw(20), draw(7) + 4);
      RLEItemSet operand({run, RLEItem(draw(6), draw(20), 3), RLEItem(draw(6), draw(20), 5)});
      const bool isWhole = step % 2 == 0, adds = random() % 3 != 0;
      const Pixels changed = isWhole ? pixelsOf(operand) : pixelsOf(RLEItemSet({run}));
      if (adds)
        isWhole ? set.add(operand) : set.add(run);
      else
        isWhole ? set.remove(operand) : set.remove(run);
      for (const auto& pixel : changed)
        adds ? static_cast<void>(pixels.insert(pixel)) : static_cast<void>(pixels.erase(pixel));
      ASSERT_EQ(pixelsOf(set), pixels);
      expectNormal(set);
    }
    EXPECT_EQ(set.numVertices(), static_cast<std::int64_t>(pixels.size()));
    for (int x = -4; x < 5; ++x)
      for (int y = -4; y < 25; ++y) EXPECT_EQ(set.contains(x, y), pixels.contains({x, y}));
    set.translate(-2, 5);
    for (const auto& [x, y] : pixels) EXPECT_TRUE(set.contains(x - 2, y + 5));
  }
}

TEST(RLEItemSet, EndsAtTheRangeOfCoordinates)
{
  constexpr int least = std::numeric_limits<int>::min(), greatest = std::numeric_limits<int>::max();
  RLEItemSet set({RLEItem(greatest, greatest, 1)});
  EXPECT_EQ(set.getItem(0).getOrigin(), (Vector<int>{greatest, greatest}));
  const RLEItemSet before = set;
  expectError<ProgramError>("Run beyond", [&] { set.translate(0, 1); });
  expectError<ProgramError>("Run beyond", [&] { set.translate(1, 0); });
  EXPECT_EQ(set, before);
  set.translate(-1, least);
  EXPECT_EQ(set.getItem(0).getOrigin(), (Vector<int>{greatest - 1, -1}));
  set.setBall(Vector<int>{greatest, least}, 2); // a quarter of it
  EXPECT_EQ(pixelsOf(set), (Pixels{{greatest - 2, least},
                                   {greatest - 1, least},
                                   {greatest - 1, least + 1},
                                   {greatest, least},
                                   {greatest, least + 1},
                                   {greatest, least + 2}}));
}

TEST(RLEItemSet, PaintsDiscsAndFindsTheirNearestPixel)
{
  for (int radius = -1; radius < 12; ++radius)
  {
    RLEItemSet ball;
    ball.setBall(Vector<int>{10, -20}, radius);
    Pixels expected;
    for (int dx = -radius; dx <= radius; ++dx)
      for (int dy = -radius; dy <= radius; ++dy)
        if (dx * dx + dy * dy <= radius * radius) expected.emplace(10 + dx, -20 + dy);
    EXPECT_EQ(pixelsOf(ball), expected);
    EXPECT_EQ(ball.boundingBox().isEmpty(), radius < 0);
    if (radius < 0) continue;
    EXPECT_EQ(*ball.nearestPosition(10, 100), (Vector<int>{10, -20 + radius}));
  }
}
