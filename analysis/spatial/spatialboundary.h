#pragma once

#include "geometry/boundingbox.h"
#include "geometry/curve.h"
#include "geometry/trimesh.h"

#include <memory>

/// The border of a domain in the plane or in space, with an index for queries, which may come from several threads.
template <class T> class SpatialBoundary
{
public:
  virtual ~SpatialBoundary() = default;

  /// 2 or 3.
  int getSpace() const { return _box.getSpace(); }
  const BoundingBox<T>& getBoundingBox() const { return _box; }
  /// Length of the bounding box's diagonal.
  T diagonal() const { return _box.getMinimum().distance(_box.getMaximum()); }
  /// The enclosed area or volume.
  virtual T content() const = 0;
  /// Whether the domain or its border contains a point, given by getSpace() coordinates.
  virtual bool contains(const T* point) const = 0;
  /// Distances of points from the border: `count` times getSpace() coordinates. Those that are not finite have an
  /// infinite one.
  virtual void distances(const T* points, int count, T* results) const = 0;
  T distance(const T* point) const
  {
    T result = 0;
    distances(point, 1, &result);
    return result;
  }

protected:
  explicit SpatialBoundary(BoundingBox<T> box) : _box(std::move(box)) {}

private:
  BoundingBox<T> _box;
};

/// The border that a closed curve is, in its first two coordinates. A curve in space of one height bounds a domain in
/// the plane. \throw UsageError  the curve is open or not finite, or encloses no area
template <class T> std::unique_ptr<const SpatialBoundary<T>> makeBoundary(const Curve<T>& curve);
/// The border that a closed mesh is. \throw UsageError  it is not in space or not finite, or encloses no volume
template <class T> std::unique_ptr<const SpatialBoundary<T>> makeBoundary(const TriMesh<T>& mesh);

#define SPATIAL_EXTERN_BOUNDARY(T)                                                                                     \
  extern template std::unique_ptr<const SpatialBoundary<T>> makeBoundary(const Curve<T>&);                             \
  extern template std::unique_ptr<const SpatialBoundary<T>> makeBoundary(const TriMesh<T>&);
SPATIAL_EXTERN_BOUNDARY(float)
SPATIAL_EXTERN_BOUNDARY(double)
SPATIAL_EXTERN_BOUNDARY(long double)
