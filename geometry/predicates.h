#pragma once

#include "geometry/vectors3d.h"

#include <cmath>
#include <limits>
#include <type_traits>

// Signs of determinants of points, exact whatever their rounding errors, as long as nothing over- or underflows.
// Source: J. R. Shewchuk, "Adaptive precision floating-point arithmetic and fast robust geometric predicates", 1997.

/// Type in which the coordinates of T are compared: holds every one of them exactly.
template <class T> using PredicateReal = std::conditional_t<std::is_same_v<T, long double>, long double, double>;

template <class R> struct PlanePoint
{
  R x;
  R y;
  bool operator==(const PlanePoint&) const = default;
};

/// The exact part of orientation(), for points that are nearly on one line.
int exactOrientation(const PlanePoint<double>& a, const PlanePoint<double>& b, const PlanePoint<double>& c);
int exactOrientation(const PlanePoint<long double>& a, const PlanePoint<long double>& b,
                     const PlanePoint<long double>& c);

/// 1 when a, b and c run counter-clockwise, -1 when clockwise, 0 on one line or when a coordinate is not finite.
template <class R> int orientation(const PlanePoint<R>& a, const PlanePoint<R>& b, const PlanePoint<R>& c)
{
  constexpr R epsilon = std::numeric_limits<R>::epsilon() / 2;
  constexpr R errorBound = (3 + 16 * epsilon) * epsilon;
  const R left = (a.x - c.x) * (b.y - c.y), right = (a.y - c.y) * (b.x - c.x);
  const R determinant = left - right, error = errorBound * (std::abs(left) + std::abs(right));
  if (determinant > error) return 1;
  if (-determinant > error) return -1;
  return exactOrientation(a, b, c);
}

/// 1 when d lies on the side of the plane through a, b and c from which they run clockwise, -1 on the other side, 0 in
/// the plane or when a coordinate is not finite.
int orientation(const Vector3d<double>& a, const Vector3d<double>& b, const Vector3d<double>& c,
                const Vector3d<double>& d);
int orientation(const Vector3d<long double>& a, const Vector3d<long double>& b, const Vector3d<long double>& c,
                const Vector3d<long double>& d);

/// True when c lies in the box of the segment from a to b, hence on it if all three are on one line.
template <class R> bool isBetween(const PlanePoint<R>& a, const PlanePoint<R>& b, const PlanePoint<R>& c)
{
  return ((a.x <= c.x && c.x <= b.x) || (a.x >= c.x && c.x >= b.x)) &&
         ((a.y <= c.y && c.y <= b.y) || (a.y >= c.y && c.y >= b.y));
}

/// True when c lies on the segment from a to b.
template <class R> bool isOnSegment(const PlanePoint<R>& a, const PlanePoint<R>& b, const PlanePoint<R>& c)
{
  return isBetween(a, b, c) && orientation(a, b, c) == 0;
}

/// True when the segments from a to b and from c to d share a point.
template <class R>
bool segmentsIntersect(const PlanePoint<R>& a, const PlanePoint<R>& b, const PlanePoint<R>& c, const PlanePoint<R>& d)
{
  const int abc = orientation(a, b, c), abd = orientation(a, b, d);
  if (abc * abd > 0) return false;
  const int cda = orientation(c, d, a), cdb = orientation(c, d, b);
  if (cda * cdb > 0) return false;
  if (abc * abd * cda * cdb != 0) return true;
  return (abc == 0 && isBetween(a, b, c)) || (abd == 0 && isBetween(a, b, d)) || (cda == 0 && isBetween(c, d, a)) ||
         (cdb == 0 && isBetween(c, d, b));
}
