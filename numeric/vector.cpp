// Pieces and order of vectors.
#include "numeric/vector.h"

#include "numeric/kernels.h"
#include "numeric/randomgenerator.h"
#include "numeric/vectorstorage.h"

#include <algorithm>
#include <numeric>

namespace
{
template <class T> void requirePiece(const Vector<T>& v, int first, long count, const char* where)
{
  if (first < 0 || count < 0 || first + count > v.getSize())
    throw RangeError(where, "Elements " + std::to_string(first) + " to " + std::to_string(first + count - 1) +
                                " are not inside a vector of size " + std::to_string(v.getSize()));
}

/// Holds a and then b.
template <class T> Vector<T> concatenation(const Vector<T>& a, const Vector<T>& b)
{
  Vector<T> all(a.getSize() + b.getSize());
  std::copy(b.begin(), b.end(), std::copy(a.begin(), a.end(), all.begin()));
  return all;
}

template <class T> void requirePermutation(const Vector<int>& permutation, const Vector<T>& v, const char* where)
{
  if (permutation.getSize() != v.getSize()) throw SizeError(where, "The permutation has another size");
  std::vector<bool> seen(permutation.getSize());
  for (int index : permutation)
  {
    if (index < 0 || index >= permutation.getSize() || seen[index])
      throw ValueError(where, "This is not a permutation");
    seen[index] = true;
  }
}
} // namespace

template <class T> template <class U> Vector<U> Vector<T>::toType() const requires ConvertibleElement<T, U>
{
  Vector<U> converted(_size);
  std::transform(begin(), end(), converted.begin(), [](T x) { return static_cast<U>(x); });
  return converted;
}

template <class T> void Vector<T>::setZeros() requires NumericElement<T>
{
  fill(T(0));
}

template <class T> void Vector<T>::setZeros(int n) requires NumericElement<T>
{
  setSize(n);
  setZeros();
}

template <class T> void Vector<T>::setOnes() requires NumericElement<T>
{
  fill(T(1));
}

template <class T> void Vector<T>::setOnes(int n) requires NumericElement<T>
{
  setSize(n);
  setOnes();
}

template <class T> void Vector<T>::setCanonical(int k) requires NumericElement<T>
{
  requirePiece(*this, k, 1, "void Vector<T>::setCanonical(int)");
  setZeros();
  _data[k] = T(1);
}

template <class T> void Vector<T>::setSequence(T start, T step) requires NumericElement<T>
{
  using Wide = Accumulator<T>;
  for (int i = 0; i < _size; ++i)
    _data[i] = static_cast<T>(static_cast<Wide>(start) + static_cast<Wide>(i) * static_cast<Wide>(step));
}

template <class T> Vector<T> Vector<T>::copy(int first, int count) const
{
  requirePiece(*this, first, count, "Vector<T> Vector<T>::copy(int, int) const");
  Vector piece(count);
  std::copy_n(_data + first, count, piece._data);
  return piece;
}

template <class T> Vector<T> Vector<T>::copyFrom(int first) const
{
  requirePiece(*this, first, long(_size) - first, "Vector<T> Vector<T>::copyFrom(int) const");
  return copy(first, _size - first);
}

template <class T> Vector<T> Vector<T>::copyUntil(int last) const
{
  requirePiece(*this, 0, last + 1L, "Vector<T> Vector<T>::copyUntil(int) const");
  return copy(0, last + 1);
}

template <class T> void Vector<T>::paste(int at, const Vector& v)
{
  requirePiece(*this, at, v._size, "void Vector<T>::paste(int, const Vector<T>&)");
  if (v._data < _data + at)
    std::copy_backward(v.begin(), v.end(), _data + at + v._size); // the two may overlap
  else
    std::copy(v.begin(), v.end(), _data + at);
}

template <class T> void Vector<T>::append(const Vector& v)
{
  if (v.isEmpty()) return;
  if (_shallow) throw VectorStorage::cannotBeResized("void Vector<T>::append(const Vector<T>&)");
  *this = concatenation(*this, v);
}

template <class T> void Vector<T>::append(const T& x)
{
  if (_shallow) throw VectorStorage::cannotBeResized("void Vector<T>::append(const T&)");
  *this = concatenation(*this, Vector{x});
}

