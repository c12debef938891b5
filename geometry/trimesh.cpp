#include "geometry/trimesh.h"

#include "geometry/coordinates.h"
#include "geometry/vectors3d.h"

#include <algorithm>
#include <limits>
#include <numbers>
#include <utility>

namespace
{

/// Twice the area of a triangle in 2D or 3D.
template <class T> Real<T> twiceTriangleArea(const T* a, const T* b, const T* c, int space)
{
  using R = Real<T>;
  if (space == 3) return norm(crossProduct(difference<R>(b, a), difference<R>(c, a)));
  if (space < 2) return 0;
  const R abx = static_cast<R>(b[0]) - a[0], aby = static_cast<R>(b[1]) - a[1];
  const R acx = static_cast<R>(c[0]) - a[0], acy = static_cast<R>(c[1]) - a[1];
  return std::abs(abx * acy - aby * acx);
}

} // namespace

template <class T> TriMesh<T>::TriMesh(int space, int numVertices, int numTriangles)
  : Vertices<T>(space, numVertices), _indexes(3 * static_cast<std::size_t>(std::max(numTriangles, 0)), -1)
{
}

template <class T> TriMesh<T>::TriMesh(int space, BufferVector<T>&& coordinates, BufferVector<int>&& indexes)
  : Vertices<T>(space, std::move(coordinates))
{
  const char* const where = "TriMesh<T>::TriMesh(int, BufferVector<T>&&, BufferVector<int>&&)";
  if (indexes.size() % 3 != 0) throw SizeError(where, "A triangle has three vertices");
  if (indexes.size() / 3 > static_cast<std::size_t>(std::numeric_limits<int>::max()))
    throw SizeError(where, "There are too many triangles");
  const int last = this->getSize() - 1;
  int excess = 0; // negative when an index is, or is beyond the last vertex
  for (const int index : indexes) excess |= index | (last - std::max(index, 0));
  if (excess < 0) throw RangeError(where, "A triangle names a vertex that does not exist");
  _indexes = std::move(indexes);
  _numTriangles = static_cast<int>(_indexes.size() / 3);
}

template <class T> Vector<int> TriMesh<T>::getTriangleIndexes(int i) const
{
  requireSlot(i, "Vector<int> TriMesh<T>::getTriangleIndexes(int) const");
  const int* const triangle = corners(i);
  return hasTriangle(i) ? Vector<int>{triangle[0], triangle[1], triangle[2]} : Vector<int>();
}

template <class T> Vertices<T> TriMesh<T>::triangle(int i) const
{
  const char* const where = "Vertices<T> TriMesh<T>::triangle(int) const";
  requireSlot(i, where);
  for (int k = 0; k < 3 && hasTriangle(i); ++k) requireVertex(corners(i)[k], where);
  Vertices<T> vertices(this->getSpace());
  for (int k = 0; k < 3 && hasTriangle(i); ++k) vertices.append((*this)[corners(i)[k]]);
  return vertices;
}

template <class T> void TriMesh<T>::addTriangle(int i, int j, int k)
{
  const int size = this->getSize();
  if (i < 0 || j < 0 || k < 0 || i >= size || j >= size || k >= size)
    throw RangeError("void TriMesh<T>::addTriangle(int, int, int)", "A triangle names a vertex that does not exist");
  noteTriangleChange();
  _indexes.insert(_indexes.end(), {i, j, k});
  ++_numTriangles;
}

template <class T> void TriMesh<T>::addTriangle(const Vector<int>& indexes)
{
  if (indexes.getSize() != 3)
    throw SizeError("void TriMesh<T>::addTriangle(const Vector<int>&)", "A triangle has three vertices");
  addTriangle(indexes[0], indexes[1], indexes[2]);
}

