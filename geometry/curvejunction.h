#pragma once

#include "geometry/curve.h"

#include <vector>

/// Several closed contours of one height brought together into one simple contour further on.
///
/// At a height of their own lie copies of the contours, into which bridges are inserted: a minimum spanning tree of
/// segments between their closest points. A tour runs around copies and bridges, passing every edge of a copy once and
/// every bridge once in each direction. The merged contour, again at a height of its own, has a vertex for each vertex
/// on the tour; at the bridges the two passes are moved apart, so that it is the outline of the contours and of
/// corridors between them. All contours must have an extent and the same orientation.
template <class T> class CurveJunction
{
public:
  /// \param contours  two or more, in 3D
  CurveJunction(const std::vector<const Curve<T>*>& contours, T copyHeight, T mergedHeight);

  /// The copy of contour i: its vertices and, among them, the ends of bridges.
  const Curve<T>& getCopy(int i) const { return _copies[static_cast<std::size_t>(i)].curve; }
  /// For each vertex of copy i, the vertex of the contour at it or before it.
  const std::vector<int>& getOrigins(int i) const { return _copies[static_cast<std::size_t>(i)].origins; }

  /// A vertex of a copy on the tour and the vertex of the merged contour that belongs to it: the same one as for the
  /// stop before, or the next one.
  struct Stop
  {
    int copy;
    int vertex;
    int merged;
  };
  const std::vector<Stop>& getTour() const { return _tour; }
  const Curve<T>& getMerged() const { return _merged; }

private:
  struct Copy
  {
    Curve<T> curve = Curve<T>(3);
    std::vector<int> origins;
    std::vector<std::vector<int>> bridgesAt; // ends, in the order in which the tour crosses them
  };

  /// A place on a contour: `share` of the way from vertex `edge` to the next one, 0 <= share < 1.
  struct Place
  {
    int edge = 0;
    T share = 0;
  };

  /// The end of a bridge. The ends of bridge k are 2k and 2k + 1: the other end of e is e ^ 1.
  struct BridgeEnd
  {
    int copy = 0;
    Place place;
    int vertex = 0; // of the copy
  };

  struct Bridge
  {
    T squaredLength;
    BridgeEnd from, to;
  };

  void findBridges(const std::vector<const Curve<T>*>& contours);
  /// The shortest bridge between two contours, if it is shorter than the limit; else one of the limit's length.
  static Bridge closestPlaces(const std::vector<const Curve<T>*>& contours, int from, int to, T squaredLimit);
  void makeCopy(int i, const Curve<T>& contour, T height);
  void sortBridges(Copy& copy) const;
  void walk(T mergedHeight);
  void appendStop(int copy, int vertex, int arriving, int leaving, T mergedHeight);
  void closeMerged();

  const T* pointOf(const BridgeEnd& end) const
  {
    return _copies[static_cast<std::size_t>(end.copy)].curve.data(end.vertex);
  }
  const T* pointAcross(int end) const { return pointOf(_bridgeEnds[static_cast<std::size_t>(end ^ 1)]); }
  /// Moves the point of a stop away from the tour's other stops at the same vertex, along the edges of the copy or
  /// between two bridges. `arriving` and `leaving` are ends of bridges at the vertex, -1 for edges of the copy.
  void moveApart(T* point, const Copy& copy, int vertex, int arriving, int leaving) const;

  std::vector<Copy> _copies;
  std::vector<BridgeEnd> _bridgeEnds;
  std::vector<Stop> _tour;
  Curve<T> _merged = Curve<T>(3);
};

GEOMETRY_EXTERN_TEMPLATE_REAL(CurveJunction)
