#include "analysis/spatial/spatialmodelcompleterandomness.h"
#include "analysis/spatial/spatialmodelhardcore.h"
#include "tests/analysis/spatial/patterns.h"
#include "tests/support/canceller.h"
#include "tests/support/errors.h"

#include <chrono>
#include <gtest/gtest.h>
#include <thread>

namespace
{
using Randomness = SpatialModelCompleteRandomness<double, unsigned char>;
using Hardcore = SpatialModelHardcore<double, unsigned char>;

const Curve<double> lShape = closedCurve({{-4, 0}, {4, 0}, {4, 2}, {-2, 2}, {-2, 8}, {-4, 8}});

Vector<double> constant(int size, double value)
{
  Vector<double> vector(size);
  vector.fill(value);
  return vector;
}

TEST(CompleteRandomness, IsUniformInsideACurve)
{
  RandomGenerator generator(1);
  Randomness model;
  model.setRandomGenerator(generator);
  model.setBoundary(lShape);
  EXPECT_EQ(model.getBoundingBox().getMinimum(), Vector<double>({-4, 0}));
  EXPECT_EQ(model.getBoundary().getSize(), 6);
  const int n = 28000; // 1000 per unit of area
  const Vertices<double> pattern = model.drawSample(n);
  std::map<std::pair<int, int>, int> counts;
  for (int i = 0; i < n; ++i)
  {
    ASSERT_TRUE(lShape.contains(pattern[i]));
    ++counts[{static_cast<int>(std::floor(pattern[i][0])), static_cast<int>(std::floor(pattern[i][1]))}];
  }
  ASSERT_EQ(counts.size(), 28u);
  double chi2 = 0;
  for (const auto& [cell, count] : counts) chi2 += (count - 1000.0) * (count - 1000.0) / 1000;
  EXPECT_LT(chi2, 46.96) << "the 99 % point of chi squared with 27 degrees of freedom";
}

TEST(CompleteRandomness, StaysInTheMaskAndInTheMesh)
{
  RandomGenerator generator(2);
  SpatialModelCompleteRandomness<float, unsigned short> masked;
  masked.setRandomGenerator(generator);
  expectError<UsageError>("no domain", [&] { masked.drawSample(1); });
  PixelMatrix<unsigned short> mask(3, 5);
  mask.setZeros();
  expectError<UsageError>("no domain", [&] { masked.setMask(mask), masked.drawSample(1); });
  mask(2, 1) = mask(0, 4) = 7;
  masked.setMask(mask);
  masked.setPixelSize({0.5f, 2});
  int numFirst = 0;
  const Vertices<float> pattern = masked.drawSample(1000);
  for (int i = 0; i < 1000; ++i)
  {
    const float x = pattern[i][0], y = pattern[i][1];
    const bool isFirst = x >= 0.5f && x <= 1 && y >= 4 && y <= 6, isSecond = x >= 2 && x <= 2.5f && y >= 0 && y <= 2;
    ASSERT_TRUE(isFirst || isSecond) << x << ", " << y;
    numFirst += isFirst;
  }
  EXPECT_NEAR(numFirst, 500, 60);

  const TriMesh<double> ring = torus(3, 1, 40, 30);
  Randomness inMesh;
  inMesh.setRandomGenerator(generator);
  inMesh.setTriMesh(ring);
  EXPECT_FALSE(inMesh.hasBoundary());
  const Vertices<double> inside = inMesh.drawSample(500);
  EXPECT_EQ(inside.getSpace(), 3);
  for (int i = 0; i < 500; ++i) ASSERT_TRUE(ring.contains(inside[i]));
}

TEST(CompleteRandomness, SamplesComeFromOneSeed)
{
  RandomGenerator first(3), second(3);
  Randomness model;
  model.setBoundary(lShape);
  expectError<UsageError>("no random generator", [&] { model.drawSample(1); });
  model.setRandomGenerator(first);
  const ShapeSet<double> samples = model.drawSamples(3, 4);
  ASSERT_EQ(samples.getSize(), 3);
  EXPECT_NE(samples[0].toVector(), samples[1].toVector());
  model.setRandomGenerator(second);
  const ShapeSet<double> same = model.drawSamples(2, 4);
  EXPECT_EQ(samples[1].toVector(), same[1].toVector());
}

TEST(CompleteRandomness, EndsWhenThereIsNoInside)
{
  RandomGenerator generator(4);
  Randomness model;
  model.setRandomGenerator(generator);
  model.setBoundary(closedCurve({{0, 0}, {1, 0}, {1, 1}, {0, 0}, {1, 0}, {1, 1}})); // twice around: all is outside
  expectError<UsageError>("No position", [&] { model.drawSample(1); });
  std::thread canceller(
      [&]
      {
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
        model.cancel();
      });
  EXPECT_THROW(model.drawSample(1), Cancelled);
  canceller.join();
}

TEST(Hardcore, KeepsAllDistances)
{
  RandomGenerator generator(5);
  for (const bool isInSpace : {false, true})
  {
    Hardcore model;
    model.setRandomGenerator(generator);
    isInSpace ? model.setTriMesh(torus(3, 1, 40, 30)) : model.setBoundary(lShape);
    Vector<double> distances(60);
    for (int i = 0; i < 60; ++i) distances[i] = i < 5 ? 0.4 : 0.005 * (i % 30);
    model.setHardcoreDistances(distances);
    const Vertices<double> obstacles = isInSpace ? patternOf({{3, 0, 0}, {-3, 0, 0}}) : patternOf({{0, 1}, {-3, 5}});
    model.setObstaclesPositions(obstacles);
    model.setObstaclesSizes({0.5, 0.9});
    for (int sample = 0; sample < 20; ++sample)
    {
      const Vertices<double> pattern = model.drawSample(60);
      EXPECT_TRUE(model.valid(pattern));
      for (int i = 0; i < 60; ++i)
        for (int k = 0; k < 2; ++k)
          ASSERT_GE(pattern[i].distance(obstacles[k]), model.getObstaclesSizes()[k] + distances[i]);
    }
  }
}

TEST(Hardcore, TellsValidPatterns)
{
  Hardcore model;
  model.setBoundary(closedCurve({{0, 0}, {10, 0}, {10, 10}, {0, 10}}));
  model.setHardcoreDistances({1, 2});
  const struct
  {
    std::vector<std::vector<double>> points;
    bool areObjectsClear, isBorderClear;
  } cases[] = {
      {{{1, 1}, {4, 2}}, true, true}, // as near as may be
      {{{1, 1}, {3.8, 2}}, false, true}, {{{5, 0.9}, {5, 7}}, true, false},
      {{{5, 5}, {5, 8.5}}, true, false}, {{{5, 5}, {5, 20}}, true, false}, // outside
  };
  for (const auto& c : cases)
  {
    const Vertices<double> pattern = patternOf(c.points);
    EXPECT_EQ(model.validInterObjectDistances(pattern), c.areObjectsClear);
    EXPECT_EQ(model.validObjectToBorderDistances(pattern), c.isBorderClear);
    EXPECT_EQ(model.valid(pattern), c.areObjectsClear && c.isBorderClear);
  }
  expectError<ProgramError>("The number of objects differs from the number of hardcore distances",
                            [&] { model.valid(Vertices<double>(2, 3)); });
}

TEST(Hardcore, FailsWhereNothingFits)
{
  using Clock = std::chrono::steady_clock;
  RandomGenerator generator(6);
  Hardcore model;
  model.setRandomGenerator(generator);
  model.setBoundary(closedCurve({{0, 0}, {10, 0}, {10, 10}, {0, 10}}));
  model.setHardcoreDistances(constant(3, 1));
  expectError<ProgramError>("The number of objects differs from the number of hardcore distances",
                            [&] { model.drawSample(4); });
  expectError<ValueError>("negative", [&] { model.setHardcoreDistances({1, -1}); });
  // Denser than chance can place, and denser than any placement.
  for (const auto& [number, distance] : {std::pair(1100, 0.14), std::pair(2000, 0.14), std::pair(1, 5.5)})
  {
    model.setHardcoreDistances(constant(number, distance));
    const auto start = Clock::now();
    testing::internal::CaptureStderr();
    expectError<UsageError>("Too many unsuccessful attemps to generate a vertex", [&] { model.drawSample(number); });
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "!!!!!!!!!!! ERROR !!!!!!!!!!\n");
    EXPECT_LT(Clock::now() - start, std::chrono::seconds(20));
  }
  model.setHardcoreDistances(constant(1100, 0.14));
  model.setMaxNumAttempts(1000000);
  std::thread canceller(
      [&]
      {
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        model.cancel();
      });
  EXPECT_THROW(model.drawSample(1100), Cancelled);
  canceller.join();
}
} // namespace
