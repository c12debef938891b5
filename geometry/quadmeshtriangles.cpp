// Quad meshes as triangle meshes.
#include "geometry/coordinates.h"
#include "geometry/polygontriangulation.h"
#include "geometry/quadmesh.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <limits>

namespace
{
/// Adds triangles and turns them when asked to.
class TriangleList
{
public:
  explicit TriangleList(bool isTurned) : _isTurned(isTurned) {}

  void reserve(std::size_t numTriangles) { _indexes.reserve(3 * numTriangles); }
  void add(int a, int b, int c)
  {
    if (_isTurned) std::swap(b, c);
    _indexes.insert(_indexes.end(), {a, b, c});
  }
  BufferVector<int>& getIndexes() { return _indexes; }

private:
  bool _isTurned;
  BufferVector<int> _indexes;
};

/// All vertices, row after row.
template <class T> BufferVector<T> coordinatesOf(const QuadMesh<T>& mesh)
{
  BufferVector<T> coordinates;
  const std::size_t rowSize = static_cast<std::size_t>(mesh.getWidth()) * static_cast<std::size_t>(mesh.getSpace());
  coordinates.reserve(rowSize * static_cast<std::size_t>(mesh.getHeight()));
  for (int i = 0; i < mesh.getHeight(); ++i)
    coordinates.insert(coordinates.end(), mesh.level(i).data(), mesh.level(i).data() + rowSize);
  return coordinates;
}

/// The cells between rows i and i + 1.
template <class T> void addCells(TriangleList& triangles, const QuadMesh<T>& mesh, int i)
{
  const Curve<T>&lower = mesh.level(i), &upper = mesh.level(i + 1);
  const int width = mesh.getWidth(), space = mesh.getSpace(), offset = i * width;
  const int numCells = mesh.isOpen() ? width - 1 : width;
  for (int j = 0; j < numCells; ++j)
  {
    const int next = j + 1 < width ? j + 1 : 0;
    const int a = offset + j, b = offset + next, c = a + width, d = b + width;
    if (squaredDistance(lower.data(j), upper.data(next), space) <
        squaredDistance(lower.data(next), upper.data(j), space))
    {
      triangles.add(a, d, b);
      triangles.add(a, c, d);
    }
    else
    {
      triangles.add(a, c, b);
      triangles.add(b, c, d);
    }
  }
}

/// The pair of axes that spans the plane in which the curve's area is largest.
template <class T> std::array<int, 2> planeOf(const Curve<T>& curve)
{
  const std::array<std::array<int, 2>, 3> planes = {{{0, 1}, {1, 2}, {2, 0}}};
  const auto area = [&curve](const std::array<int, 2>& plane) { return std::abs(curve.twiceArea(plane[0], plane[1])); };
  return *std::max_element(planes.begin(), planes.end(),
                           [&area](const auto& a, const auto& b) { return area(a) < area(b); });
}

template <class T> bool isFinite(const Curve<T>& row)
{
  const T* const end = row.data() + static_cast<std::ptrdiff_t>(row.getSize()) * row.getSpace();
  return std::all_of(row.data(), end, [](T x) { return std::isfinite(x); });
}

/// Fills a row of finite coordinates with triangles that run along it, or against it; also one without area, whose
/// triangles have none but close the surface.
template <class T> void addCap(TriangleList& triangles, const Curve<T>& row, int offset, bool isAgainst)
{
  if (!isFinite(row)) return;
  const auto [i, j] = planeOf(row);
  const bool isReversed = !(row.twiceArea(i, j) > 0);
  Curve<T> outline = row;
  if (isReversed) outline.reverse();
  PolygonTriangulation<T> triangulation;
  const TriMesh<T>& cap = triangulation.apply(outline, i, j);
  const int last = row.getSize() - 1;
  for (int k = 0; k < cap.getNumTriangleSlots(); ++k)
  {
    std::array<int, 3> corners = {cap.corners(k)[0], cap.corners(k)[1], cap.corners(k)[2]};
    if (isReversed)
      for (int& corner : corners) corner = last - corner;
    if (isReversed != isAgainst) std::swap(corners[1], corners[2]);
    triangles.add(offset + corners[0], offset + corners[1], offset + corners[2]);
  }
}
} // namespace

template <class T> TriMesh<T> QuadMesh<T>::toTriMesh(bool withCaps) const
{
  const char* const where = "TriMesh<T> QuadMesh<T>::toTriMesh(bool) const";
  requireGrid(where);
  const int width = getWidth(), height = getHeight();
  if (std::int64_t{width} * height > std::numeric_limits<int>::max() / 2)
    throw SizeError(where, "The mesh has too many vertices");
  const bool isDescending = height > 0 && getHeight(height - 1) < getHeight(0);
  TriangleList triangles(isDescending);
  triangles.reserve(2 * static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
  for (int i = 0; i + 1 < height; ++i) addCells(triangles, *this, i);
  if (withCaps && hasAnyCap())
  {
    if constexpr (std::is_integral_v<T>)
      throw notAvailable<T>(where);
    else
    {
      if (this->getSpace() != 3) throw SizeError(where, "This mesh is not in three dimensions");
      if (hasBeginCap()) addCap(triangles, this->getFirstCurve(), 0, false);
      if (hasEndCap()) addCap(triangles, this->getLastCurve(), (height - 1) * width, true);
    }
  }
  TriMesh<T> mesh(this->getSpace(), coordinatesOf(*this), std::move(triangles.getIndexes()));
  mesh.setName(this->getName());
  if (hasVertexColors()) mesh.setVertexColors(_colors->toTriMesh(false));
  return mesh;
}

GEOMETRY_INSTANTIATE(QuadMesh)
