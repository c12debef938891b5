#pragma once

#include "geometry/curvestack.h"
#include "geometry/trimesh.h"
#include "numeric/colormap.h"

#include <memory>
#include <string>
#include <vector>

/// Grid of vertices: a curve stack whose curves, the rows, all have the same number of vertices.
///
/// Vertex (i, j) is vertex j of row i. The rows of a closed mesh wrap; those of an open one do not. A closed mesh may
/// have caps, which fill its first and its last row. The text form has the layout that docs/quadmesh.md describes.
template <class T> class QuadMesh : public CurveStack<T>
{
public:
  explicit QuadMesh(int space = 3, bool open = false) : CurveStack<T>(space, open) {}
  /// `height` rows of `width` vertices at the origin. \throw SizeError  a size is negative
  QuadMesh(int space, int width, int height, bool open = false);
  /// The curves become the rows. \throw SizeError  they differ in size
  explicit QuadMesh(const CurveStack<T>& stack);
  /// Reads a mesh file. \throw FileReadError, FileFormatError  as load()
  explicit QuadMesh(const std::string& path) : QuadMesh() { this->load(path); }

  /// Becomes a copy of the other mesh.
  void assign(const QuadMesh<T>& mesh) { *this = mesh; }
  QuadMesh<T>* clone() const override { return new QuadMesh<T>(*this); }
  ShapeType getShapeType() const override { return this->isOpen() ? OpenQuadMeshShape : ClosedQuadMeshShape; }

  /// Vertices per row; 0 without rows.
  int getWidth() const { return getHeight() > 0 ? this->level(0).getSize() : 0; }
  /// Number of rows.
  int getHeight() const { return this->getNumCurves(); }
  using CurveStack<T>::getHeight; // of a row, along z
  /// Whether all rows have the same size. The rows are open to change one by one; what needs a grid throws SizeError
  /// when they do not.
  bool isGrid() const;

  /// Inserts a row before row i. The mesh has no colours then, as after remove().
  /// \throw SizeError  the row has another size or dimension \throw RangeError  there is no such place
  void insert(int i, const Vertices<T>& row) override;

  /// The shift by which all rows of this mesh come closest to those of another one, the smallest on a tie; 0 for open
  /// rows, which do not wrap. Takes the time of Fourier transforms of the rows.
  /// \throw SizeError  "Size mismatch", or the mesh is not in two or three dimensions
  int findMatch(const QuadMesh<T>& other) const;
  /// Rotates the vertices of every row, and their colours, by findMatch().
  void match(const QuadMesh<T>& other);
  /// A mesh of the same size, each vertex replaced by the other mesh's vertex that is closest to it.
  /// \throw SizeError  the other mesh has no vertices, or another space dimension
  QuadMesh<T> closestPointMap(const QuadMesh<T>& other) const;

  bool hasBeginCap() const { return _beginCap && canHaveCaps(); }
  bool hasEndCap() const { return _endCap && canHaveCaps(); }
  bool hasAnyCap() const { return hasBeginCap() || hasEndCap(); }
  bool hasAllCaps() const { return hasBeginCap() && hasEndCap(); }
  /// \throw UsageError  the mesh is open or has no vertices
  void buildBeginCap();
  void buildEndCap();
  void buildCaps();
  void destroyCaps() { _beginCap = _endCap = false; }
  /// The cap as a mesh of two rows: the centre of gravity of the first row, width times, and the first row; at the end,
  /// the last row and its centre of gravity. \throw UsageError  there is no such cap
  QuadMesh<T> getBeginCap() const;
  QuadMesh<T> getEndCap() const;
  /// Makes the caps' centres rows of this mesh, which has no caps any more.
  void extendToCaps();

  bool hasVertexColors() const;
  /// Colours vertex (i, j) by value (i, j): the smallest value gets the map's first colour, the largest its last.
  /// Values that are not finite take no part in that; NaN gets the first colour.
  /// \throw SizeError  not one value per vertex, or no colour
  void buildVertexColors(const Matrix<Real<T>>& values, const Colormap& colormap);
  /// Red, green and blue of each vertex, 0 to 255. \throw UsageError  there are no colours
  const QuadMesh<int>& getVertexColors() const;

  /// Vertex by vertex, the mean of matched meshes of one size. \throw SizeError  there is none, or the sizes differ
  static QuadMesh<T> mean(const std::vector<QuadMesh<T>>& meshes);
  /// The mean squared distance of the meshes' vertices (i, j) to that of their mean. \throw SizeError  as mean()
  static Matrix<Real<T>> varianceMap(const QuadMesh<T>& mean, const std::vector<QuadMesh<T>>& meshes);

  /// Two triangles per cell, divided along the shorter diagonal, on vertices in the order of the rows. The triangles of
  /// a closed mesh in 3D are seen from outside when its rows run clockwise in the x-y plane, whether their heights
  /// ascend or descend. With caps, the end rows that have one are filled by triangles on their own vertices, so that a
  /// simple outline of any form is covered exactly; a row with coordinates that are not finite stays open. Colours are
  /// taken over. \throw SizeError  there are too many vertices \throw TypeError  caps in integer coordinates
  TriMesh<T> toTriMesh(bool withCaps) const;

  void read(std::istream& stream) override;
  void write(std::ostream& stream) const override;

protected:
  bool isReadable(int shapeType) const override
  {
    return shapeType == ClosedQuadMeshShape || shapeType == OpenQuadMeshShape;
  }
  void setShapeType(int shapeType) override { this->setOpen(shapeType == OpenQuadMeshShape); }

private:
  bool canHaveCaps() const { return this->isClosed() && getWidth() > 0; }
  void requireCaps(bool isPossible, const char* where) const;
  void requireGrid(const char* where) const;
  void requireSizeOf(const QuadMesh<T>& other, const char* where) const;
  Curve<T> centerOf(const Curve<T>& row) const;

  bool _beginCap = false;
  bool _endCap = false;
  std::shared_ptr<const QuadMesh<int>> _colors;
};

GEOMETRY_EXTERN_TEMPLATE(QuadMesh)
