// Storage and pieces of matrices.
#include "numeric/matrix.h"
#include "numeric/kernels.h"

#include <algorithm>
#include <mutex>
#include <numeric>

namespace
{
SizeError cannotBeResized(const char* where)
{
  return SizeError(where, "This matrix is a view, cannot be resized without data");
}

template <class T> void requireBlock(const Matrix<T>& m, int i, int j, int rows, int columns, const char* where)
{
  const auto isInside = [](long first, long count, long size)
  { return first >= 0 && count >= 0 && first + count <= size; };
  if (!isInside(i, rows, m.getSize1()) || !isInside(j, columns, m.getSize2()))
    throw RangeError(where, "The block is not inside the matrix");
}
} // namespace

template <class T> Matrix<T>::Matrix(int rows, int columns, bool owner)
{
  if (owner)
    Matrix::setSize(rows, columns);
  else
    setBlock(rows, columns, nullptr);
}

template <class T> Matrix<T>::Matrix(const Vector<T>& v, bool asRow)
{
  Matrix::setSize(asRow ? 1 : v.getSize(), asRow ? v.getSize() : 1);
  std::copy(v.begin(), v.end(), _block);
}

template <class T> Matrix<T>::Matrix(std::initializer_list<std::initializer_list<T>> rows)
{
  const std::size_t columns = rows.size() == 0 ? 0 : rows.begin()->size();
  for (const auto& row : rows)
    if (row.size() != columns)
      throw SizeError("Matrix<T>::Matrix(std::initializer_list<std::initializer_list<T>>)",
                      "The rows differ in length");
  Matrix::setSize(static_cast<int>(rows.size()), static_cast<int>(columns));
  T* target = _block;
  for (const auto& row : rows) target = std::copy(row.begin(), row.end(), target);
}

template <class T> Matrix<T>::Matrix(const Matrix& other)
{
  Matrix::setSize(other._size1, other._size2);
  std::copy_n(other._block, getNumElements(), _block);
}

template <class T> Matrix<T>::Matrix(Matrix&& other) noexcept
  : _size1(std::exchange(other._size1, 0)),
    _size2(std::exchange(other._size2, 0)),
    _block(std::exchange(other._block, nullptr)),
    _owner(std::exchange(other._owner, true)),
    _rows(other._rows.exchange(nullptr))
{
}

template <class T> Matrix<T>::~Matrix()
{
  release();
}

template <class T> Matrix<T>& Matrix<T>::operator=(const Matrix& other)
{
  if (this == &other) return *this;
  if (!_owner && (_size1 != other._size1 || _size2 != other._size2))
    throw cannotBeResized("Matrix<T>& Matrix<T>::operator=(const Matrix<T>&)");
  setSize(other._size1, other._size2);
  std::copy_n(other._block, getNumElements(), _block);
  return *this;
}

template <class T> Matrix<T>& Matrix<T>::operator=(Matrix&& other)
{
  if (!_owner || !other._owner) return *this = static_cast<const Matrix&>(other);
  requireShape(other._size1, other._size2);
  Matrix taken(std::move(other));
  std::swap(_size1, taken._size1);
  std::swap(_size2, taken._size2);
  std::swap(_block, taken._block);
  _rows = taken._rows.exchange(_rows);
  return *this;
}

template <class T> void Matrix<T>::release()
{
  delete[] _rows.exchange(nullptr);
  if (_owner) freeElements(_block, getNumElements());
  _block = nullptr;
}

template <class T> Vector<T>* Matrix<T>::makeRowViews() const
{
  static std::mutex mutex;
  const std::lock_guard lock(mutex);
  if (Vector<T>* const known = _rows.load(std::memory_order_acquire)) return known; // another thread was faster
  auto* const made = new Vector<T>[static_cast<std::size_t>(_size1)];
  for (int i = 0; i < _size1; ++i) made[i].setShallow(_size2, _block + static_cast<std::size_t>(i) * _size2);
  _rows.store(made, std::memory_order_release);
  return made;
}

