#include "geometry/shapeset.h"

#include "numeric/exception.h"

#include <utility>

template <class T> ShapeSet<T>::ShapeSet(const ShapeSet& other)
{
  _shapes.reserve(other._shapes.size());
  for (const std::unique_ptr<Shape<T>>& shape : other._shapes) append(*shape);
}

template <class T> ShapeSet<T>& ShapeSet<T>::operator=(const ShapeSet& other)
{
  ShapeSet copy(other);
  _shapes.swap(copy._shapes);
  return *this;
}

template <class T> void ShapeSet<T>::append(std::unique_ptr<Shape<T>> shape)
{
  if (!shape) throw UsageError("void ShapeSet<T>::append(std::unique_ptr<Shape<T>>)", "There is no shape");
  _shapes.push_back(std::move(shape));
}

template <class T> void ShapeSet<T>::remove(int i)
{
  if (i < 0 || i >= getSize()) throw RangeError("void ShapeSet<T>::remove(int)", "There is no such shape");
  _shapes.erase(_shapes.begin() + i);
}

GEOMETRY_INSTANTIATE(ShapeSet)
