#pragma once

#include "geometry/predicates.h"

#include <cstddef>
#include <vector>

/// The edges of a closed polygon in the plane, indexed for queries by position. Queries may come from several threads.
template <class R> class CurveEdges
{
public:
  /// From vertices with finite coordinates, one at least.
  explicit CurveEdges(std::vector<PlanePoint<R>> vertices);

  /// Whether a point lies inside or on the polygon, by the even-odd rule, exactly.
  bool contains(const PlanePoint<R>& point) const;
  /// The squared distance of the polygon from a point. The search begins at an edge, for which the one that is found
  /// takes place: that of a point nearby makes it short.
  R squaredDistance(const PlanePoint<R>& point, std::size_t& edge) const;

private:
  struct Box
  {
    R lowX, lowY, highX, highY;
  };
  static constexpr std::size_t leafSize = 4;

  const PlanePoint<R>& begin(std::size_t edge) const { return _vertices[edge]; }
  const PlanePoint<R>& end(std::size_t edge) const { return _vertices[edge + 1 < _vertices.size() ? edge + 1 : 0]; }
  R edgeDistance(std::size_t edge, const PlanePoint<R>& point) const;
  void buildRows();
  void buildBoxes();
  std::size_t rowOf(R y) const;

  std::vector<PlanePoint<R>> _vertices; // edge i begins at vertex i
  // Rows of equal height and the edges that reach into each.
  R _lowY = 0, _highY = 0, _rowsPerLength = 0;
  std::vector<std::size_t> _rowBegins;
  std::vector<std::size_t> _rowEdges;
  // A full binary tree of boxes: the children of box i are 2 i + 1 and 2 i + 2, its leaves runs of edges in order, as
  // edges that follow each other lie near each other.
  std::size_t _numLeaves = 1;
  std::vector<Box> _boxes;
};

extern template class CurveEdges<double>;
extern template class CurveEdges<long double>;
