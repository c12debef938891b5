#pragma once

#include "geometry/curve.h"

/// Douglas-Peucker decimation in the plane of the first two coordinates, for curves of any number of vertices.
///
/// A chain of vertices becomes a straight edge when all its vertices lie within the tolerance of the line through it
/// and reach no farther beyond its ends; otherwise it is divided at the vertex that deviates most. Both ends of an open
/// curve stay, and vertex 0 of a closed one with the vertex farthest from it. Each division searches convex hulls of
/// pieces of the curve in the time of a squared logarithm, so that n vertices take n log^2 n at worst; unlike path
/// hulls this also holds where the curve crosses itself. Sources: D. H. Douglas and T. K. Peucker, "Algorithms for the
/// reduction of the number of points required to represent a digitized line or its caricature", 1973; hulls after J.
/// Hershberger and J. Snoeyink, "Speeding up the Douglas-Peucker line-simplification algorithm", 1992.
template <class T> class DouglasPeuckerCurveDecimation
{
public:
  /// The tolerance is in the unit of the coordinates, 1 at first. \throw ValueError  it is negative or NaN
  explicit DouglasPeuckerCurveDecimation(Real<T> tolerance = 1) { setTolerance(tolerance); }
  void setTolerance(Real<T> tolerance);

  /// Replaces `out` by what is left of the curve.
  /// \throw SizeError  the curve has less than two dimensions \throw MathError  a coordinate is not finite
  void apply(const Curve<T>& curve, Curve<T>& out) const;

private:
  Real<T> _tolerance;
};

GEOMETRY_EXTERN_TEMPLATE(DouglasPeuckerCurveDecimation)
