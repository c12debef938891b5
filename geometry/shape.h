#pragma once

#include "geometry/boundingbox.h"
#include "geometry/edgeiterator.h"
#include "geometry/rigidtransform.h"
#include "geometry/vertexclient.h"
#include "geometry/vertexiterator.h"
#include "numeric/squarematrix.h"

#include <iosfwd>
#include <map>
#include <string>
#include <utility>
#include <vector>

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

/// Notes that are kept with a shape, by name. Files do not hold them.
using ShapeExtensions = std::map<std::string, std::string>;

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

  bool hasExtensions() const { return !_extensions.empty(); }
  const ShapeExtensions& getExtensions() const { return _extensions; }
  ShapeExtensions& getExtensions() { return _extensions; }

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

  /// Number of edges in a block: edge i of a curve joins its vertex i to the next one. Shapes that are neither curves
  /// nor stacks of curves have none.
  virtual int getNumBlockEdges(int) const { return 0; }
  /// The edges of all curves, the closing edge of a closed one last.
  ConstEdgeIterator<T> edgeIterator() const { return ConstEdgeIterator<T>(*this); }
  ConcreteEdgeIterator<T> edgeIterator() { return ConcreteEdgeIterator<T>(*this); }

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
  /// Translates the centre of gravity to the origin, that of pixels to within half a pixel.
  void center();

  /// Adds the coordinates of the other shape's vertices to those of this one, vertex by vertex.
  /// \throw SizeError  the shapes differ in size or dimension
  virtual Shape<T>& operator+=(const Shape<T>& other);
  /// \throw SizeError  the shapes differ in size or dimension
  virtual Shape<T>& operator-=(const Shape<T>& other);

  /// All coordinates, vertex after vertex. \throw SizeError  more than a vector can hold
  Vector<T> toVector() const;
  /// \throw SizeError  not getSpace() coordinates for each vertex
  void fromVector(const Vector<T>& coordinates);

  // Distances. Vertices have the numbers of their order, in a composite shape from its first component on. Those that
  // are not finite have no neighbours. \throw SizeError  the shapes differ in dimension, or where equal sizes are
  // needed in size.
  /// Number of the vertex nearest to a point, the first of equally near ones; -1 when there is none.
  int nearestVertex(const Vector<T>& point) const;
  /// From each vertex to that of the same number in another shape of equal size.
  Vector<Real<T>> squareDistances(const Shape<T>& other) const;
  /// Root of the mean of squareDistances(); 0 without vertices.
  Real<T> rmsDistance(const Shape<T>& other) const;
  /// The vectors from this shape's vertices to those of the same numbers in another shape of equal size, one per row.
  Matrix<Real<T>> deformations(const Shape<T>& other) const;
  /// Number of the nearest other vertex of each vertex; -1 when there is none.
  Vector<int> nearestNeighbors() const;
  /// From each vertex to the nearest other one; infinite when there is none.
  Vector<Real<T>> squareNearestNeighborDistances() const;
  /// From each vertex to the nearest one of the other shape; infinite when there is none.
  Vector<Real<T>> squareNearestNeighborDistances(const Shape<T>& other) const;
  Vector<Real<T>> nearestNeighborDistances(const Shape<T>& other) const;

  /// Mean and standard deviation (divided by the number of vertices) along each axis.
  /// \throw SizeError  there is no vertex
  void stats(Vector<Real<T>>& mean, Vector<Real<T>>& deviation) const;
  /// The directions of decreasing spread as columns, a right-handed frame; the greatest component of each but the last
  /// is positive. \throw SizeError  there is no vertex \throw MathError  coordinates that are not finite
  SquareMatrix<Real<T>> principalAxes() const;
  /// Principal-axes transform: moves the centre of gravity to the origin and turns the principal axes onto the
  /// coordinate axes. \throw SizeError, MathError  as principalAxes()
  RigidTransform<Real<T>> computePAT() const;
  void applyPAT() { transform(computePAT()); }
  /// The rotation and translation of this shape that bring its vertices closest to the other's, in the least-squares
  /// sense: vertices of the same number, or the given pairs (vertex here, vertex there). Never a reflection.
  /// Source: B. K. P. Horn, "Closed-form solution of absolute orientation using unit quaternions", 1987.
  /// \throw SizeError  the shapes differ in dimension or size, or there is no pair
  /// \throw RangeError  there is no such vertex \throw MathError  coordinates that are not finite
  RigidTransform<Real<T>> computeLSRegistration(const Shape<T>& other) const;
  RigidTransform<Real<T>> computeLSRegistration(const Shape<T>& other,
                                                const std::vector<std::pair<int, int>>& pairs) const;
  /// Moves every vertex; pixel coordinates are rounded. \throw SizeError  the transform has another dimension
  void transform(const RigidTransform<Real<T>>& transform);

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

protected:
  /// The coordinates of all vertices, one after the other.
  std::vector<Real<T>> realCoordinates() const;

private:
  void requireSpace(const Vector<T>& vector, const char* where) const;
  void requireSameLayout(const Shape<T>& other, const char* where) const;
  /// Calls function(const T* coordinates) for every vertex.
  template <class F> void forEachVertex(F&& function) const
  {
    for (int b = 0; b < getNumBlocks(); ++b)
    {
      const VertexServer<T>& block = getBlock(b);
      for (int i = 0; i < block.getSize(); ++i) function(block.data(i));
    }
  }
  /// Calls function(T* coordinates) for every vertex.
  template <class F> void changeEachVertex(F&& function)
  {
    this->detach(); // from here on the blocks are this shape's own
    forEachVertex([&function](const T* coordinates) { function(const_cast<T*>(coordinates)); });
  }

  std::string _name;
  ShapeExtensions _extensions;
};

GEOMETRY_EXTERN_TEMPLATE(Shape)
