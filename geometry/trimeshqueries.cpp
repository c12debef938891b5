#include "geometry/trimesh.h"

#include <algorithm>
#include <cmath>

template <class T> Vector<int> TriMesh<T>::neighbours(int vertex) const
{
  requireVertex(vertex, "Vector<int> TriMesh<T>::neighbours(int) const");
  std::vector<int> found;
  for (const int triangle : stars().star(vertex)) found.insert(found.end(), corners(triangle), corners(triangle) + 3);
  std::sort(found.begin(), found.end());
  found.erase(std::unique(found.begin(), found.end()), found.end());
  std::erase_if(found, [this, vertex](int other) { return other == vertex || other >= this->getSize(); });
  return Vector<int>(found);
}

template <class T> Vector<int> TriMesh<T>::star(int vertex) const
{
  requireVertex(vertex, "Vector<int> TriMesh<T>::star(int) const");
  const std::span<const int> triangles = stars().star(vertex);
  return Vector<int>(std::vector<int>(triangles.begin(), triangles.end()));
}

template <class T> Real<T> TriMesh<T>::closestPoint(const Vector<T>& point, Vector<Real<T>>& result) const
{
  const char* const where = "T TriMesh<T>::closestPoint(const Vector<T>&, Vector<T>&) const";
  requireSpace3(where);
  if (point.getSize() != 3) throw SizeError(where, "The point is not in three dimensions");
  using R = Real<T>;
  const Vector3d<R> from = {static_cast<R>(point[0]), static_cast<R>(point[1]), static_cast<R>(point[2])};
  Vector3d<R> closest = {};
  const R squaredDistance = tree().closestPoint(view(), from, closest);
  if (!(squaredDistance < TreeBox<R>::infinity)) throw SizeError(where, "There is no surface at a finite distance");
  result = Vector<R>{closest[0], closest[1], closest[2]};
  return std::sqrt(squaredDistance);
}

template <class T> bool TriMesh<T>::contains(const Vector<T>& point) const
{
  const char* const where = "bool TriMesh<T>::contains(const Vector<T>&) const";
  requireSpace3(where);
  if (point.getSize() != 3) throw SizeError(where, "The point is not in three dimensions");
  using R = Real<T>;
  for (int k = 0; k < 3; ++k)
    if (!std::isfinite(static_cast<R>(point[k]))) return false;
  return tree().contains(view(), {static_cast<R>(point[0]), static_cast<R>(point[1]), static_cast<R>(point[2])});
}

template <class T> void TriMesh<T>::noteTriangleChange()
{
  _stars.drop();
  _tree.drop();
}

// The stars depend on the triangles, a change of which drops them, and on the number of vertices.
template <class T> const TriangleStars& TriMesh<T>::stars() const
{
  const int numVertices = this->getSize();
  return _stars.get(static_cast<std::uint64_t>(numVertices) + 1,
                    [&] { return TriangleStars(_indexes.data(), getNumTriangleSlots(), numVertices); });
}

template <class T> const TriangleTree<T>& TriMesh<T>::tree() const
{
  return _tree.get(this->getServer().getStateNumber(),
                   [this]
                   {
                     requireConsistency("const TriangleTree<T>& TriMesh<T>::tree() const");
                     return TriangleTree<T>(view());
                   });
}

GEOMETRY_INSTANTIATE(TriMesh)
