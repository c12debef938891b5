#include "analysis/spatial/pairdistances.h"

#include "numeric/targetclones.h"

#include <cmath>

namespace
{

template <class T> inline void fillDistances(const T* point, const T* const* axes, int space, int count, T* distances)
{
  const T *const xs = axes[0], *const ys = axes[1], *const zs = axes[2];
  const T x = point[0], y = point[1];
  if (space == 2)
  {
    for (int i = 0; i < count; ++i) distances[i] = std::sqrt((xs[i] - x) * (xs[i] - x) + (ys[i] - y) * (ys[i] - y));
    return;
  }
  const T z = point[2];
  for (int i = 0; i < count; ++i)
    distances[i] = std::sqrt((xs[i] - x) * (xs[i] - x) + (ys[i] - y) * (ys[i] - y) + (zs[i] - z) * (zs[i] - z));
}

/// The truncated quotient is at most two below the number that is looked for, never above it.
template <class T> inline void fillGridIndexes(const T* distances, int count, T precision, int* indexes)
{
  const T inverse = 1 / precision;
  for (int i = 0; i < count; ++i)
  {
    int index = static_cast<int>(distances[i] * inverse);
    index += static_cast<T>(index) * precision < distances[i] ? 1 : 0;
    index += static_cast<T>(index) * precision < distances[i] ? 1 : 0;
    indexes[i] = index;
  }
}

} // namespace

MIRELO_TARGET_CLONES void distancesFrom(const float* point, const float* const* axes, int space, int count,
                                        float* distances)
{
  fillDistances(point, axes, space, count, distances);
}

MIRELO_TARGET_CLONES void distancesFrom(const double* point, const double* const* axes, int space, int count,
                                        double* distances)
{
  fillDistances(point, axes, space, count, distances);
}

void distancesFrom(const long double* point, const long double* const* axes, int space, int count,
                   long double* distances)
{
  fillDistances(point, axes, space, count, distances);
}

MIRELO_TARGET_CLONES void gridIndexes(const float* distances, int count, float precision, int* indexes)
{
  fillGridIndexes(distances, count, precision, indexes);
}

MIRELO_TARGET_CLONES void gridIndexes(const double* distances, int count, double precision, int* indexes)
{
  fillGridIndexes(distances, count, precision, indexes);
}

void gridIndexes(const long double* distances, int count, long double precision, int* indexes)
{
  fillGridIndexes(distances, count, precision, indexes);
}
