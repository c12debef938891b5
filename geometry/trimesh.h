#pragma once

#include "geometry/lazyindex.h"
#include "geometry/trimeshindex.h"
#include "geometry/vertices.h"

#include <memory>
#include <vector>

/// Triangulated surface: vertices, triangles of three vertex indexes, optional normals and colours of the vertices.
///
/// A removed triangle leaves an empty slot, which is skipped by counting, measuring and writing; triangle numbers are
/// numbers of slots. A triangle is seen from outside when its vertices run counter-clockwise.
///
/// Queries build an index when they first need it, also from several threads at once. A change of the mesh drops it; a
/// reference to a vertex that was fetched for writing before a query must not be written through after it.
template <class T> class TriMesh : public Vertices<T>
{
public:
  explicit TriMesh(int space = 3) : Vertices<T>(space) {}
  /// A mesh without triangles that shares the vertices of a set.
  explicit TriMesh(const Vertices<T>& vertices) : Vertices<T>(vertices) {}
  /// Reads a mesh file. \throw FileReadError, FileFormatError  as load()
  explicit TriMesh(const std::string& path) : TriMesh() { this->load(path); }
  /// Vertices at the origin and empty triangle slots.
  TriMesh(int space, int numVertices, int numTriangles);

  /// Takes over the coordinates of the vertices and three vertex indexes per triangle.
  /// \throw SizeError  they do not make up vertices and triangles \throw RangeError  there is no such vertex
  TriMesh(int space, BufferVector<T>&& coordinates, BufferVector<int>&& indexes);

  TriMesh<T>* clone() const override { return new TriMesh<T>(*this); }
  ShapeType getShapeType() const override { return TriMeshShape; }

  /// Number of triangles that are present.
  int getNumTriangles() const { return _numTriangles; }
  /// Number of triangle slots, the empty ones included.
  int getNumTriangleSlots() const { return static_cast<int>(_indexes.size() / 3); }
  /// Slot i of 0 <= i < getNumTriangleSlots(), as in all that follows. Unchecked.
  bool hasTriangle(int i) const { return corners(i)[0] >= 0; }
  /// The three vertex indexes of triangle i; negative when the slot is empty. Unchecked.
  const int* corners(int i) const { return _indexes.data() + 3 * static_cast<std::size_t>(i); }
  /// The vertex indexes of triangle i, none when the slot is empty. \throw RangeError  there is no such slot
  Vector<int> getTriangleIndexes(int i) const;
  /// The three vertices of triangle i, none when the slot is empty. \throw RangeError  there is no such slot or vertex
  Vertices<T> triangle(int i) const;

  /// Adds a triangle behind the last slot. \throw RangeError  there is no such vertex
  void addTriangle(int i, int j, int k);
  /// \throw SizeError  not three indexes \throw RangeError  there is no such vertex
  void addTriangle(const Vector<int>& indexes);
  /// Adds triangles given by three indexes each. \throw SizeError, RangeError  as addTriangle(); nothing is added then
  void addTriangles(const std::vector<int>& corners);
  /// Replaces all triangles. \throw SizeError, RangeError  as addTriangle()
  void setTriangles(const std::vector<Vector<int>>& triangles);
  void reserveTriangles(int numTriangles) { _indexes.reserve(3 * static_cast<std::size_t>(numTriangles)); }
  /// Empties the slot. \throw RangeError  there is no such slot
  void removeTriangle(int i);
  /// Turns all triangles around, and with them the normals, so that the surface faces the other way.
  void flip();
  /// Turns triangles so that two that share an edge, and no third one does, run along it in opposite directions, as far
  /// as the surface allows. The first triangle of each connected piece stays; normals are not changed.
  void orientConsistently();
  /// Removes a vertex with its triangles; the vertices behind it move up. \throw RangeError  there is no such vertex
  void remove(int vertex);
  /// Removes vertices, triangles, normals and colours.
  void clear();
  /// Becomes a copy of the other mesh.
  void assign(const TriMesh<T>& mesh) { *this = mesh; }

  /// The vertices joined to a vertex by an edge, in ascending order. \throw RangeError  there is no such vertex
  Vector<int> neighbours(int vertex) const;
  /// The triangles that use a vertex, in ascending order. \throw RangeError  there is no such vertex
  Vector<int> star(int vertex) const;

  bool hasNormals() const
  {
    return _normals.getSize() > 0 && _normals.getSize() == this->getSize() && _normals.getSpace() == this->getSpace();
  }
  /// \throw UsageError  there are no normals
  const Vector<T>& getNormal(int vertex) const;
  /// Normals that were missing become 0. \throw RangeError  there is no such vertex \throw SizeError  another dimension
  void setNormal(int vertex, const Vector<T>& normal);
  const Vertices<T>& getNormals() const { return _normals; }
  /// Unit normals: means of the triangles' normals, weighted by the angles at the vertex; 0 where there is no surface.
  /// Source: Thuermer and Wuethrich, "Computing vertex normals from polygonal facets", 1998.
  /// \throw SizeError  the mesh is not in 3D \throw TypeError  the coordinates are integers
  void computeNormals();

  /// Replaces each normal by the mean direction of its own and those of the neighbours, `iterations` times.
  /// \throw UsageError  there are no normals \throw TypeError  the coordinates are integers
  void smoothNormals(int iterations);
  /// Smooths the surface: a step towards the mean of the neighbours, then a longer one away from it, `iterations`
  /// times. That nearly keeps the volume of fine meshes. A closed mesh (every edge has two triangles, which run along
  /// it in opposite directions) is scaled to its old volume() after each, about its centre of gravity; one of few
  /// vertices grows flat by many, and a step that would leave no more than rounding errors inside ends the smoothing.
  /// Vertices on the border of an open mesh and those without triangles stay where they are, normals become out of
  /// date. Source: G. Taubin, "A signal processing approach to fair surface design", 1995, with lambda 0.5 and the
  /// pass-band frequency 0.1. \throw TypeError  the coordinates are integers
  void smooth(int iterations);

  bool hasVertexColors() const { return _colors && _colors->getSize() == this->getSize(); }
  /// Red, green and blue of each vertex, 0 to 255. \throw SizeError  not one colour per vertex
  void setVertexColors(const TriMesh<int>& colors);
  /// \throw UsageError  there are no colours
  const TriMesh<int>& getVertexColors() const;

  /// Sum of the triangles' areas. \throw SizeError  a triangle names a vertex that does not exist
  Real<T> area() const;
  /// Enclosed volume, whether the triangles face out or in; meaningful for closed meshes of one orientation.
  /// \throw SizeError  the mesh is not in 3D, or a triangle names a vertex that does not exist
  Real<T> volume() const;
  /// Radius of the ball of equal volume. \throw int  1 when the mesh is not in 3D
  Real<T> equivalentRadius() const;
  /// Centre of gravity of the surface: the mean of the triangles' centres weighted by their areas.
  /// \throw SizeError  there is no surface
  Vector<Real<T>> centerOfGravity() const;

  /// The point of the surface that is closest to a point, and its distance; the vertices alone do not count.
  /// \throw SizeError  the mesh or the point is not in 3D, there is no triangle with finite coordinates, or
  /// a triangle names a vertex that does not exist
  Real<T> closestPoint(const Vector<T>& point, Vector<Real<T>>& result) const;
  /// Whether a point lies in the volume that a closed mesh encloses, or exactly on its surface. Of surfaces in each
  /// other every second one bounds a hollow; the orientation of the triangles does not matter.
  /// \throw SizeError  the mesh or the point is not in 3D, or a triangle names a vertex that does not exist
  bool contains(const Vector<T>& point) const;

  /// Becomes the unit cube [0, 1]^3 with outward triangles. \throw SizeError  the mesh is not in 3D
  void cube();

  /// Writes the text of an ASCII STL file with the name, degenerate triangles with the normal 0. \throw SizeError  not
  /// in 3D
  void export2AsciiSTL(std::ostream& stream) const;
  /// Writes a binary STL file: float coordinates, the name in the header. \throw SizeError  not in 3D
  void export2BinarySTL(std::ostream& stream) const;
  /// Writes a binary PLY file with name, normals and colours. \throw SizeError  not in 3D
  void export2PLY(std::ostream& stream) const;
  /// Writes the text of an OBJ file with name, normals, and colours behind the coordinates. \throw SizeError  not in 3D
  void export2OBJ(std::ostream& stream) const;

  void read(std::istream& stream) override;
  void write(std::ostream& stream) const override;

protected:
  bool isReadable(int shapeType) const override { return shapeType == TriMeshShape; }

private:
  /// Calls function(a, b, c) with pointers to the coordinates of the corners of each triangle.
  template <class F> void forEachTriangle(F&& function) const
  {
    for (int i = 0; i < getNumTriangleSlots(); ++i)
      if (const int* const c = corners(i); hasTriangle(i))
        function(this->data(c[0]), this->data(c[1]), this->data(c[2]));
  }
  void requireSlot(int i, const char* where) const;
  void requireVertex(int i, const char* where) const;
  void requireSpace3(const char* where) const;
  void requireConsistency(const char* where) const;
  void noteTriangleChange();
  const TriangleStars& stars() const;
  const TriangleTree<T>& tree() const;
  TriangleView<T> view() const { return {this->data(), _indexes.data(), getNumTriangleSlots()}; }

  BufferVector<int> _indexes; // three per slot, negative in empty ones
  int _numTriangles = 0;
  Vertices<T> _normals = Vertices<T>(this->getSpace());
  std::shared_ptr<const TriMesh<int>> _colors;
  LazyIndex<TriangleStars> _stars;
  LazyIndex<TriangleTree<T>> _tree;
};

GEOMETRY_EXTERN_TEMPLATE(TriMesh)
