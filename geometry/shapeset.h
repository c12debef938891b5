#pragma once

#include "geometry/shape.h"

#include <memory>
#include <vector>

/// Shapes in order, of any kinds, which the set owns. A copy of a set has copies of them.
template <class T> class ShapeSet
{
public:
  ShapeSet() = default;
  ShapeSet(const ShapeSet& other);
  ShapeSet(ShapeSet&&) noexcept = default;
  ShapeSet& operator=(const ShapeSet& other);
  ShapeSet& operator=(ShapeSet&&) noexcept = default;
  ~ShapeSet() = default;

  int getSize() const { return static_cast<int>(_shapes.size()); }
  /// Shape i. Unchecked.
  Shape<T>& operator[](int i) { return *_shapes[static_cast<std::size_t>(i)]; }
  const Shape<T>& operator[](int i) const { return *_shapes[static_cast<std::size_t>(i)]; }

  /// Appends a copy.
  void append(const Shape<T>& shape) { _shapes.emplace_back(shape.clone()); }
  /// Takes the shape over. \throw UsageError  there is none
  void append(std::unique_ptr<Shape<T>> shape);
  /// \throw RangeError  there is no such shape
  void remove(int i);
  void clear() { _shapes.clear(); }

private:
  std::vector<std::unique_ptr<Shape<T>>> _shapes;
};

GEOMETRY_EXTERN_TEMPLATE(ShapeSet)
