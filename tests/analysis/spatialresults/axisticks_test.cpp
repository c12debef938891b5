#include "analysis/spatialresults/axisticks.h"

#include <gmock/gmock.h>

#include <cmath>

TEST(AxisTicks, AreRoundNumbersUpToTheLast)
{
  const struct
  {
    double last;
    int maxNumSteps;
    std::vector<double> ticks;
  } cases[] = {
      {1, 5, {0, 0.2, 0.4, 0.6, 0.8, 1}},
      {1, 10, {0, 0.1, 0.2, 0.3, 0.4, 0.5, 0.6, 0.7, 0.8, 0.9, 1}},
      {0.37, 4, {0, 0.1, 0.2, 0.3}},
      {7, 3, {0, 5}},
      {9, 1, {0}}, // the step is 10
      {3e-6, 3, {0, 1e-6, 2e-6, 3e-6}},
      {4.2e7, 9, {0, 5e6, 1e7, 1.5e7, 2e7, 2.5e7, 3e7, 3.5e7, 4e7}},
      {0, 5, {0}},
      {-1, 5, {0}},
      {1, 0, {0}},
      {std::nan(""), 5, {0}},
      {INFINITY, 5, {0}},
  };
  for (const auto& c : cases)
  {
    SCOPED_TRACE(c.last);
    std::vector<testing::Matcher<double>> expected;
    for (const double tick : c.ticks) expected.push_back(testing::DoubleNear(tick, 1e-9 * c.ticks.back()));
    EXPECT_THAT(axisTicks(c.last, c.maxNumSteps), testing::ElementsAreArray(expected));
  }
}
