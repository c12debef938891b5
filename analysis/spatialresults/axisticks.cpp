#include "analysis/spatialresults/axisticks.h"

#include <cmath>

namespace
{
constexpr double rounding = 1e-9; // of a number of steps

double roundStep(double leastStep)
{
  const double power = std::pow(10.0, std::floor(std::log10(leastStep)));
  for (const double factor : {1.0, 2.0, 5.0})
    if (factor * power >= leastStep * (1 - rounding)) return factor * power;
  return 10 * power;
}
} // namespace

std::vector<double> axisTicks(double last, int maxNumSteps)
{
  std::vector<double> ticks = {0};
  if (!(last > 0 && std::isfinite(last)) || maxNumSteps < 1) return ticks;
  const double step = roundStep(last / maxNumSteps);
  const int numSteps = static_cast<int>(std::floor(last / step + rounding));
  for (int i = 1; i <= numSteps; ++i) ticks.push_back(i * step);
  return ticks;
}
