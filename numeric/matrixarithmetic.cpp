// Arithmetic and statistics of matrices.
#include "numeric/kernels.h"
#include "numeric/matrix.h"

#include <algorithm>
#include <cmath>

namespace
{
/// Statistics of all elements are refused for these types.
template <class T> constexpr bool hasNoOverallStatistics = OneOf<T, bool, short, unsigned short, int, unsigned int>;

/// row = (row of a) * b, summed in the accumulator type.
template <class T> void multiplyRow(const Vector<T>& a, const Matrix<T>& b, std::vector<Accumulator<T>>& sums, T* row)
{
  using Sum = Accumulator<T>;
  std::fill(sums.begin(), sums.end(), Sum(0));
  for (int k = 0; k < a.getSize(); ++k)
  {
    const Sum factor = static_cast<Sum>(a[k]); // NOLINT(bugprone-signed-char-misuse): the sign is meant to extend
    const T* const bRow = b[k].data();
    for (std::size_t j = 0; j < sums.size(); ++j) sums[j] += factor * static_cast<Sum>(bRow[j]);
  }
  std::transform(sums.begin(), sums.end(), row, [](Sum sum) { return static_cast<T>(sum); });
}
} // namespace

template <class T> void Matrix<T>::requireSameSize(const Matrix& m, const char* where) const
{
  if (_size1 != m._size1 || _size2 != m._size2) throw SizeError(where, "The two matrices have different sizes");
}

template <class T> Matrix<T>& Matrix<T>::operator+=(const Matrix& m)
{
  requireSameSize(m, "Matrix<T>& Matrix<T>::operator+=(const Matrix<T>&)");
  for (int i = 0; i < _size1; ++i) rowViews()[i] += m.rowViews()[i];
  return *this;
}

template <class T> Matrix<T>& Matrix<T>::operator-=(const Matrix& m)
{
  requireSameSize(m, "Matrix<T>& Matrix<T>::operator-=(const Matrix<T>&)");
  for (int i = 0; i < _size1; ++i) rowViews()[i] -= m.rowViews()[i];
  return *this;
}

template <class T> Matrix<T>& Matrix<T>::operator*=(const Matrix& m)
{
  return *this = *this * m;
}

template <class T> Matrix<T>& Matrix<T>::operator/=(const Matrix& m)
{
  requireSameSize(m, "Matrix<T>& Matrix<T>::operator/=(const Matrix<T>&)");
  Matrix quotient(*this); // an integer division by zero leaves this matrix as it was
  for (int i = 0; i < _size1; ++i) quotient.rowViews()[i] /= m.rowViews()[i];
  return *this = std::move(quotient);
}

template <class T> Matrix<T>& Matrix<T>::operator+=(T x)
{
  for (int i = 0; i < _size1; ++i) rowViews()[i] += x;
  return *this;
}

template <class T> Matrix<T>& Matrix<T>::operator-=(T x)
{
  for (int i = 0; i < _size1; ++i) rowViews()[i] -= x;
  return *this;
}

template <class T> Matrix<T>& Matrix<T>::operator*=(T x)
{
  for (int i = 0; i < _size1; ++i) rowViews()[i] *= x;
  return *this;
}

template <class T> Matrix<T>& Matrix<T>::operator/=(T x)
{
  for (int i = 0; i < _size1; ++i) rowViews()[i] /= x;
  return *this;
}

template <class T> Matrix<T> Matrix<T>::operator-() const
{
  Matrix opposite(_size1, _size2);
  for (int i = 0; i < _size1; ++i) opposite.rowViews()[i] = -rowViews()[i];
  return opposite;
}

template <class T> Matrix<T> Matrix<T>::pointwiseProduct(const Matrix& m) const
{
  requireSameSize(m, "Matrix<T> Matrix<T>::pointwiseProduct(const Matrix<T>&) const");
  Matrix product(*this);
  for (int i = 0; i < _size1; ++i) product.rowViews()[i] *= m.rowViews()[i];
  return product;
}

template <class T> Matrix<T> Matrix<T>::operator*(const Matrix& m) const
{
  if (_size2 != m._size1)
    throw SizeError("Matrix<T> Matrix<T>::operator*(const Matrix<T>&) const", "Incompatible matrix dimensions");
  Matrix product(_size1, m._size2);
  std::vector<Accumulator<T>> sums(m._size2);
  for (int i = 0; i < _size1; ++i) multiplyRow(rowViews()[i], m, sums, product.rowViews()[i].data());
  return product;
}

