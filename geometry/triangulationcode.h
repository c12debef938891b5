#pragma once

#include "geometry/measuredcurve.h"

#include <vector>

/// How two curves are stitched: the vertices to start from and, step by step, the curve to advance on.
struct TriangulationCode
{
  int startA = 0;
  int startB = 0;
  std::vector<bool> stepsOnB; ///< true: advance on the second curve, false: on the first
};

/// The start of the stitching of two closed curves: the vertex of a nearest to where vertex 0 of b belongs, when both
/// are resampled alike and a is rotated to fit b best.
template <class T> int findCurvesClosestPoints(const MeasuredCurve<T>& a, const MeasuredCurve<T>& b);

/// Each step takes the curve whose next vertex stays closest to the progress (share of the length) of the other, b on
/// a tie. Both curves are closed or both open; open ones are walked from their first to their last vertices, closed
/// ones all around from the start that findCurvesClosestPoints() gives. Lengths must be positive and finite.
/// Source: Ganapathy and Dennehy, "A new general triangulation method for planar contours", 1982.
template <class T>
TriangulationCode computeTriangulationCodeGanapathy(const MeasuredCurve<T>& a, const MeasuredCurve<T>& b);