template <class T> void Vector<T>::prepend(const Vector& v)
{
  if (v.isEmpty()) return;
  if (_shallow) throw VectorStorage::cannotBeResized("void Vector<T>::prepend(const Vector<T>&)");
  *this = concatenation(v, *this);
}

template <class T> void Vector<T>::sort()
{
  T* const last = std::partition(begin(), end(), [](const T& x) { return !Kernels::isNaN(x); });
  std::sort(begin(), last);
}

template <class T> void Vector<T>::reverse()
{
  std::reverse(begin(), end());
}

/// Source: Durstenfeld, "Algorithm 235: Random permutation", 1964.
template <class T> Vector<int> Vector<T>::shuffle(RandomGenerator& generator)
{
  Vector<int> permutation(_size);
  std::iota(permutation.begin(), permutation.end(), 0);
  for (int i = _size - 1; i > 0; --i)
  {
    const int j = static_cast<int>(generator.uniformL(i + 1));
    std::swap(_data[i], _data[j]);
    std::swap(permutation[i], permutation[j]);
  }
  return permutation;
}

template <class T> void Vector<T>::unshuffle(const Vector<int>& permutation)
{
  requirePermutation(permutation, *this, "void Vector<T>::unshuffle(const Vector<int>&)");
  Vector shuffled(*this);
  for (int i = 0; i < _size; ++i) _data[permutation[i]] = std::move(shuffled._data[i]);
}

template <class T> void Vector<T>::circShift()
{
  if (_size > 1) std::rotate(begin(), end() - 1, end());
}

template <class T> bool Vector<T>::isConstant() const
{
  return std::all_of(begin(), end(), [this](const T& x) { return x == _data[0]; });
}

template <class T> bool Vector<T>::isIncreasing() const
{
  for (int i = 1; i < _size; ++i)
    if (!(_data[i - 1] <= _data[i])) return false;
  return true;
}

template <class T> bool Vector<T>::isDecreasing() const
{
  for (int i = 1; i < _size; ++i)
    if (!(_data[i - 1] >= _data[i])) return false;
  return true;
}

template <class T> bool Vector<T>::isSymmetrical() const
{
  for (int i = 0; i < _size - 1 - i; ++i)
    if (!(_data[i] == _data[_size - 1 - i])) return false;
  return true;
}

template <class T> bool Vector<T>::isAntiSymmetrical() const requires NumericElement<T>
{
  for (int i = 0; i <= _size - 1 - i; ++i)
    if (_data[i] != Kernels::difference(T(0), _data[_size - 1 - i])) return false;
  return true;
}

template <class T> int Vector<T>::find(const T& x) const
{
  const T* const found = std::find(begin(), end(), x);
  return found == end() ? -1 : static_cast<int>(found - begin());
}

NUMERIC_INSTANTIATE_VECTORS

#define NUMERIC_INSTANTIATE_CONVERSION(T, U) template Vector<U> Vector<T>::toType<U>() const;
NUMERIC_FOR_EACH_CONVERSION(NUMERIC_INSTANTIATE_CONVERSION)

// Vectors of text have the members above that need no arithmetic.
NUMERIC_INSTANTIATE_VECTOR_STORAGE(std::string)
template Vector<std::string> Vector<std::string>::copy(int, int) const;
template Vector<std::string> Vector<std::string>::copyFrom(int) const;
template Vector<std::string> Vector<std::string>::copyUntil(int) const;
template void Vector<std::string>::paste(int, const Vector<std::string>&);
template void Vector<std::string>::append(const Vector<std::string>&);
template void Vector<std::string>::append(const std::string&);
template void Vector<std::string>::prepend(const Vector<std::string>&);
template void Vector<std::string>::sort();
template void Vector<std::string>::reverse();
template Vector<int> Vector<std::string>::shuffle(RandomGenerator&);
template void Vector<std::string>::unshuffle(const Vector<int>&);
template void Vector<std::string>::circShift();
template bool Vector<std::string>::isConstant() const;
template bool Vector<std::string>::isIncreasing() const;
template bool Vector<std::string>::isDecreasing() const;
template bool Vector<std::string>::isSymmetrical() const;
template int Vector<std::string>::find(const std::string&) const;