template <class T> Vector<T> Matrix<T>::operator*(const Vector<T>& v) const
{
  if (_size2 != v.getSize())
    throw SizeError("Vector<T> Matrix<T>::operator*(const Vector<T>&) const",
                    "Incompatible matrix and vector dimensions");
  Vector<T> product(_size1);
  for (int i = 0; i < _size1; ++i) product[i] = rowViews()[i].scalarProduct(v);
  return product;
}

template <class T> template <class Function> Vector<T> Matrix<T>::forEachRow(Function f, const char* where) const
{
  try
  {
    Vector<T> values(_size1);
    for (int i = 0; i < _size1; ++i) values[i] = f(rowViews()[i]);
    return values;
  }
  catch (Exception& exception)
  {
    exception.addWhere(where);
    throw;
  }
}

template <class T> Vector<T> Matrix<T>::min() const
{
  return forEachRow([](const Vector<T>& row) { return row.min(); }, "Vector<T> Matrix<T>::min() const");
}

template <class T> Vector<T> Matrix<T>::max() const
{
  return forEachRow([](const Vector<T>& row) { return row.max(); }, "Vector<T> Matrix<T>::max() const");
}

template <class T> Vector<T> Matrix<T>::sum() const
{
  return forEachRow([](const Vector<T>& row) { return row.sum(); }, "Vector<T> Matrix<T>::sum() const");
}

template <class T> Vector<T> Matrix<T>::mean() const
{
  return forEachRow([](const Vector<T>& row) { return row.mean(); }, "Vector<T> Matrix<T>::mean() const");
}

template <class T> Vector<T> Matrix<T>::var() const
{
  return forEachRow([](const Vector<T>& row) { return row.var(); }, "Vector<T> Matrix<T>::var() const");
}

template <class T> Vector<T> Matrix<T>::std() const
{
  return forEachRow([](const Vector<T>& row) { return row.std(); }, "Vector<T> Matrix<T>::std() const");
}

template <class T> Vector<T> Matrix<T>::prod() const
{
  return forEachRow([](const Vector<T>& row) { return row.prod(); }, "Vector<T> Matrix<T>::prod() const");
}

template <class T> Vector<T> Matrix<T>::range() const
{
  requireElements("Vector<T> Matrix<T>::range() const");
  return Vector<T>{Kernels::smallest(_block, getNumElements()), Kernels::largest(_block, getNumElements())};
}

template <class T> T Matrix<T>::mean2() const
{
  if constexpr (hasNoOverallStatistics<T>) throw notAvailable<T>("T Matrix<T>::mean2()");
  requireElements("T Matrix<T>::mean2() const");
  return static_cast<T>(Kernels::meanOf(_block, getNumElements()));
}

template <class T> T Matrix<T>::var2() const
{
  if constexpr (hasNoOverallStatistics<T>) throw notAvailable<T>("T Matrix<T>::var2()");
  requireElements("T Matrix<T>::var2() const");
  return static_cast<T>(Kernels::varianceOf(_block, getNumElements()));
}

template <class T> T Matrix<T>::std2() const
{
  if constexpr (hasNoOverallStatistics<T>) throw notAvailable<T>("T Matrix<T>::std2()");
  requireElements("T Matrix<T>::std2() const");
  return static_cast<T>(std::sqrt(Kernels::varianceOf(_block, getNumElements())));
}

template <class T> Vector<unsigned int> Matrix<T>::histogram(T origin, T width, int count) const
{
  if (count < 1)
    throw ValueError("Vector<unsigned int> Matrix<T>::histogram(T, T, int) const",
                     "A histogram needs at least one bin");
  Vector<unsigned int> counts(count);
  counts.setZeros();
  Kernels::countInBins(_block, getNumElements(), origin, width, count, counts.data());
  return counts;
}

template <class T> Matrix<T> Vector<T>::outerProduct(const Vector& v) const requires MatrixElement<T>
{
  Matrix<T> products(_size, v._size);
  for (int i = 0; i < _size; ++i) products[i] = v * _data[i];
  return products;
}

NUMERIC_INSTANTIATE_MATRICES

#define NUMERIC_INSTANTIATE_OUTER_PRODUCT(T) template Matrix<T> Vector<T>::outerProduct(const Vector<T>&) const;
NUMERIC_FOR_EACH_TYPE(NUMERIC_INSTANTIATE_OUTER_PRODUCT)
