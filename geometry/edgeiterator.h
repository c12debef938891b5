#pragma once

#include "geometry/edge.h"

template <class T> class Curve;

/// Walks along the edges of a curve, the closing edge of a closed one last.
template <class T> class EdgeIterator
{
public:
  explicit EdgeIterator(const Curve<T>& curve) : _curve(&curve) {}

  bool isAtEnd() const { return _index >= _curve->getNumEdges(); }
  void next() { ++_index; }
  Edge<T> operator*() const { return _curve->getEdge(_index); }

private:
  const Curve<T>* _curve;
  int _index = 0;
};
