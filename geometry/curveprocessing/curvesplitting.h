#pragma once

#include "geometry/curve.h"

#include <vector>

/// Cuts a planar curve along the segment from a to b. The pieces keep the sense of the curve and meet in the points
/// where the segment crosses it.
///
/// A closed curve comes apart along those chords of the segment that lie inside it, by the even-odd rule, with both
/// ends on the segment; an open one wherever the segment crosses it. Empty when nothing comes apart.
std::vector<Curve<double>> splitCurve(const Curve<double>& curve, const Vector<double>& a, const Vector<double>& b);
