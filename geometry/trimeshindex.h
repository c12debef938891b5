#pragma once

#include "geometry/boxtree.h"
#include "geometry/vectors3d.h"
#include "numeric/elementtypes.h"

#include <cstddef>
#include <span>
#include <vector>

/// Triangles of a mesh: coordinates, and three vertex indexes per slot, negative in empty ones.
template <class T> struct TriangleView
{
  const T* points;
  const int* corners;
  int numSlots;

  const T* corner(int triangle, int k) const
  {
    return points + 3 * static_cast<std::ptrdiff_t>(corners[3 * static_cast<std::ptrdiff_t>(triangle) + k]);
  }
};

/// For each vertex of a mesh the triangles that use it, in ascending order.
class TriangleStars
{
public:
  /// From three vertex indexes per triangle slot, negative in empty ones. Indexes beyond the vertices are left out.
  TriangleStars(const int* corners, int numSlots, int numVertices);

  std::span<const int> star(int vertex) const
  {
    const auto v = static_cast<std::size_t>(vertex);
    return {_triangles.data() + _first[v], _triangles.data() + _first[v + 1]};
  }

private:
  std::vector<std::size_t> _first;
  std::vector<int> _triangles;
};

/// Tree of the triangles of a mesh in 3D, for queries by position. It keeps no pointer to the triangles: each query is
/// given those that the tree was made from.
template <class T> class TriangleTree
{
public:
  using R = Real<T>;

  explicit TriangleTree(const TriangleView<T>& triangles);

  /// The squared distance of the closest point of the surface, which is written to `result`; infinity when there is
  /// none. Source for triangles: C. Ericson, "Real-Time Collision Detection", 2005, section 5.1.5.
  R closestPoint(const TriangleView<T>& triangles, const Vector3d<R>& point, Vector3d<R>& result) const;
  /// Whether a point lies on a triangle, or a ray from it upwards meets an odd number of them. The ray is moved aside
  /// by less than any number, so that it meets neither edges nor vertices. Source: Edelsbrunner and Muecke, "Simulation
  /// of simplicity", 1990.
  bool contains(const TriangleView<T>& triangles, const Vector3d<R>& point) const;

private:
  BoxTree<R> _tree;
};

extern template class TriangleTree<int>;
extern template class TriangleTree<float>;
extern template class TriangleTree<double>;
extern template class TriangleTree<long double>;
