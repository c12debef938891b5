#pragma once

#include "geometry/vertices.h"

#include <memory>
#include <vector>

/// Ordered list of vertex sets: the levels of a stack, each in a block of its own.
///
/// The number of vertices counts those of all levels.
template <class T> class VertexStack : public Shape<T>
{
public:
  explicit VertexStack(int space = 3) : Shape<T>(space, 0, 0, 0) {}
  VertexStack(const VertexStack<T>& stack);
  VertexStack<T>& operator=(const VertexStack<T>& stack);
  VertexStack(VertexStack<T>&&) = default;
  VertexStack<T>& operator=(VertexStack<T>&&) = default;

  /// Becomes a copy of the other stack.
  void assign(const VertexStack<T>& stack) { *this = stack; }
  VertexStack<T>* clone() const override { return new VertexStack<T>(*this); }
  ShapeType getShapeType() const override { return VertexStackShape; }
  bool isComposite() const override { return true; }
  void detach() override;

  int getNumLevels() const { return static_cast<int>(_levels.size()); }
  bool isEmpty() const { return _levels.empty(); }
  /// Level i. Unchecked: the caller guarantees 0 <= i < getNumLevels().
  Vertices<T>& level(int i) { return *_levels[i]; }
  const Vertices<T>& level(int i) const { return *_levels[i]; }
  Vertices<T>& operator[](int i) { return level(i); }
  const Vertices<T>& operator[](int i) const { return level(i); }
  /// The vertex index[1] of level index[0]. Unchecked.
  Vector<T>& operator[](const Vector<int>& index) override { return level(index[0])[index[1]]; }
  const Vector<T>& operator[](const Vector<int>& index) const override { return level(index[0])[index[1]]; }

  int getNumVertices() const override;
  int getNumBlocks() const override { return getNumLevels(); }
  const VertexServer<T>& getBlock(int i) const override { return level(i).getServer(); }

  void append(const Vertices<T>& vertices) override { insert(getNumLevels(), vertices); }
  void prepend(const Vertices<T>& vertices) { insert(0, vertices); }
  /// Inserts a copy before level i, 0 <= i <= getNumLevels().
  /// \throw RangeError  there is no such place \throw SizeError  the vertices have another dimension
  virtual void insert(int i, const Vertices<T>& vertices);
  /// \throw RangeError  there is no such level
  void remove(int i);
  void clear() { _levels.clear(); }

  void read(std::istream& stream) override;
  void write(std::ostream& stream) const override;

protected:
  /// The kind of level that this stack holds, made from vertices.
  virtual std::unique_ptr<Vertices<T>> createLevel(const Vertices<T>& vertices) const;
  /// Whether a file of this shape type can be read into this stack.
  virtual bool isReadable(int shapeType) const { return shapeType == VertexStackShape; }
  /// Takes over what the type of the file read says.
  virtual void setShapeType(int) {}

private:
  std::vector<std::unique_ptr<Vertices<T>>> _levels;
};

GEOMETRY_EXTERN_TEMPLATE(VertexStack)
