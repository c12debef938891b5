#pragma once

#include "geometry/curve.h"

/// Leaves out vertices that a drawn curve hardly needs, by recursive division.
///
/// A chain of vertices becomes a straight edge when all its vertices lie within the tolerance of it; otherwise it is
/// divided at the vertex that is farthest from the edge. Both ends of an open curve stay, and vertex 0 of a closed one
/// with the vertex farthest from it. Distances are those to the edge itself, in two or three dimensions. Takes
/// quadratic time at worst; DouglasPeuckerCurveDecimation is for curves of very many vertices. Source: U. Ramer, "An
/// iterative procedure for the polygonal approximation of plane curves", 1972.
template <class T> class CurveDecimation
{
public:
  /// The tolerance is in the unit of the coordinates, 1 at first. \throw ValueError  it is negative or NaN
  explicit CurveDecimation(Real<T> tolerance = 1) { setTolerance(tolerance); }
  void setTolerance(Real<T> tolerance);

  /// Replaces `out` by what is left of the curve.
  void apply(const Curve<T>& curve, Curve<T>& out) const;

private:
  Real<T> _tolerance;
};

GEOMETRY_EXTERN_TEMPLATE(CurveDecimation)
