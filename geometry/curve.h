#pragma once

#include "geometry/vertices.h"

#include <utility>
#include <vector>

/// Polygonal curve: vertices in order, closed by default; a closed curve joins its last vertex to the first.
///
/// Planar tests take the two coordinates that span the plane, usually 0 and 1. \throw RangeError  there are no such
/// coordinates, or they are the same
template <class T> class Curve : public Vertices<T>
{
public:
  explicit Curve(int space = 2, int size = 0, int capacity = 0, int growth = 0)
    : Vertices<T>(space, size, capacity, growth)
  {
  }
  /// A curve that shares the vertices of a set.
  explicit Curve(const Vertices<T>& vertices, bool open = false) : Vertices<T>(vertices), _open(open) {}

  Curve<T>* clone() const override { return new Curve<T>(*this); }
  ShapeType getShapeType() const override { return _open ? OpenCurveShape : ClosedCurveShape; }

  bool isOpen() const { return _open; }
  bool isClosed() const { return !_open; }
  void setOpen(bool open) { _open = open; }

  /// Number of edges: that of the vertices, for an open curve one less.
  int getNumEdges() const;
  /// Edge i joins vertex i to the next one. Unchecked.
  Edge<T> getEdge(int i) const;
  int getNumBlockEdges(int) const override { return getNumEdges(); }

  /// The length of each edge.
  std::vector<Real<T>> edgeLengths() const;
  /// Sum of the lengths of the edges.
  Real<T> length() const;
  /// Twice the signed area in the plane (i, j), positive when counter-clockwise; 0 for an open curve.
  double twiceArea(int i, int j) const;
  /// Sign of twiceArea(): 0 up to the tolerance Vector<T>::epsilon().
  int projectedAreaSign(int i, int j) const;
  bool isClockwise(int i, int j) const { return projectedAreaSign(i, j) == -1; }
  /// Reverses the vertices where needed; a curve of area sign 0 stays as it is.
  void setClockwise(bool clockwise, int i, int j);

  /// The point of the curve that is closest to a point, the first of equally close ones.
  /// \throw SizeError  there is no vertex at a finite distance, or the point has another dimension
  Vector<Real<T>> closestPoint(const Vector<T>& point) const;
  /// Root of the mean squared distance of the vertices from the closest points of a resampled curve; 0 without
  /// vertices. \throw SizeError  the dimensions differ, or the other curve has no edge with finite coordinates
  Real<T> resamplingError(const Curve<T>& resampled) const;

  // In the plane of coordinates i and j, exactly for the coordinates as they are. Coordinates that are not finite take
  // no part.
  /// Whether a point lies inside a closed curve or on it; where the curve crosses itself, every second part is inside.
  /// An open curve contains nothing.
  bool contains(const Vector<T>& point, int i = 0, int j = 1) const;
  /// Whether this closed curve contains all edges of another curve, which may touch it but not cross it; never when
  /// that has no edges.
  bool contains(const Curve<T>& curve, int i = 0, int j = 1) const;
  /// Whether the curves have a point in common.
  bool intersects(const Curve<T>& curve, int i = 0, int j = 1) const;
  /// The edges that have a point in common, (edge here, edge of the other curve), in ascending order.
  std::vector<std::pair<int, int>> intersectionIndexes(const Curve<T>& curve, int i = 0, int j = 1) const;
  /// Whether the curve meets itself elsewhere than where one edge ends and the next begins. Repeated vertices count
  /// once.
  bool selfIntersects(int i = 0, int j = 1) const;
  /// Unit normals at the vertices, the mean directions of those of the adjacent edges: to the right along the curve,
  /// hence outwards when it runs counter-clockwise. 0 where the edges have no length or fold back.
  Vertices<Real<T>> normals(int i = 0, int j = 1) const;

  /// Continues this curve by the vertices of another one. Where that begins at the last vertex of this one, the vertex
  /// is not repeated. \throw SizeError  the dimensions differ
  void join(const Curve<T>& curve);
  /// The open curves into which vertices i and j divide this one; see the next function.
  std::vector<Curve<T>> split(int i, int j) const { return split(std::vector<int>{i, j}); }
  /// The open curves into which vertices divide this one, each of which ends where the next one begins. In an open
  /// curve from its first vertex on; in a closed one from the smallest index on, around to the same vertex. Without
  /// indexes, the curve itself. \throw RangeError  there is no such vertex
  std::vector<Curve<T>> split(std::vector<int> indexes) const;
  /// Becomes the closed square from the origin to (side, side), counter-clockwise in the coordinates 0 and 1.
  /// \throw SizeError  this curve has one coordinate only
  void square(T side);

  /// The curve by n vertices at equal distances along it, from the first vertex on.
  /// \throw SizeError  this curve is empty or n negative
  Curve<T> resample(int n) const;
  /// Resamples to the size of `out` and replaces it.
  void resample(Curve<T>& out) const;

protected:
  bool isReadable(int shapeType) const override { return shapeType == ClosedCurveShape || shapeType == OpenCurveShape; }
  void setShapeType(int shapeType) override { _open = shapeType == OpenCurveShape; }

private:
  Curve<T> piece(int first, int last) const;

  bool _open = false;
};

GEOMETRY_EXTERN_TEMPLATE(Curve)
