#pragma once

#include <limits>
#include <memory>
#include <vector>

/// The point nearest to another one.
template <class R> struct Neighbour
{
  int index = -1; ///< the first of equally near points; -1 when there is none
  R squaredDistance = std::numeric_limits<R>::infinity();
};

/// Nearest neighbours among points in one to three dimensions, by a k-d tree. Points that are not finite are nobody's
/// neighbours and have none. Queries may come from several threads at once.
template <class R> class KdTree
{
public:
  /// From coordinates, point after point. \throw SizeError  the space is not 1, 2 or 3, or they do not make up points
  KdTree(int space, std::vector<R> coordinates);
  ~KdTree();

  Neighbour<R> nearest(const R* point) const;
  /// The neighbours of many points, given by their coordinates in the same space.
  std::vector<Neighbour<R>> nearest(const std::vector<R>& points) const;
  /// For each point of the tree its nearest other point, which may lie at the same place.
  std::vector<Neighbour<R>> nearestOthers() const;

private:
  class Searcher;
  template <int space> class SearcherIn;

  std::unique_ptr<const Searcher> _searcher;
};

extern template class KdTree<float>;
extern template class KdTree<double>;
extern template class KdTree<long double>;