template <class T> void Matrix<T>::setSize(int rows, int columns)
{
  rows = std::max(rows, 0);
  columns = std::max(columns, 0);
  if (rows == _size1 && columns == _size2) return;
  if (!_owner) throw cannotBeResized("void Matrix<T>::setSize(int, int)");
  requireShape(rows, columns);
  T* block = allocateElements<T>(static_cast<std::size_t>(rows) * columns);
  release();
  _block = block;
  _size1 = rows;
  _size2 = columns;
}

template <class T> void Matrix<T>::setBlock(int rows, int columns, T* block)
{
  if (rows < 0 || columns < 0)
    throw SizeError("void Matrix<T>::setBlock(int, int, T*)", "There cannot be a matrix of " + std::to_string(rows) +
                                                                  " rows and " + std::to_string(columns) + " columns");
  requireShape(rows, columns);
  release();
  _owner = false;
  _block = block;
  _size1 = rows;
  _size2 = columns;
}

template <class T> void Matrix<T>::swap(Matrix& other)
{
  if (!_owner || !other._owner)
  {
    if (_size1 != other._size1 || _size2 != other._size2) throw cannotBeResized("void Matrix<T>::swap(Matrix<T>&)");
    std::swap_ranges(_block, _block + getNumElements(), other._block);
    return;
  }
  requireShape(other._size1, other._size2);
  other.requireShape(_size1, _size2);
  std::swap(_size1, other._size1);
  std::swap(_size2, other._size2);
  std::swap(_block, other._block);
  _rows = other._rows.exchange(_rows);
}

template <class T> bool Matrix<T>::operator==(const Matrix& other) const
{
  return _size1 == other._size1 && _size2 == other._size2 &&
         std::equal(_block, _block + getNumElements(), other._block);
}

template <class T> template <class U> Matrix<U> Matrix<T>::toType() const requires ConvertibleElement<T, U>
{
  Matrix<U> converted(_size1, _size2);
  std::transform(_block, _block + getNumElements(), converted.data(), [](T x) { return static_cast<U>(x); });
  return converted;
}

template <class T> void Matrix<T>::fill(T value)
{
  std::fill_n(_block, getNumElements(), value);
}

template <class T> void Matrix<T>::setZeros()
{
  fill(T(0));
}

template <class T> void Matrix<T>::setOnes()
{
  fill(T(1));
}

template <class T> void Matrix<T>::requireIndex(int i, int size, const char* where) const
{
  if (i < 0 || i >= size)
    throw RangeError(where, "Index " + std::to_string(i) + " is not in 0.." + std::to_string(size - 1));
}

template <class T> void Matrix<T>::requireElements(const char* where) const
{
  if (getNumElements() == 0) throw SizeError(where, "This matrix is empty.");
}

template <class T> Vector<T> Matrix<T>::getRow(int i) const
{
  requireIndex(i, _size1, "Vector<T> Matrix<T>::getRow(int) const");
  return Vector<T>(rowViews()[i]);
}

template <class T> Vector<T> Matrix<T>::getColumn(int j) const
{
  requireIndex(j, _size2, "Vector<T> Matrix<T>::getColumn(int) const");
  Vector<T> column(_size1);
  for (int i = 0; i < _size1; ++i) column[i] = (*this)(i, j);
  return column;
}

template <class T> void Matrix<T>::setRow(int i, const Vector<T>& v)
{
  const char* const where = "void Matrix<T>::setRow(int, const Vector<T>&)";
  requireIndex(i, _size1, where);
  if (v.getSize() != _size2) throw SizeError(where, "Incompatible matrix row and vector dimensions");
  rowViews()[i] = v;
}

