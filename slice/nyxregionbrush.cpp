#include "slice/nyxregionbrush.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

RLEItemSet clippedTo(const BoundingBox<int>& box, const RLEItemSet& set)
{
  std::vector<RLEItem> runs;
  for (const RLEItem& run : set.getItems())
  {
    const int x = run.getOriginX();
    const int begin = std::max(run.begin(), box.getMinimum()[1]);
    const int end = std::min(run.end(), box.getMaximum()[1]);
    if (x >= box.getMinimum()[0] && x <= box.getMaximum()[0] && begin <= end)
      runs.emplace_back(x, begin, end - begin + 1);
  }
  return RLEItemSet(std::move(runs));
}

RLEItemSet brushStroke(const BoundingBox<int>& box, const Vector<int>& from, const Vector<int>& to, int radius)
{
  const int dx = to[0] - from[0];
  const int dy = to[1] - from[1];
  const int spacing = std::max(1, radius / 4); // close enough for a smooth border
  const int numSteps = (std::max(std::abs(dx), std::abs(dy)) + spacing - 1) / spacing;
  RLEItemSet stroke, disc;
  for (int k = 0; k <= numSteps; ++k)
  {
    const double share = numSteps == 0 ? 1 : static_cast<double>(k) / numSteps;
    disc.setBall(Vector<int>{from[0] + static_cast<int>(std::lround(share * dx)),
                             from[1] + static_cast<int>(std::lround(share * dy))},
                 radius);
    stroke.add(disc);
  }
  return clippedTo(box, stroke);
}
