#pragma once

#include "geometry/coordinatetypes.h"
#include "numeric/vector.h"

/// Box along the coordinate axes, its borders included; empty until a point is added.
template <class T> class BoundingBox
{
public:
  /// An empty box.
  explicit BoundingBox(int space = 2);
  /// The box between two corners, both included. \throw SizeError  the corners differ in dimension
  BoundingBox(const Vector<T>& minimum, const Vector<T>& maximum);

  int getSpace() const { return _minimum.getSize(); }
  /// True when the box holds no point.
  bool isEmpty() const;
  const Vector<T>& getMinimum() const { return _minimum; }
  const Vector<T>& getMaximum() const { return _maximum; }

  /// Grows the box so that it holds the point, given by getSpace() coordinates.
  void add(const T* point);
  void add(const Vector<T>& point) { add(&point[0]); }
  bool contains(const Vector<T>& point) const;
  /// The common part of two boxes of one space.
  BoundingBox<T> intersection(const BoundingBox<T>& box) const;

private:
  Vector<T> _minimum;
  Vector<T> _maximum;
};

GEOMETRY_EXTERN_TEMPLATE(BoundingBox)
