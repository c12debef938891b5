#pragma once

#include "geometry/curve.h"
#include "geometry/triangulationcode.h"

#include <vector>

/// The shape of the strip between two contours of a junction, looked at in the plane of the first two coordinates.
/// @{

/// Numbers of the vertices of the convex hull, in the order of the curve.
/// Source: Andrew, "Another efficient algorithm for convex hulls in two dimensions", 1979.
template <class T> std::vector<int> convexHull(const Curve<T>& curve);

/// Number of crossings of the strip's sections with themselves, at three heights between the curves; 0 for a strip
/// that does not cross itself.
template <class T> int numSectionCrossings(const Curve<T>& a, const Curve<T>& b, const TriangulationCode& code);
/// @}
