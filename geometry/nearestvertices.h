#pragma once

#include "geometry/shape.h"

#include <memory>

/// Finds, among the vertices of a shape, those that are closest to given points, in logarithmic time by a KD-tree.
template <class T> class NearestVertices
{
public:
  /// Takes a copy of the coordinates. \throw SizeError  there is no vertex \throw MathError  a coordinate is not finite
  explicit NearestVertices(const Shape<T>& shape);
  ~NearestVertices();

  /// The number of the vertex that is closest to a point of finite coordinates, counted through all blocks of the
  /// shape.
  int find(const Real<T>* point) const;
  /// The coordinates of a vertex. Unchecked.
  const Real<T>* getVertex(int i) const;

private:
  class Tree;

  std::unique_ptr<Tree> _tree;
};

GEOMETRY_EXTERN_TEMPLATE(NearestVertices)
