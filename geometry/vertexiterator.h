#pragma once

#include "numeric/vector.h"

template <class T> class Shape;

/// Walks over all vertices of a shape, block after block.
template <class T> class ConstVertexIterator
{
public:
  explicit ConstVertexIterator(const Shape<T>& shape) : _shape(&shape) { skipFinishedBlocks(); }

  bool isAtEnd() const { return _block == _shape->getNumBlocks(); }
  void next()
  {
    ++_vertex;
    skipFinishedBlocks();
  }
  const Vector<T>& operator*() const { return _shape->getBlock(_block)[_vertex]; }

private:
  void skipFinishedBlocks()
  {
    while (!isAtEnd() && _vertex == _shape->getBlock(_block).getSize())
    {
      ++_block;
      _vertex = 0;
    }
  }

  const Shape<T>* _shape;
  int _block = 0;
  int _vertex = 0;
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