template <class T> void Matrix<T>::setColumn(int j, const Vector<T>& v)
{
  const char* const where = "void Matrix<T>::setColumn(int, const Vector<T>&)";
  requireIndex(j, _size2, where);
  if (v.getSize() != _size1) throw SizeError(where, "Incompatible matrix column and vector dimensions");
  for (int i = 0; i < _size1; ++i) (*this)(i, j) = v[i];
}

template <class T> void Matrix<T>::paste(int i, int j, const Matrix& block)
{
  requireBlock(*this, i, j, block._size1, block._size2, "void Matrix<T>::paste(int, int, const Matrix<T>&)");
  for (int k = 0; k < block._size1; ++k)
    std::copy(block.rowViews()[k].begin(), block.rowViews()[k].end(), rowViews()[i + k].begin() + j);
}

template <class T> Matrix<T> Matrix<T>::copy(int i, int j, int rows, int columns) const
{
  requireBlock(*this, i, j, rows, columns, "Matrix<T> Matrix<T>::copy(int, int, int, int) const");
  Matrix block(rows, columns);
  for (int k = 0; k < rows; ++k) std::copy_n(rowViews()[i + k].begin() + j, columns, block.rowViews()[k].begin());
  return block;
}

template <class T> Vector<T> Matrix<T>::cat() const
{
  if (getNumElements() > static_cast<std::size_t>(std::numeric_limits<int>::max()))
    throw SizeError("Vector<T> Matrix<T>::cat() const", "This matrix has more elements than a vector can hold");
  Vector<T> all(static_cast<int>(getNumElements()));
  std::copy_n(_block, getNumElements(), all.begin());
  return all;
}

template <class T> Matrix<T> Matrix<T>::transpose() const
{
  constexpr int tile = 32; // keeps reads and writes in the cache
  Matrix transposed(_size2, _size1);
  for (int firstRow = 0; firstRow < _size1; firstRow += tile)
    for (int firstColumn = 0; firstColumn < _size2; firstColumn += tile)
      for (int i = firstRow; i < std::min(firstRow + tile, _size1); ++i)
        for (int j = firstColumn; j < std::min(firstColumn + tile, _size2); ++j) transposed(j, i) = (*this)(i, j);
  return transposed;
}

template <class T> void Matrix<T>::swapRows(int i, int k)
{
  const char* const where = "void Matrix<T>::swapRows(int, int)";
  requireIndex(i, _size1, where);
  requireIndex(k, _size1, where);
  if (i != k) rowViews()[i].swap(rowViews()[k]);
}

template <class T> void Matrix<T>::sortRows(int column)
{
  requireIndex(column, _size2, "void Matrix<T>::sortRows(int)");
  if (_size1 > 0) sortRows(column, 0, _size1 - 1);
}

template <class T> void Matrix<T>::sortRows(int column, int firstRow, int lastRow)
{
  const char* const where = "void Matrix<T>::sortRows(int, int, int)";
  requireIndex(column, _size2, where);
  requireIndex(firstRow, _size1, where);
  requireIndex(lastRow, _size1, where);
  std::vector<int> order(std::max(lastRow - firstRow + 1, 0));
  std::iota(order.begin(), order.end(), firstRow);
  std::stable_sort(order.begin(), order.end(),
                   [this, column](int a, int b)
                   {
                     const T x = (*this)(a, column), y = (*this)(b, column);
                     return x < y || (Kernels::isNaN(y) && !Kernels::isNaN(x)); // NaN after all numbers
                   });
  const Matrix unsorted = copy(firstRow, 0, static_cast<int>(order.size()), _size2);
  for (int i = 0; i < unsorted._size1; ++i) rowViews()[firstRow + i] = unsorted.rowViews()[order[i] - firstRow];
}

NUMERIC_INSTANTIATE_MATRICES

#define NUMERIC_INSTANTIATE_CONVERSION(T, U) template Matrix<U> Matrix<T>::toType<U>() const;
NUMERIC_FOR_EACH_CONVERSION(NUMERIC_INSTANTIATE_CONVERSION)
