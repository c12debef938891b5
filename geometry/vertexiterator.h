#pragma once

#include "geometry/blockwalk.h"
#include "numeric/vector.h"

/// Walks over all vertices of a shape, block after block.
template <class T> class ConstVertexIterator
{
public:
  explicit ConstVertexIterator(const Shape<T>& shape) : _walk(shape) {}

  bool isAtEnd() const { return _walk.isAtEnd(); }
  void next() { _walk.next(); }
  const Vector<T>& operator*() const { return _walk.getBlock()[_walk.getIndex()]; }

private:
  static int numVertices(const Shape<T>& shape, int block) { return shape.getBlock(block).getSize(); }

  BlockWalk<T, &ConstVertexIterator::numVertices> _walk;
};

/// The same walk, for changing the vertices; the shape is detached when the walk begins.
template <class T> class ConcreteVertexIterator
{
public:
  explicit ConcreteVertexIterator(Shape<T>& shape) : _iterator(shape) { shape.detach(); }

  bool isAtEnd() const { return _iterator.isAtEnd(); }
  void next() { _iterator.next(); }
  Vector<T>& operator*() const { return const_cast<Vector<T>&>(*_iterator); } // the shape was given for writing

private:
  ConstVertexIterator<T> _iterator;
};
