#pragma once

#include "geometry/blockwalk.h"
#include "geometry/edge.h"

/// Walks along the edges of a curve, or of all curves of a stack, the closing edge of a closed curve last.
template <class T> class ConstEdgeIterator
{
public:
  explicit ConstEdgeIterator(const Shape<T>& shape) : _walk(shape) {}

  bool isAtEnd() const { return _walk.isAtEnd(); }
  void next() { _walk.next(); }
  Edge<T> operator*() const
  {
    const VertexServer<T>& block = _walk.getBlock();
    const int begin = _walk.getIndex(), end = begin + 1 < block.getSize() ? begin + 1 : 0;
    return {begin, end, block[begin], block[end]};
  }

private:
  static int numEdges(const Shape<T>& shape, int block) { return shape.getNumBlockEdges(block); }

  BlockWalk<T, &ConstEdgeIterator::numEdges> _walk;
};

/// The same walk, for changing the vertices of the edges; the shape is detached when the walk begins.
template <class T> class ConcreteEdgeIterator
{
public:
  explicit ConcreteEdgeIterator(Shape<T>& shape) : _iterator(shape) { shape.detach(); }

  bool isAtEnd() const { return _iterator.isAtEnd(); }
  void next() { _iterator.next(); }
  Edge<T, Vector<T>> operator*() const
  {
    const Edge<T> edge = *_iterator;
    const auto writable = [](const Vector<T>& vertex) -> Vector<T>& // the shape was given for writing
    { return const_cast<Vector<T>&>(vertex); };
    return {edge.getBegin(), edge.getEnd(), writable(edge.getBeginVertex()), writable(edge.getEndVertex())};
  }

private:
  ConstEdgeIterator<T> _iterator;
};
