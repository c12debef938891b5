// Householder and Givens transformations of matrices, and the bidiagonalisation they serve.
#include "numeric/kernels.h"
#include "numeric/matrix.h"

#include <algorithm>
#include <cmath>

namespace
{
template <class T> void setUnitColumns(Matrix<T>& m, int rows, int columns)
{
  m.setSize(rows, columns);
  m.setZeros();
  for (int i = 0; i < std::min(rows, columns); ++i) m(i, i) = T(1);
}

/// 2 / v'v, 0 for the null vector.
template <class T> auto householderFactor(const Vector<T>& v)
{
  using Wide = Accumulator<Real<T>>;
  const auto square = [&v](std::size_t i) { return static_cast<Wide>(v.data()[i]) * static_cast<Wide>(v.data()[i]); };
  const Wide squaredNorm = Kernels::sumOf<Wide>(0, v.getSize(), square);
  return squaredNorm > 0 ? 2 / squaredNorm : Wide(0);
}

SizeError incompatibleHouseholder(const char* where)
{
  return SizeError(where, "Incompatible block and Householder vector dimensions");
}

/// (a, b) becomes (c a + s b, c b - s a).
template <class T> void rotate(T& a, T& b, T c, T s)
{
  const T rotated = static_cast<T>(c * a + s * b);
  b = static_cast<T>(c * b - s * a);
  a = rotated;
}
} // namespace

template <class T> void Matrix<T>::leftHouseholderTransform(const Vector<T>& v, int row, int column)
{
  const char* const where = "void Matrix<T>::leftHouseholderTransform(const Vector<T>&, int, int)";
  if (row < 0 || column < 0 || v.getSize() != _size1 - row) throw incompatibleHouseholder(where);
  using Wide = Accumulator<Real<T>>;
  const auto factor = householderFactor(v);
  std::vector<Wide> products(std::max(_size2 - column, 0)); // v'A, times the factor
  for (int i = 0; i < v.getSize(); ++i)
    for (int j = column; j < _size2; ++j)
      products[j - column] += factor * static_cast<Wide>(v[i]) * static_cast<Wide>((*this)(row + i, j));
  for (int i = 0; i < v.getSize(); ++i)
  {
    for (int j = column; j < _size2; ++j)
    {
      T& element = (*this)(row + i, j);
      element = static_cast<T>(static_cast<Wide>(element) - static_cast<Wide>(v[i]) * products[j - column]);
    }
  }
}

template <class T> void Matrix<T>::rightHouseholderTransform(const Vector<T>& v, int row, int column)
{
  const char* const where = "void Matrix<T>::rightHouseholderTransform(const Vector<T>&, int, int)";
  if (row < 0 || column < 0 || v.getSize() != _size2 - column) throw incompatibleHouseholder(where);
  using Wide = Accumulator<Real<T>>;
  const auto factor = householderFactor(v);
  for (int i = row; i < _size1; ++i)
  {
    T* const elements = rowViews()[i].data() + column;
    const auto product = [&v, elements](std::size_t j)
    { return static_cast<Wide>(v.data()[j]) * static_cast<Wide>(elements[j]); };
    const Wide scaled = factor * Kernels::sumOf<Wide>(0, v.getSize(), product);
    for (int j = 0; j < v.getSize(); ++j)
      elements[j] = static_cast<T>(static_cast<Wide>(elements[j]) - scaled * static_cast<Wide>(v[j]));
  }
}

template <class T> void Matrix<T>::leftGivensRotate(int i, int k, T c, T s)
{
  const char* const where = "void Matrix<T>::leftGivensRotate(int, int, T, T)";
  requireIndex(i, _size1, where);
  requireIndex(k, _size1, where);
  for (int j = 0; j < _size2; ++j) rotate((*this)(i, j), (*this)(k, j), c, s);
}

template <class T> void Matrix<T>::rightGivensRotate(int i, int k, T c, T s)
{
  const char* const where = "void Matrix<T>::rightGivensRotate(int, int, T, T)";
  requireIndex(i, _size2, where);
  requireIndex(k, _size2, where);
  for (int j = 0; j < _size1; ++j) rotate((*this)(j, i), (*this)(j, k), c, s);
}

template <class T> void Matrix<T>::givens(T a, T b, T& c, T& s)
{
  if constexpr (OneOf<T, bool, short, unsigned short, int, unsigned int>)
    throw notAvailable<T>("void Matrix<T>::givens(T, T, T&, T&)");
  const Real<T> x = static_cast<Real<T>>(a), y = static_cast<Real<T>>(b);
  const Real<T> r = std::hypot(x, y);
  c = static_cast<T>(r == 0 ? 1 : x / r);
  s = static_cast<T>(r == 0 ? 0 : y / r);
}

template <class T> Matrix<T> Matrix<T>::householderBidiag(Matrix& u, Matrix& v) const
{
  if constexpr (std::is_integral_v<T>)
    throw notAvailable<T>("Matrix<T> Matrix<T>::householderBidiag(Matrix<T>&, Matrix<T>&)");
  const char* const where = "Matrix<T> Matrix<T>::householderBidiag(Matrix<T>&, Matrix<T>&) const";
  const int n = _size1, p = _size2;
  if (p > n)
    throw SizeError(where, "Cannot perform bidiagonalization of (" + std::to_string(n) + "," + std::to_string(p) +
                               ") matrix with p > n");
  Matrix work(*this);
  std::vector<Vector<T>> left, right;
  for (int j = 0; j < p; ++j)
  {
    left.push_back(work.copy(j, j, n - j, 1).cat().householderVector());
    work.leftHouseholderTransform(left[j], j, j);
    if (j + 2 >= p) continue;
    right.push_back(work.copy(j, j + 1, 1, p - j - 1).cat().householderVector());
    work.rightHouseholderTransform(right[j], j, j + 1);
  }
  setUnitColumns(u, n, p);
  for (int j = p - 1; j >= 0; --j) u.leftHouseholderTransform(left[j], j, j);
  setUnitColumns(v, p, p);
  for (int j = p - 3; j >= 0; --j) v.leftHouseholderTransform(right[j], j + 1, j + 1);

  Matrix bidiagonal(p, p); // what the transformations left below and beside it is rounding noise
  bidiagonal.setZeros();
  for (int j = 0; j < p; ++j) bidiagonal(j, j) = work(j, j);
  for (int j = 0; j + 1 < p; ++j) bidiagonal(j, j + 1) = work(j, j + 1);
  return bidiagonal;
}

NUMERIC_INSTANTIATE_MATRICES
