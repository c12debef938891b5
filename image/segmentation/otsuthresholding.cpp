#include "image/segmentation/otsuthresholding.h"

int otsuBin(const Vector<long>& counts)
{
  long count = 0, sum = 0;
  for (int k = 0; k < counts.getSize(); ++k)
  {
    count += counts[k];
    sum += k * counts[k];
  }
  int best = 0;
  double bestVariance = 0;
  long count0 = 0, sum0 = 0;
  for (int k = 1; k < counts.getSize(); ++k)
  {
    count0 += counts[k - 1];
    sum0 += (k - 1) * counts[k - 1];
    if (count0 == 0 || count0 == count) continue;
    const auto c = static_cast<double>(count), c0 = static_cast<double>(count0), c1 = c - c0;
    const double distance = static_cast<double>(sum0) / c0 - static_cast<double>(sum - sum0) / c1;
    const double variance = (c0 / c) * (c1 / c) * distance * distance;
    if (variance <= bestVariance) continue;
    bestVariance = variance;
    best = k;
  }
  return best;
}
