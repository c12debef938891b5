#pragma once

#include "geometry/curve.h"
#include "geometry/predicates.h"
#include "numeric/exception.h"

#include <vector>

/// \throw RangeError  one of the coordinates i and j is not below `space`, or they are the same
inline void requirePlane(int i, int j, int space, const char* where)
{
  if (i < 0 || i >= space || j < 0 || j >= space || i == j)
    throw RangeError(where, "There is no such plane of coordinates");
}

/// The vertices of a curve in the plane of the coordinates i and j. Unchecked.
template <class T> std::vector<PlanePoint<PredicateReal<T>>> planeProjection(const Curve<T>& curve, int i, int j)
{
  using P = PredicateReal<T>;
  std::vector<PlanePoint<P>> points;
  points.reserve(static_cast<std::size_t>(curve.getSize()));
  for (int k = 0; k < curve.getSize(); ++k)
    points.push_back({static_cast<P>(curve.data(k)[i]), static_cast<P>(curve.data(k)[j])});
  return points;
}
