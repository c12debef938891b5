#pragma once

#include "geometry/vertices.h"

#include <memory>

/// Distances to the nearest of a set of points, in the plane or in space, by a grid of cells or, where the points
/// crowd, a k-d tree. It gives distances only: not having to tell equally near points apart, it is faster than KdTree.
template <class T> class NearestDistances
{
public:
  /// \throw SizeError  there is no point, or they are neither in the plane nor in space   \throw ValueError  one of
  /// them is not finite
  explicit NearestDistances(const Vertices<T>& points);
  ~NearestDistances();

  /// From each of `count` places, given by their coordinates, to the nearest point; infinite when the place is not
  /// finite. Fast when places that follow each other lie near each other.
  void toNearest(const T* places, int count, T* distances) const;
  /// From each point to the nearest other one, in no order; infinite when there is none.
  void toNearestOther(T* distances) const;

private:
  class Searcher;
  template <class Index> class SearcherIn;

  template <int space> void build(const Vertices<T>& points);

  std::unique_ptr<const Searcher> _searcher;
};

/// The points in an order in which those that follow each other lie near each other.
template <class T> Vertices<T> inPathOrder(const Vertices<T>& points);

GEOMETRY_EXTERN_TEMPLATE_REAL(NearestDistances)
extern template Vertices<float> inPathOrder(const Vertices<float>&);
extern template Vertices<double> inPathOrder(const Vertices<double>&);
extern template Vertices<long double> inPathOrder(const Vertices<long double>&);
