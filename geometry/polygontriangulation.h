#pragma once

#include "geometry/curve.h"
#include "geometry/trimesh.h"

/// Triangulates polygons by cutting ears.
///
/// A simple polygon of n vertices becomes n - 2 triangles on its own vertices; vertices on a straight edge, repeated
/// vertices and points where the polygon touches itself are allowed. A polygon that crosses itself still gives n - 2
/// triangles, which then overlap. All decisions are exact, and the time is nearly linear for drawn contours: only the
/// vertices in the cells of a grid that an ear meets are tested.
/// Sources: J. O'Rourke, "Computational Geometry in C", 2nd ed., 1998, chapter 1, for the ears and their predicates; M.
/// Held, "FIST: fast industrial-strength triangulation of polygons", 2001, for the geometric hashing.
template <class T> class PolygonTriangulation
{
public:
  /// Triangulates a closed curve, which runs counter-clockwise in the plane (i, j). The mesh shares its vertices; its
  /// triangles run counter-clockwise as well. Fewer than three vertices give no triangle.
  /// \throw RangeError  there is no such plane of coordinates
  const TriMesh<T>& apply(const Curve<T>& curve, int i, int j);

  /// The mesh of the last apply().
  const TriMesh<T>& getTriMesh() const { return _mesh; }

private:
  TriMesh<T> _mesh;
};

GEOMETRY_EXTERN_TEMPLATE_REAL(PolygonTriangulation)
