#include "geometry/trimesh.h"
#include "numeric/targetclones.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>
#include <utility>

namespace
{
constexpr int blockSize = 1024;

/// A number of vectors in 3D, coordinate by coordinate.
template <class T> struct VectorBlock
{
  T x[blockSize], y[blockSize], z[blockSize];

  void set(int n, const T* vector)
  {
    x[n] = vector[0];
    y[n] = vector[1];
    z[n] = vector[2];
  }
};

/// The corners of a number of triangles, their normals, and the angles between their edges. Normals and angles of
/// triangles without area are 0.
template <class T> struct TriangleBlock
{
  VectorBlock<T> corners[3];
  VectorBlock<T> normals;
  T angles[3][blockSize];
};

/// The angle of a point in the upper half plane, from 0 to pi. Source for float: M. Abramowitz and I. Stegun, Handbook
/// of Mathematical Functions, 1964, formula 4.4.49 (error below 2e-8).
template <class T> [[gnu::always_inline]] inline T angleOf(T x, T y)
{
  if constexpr (!std::is_same_v<T, float>)
    return std::atan2(y, x);
  else
  {
    const float width = std::abs(x);
    const float ratio = y > width ? width / y : y / width;
    const float r2 = ratio * ratio;
    float sum = 0.0028662257f;
    sum = sum * r2 - 0.0161657367f;
    sum = sum * r2 + 0.0429096138f;
    sum = sum * r2 - 0.0752896400f;
    sum = sum * r2 + 0.1065626393f;
    sum = sum * r2 - 0.1420889944f;
    sum = sum * r2 + 0.1999355085f;
    sum = sum * r2 - 0.3333314528f;
    sum = sum * r2 + 1;
    const float acute = y > width ? std::numbers::pi_v<float> / 2 - ratio * sum : ratio * sum;
    return x < 0 ? std::numbers::pi_v<float> - acute : acute;
  }
}

template <class T> [[gnu::always_inline]] inline T larger(T a, T b)
{
  return a > b ? a : b;
}

template <class T> [[gnu::always_inline]] inline void computeNormalsAndAngles(TriangleBlock<T>& block)
{
  const VectorBlock<T>&a = block.corners[0], &b = block.corners[1], &c = block.corners[2];
  for (int n = 0; n < blockSize; ++n)
  {
    T ux = b.x[n] - a.x[n], uy = b.y[n] - a.y[n], uz = b.z[n] - a.z[n];
    T vx = c.x[n] - a.x[n], vy = c.y[n] - a.y[n], vz = c.z[n] - a.z[n];
    const T extent = larger(larger(larger(std::abs(ux), std::abs(uy)), larger(std::abs(uz), std::abs(vx))),
                            larger(std::abs(vy), std::abs(vz)));
    const T scale = extent >= std::numeric_limits<T>::min() ? 1 / extent : 0; // squares neither overflow nor vanish
    ux *= scale, uy *= scale, uz *= scale, vx *= scale, vy *= scale, vz *= scale;
    const T crossX = uy * vz - uz * vy, crossY = uz * vx - ux * vz, crossZ = ux * vy - uy * vx;
    const T length = std::sqrt(crossX * crossX + crossY * crossY + crossZ * crossZ); // the same at all three corners
    const bool hasArea = length > 0 && length <= std::numeric_limits<T>::max();
    const T inverse = hasArea ? 1 / length : 0;
    const T dotA = ux * vx + uy * vy + uz * vz;
    const T dotC = (vx - ux) * vx + (vy - uy) * vy + (vz - uz) * vz;
    const T angleA = angleOf(dotA, length), angleC = angleOf(dotC, length);
    block.normals.x[n] = crossX * inverse;
    block.normals.y[n] = crossY * inverse;
    block.normals.z[n] = crossZ * inverse;
    block.angles[0][n] = hasArea ? angleA : 0;
    block.angles[1][n] = hasArea ? std::numbers::pi_v<T> - angleA - angleC : 0;
    block.angles[2][n] = hasArea ? angleC : 0;
  }
}

template <class T> [[gnu::always_inline]] inline void normalizeVectors(T* vectors, std::ptrdiff_t count)
{
  for (std::ptrdiff_t n = 0; n < count; ++n)
  {
    T* const vector = vectors + 3 * n;
    const T length = std::sqrt(vector[0] * vector[0] + vector[1] * vector[1] + vector[2] * vector[2]);
    const bool hasDirection = length > 0 && length <= std::numeric_limits<T>::max();
    for (int k = 0; k < 3; ++k) vector[k] = hasDirection ? vector[k] / length : 0;
  }
}

// Clones for the processor at hand cannot be templates.
#define GEOMETRY_DEFINE_NORMAL_KERNELS(T)                                                                              \
  MIRELO_TARGET_CLONES void computeBlock(TriangleBlock<T>& block)                                                      \
  {                                                                                                                    \
    computeNormalsAndAngles(block);                                                                                    \
  }                                                                                                                    \
  MIRELO_TARGET_CLONES void normalizeAll(T* vectors, std::ptrdiff_t count)                                             \
  {                                                                                                                    \
    normalizeVectors(vectors, count);                                                                                  \
  }
GEOMETRY_DEFINE_NORMAL_KERNELS(float)
GEOMETRY_DEFINE_NORMAL_KERNELS(double)
GEOMETRY_DEFINE_NORMAL_KERNELS(long double)

/// Some triangles of a mesh, given by three vertex indexes each, negative where there is none.
template <class T> class Facets
{
public:
  void compute(const int* corners, int count, const T* points)
  {
    _corners = corners;
    _count = count;
    for (int n = 0; n < count; ++n)
      for (int k = 0; k < 3; ++k) _block.corners[k].set(n, points + offset(n, k));
    computeBlock(_block);
  }

  /// Adds the normals to the sums at the corners, weighted by the angles there.
  void addNormals(T* sums) const
  {
    for (int n = 0; n < _count; ++n)
    {
      if (_corners[3 * n] < 0) continue;
      for (int k = 0; k < 3; ++k)
      {
        T* const sum = sums + offset(n, k);
        const T angle = _block.angles[k][n];
        sum[0] += angle * _block.normals.x[n];
        sum[1] += angle * _block.normals.y[n];
        sum[2] += angle * _block.normals.z[n];
      }
    }
  }

private:
  std::ptrdiff_t offset(int n, int k) const
  {
    return 3 * static_cast<std::ptrdiff_t>(std::max(_corners[3 * n + k], 0));
  }

  const int* _corners = nullptr;
  int _count = 0;
  TriangleBlock<T> _block = {};
};

/// Sums at the corners in the order of the triangles, so that they do not depend on the number of threads.
template <class T> void addWeightedNormals(const int* corners, int numTriangles, const T* points, T* sums)
{
  const int numBlocks = (numTriangles + blockSize - 1) / blockSize;
#pragma omp parallel if (numBlocks > 8)
  {
    Facets<T> facets;
#pragma omp for ordered schedule(static, 1)
    for (int block = 0; block < numBlocks; ++block)
    {
      const int first = block * blockSize;
      facets.compute(corners + 3 * static_cast<std::ptrdiff_t>(first), std::min(blockSize, numTriangles - first),
                     points);
#pragma omp ordered
      facets.addNormals(sums);
    }
  }
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
    if (_numTriangles > 0)
      addWeightedNormals(corners(0), getNumTriangleSlots(), std::as_const(*this).data(), normals.data());
    normalizeAll(normals.data(), normals.getSize());
    _normals = normals;
  }
}

GEOMETRY_INSTANTIATE(TriMesh)
