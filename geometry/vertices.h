#pragma once

#include "geometry/shape.h"

#include <utility>

class ShapeReader;

/// Ordered set of vertices in one contiguous block.
///
/// Copies share the vertices until one of them is changed; every operation that writes detaches first, non-const
/// element access included. References to vertices stay valid until vertices are added or removed.
template <class T> class Vertices : public Shape<T>
{
public:
  explicit Vertices(int space = 2, int size = 0, int capacity = 0, int growth = 0)
    : Shape<T>(space, size, capacity, growth)
  {
  }

  /// Takes over a block of coordinates, vertex after vertex. \throw SizeError  they do not make up vertices
  Vertices(int space, BufferVector<T>&& coordinates) : Shape<T>(space, std::move(coordinates)) {}

  Vertices<T>* clone() const override { return new Vertices<T>(*this); }
  ShapeType getShapeType() const override { return VerticesShape; }

  /// Vertex i. Unchecked: the caller guarantees 0 <= i < getSize().
  Vector<T>& operator[](int i) { return this->ownServer()[i]; }
  const Vector<T>& operator[](int i) const { return this->getServer()[i]; }
  Vector<T>& operator[](const Vector<int>& index) override { return (*this)[index[0]]; }
  const Vector<T>& operator[](const Vector<int>& index) const override { return (*this)[index[0]]; }

  /// The coordinates of vertex i and, behind them, of those that follow: getSpace() values each. Unchecked.
  T* data(int i = 0) { return this->ownServer().data(i); }
  const T* data(int i = 0) const { return this->getServer().data(i); }

  /// Keeps the first vertices; new ones are 0.
  void setSize(int size) { this->ownServer().setSize(size); }
  void reserve(int capacity);
  void clear() { setSize(0); }

  void append(const Vertices<T>& vertices) override;
  /// \throw SizeError  the vertex has another dimension
  void append(const Vector<T>& vertex) { insert(getNumVertices(), vertex); }
  /// Inserts a vertex before vertex i, 0 <= i <= getSize().
  /// \throw SizeError  the vertex has another dimension \throw RangeError  there is no such place
  void insert(int i, const Vector<T>& vertex);
  /// \throw RangeError  there is no such vertex
  void remove(int i) { remove(i, i); }
  /// Removes the vertices first to last, both included. \throw RangeError  there are no such vertices
  void remove(int first, int last);

  void reverse();
  /// Rotates the order so that vertex k comes first. \throw RangeError  there is no such vertex
  void setOrigin(int k);
  /// The cyclic shift k that brings this set closest to another one of equal size: the largest sum of the scalar
  /// products of vertex (m + k) mod n and the other's vertex m, the smallest k on a tie.
  /// \throw SizeError  "Size mismatch"
  int findMatch(const Vertices<T>& other) const;
  /// Rotates the order by findMatch().
  void match(const Vertices<T>& other) { setOrigin(findMatch(other)); }

  /// Vertex i of this set and vertex j of the other that are closest; the first such pair in index order. Both are 0
  /// when no vertices are at a finite distance. \throw SizeError  a set is empty or the dimensions differ
  void closestPoints(const Vertices<T>& other, int& i, int& j) const;

  void read(std::istream& stream) override;
  void write(std::ostream& stream) const override;
  /// Reads the space, the number of vertices and the vertices. \throw FileFormatError  the text is something else
  static Vertices<T> readVertices(ShapeReader& reader);

  int getNumVertices() const override { return this->getServer().getSize(); }

protected:
  /// Whether a file of this shape type can be read into this shape.
  virtual bool isReadable(int shapeType) const { return shapeType == VerticesShape; }
  /// Takes over what the type of the file read says.
  virtual void setShapeType(int) {}

private:
  void requireIndex(int i, int size, const char* where) const;
};

GEOMETRY_EXTERN_TEMPLATE(Vertices)
