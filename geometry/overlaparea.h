#pragma once

#include "geometry/curve.h"

/// Area in the plane of the first two coordinates that lies in both of two closed curves by the even-odd rule; that of
/// the curve itself when both are the same. Time is quadratic in the number of edges.
template <class T> double overlapArea(const Curve<T>& a, const Curve<T>& b);
