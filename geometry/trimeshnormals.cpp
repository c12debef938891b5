#include "geometry/trimesh.h"
#include "numeric/targetclones.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <numbers>
#include <omp.h>
#include <utility>
#include <vector>

namespace
{
constexpr int blockSize = 256;

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

/// The arc tangent of y / x, for y from 0 to x. Source: M. Abramowitz and I. Stegun, Handbook of Mathematical
/// Functions, 1964, formula 4.4.49 (error below 2e-8).
[[gnu::always_inline]] inline float arcTangent(float y, float x)
{
  const float ratio = y / x, r2 = ratio * ratio;
  float sum = 0.0028662257f;
  sum = sum * r2 - 0.0161657367f;
  sum = sum * r2 + 0.0429096138f;
  sum = sum * r2 - 0.0752896400f;
  sum = sum * r2 + 0.1065626393f;
  sum = sum * r2 - 0.1420889944f;
  sum = sum * r2 + 0.1999355085f;
  sum = sum * r2 - 0.3333314528f;
  sum = sum * r2 + 1;
  return ratio * sum;
}

/// The same, with ratios above 0.66 turned by an eighth of a circle. Source: S. L. Moshier, Methods and Programs for
/// Mathematical Functions, 1989 (error below 3e-16).
[[gnu::always_inline]] inline double arcTangent(double y, double x)
{
  const bool isTurned = y > 0.66 * x;
  const double ratio = (isTurned ? y - x : y) / (isTurned ? y + x : x), r2 = ratio * ratio;
  double p = -8.750608600031904122785e-1;
  p = p * r2 - 1.615753718733365076637e1;
  p = p * r2 - 7.500855792314704667340e1;
  p = p * r2 - 1.228866684490136173410e2;
  p = p * r2 - 6.485021904942025371773e1;
  double q = r2 + 2.485846490142306297962e1;
  q = q * r2 + 1.650270098316988542046e2;
  q = q * r2 + 4.328810604912902668951e2;
  q = q * r2 + 4.853903996359136964868e2;
  q = q * r2 + 1.945506571482613964425e2;
  return (isTurned ? std::numbers::pi / 4 : 0) + ratio + ratio * r2 * p / q;
}

/// The angle of a point in the upper half plane, from 0 to pi.
template <class T> [[gnu::always_inline]] inline T angleOf(T x, T y)
{
  if constexpr (std::is_same_v<T, long double>)
    return std::atan2(y, x);
  else
  {
    const T width = std::abs(x);
    const bool isSteep = y > width;
    const T angle = arcTangent(isSteep ? width : y, isSteep ? y : width);
    const T acute = isSteep ? std::numbers::pi_v<T> / 2 - angle : angle;
    return x < 0 ? std::numbers::pi_v<T> - acute : acute;
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

/// One bit per vertex.
class VertexSet
{
public:
  explicit VertexSet(int numVertices = 0) : _words((static_cast<std::size_t>(numVertices) + 63) / 64) {}

  bool contains(int vertex) const { return _words[wordOf(vertex)] >> (vertex & 63) & 1; }
  void insert(int vertex) { _words[wordOf(vertex)] |= std::uint64_t(1) << (vertex & 63); }
  /// Adds the vertices of another set and returns how many of them were there before.
  int unite(const VertexSet& other)
  {
    int numShared = 0;
    for (std::size_t w = 0; w < _words.size(); ++w)
    {
      numShared += std::popcount(_words[w] & other._words[w]);
      _words[w] |= other._words[w];
    }
    return numShared;
  }

private:
  static std::size_t wordOf(int vertex) { return static_cast<std::size_t>(vertex) / 64; }
  std::vector<std::uint64_t> _words;
};

/// Sums of the normals of triangles at their corners, weighted by the angles there.
///
/// Several threads take a part of the triangles each. What a part adds to a vertex of an earlier part waits until that
/// one is done, so that each sum is formed in the order of the triangles, as by one thread.
template <class T> class NormalSums
{
public:
  /// The corners are three vertex indexes per triangle, negative where there is none.
  NormalSums(const int* corners, int numTriangles, const T* points, Vertices<T>& sums)
    : _corners(corners), _numTriangles(numTriangles), _points(points), _sums(sums.data()), _numVertices(sums.getSize())
  {
  }

  void compute()
  {
    constexpr int smallestPart = 1 << 15;
    splitInto(std::clamp(_numTriangles / smallestPart, 1, omp_get_max_threads()));
    const int numParts = static_cast<int>(_parts.size());
#pragma omp parallel for schedule(static, 1) if (numParts > 1)
    for (int p = 0; p < numParts; ++p) addPart(_parts[static_cast<std::size_t>(p)]);
    for (const Part& part : _parts)
      for (const auto& [vertex, normal] : part.deferred)
        addTo(_sums + offset(vertex), 1, normal[0], normal[1], normal[2]);
  }

private:
  struct Addend
  {
    int vertex;
    T normal[3];
  };
  struct Part
  {
    int first, last;
    VertexSet earlier; // vertices of the parts before
    std::vector<Addend> deferred;
  };

  void splitInto(int numParts)
  {
    _parts.clear();
    for (int p = 0; p < numParts; ++p)
      _parts.push_back({boundary(p, numParts), boundary(p + 1, numParts), VertexSet(_numVertices), {}});
    if (numParts > 1 && findSharedVertices() > _numVertices / 16) splitInto(1);
  }
  int boundary(int p, int numParts) const
  {
    return static_cast<int>(static_cast<std::int64_t>(_numTriangles) * p / numParts);
  }
  int findSharedVertices()
  {
    const int numParts = static_cast<int>(_parts.size());
#pragma omp parallel for schedule(static, 1)
    for (int p = 0; p < numParts; ++p)
    {
      Part& part = _parts[static_cast<std::size_t>(p)];
      for (std::ptrdiff_t n = 3L * part.first; n < 3L * part.last; ++n)
        if (_corners[n] >= 0) part.earlier.insert(_corners[n]);
    }
    int numShared = 0;
    VertexSet all(_numVertices);
    for (Part& part : _parts)
    {
      VertexSet before = all;
      numShared += all.unite(part.earlier);
      std::swap(part.earlier, before);
    }
    return numShared;
  }

  void addPart(Part& part)
  {
    TriangleBlock<T> block = {};
    for (int first = part.first; first < part.last; first += blockSize)
    {
      const int* const corners = _corners + 3 * static_cast<std::ptrdiff_t>(first);
      const int count = std::min(blockSize, part.last - first);
      gather(block, corners, count);
      computeBlock(block);
      if (part.first == 0)
        addBlock(block, corners, count);
      else
        addOrDeferBlock(part, block, corners, count);
    }
  }
  void gather(TriangleBlock<T>& block, const int* corners, int count) const
  {
    const T* const points = _points;
    for (int n = 0; n < count; ++n)
      for (int k = 0; k < 3; ++k) block.corners[k].set(n, points + offset(corners[3 * n + k]));
  }
  void addBlock(const TriangleBlock<T>& block, const int* corners, int count)
  {
    T* const sums = _sums;
    for (int n = 0; n < count; ++n)
    {
      const T x = block.normals.x[n], y = block.normals.y[n], z = block.normals.z[n]; // 0 of an empty slot
      for (int k = 0; k < 3; ++k) addTo(sums + offset(corners[3 * n + k]), block.angles[k][n], x, y, z);
    }
  }
  void addOrDeferBlock(Part& part, const TriangleBlock<T>& block, const int* corners, int count)
  {
    for (int n = 0; n < count; ++n)
      for (int k = 0; k < 3 && corners[3 * n] >= 0; ++k)
      {
        const int vertex = corners[3 * n + k];
        const T angle = block.angles[k][n], x = block.normals.x[n], y = block.normals.y[n], z = block.normals.z[n];
        if (part.earlier.contains(vertex))
          part.deferred.push_back({vertex, {angle * x, angle * y, angle * z}});
        else
          addTo(_sums + offset(vertex), angle, x, y, z);
      }
  }
  static void addTo(T* sum, T weight, T x, T y, T z)
  {
    sum[0] += weight * x;
    sum[1] += weight * y;
    sum[2] += weight * z;
  }
  static std::ptrdiff_t offset(int vertex)
  {
    return 3 * static_cast<std::ptrdiff_t>(std::max(vertex, 0));
  }

  const int* _corners;
  int _numTriangles;
  const T* _points;
  T* _sums;
  int _numVertices;
  std::vector<Part> _parts;
};

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
      NormalSums<T>(corners(0), getNumTriangleSlots(), std::as_const(*this).data(), normals).compute();
    normalizeAll(normals.data(), normals.getSize());
    _normals = normals;
  }
}

GEOMETRY_INSTANTIATE(TriMesh)
