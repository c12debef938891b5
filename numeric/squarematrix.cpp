// Structure of square matrices.
#include "numeric/squarematrix.h"

#include "numeric/kernels.h"

#include <algorithm>
#include <cstdlib>

template <class T> SquareMatrix<T>::SquareMatrix(const Matrix<T>& m) : Matrix<T>(m)
{
  if (m.getSize1() != m.getSize2())
    throw SizeError("SquareMatrix<T>::SquareMatrix(const Matrix<T>&)", "This matrix is not square");
}

template <class T> void SquareMatrix<T>::requireShape(int rows, int columns) const
{
  if (rows != columns)
    throw SizeError("void SquareMatrix<T>::requireShape(int, int) const", "This matrix is not square");
}

template <class T> void SquareMatrix<T>::requireUnknowns(const Vector<T>& b, const char* where) const
{
  if (b.getSize() != this->getSize1()) throw SizeError(where, "Incompatible matrix and vector dimensions");
}

template <class T> void SquareMatrix<T>::setIdentity()
{
  setDiagonal(T(1));
}

template <class T> void SquareMatrix<T>::setHilbert(int n)
{
  if constexpr (std::is_integral_v<T>) throw notAvailable<T>("void SquareMatrix<T>::setHilbert(int)");
  setSize(n);
  for (int i = 0; i < n; ++i)
    for (int j = 0; j < n; ++j) (*this)(i, j) = T(1) / static_cast<T>(i + j + 1);
}

template <class T> void SquareMatrix<T>::setDiagonal(T value)
{
  this->setZeros();
  for (int i = 0; i < this->getSize1(); ++i) (*this)(i, i) = value;
}

template <class T> void SquareMatrix<T>::setDiagonal(const Vector<T>& diagonal)
{
  setSize(diagonal.getSize());
  this->setZeros();
  pasteDiagonal(diagonal);
}

template <class T> void SquareMatrix<T>::setUpperBidiagonal(const Vector<T>& diagonal, const Vector<T>& upper)
{
  setDiagonal(diagonal);
  pasteUpperDiagonal(upper);
}

template <class T> void SquareMatrix<T>::setLowerBidiagonal(const Vector<T>& diagonal, const Vector<T>& lower)
{
  setDiagonal(diagonal);
  pasteLowerDiagonal(lower);
}

template <class T>
void SquareMatrix<T>::setTridiagonal(const Vector<T>& lower, const Vector<T>& diagonal, const Vector<T>& upper)
{
  setDiagonal(diagonal);
  pasteLowerDiagonal(lower);
  pasteUpperDiagonal(upper);
}

template <class T> void SquareMatrix<T>::pasteDiagonalAt(int offset, const Vector<T>& v, const char* where)
{
  if (v.getSize() != std::max(this->getSize1() - std::abs(offset), 0))
    throw SizeError(where, "Incompatible matrix and vector dimensions");
  const int row = std::max(-offset, 0), column = std::max(offset, 0);
  for (int i = 0; i < v.getSize(); ++i) (*this)(row + i, column + i) = v[i];
}

template <class T> Vector<T> SquareMatrix<T>::diagonalAt(int offset) const
{
  Vector<T> diagonal(this->getSize1() - std::abs(offset));
  const int row = std::max(-offset, 0), column = std::max(offset, 0);
  for (int i = 0; i < diagonal.getSize(); ++i) diagonal[i] = (*this)(row + i, column + i);
  return diagonal;
}

template <class T> void SquareMatrix<T>::pasteDiagonal(const Vector<T>& v)
{
  pasteDiagonalAt(0, v, "void SquareMatrix<T>::pasteDiagonal(const Vector<T>&)");
}

template <class T> void SquareMatrix<T>::pasteUpperDiagonal(const Vector<T>& v)
{
  pasteDiagonalAt(1, v, "void SquareMatrix<T>::pasteUpperDiagonal(const Vector<T>&)");
}

template <class T> void SquareMatrix<T>::pasteLowerDiagonal(const Vector<T>& v)
{
  pasteDiagonalAt(-1, v, "void SquareMatrix<T>::pasteLowerDiagonal(const Vector<T>&)");
}

template <class T> void SquareMatrix<T>::pasteUpperDiagonal2(const Vector<T>& v)
{
  pasteDiagonalAt(2, v, "void SquareMatrix<T>::pasteUpperDiagonal2(const Vector<T>&)");
}

template <class T> void SquareMatrix<T>::pasteLowerDiagonal2(const Vector<T>& v)
{
  pasteDiagonalAt(-2, v, "void SquareMatrix<T>::pasteLowerDiagonal2(const Vector<T>&)");
}

template <class T> bool SquareMatrix<T>::isSymmetrical() const
{
  for (int i = 0; i < this->getSize1(); ++i)
    for (int j = 0; j < i; ++j)
      if (!((*this)(i, j) == (*this)(j, i))) return false;
  return true;
}

template <class T> bool SquareMatrix<T>::isAntiSymmetrical() const
{
  for (int i = 0; i < this->getSize1(); ++i)
    for (int j = 0; j <= i; ++j)
      if ((*this)(i, j) != Kernels::difference(T(0), (*this)(j, i))) return false;
  return true;
}

template <class T> bool SquareMatrix<T>::isRHSystem() const
{
  if (this->getSize1() != 3)
    throw SizeError("bool SquareMatrix<T>::isRHSystem() const", "This matrix has a size different from 3");
  const auto at = [this](int i, int j) { return static_cast<Real<T>>((*this)(i, j)); };
  const auto minor = [&at](int i, int k) { return at(i, 0) * at(k, 1) - at(k, 0) * at(i, 1); };
  return minor(1, 2) * at(0, 2) + minor(2, 0) * at(1, 2) + minor(0, 1) * at(2, 2) > 0;
}

template <class T> T SquareMatrix<T>::trace() const
{
  return this->getSize1() == 0 ? T(0) : diagonal().sum();
}

NUMERIC_INSTANTIATE_SQUAREMATRICES
