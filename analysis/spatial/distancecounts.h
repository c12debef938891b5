#pragma once

#include "geometry/coordinatetypes.h"

#include <cstdint>
#include <span>
#include <vector>

/// Numbers of distances up to each multiple of a precision: what their CDF on that grid needs, however many there are.
template <class T> class DistanceCounts
{
public:
  /// The most grid points that are counted.
  static constexpr int maxGridSize = 1000000;

  /// \throw ValueError  the precision is not a positive number
  explicit DistanceCounts(T precision);

  /// \throw ValueError  a distance is negative or no number, or lies beyond the most grid points
  void add(std::span<const T> distances);

  T getPrecision() const { return _precision; }
  std::int64_t getNumDistances() const { return _numDistances; }
  /// Number of multiples of the precision, 0 included, that are not above the largest distance; 1 without distances.
  int getGridSize() const;
  /// The CDF on the grid 0, p, 2 p, ... up to the first point that no distance is above. Without distances, {1}.
  std::vector<T> cdf() const;

private:
  T _precision;
  T _largest = 0;
  std::int64_t _numDistances = 0;
  std::vector<std::int64_t> _counts; // of distances d with (j - 1) p < d <= j p
};

GEOMETRY_EXTERN_TEMPLATE_REAL(DistanceCounts)
