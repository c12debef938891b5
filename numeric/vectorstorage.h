// How vectors keep their elements; only for sources that instantiate Vector for an element type.
#pragma once

#include "numeric/exception.h"
#include "numeric/vector.h"

#include <algorithm>

namespace VectorStorage
{
inline SizeError cannotBeResized(const char* where)
{
  return SizeError(where, "This is a shallow vector, cannot be resized without data");
}
} // namespace VectorStorage

template <class T> Vector<T>::Vector(int n) : _size(std::max(n, 0)), _data(allocateElements<T>(_size)) {}

template <class T> Vector<T>::Vector(std::initializer_list<T> values)
  : _size(static_cast<int>(values.size())), _data(duplicateElements(values.begin(), values.size()))
{
}

template <class T> Vector<T>::Vector(const std::vector<T>& values) : Vector(static_cast<int>(values.size()))
{
  std::copy(values.begin(), values.end(), _data);
}

template <class T> Vector<T>::Vector(const Vector& other)
  : _size(other._size), _data(duplicateElements(other._data, other._size))
{
}

template <class T> Vector<T>::Vector(Vector&& other) noexcept
  : _size(std::exchange(other._size, 0)),
    _shallow(std::exchange(other._shallow, false)),
    _data(std::exchange(other._data, nullptr))
{
}

template <class T> Vector<T>& Vector<T>::operator=(const Vector& other)
{
  if (this == &other) return *this;
  if (_shallow && _size != other._size)
    throw VectorStorage::cannotBeResized("Vector<T>& Vector<T>::operator=(const Vector<T>&)");
  setSize(other._size);
  std::copy(other.begin(), other.end(), _data);
  return *this;
}

template <class T> Vector<T>& Vector<T>::operator=(Vector&& other)
{
  if (_shallow || other._shallow) return *this = static_cast<const Vector&>(other);
  std::swap(_size, other._size);
  std::swap(_data, other._data);
  return *this;
}

template <class T> void Vector<T>::setSize(int n)
{
  n = std::max(n, 0);
  if (n == _size) return;
  if (_shallow) throw VectorStorage::cannotBeResized("void Vector<T>::setSize(int)");
  T* data = allocateElements<T>(n);
  freeElements(_data, _size);
  _data = data;
  _size = n;
}

template <class T> void Vector<T>::setShallow(int n, T* buffer)
{
  if (!_shallow) freeElements(_data, _size);
  _size = n;
  _data = buffer;
  _shallow = true;
}

template <class T> void Vector<T>::swap(Vector& other)
{
  if (_shallow || other._shallow)
  {
    if (_size != other._size)
      throw SizeError("void Vector<T>::swap(Vector<T>&)", "Vector size differ and at least one of them is shallow");
    std::swap_ranges(begin(), end(), other.begin());
    return;
  }
  std::swap(_size, other._size);
  std::swap(_data, other._data);
}

template <class T> bool Vector<T>::operator==(const Vector& other) const
{
  return std::equal(begin(), end(), other.begin(), other.end());
}

template <class T> void Vector<T>::fill(const T& value)
{
  std::fill(begin(), end(), T(value)); // a copy, since the value may be an element of this vector
}
