#include "analysis/spatial/spatialboundary.h"

#include "analysis/spatial/curveedges.h"
#include "geometry/trimeshindex.h"
#include "numeric/exception.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace
{

template <class T> bool isFinite(const T* point, int space)
{
  return std::all_of(point, point + space, [](T x) { return std::isfinite(x); });
}

template <class T> void requireFinite(const Vertices<T>& vertices, int space, const char* where)
{
  for (int i = 0; i < vertices.getSize(); ++i)
    if (!isFinite(vertices.data(i), space)) throw UsageError(where, "The boundary has coordinates that are not finite");
}

template <class T> BoundingBox<T> planeBox(const Curve<T>& curve)
{
  BoundingBox<T> box(2);
  for (int i = 0; i < curve.getSize(); ++i) box.add(curve.data(i));
  return box;
}

template <class T> class CurveBoundary : public SpatialBoundary<T>
{
public:
  explicit CurveBoundary(const Curve<T>& curve)
    : SpatialBoundary<T>(planeBox(curve)),
      _edges(planePoints(curve)),
      _area(static_cast<T>(std::abs(curve.twiceArea(0, 1)) / 2))
  {
  }

  T content() const override { return _area; }
  bool contains(const T* point) const override { return isFinite(point, 2) && _edges.contains(planePoint(point)); }
  void distances(const T* points, int count, T* results) const override
  {
    std::size_t edge = 0;
    for (int i = 0; i < count; ++i, points += 2)
      results[i] = isFinite(points, 2) ? static_cast<T>(std::sqrt(_edges.squaredDistance(planePoint(points), edge)))
                                       : std::numeric_limits<T>::infinity();
  }

private:
  using R = PredicateReal<T>;

  static PlanePoint<R> planePoint(const T* point) { return {static_cast<R>(point[0]), static_cast<R>(point[1])}; }
  static std::vector<PlanePoint<R>> planePoints(const Curve<T>& curve)
  {
    std::vector<PlanePoint<R>> points;
    for (int i = 0; i < curve.getSize(); ++i) points.push_back(planePoint(curve.data(i)));
    return points;
  }

  CurveEdges<R> _edges;
  T _area;
};

template <class T> class MeshBoundary : public SpatialBoundary<T>
{
public:
  explicit MeshBoundary(const TriMesh<T>& mesh)
    : SpatialBoundary<T>(mesh.boundingBox()), _mesh(mesh), _triangles(view()), _volume(mesh.volume())
  {
  }

  T content() const override { return _volume; }
  bool contains(const T* point) const override
  {
    return isFinite(point, 3) && _triangles.contains(view(), {point[0], point[1], point[2]});
  }
  void distances(const T* points, int count, T* results) const override
  {
    Vector3d<T> closest;
    for (int i = 0; i < count; ++i, points += 3)
      results[i] = isFinite(points, 3)
                       ? std::sqrt(_triangles.closestPoint(view(), {points[0], points[1], points[2]}, closest))
                       : std::numeric_limits<T>::infinity();
  }

private:
  TriangleView<T> view() const { return {_mesh.data(), _mesh.corners(0), _mesh.getNumTriangleSlots()}; }

  const TriMesh<T> _mesh;
  TriangleTree<T> _triangles;
  T _volume;
};

} // namespace

template <class T> std::unique_ptr<const SpatialBoundary<T>> makeBoundary(const Curve<T>& curve)
{
  const char* const where = "std::unique_ptr<const SpatialBoundary<T>> makeBoundary(const Curve<T>&)";
  if (curve.getSpace() < 2) throw UsageError(where, "The boundary is not in the plane");
  requireFinite(curve, 2, where);
  const double area = std::abs(curve.twiceArea(0, 1));
  if (!(area > 0) || !std::isfinite(area)) throw UsageError(where, "The boundary encloses no area");
  return std::make_unique<CurveBoundary<T>>(curve);
}

template <class T> std::unique_ptr<const SpatialBoundary<T>> makeBoundary(const TriMesh<T>& mesh)
{
  const char* const where = "std::unique_ptr<const SpatialBoundary<T>> makeBoundary(const TriMesh<T>&)";
  if (mesh.getSpace() != 3) throw UsageError(where, "The boundary is not in space");
  requireFinite(mesh, 3, where);
  const T volume = mesh.getNumTriangles() > 0 ? mesh.volume() : T(0);
  if (!(volume > 0) || !std::isfinite(volume)) throw UsageError(where, "The boundary encloses no volume");
  return std::make_unique<MeshBoundary<T>>(mesh);
}

#define SPATIAL_INSTANTIATE_BOUNDARY(T)                                                                                \
  template std::unique_ptr<const SpatialBoundary<T>> makeBoundary(const Curve<T>&);                                    \
  template std::unique_ptr<const SpatialBoundary<T>> makeBoundary(const TriMesh<T>&);
SPATIAL_INSTANTIATE_BOUNDARY(float)
SPATIAL_INSTANTIATE_BOUNDARY(double)
SPATIAL_INSTANTIATE_BOUNDARY(long double)
