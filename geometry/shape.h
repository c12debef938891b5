#pragma once

#include "geometry/boundingbox.h"
#include "geometry/vertexclient.h"
#include "geometry/vertexiterator.h"
#include "numeric/squarematrix.h"

#include <iosfwd>
#include <string>

template <class T> class Vertices;

/// Kinds of shapes, as written into shape files.
enum ShapeType
{
  ClosedCurveShape = 0,
  OpenCurveShape = 1,
  ClosedCurveStackShape = 2,
  OpenCurveStackShape = 3,
  ClosedQuadMeshShape = 4,
  OpenQuadMeshShape = 5,
  VerticesShape = 6,
  VertexStackShape = 7,
  TriMeshShape = 8
};

/// "ClosedCurve" and so on; "UnkwownShape" for an unknown type.
std::string getShapeTypeName(int shapeType);

/// Named set of vertices in 2D or 3D: the common base of every vertex container and mesh.
///
/// The vertices lie in one contiguous block or, in a composite shape, in one per component. Centres and moments are
/// computed in Real<T>: T itself, double for pixel coordinates.
template <class T> class Shape : public VertexClient<T>
{
public:
  using VertexClient<T>::VertexClient;

  const std::string& getName() const { return _name; }
  void setName(const std::string& name) { _name = name; }

  /// A copy of this shape. The caller owns it.
  virtual Shape<T>* clone() const = 0;
  virtual ShapeType getShapeType() const = 0;
  virtual bool isComposite() const { return false; }
  virtual int getNumVertices() const { return this->getServer().getSize(); }
  int getSize() const { return getNumVertices(); }

  /// Blocks of contiguous vertices; one unless the shape is composite.
  virtual int getNumBlocks() const { return 1; }
  virtual const VertexServer<T>& getBlock(int) const { return this->getServer(); }

  /// The vertex at an index of one number or, in a composite shape, of two: component and vertex. Unchecked.
  virtual Vector<T>& operator[](const Vector<int>& index) = 0;
  virtual const Vector<T>& operator[](const Vector<int>& index) const = 0;

  ConstVertexIterator<T> vertexIterator() const { return ConstVertexIterator<T>(*this); }
  ConcreteVertexIterator<T> vertexIterator() { return ConcreteVertexIterator<T>(*this); }

  /// Appends vertices; in a stack as a new level.
  virtual void append(const Vertices<T>& vertices) = 0;

  /// Mean of all vertices. \throw SizeError  there is no vertex
  Vector<Real<T>> cog() const;
  /// Second central moments of the vertices divided by their number: their covariance, getSpace() by getSpace().
  /// \throw SizeError  there is no vertex
  SquareMatrix<Real<T>> inertia() const;
  /// The box around all vertices; empty without vertices.
  BoundingBox<T> boundingBox() const;

  /// \throw SizeError  the vector has another dimension
  void translate(const Vector<T>& shift);
  /// Multiplies each coordinate by the factor of its axis. \throw SizeError  the vector has another dimension
  void scale(const Vector<T>& factors);
  void scale(T factor);
  /// Applies a linear map to every vertex. \throw SizeError  the matrix is not getSpace() by getSpace()
  void multiply(const Matrix<T>& map);
  Shape<T>& operator*=(T factor);
  Shape<T>& operator/=(T factor);
  /// Translates the centre of gravity to the origin.
  void center();

  /// Replaces this shape by the one read from its text form. \throw FileFormatError  the text is something else
  virtual void read(std::istream& stream) = 0;
  /// Writes the text form: type, space and counts on lines that begin with "# ", one vertex per line.
  virtual void write(std::ostream& stream) const = 0;
  /// Writes a title, the shape's type and name, and its vertices, for debugging.
  virtual void print(const std::string& title, std::ostream& stream) const;

  /// Reads a shape file. \throw FileReadError  it cannot be opened \throw FileFormatError  it holds something else
  void load(const std::string& path);
  /// Writes a shape file. \throw FileWriteError  it exists and `overwrite` is false, or cannot be written
  void save(const std::string& path, bool overwrite) const;

private:
  void requireSpace(const Vector<T>& vector, const char* where) const;
  template <class F> void forEachVertex(F&& function) const; // function(const T* coordinates)
  template <class F> void changeEachVertex(F&& function);    // function(T* coordinates)

  std::string _name;
};

GEOMETRY_EXTERN_TEMPLATE(Shape)
