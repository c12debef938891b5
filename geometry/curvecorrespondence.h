#pragma once

#include "geometry/curve.h"
#include "numeric/matrix.h"

#include <vector>

/// Curves of two levels that belong together, by their numbers in their levels.
struct CurveGroup
{
  std::vector<int> lower;
  std::vector<int> upper;
};

/// What it costs to join curves of two neighbouring levels: a row per lower and a column per upper curve.
///
/// Criterion 2: squared distance of the closest vertices. 3: mean distance from the vertices of each curve to the other
/// curve, both ways. 4: share of the area that both cover which they do not have in common, 0 to 1. 5: sum of the
/// squared distances of the corners of the bounding boxes. Any other value: squared distance of the centres of gravity.
/// Source of 4: Meyers, Skinner and Sloan, "Surfaces from contours", 1992 (correspondence by overlap).
template <class T> Matrix<T> meshCost(unsigned int criterion, const std::vector<const Curve<T>*>& lower,
                                      const std::vector<const Curve<T>*>& upper);

/// Links each curve to its cheapest partner in the other level, the first one on a tie, and gathers what hangs
/// together.
template <class T> std::vector<CurveGroup> associationSearch(const Matrix<T>& costs);
