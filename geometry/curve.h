#pragma once

#include "geometry/edgeiterator.h"
#include "geometry/vertices.h"

/// Polygonal curve: vertices in order, closed by default; a closed curve joins its last vertex to the first.
///
/// Planar tests take the two coordinates that span the plane, usually 0 and 1.
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
  EdgeIterator<T> edgeIterator() const { return EdgeIterator<T>(*this); }

  /// Sum of the lengths of the edges.
  Real<T> length() const;
  /// Twice the signed area in the plane (i, j), positive when counter-clockwise; 0 for an open curve.
  double twiceArea(int i, int j) const;
  /// Sign of twiceArea(): 0 up to the tolerance Vector<T>::epsilon().
  int projectedAreaSign(int i, int j) const;
  bool isClockwise(int i, int j) const { return projectedAreaSign(i, j) == -1; }
  /// Reverses the vertices where needed; a curve of area sign 0 stays as it is.
  void setClockwise(bool clockwise, int i, int j);

  /// The curve by n vertices at equal distances along it, from the first vertex on.
  /// \throw SizeError  this curve is empty or n negative
  Curve<T> resample(int n) const;
  /// Resamples to the size of `out` and replaces it.
  void resample(Curve<T>& out) const;

protected:
  bool isReadable(int shapeType) const override { return shapeType == ClosedCurveShape || shapeType == OpenCurveShape; }
  void setShapeType(int shapeType) override { _open = shapeType == OpenCurveShape; }

private:
  bool _open = false;
};

GEOMETRY_EXTERN_TEMPLATE(Curve)
