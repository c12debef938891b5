#pragma once

#include "geometry/triangulationcode.h"

/// The stitching with the least sum of squared lengths of the triangles' edges between the curves: the cheapest path
/// across the grid of vertex pairs (k, l), over all starting vertices of a; the walk starts at vertex 0 of b. Both
/// curves are closed, or both open and walked from their first to their last vertices.
/// Time is na nb log(na), memory na nb bytes for curves of na and nb vertices.
/// Source: Fuchs, Kedem and Uselton, "Optimal surface reconstruction from planar contours", 1977.
/// \param cost  receives the path's cost when given
template <class T>
TriangulationCode computeOptimalTriangulationCode(const Curve<T>& a, const Curve<T>& b, T* cost = nullptr);

/// Where a stitching of two closed curves goes around one of them without a step on the other in between, the edge from
/// which it does so has four triangles. Gives the cheapest stitching that takes one step of the other curve, or one of
/// the same, elsewhere; any other stitching as it is.
template <class T>
TriangulationCode withoutFullTurn(const TriangulationCode& code, const Curve<T>& a, const Curve<T>& b);