template <class T> void TriMesh<T>::addTriangles(const std::vector<int>& corners)
{
  const char* const where = "void TriMesh<T>::addTriangles(const std::vector<int>&)";
  if (corners.size() % 3 != 0) throw SizeError(where, "A triangle has three vertices");
  const int size = this->getSize();
  const auto isVertex = [size](int i) { return i >= 0 && i < size; };
  if (!std::all_of(corners.begin(), corners.end(), isVertex))
    throw RangeError(where, "A triangle names a vertex that does not exist");
  noteTriangleChange();
  _indexes.insert(_indexes.end(), corners.begin(), corners.end());
  _numTriangles += static_cast<int>(corners.size() / 3);
}

template <class T> void TriMesh<T>::setTriangles(const std::vector<Vector<int>>& triangles)
{
  TriMesh<T> mesh(static_cast<const Vertices<T>&>(*this));
  mesh.reserveTriangles(static_cast<int>(triangles.size()));
  for (const Vector<int>& triangle : triangles) mesh.addTriangle(triangle);
  noteTriangleChange();
  _indexes.swap(mesh._indexes);
  _numTriangles = mesh._numTriangles;
}

template <class T> void TriMesh<T>::removeTriangle(int i)
{
  requireSlot(i, "void TriMesh<T>::removeTriangle(int)");
  if (!hasTriangle(i)) return;
  noteTriangleChange();
  std::fill_n(_indexes.data() + 3 * static_cast<std::size_t>(i), 3, -1);
  --_numTriangles;
}

template <class T> void TriMesh<T>::flip()
{
  for (std::size_t n = 0; n < _indexes.size(); n += 3) std::swap(_indexes[n + 1], _indexes[n + 2]);
  if (_normals.getSize() > 0) _normals *= T(-1);
}

template <class T> void TriMesh<T>::remove(int vertex)
{
  requireVertex(vertex, "void TriMesh<T>::remove(int)");
  for (int i = 0; i < getNumTriangleSlots(); ++i)
    if (std::count(corners(i), corners(i) + 3, vertex) > 0) removeTriangle(i);
  noteTriangleChange();
  for (int& index : _indexes)
    if (index > vertex) --index;
  if (hasNormals()) _normals.remove(vertex);
  if (hasVertexColors())
  {
    TriMesh<int> colors = *_colors;
    colors.remove(vertex);
    _colors = std::make_shared<const TriMesh<int>>(colors);
  }
  Vertices<T>::remove(vertex);
}

template <class T> void TriMesh<T>::clear()
{
  Vertices<T>::clear();
  _normals.clear();
  noteTriangleChange();
  _indexes.clear();
  _numTriangles = 0;
  _colors.reset();
}

template <class T> const Vector<T>& TriMesh<T>::getNormal(int vertex) const
{
  const char* const where = "const Vector<T>& TriMesh<T>::getNormal(int) const";
  requireVertex(vertex, where);
  if (!hasNormals()) throw UsageError(where, "This mesh has no normals");
  return _normals[vertex];
}

template <class T> void TriMesh<T>::setNormal(int vertex, const Vector<T>& normal)
{
  const char* const where = "void TriMesh<T>::setNormal(int, const Vector<T>&)";
  requireVertex(vertex, where);
  if (normal.getSize() != this->getSpace()) throw SizeError(where, "The normal has another dimension");
  if (_normals.getSpace() != this->getSpace()) _normals = Vertices<T>(this->getSpace());
  _normals.setSize(this->getSize());
  _normals[vertex] = normal;
}

template <class T> void TriMesh<T>::setVertexColors(const TriMesh<int>& colors)
{
  if (colors.getSize() != this->getSize() || colors.getSpace() != 3)
    throw SizeError("void TriMesh<T>::setVertexColors(const TriMesh<int>&)", "Not one colour of three per vertex");
  _colors = std::make_shared<const TriMesh<int>>(colors);
}

template <class T> const TriMesh<int>& TriMesh<T>::getVertexColors() const
{
  if (!hasVertexColors())
    throw UsageError("const TriMesh<int>& TriMesh<T>::getVertexColors() const", "This mesh has no colours");
  return *_colors;
}

