#include "geometry/trimesh.h"
#include "geometry/vectors3d.h"

#include <algorithm>
#include <numbers>
#include <utility>

namespace
{

/// The angle between two directions whose cross product has the given norm.
template <class R> R angleBetween(const Vector3d<R>& a, const Vector3d<R>& b, R crossNorm)
{
  return std::atan2(crossNorm, dotProduct(a, b));
}

template <class R, class T> void add(T* sum, const Vector3d<R>& direction, R weight)
{
  for (int k = 0; k < 3; ++k) sum[k] += weight * direction[k];
}

template <class T> void normalize(T* vector)
{
  const Vector3d<T> unit = normalized(Vector3d<T>{vector[0], vector[1], vector[2]});
  std::copy(unit.begin(), unit.end(), vector);
}

} // namespace

template <class T> void TriMesh<T>::computeNormals()
{
  const char* const where = "void TriMesh<T>::computeNormals()";
  requireSpace3(where);
  if constexpr (std::is_integral_v<T>)
    throw notAvailable<T>(where);
  else
  {
    requireConsistency(where);
    Vertices<T> normals(3, this->getSize());
    T* const sums = normals.data();
    const T* const points = std::as_const(*this).data();
    for (int i = 0; i < getNumTriangleSlots(); ++i)
    {
      if (!hasTriangle(i)) continue;
      const std::ptrdiff_t a = 3L * corners(i)[0], b = 3L * corners(i)[1], c = 3L * corners(i)[2];
      const Vector3d<T> ab = difference<T>(points + b, points + a);
      const Vector3d<T> ac = difference<T>(points + c, points + a);
      const Vector3d<T> bc = difference<T>(points + c, points + b);
      const Vector3d<T> cross = crossProduct(ab, ac);
      const T crossNorm = norm(cross); // the same at all three corners
      const Vector3d<T> normal = normalized(cross);
      const T angleA = angleBetween(ab, ac, crossNorm);
      const T angleC = angleBetween(ac, bc, crossNorm);
      add(sums + a, normal, angleA);
      add(sums + b, normal, std::numbers::pi_v<T> - angleA - angleC);
      add(sums + c, normal, angleC);
    }
    for (int i = 0; i < normals.getSize(); ++i) normalize(sums + 3 * static_cast<std::ptrdiff_t>(i));
    _normals = normals;
  }
}

GEOMETRY_INSTANTIATE(TriMesh)