template <class T> Real<T> TriMesh<T>::area() const
{
  requireConsistency("T TriMesh<T>::area() const");
  const int space = this->getSpace();
  Wide<T> sum = 0;
  forEachTriangle([&sum, space](const T* a, const T* b, const T* c) { sum += twiceTriangleArea(a, b, c, space); });
  return static_cast<Real<T>>(sum / 2);
}

template <class T> Real<T> TriMesh<T>::volume() const
{
  const char* const where = "T TriMesh<T>::volume() const";
  requireSpace3(where);
  requireConsistency(where);
  if (_numTriangles == 0) return 0;
  using R = Real<T>;
  const Vector<R> center = this->cog();
  const R* const g = center.data();
  R sum = 0;
  forEachTriangle([&sum, g](const T* a, const T* b, const T* c)
                  { sum += dotProduct(difference<R>(a, g), crossProduct(difference<R>(b, g), difference<R>(c, g))); });
  return std::abs(sum) / 6;
}

template <class T> Real<T> TriMesh<T>::equivalentRadius() const
{
  if (this->getSpace() != 3) throw 1; // callers tell this error by its value
  return std::cbrt(3 * volume() / (4 * std::numbers::pi_v<Real<T>>));
}

template <class T> Vector<Real<T>> TriMesh<T>::centerOfGravity() const
{
  const char* const where = "Vector<T> TriMesh<T>::centerOfGravity() const";
  requireConsistency(where);
  const int space = this->getSpace();
  std::vector<Wide<T>> sums(static_cast<std::size_t>(space), 0);
  Wide<T> total = 0;
  forEachTriangle(
      [&sums, &total, space](const T* a, const T* b, const T* c)
      {
        const Wide<T> weight = twiceTriangleArea(a, b, c, space);
        total += weight;
        for (int k = 0; k < space; ++k) sums[k] += weight * (Wide<T>(a[k]) + Wide<T>(b[k]) + Wide<T>(c[k])) / 3;
      });
  if (!(total > 0)) throw SizeError(where, "This mesh has no surface");
  Vector<Real<T>> center(space);
  for (int k = 0; k < space; ++k) center[k] = static_cast<Real<T>>(sums[k] / total);
  return center;
}

template <class T> void TriMesh<T>::cube()
{
  requireSpace3("void TriMesh<T>::cube()");
  clear();
  Vertices<T>::setSize(8);
  for (int i = 0; i < 8; ++i)
    for (int k = 0; k < 3; ++k) (*this)[i][k] = static_cast<T>(i >> k & 1); // bit k of the index is coordinate k
  const int faces[6][4] = {{0, 2, 3, 1}, {4, 5, 7, 6}, {0, 1, 5, 4}, {2, 6, 7, 3}, {0, 4, 6, 2}, {1, 3, 7, 5}};
  for (const int(&face)[4] : faces)
  {
    addTriangle(face[0], face[1], face[2]);
    addTriangle(face[0], face[2], face[3]);
  }
}

template <class T> void TriMesh<T>::requireSlot(int i, const char* where) const
{
  if (i < 0 || i >= getNumTriangleSlots()) throw RangeError(where, "There is no triangle " + std::to_string(i));
}

template <class T> void TriMesh<T>::requireVertex(int i, const char* where) const
{
  if (i < 0 || i >= this->getSize()) throw RangeError(where, "There is no vertex " + std::to_string(i));
}

template <class T> void TriMesh<T>::requireSpace3(const char* where) const
{
  if (this->getSpace() != 3) throw SizeError(where, "This mesh is not in three dimensions");
}

// Vertices can be taken away without regard to the triangles.
template <class T> void TriMesh<T>::requireConsistency(const char* where) const
{
  const int last = this->getSize() - 1;
  int excess = 0; // negative when an index is beyond the last vertex
  for (const int index : _indexes) excess |= last - std::max(index, -1);
  if (excess < 0) throw SizeError(where, "A triangle names a vertex that does not exist");
}

GEOMETRY_INSTANTIATE(TriMesh)
