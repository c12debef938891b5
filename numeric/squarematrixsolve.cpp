// Linear systems of square matrices.
#include "numeric/kernels.h"
#include "numeric/squarematrix.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>

namespace
{
template <class T> bool hasNaN(const SquareMatrix<T>& m)
{
  return std::any_of(m.data(), m.data() + m.getNumElements(), Kernels::isNaN<T>);
}

/// Row at or below k with the largest magnitude in column k; NaN is never a pivot.
template <class T> int pivotRow(const SquareMatrix<T>& m, int k)
{
  int best = k;
  for (int i = k + 1; i < m.getSize1(); ++i)
    if (std::abs(m(i, k)) > std::abs(m(best, k)) || std::isnan(m(best, k))) best = i;
  return best;
}

/// Subtracts multiples of row k from the rows below it, and keeps the multipliers in column k.
template <class T> void eliminateBelow(SquareMatrix<T>& m, int k)
{
  const int n = m.getSize1();
  const T* const pivots = m[k].data();
  for (int i = k + 1; i < n; ++i)
  {
    T* const row = m[i].data();
    const T factor = row[k] /= pivots[k];
    if (factor == 0) continue;
    for (int j = k + 1; j < n; ++j) row[j] -= factor * pivots[j];
  }
}

/// Elimination for a tridiagonal system; the vectors hold the diagonals. Returns false at a zero pivot.
template <class T>
bool solveTridiagonal(const Vector<T>& lower, const Vector<T>& diagonal, const Vector<T>& upper, Vector<T>& x)
{
  const int n = diagonal.getSize();
  Vector<T> pivots(diagonal);
  for (int i = 0; i < n; ++i)
  {
    if (i > 0)
    {
      const T factor = static_cast<T>(lower[i - 1] / pivots[i - 1]);
      pivots[i] -= factor * upper[i - 1];
      x[i] -= factor * x[i - 1];
    }
    if (pivots[i] == 0) return false;
  }
  for (int i = n - 1; i >= 0; --i)
  {
    if (i + 1 < n) x[i] -= upper[i] * x[i + 1];
    x[i] /= pivots[i];
  }
  return true;
}

/// Solves (A + u v') x = b for a tridiagonal A, u = (gamma, 0 .. 0, bottom) and v = (1, 0 .. 0, top / gamma), where
/// gamma is free: the corners are bottom (left) and top (right). Returns false where a pivot is zero or nothing but
/// rounding is left of the divisor.
/// Source: Sherman and Morrison, "Adjustment of an inverse matrix corresponding to a change in one element", 1950.
template <std::floating_point T> bool solveCyclic(const SquareMatrix<T>& m, T gamma, Vector<T>& x)
{
  const int n = m.getSize1();
  const T top = m(0, n - 1), bottom = m(n - 1, 0);
  Vector<T> diagonal = m.diagonal();
  diagonal[0] -= gamma;
  diagonal[n - 1] -= bottom * top / gamma;
  Vector<T> u(n);
  u.setZeros();
  u[0] = gamma;
  u[n - 1] = bottom;
  const Vector<T> lower = m.lowerDiagonal(), upper = m.upperDiagonal();
  if (!solveTridiagonal(lower, diagonal, upper, x) || !solveTridiagonal(lower, diagonal, upper, u)) return false;
  const T fromBottom = top / gamma * u[n - 1];
  const T divisor = 1 + u[0] + fromBottom;
  const T rounding =
      static_cast<T>(n) * std::numeric_limits<T>::epsilon() * (1 + std::abs(u[0]) + std::abs(fromBottom));
  if (!(std::abs(divisor) > rounding)) return false;
  x -= u * ((x[0] + top / gamma * x[n - 1]) / divisor);
  return true;
}
} // namespace

template <class T> int SquareMatrix<T>::luDecomp(Vector<int>& permutation, T tolerance)
{
  if constexpr (std::is_integral_v<T>)
    throw notAvailable<T>("int SquareMatrix<T>::luDecomp(Vector<int>&, T)");
  else
  {
    const int n = this->getSize1();
    SquareMatrix work(*this);
    Vector<int> rows(n);
    std::iota(rows.begin(), rows.end(), 0);
    int sign = 1;
    for (int k = 0; k < n; ++k)
    {
      const int pivot = pivotRow(work, k);
      if (!(std::abs(work(pivot, k)) > tolerance))
        throw MathError("int SquareMatrix<T>::luDecomp(Vector<int>&, T)", "This matrix is singular");
      if (pivot != k) sign = -sign;
      work.swapRows(k, pivot);
      std::swap(rows[k], rows[pivot]);
      eliminateBelow(work, k);
    }
    *this = std::move(work);
    permutation = std::move(rows);
    return sign;
  }
}

template <class T> Vector<T> SquareMatrix<T>::luSolve(const Vector<T>& b, const Vector<int>& permutation) const
{
  if constexpr (std::is_integral_v<T>)
    throw notAvailable<T>("Vector<T> SquareMatrix<T>::luSolve(const Vector<T>&, const Vector<int>&)");
  const char* const where = "Vector<T> SquareMatrix<T>::luSolve(const Vector<T>&, const Vector<int>&) const";
  const int n = this->getSize1();
  requireUnknowns(b, where);
  if (permutation.getSize() != n) throw SizeError(where, "Incompatible matrix and vector dimensions");
  Vector<T> x(n);
  for (int i = 0; i < n; ++i)
  {
    this->requireIndex(permutation[i], n, where);
    x[i] = b[permutation[i]];
    for (int j = 0; j < i; ++j) x[i] -= (*this)(i, j) * x[j];
  }
  for (int i = n - 1; i >= 0; --i)
  {
    for (int j = i + 1; j < n; ++j) x[i] -= (*this)(i, j) * x[j];
    x[i] /= (*this)(i, i);
  }
  return x;
}

template <class T> T SquareMatrix<T>::det() const
{
  SquareMatrix lu(*this);
  Vector<int> permutation;
  try
  {
    T product = static_cast<T>(lu.luDecomp(permutation));
    for (int i = 0; i < lu.getSize1(); ++i) product = static_cast<T>(product * lu(i, i));
    return product;
  }
  catch (const MathError&)
  {
    return hasNaN(*this) ? std::numeric_limits<T>::quiet_NaN() : T(0);
  }
}

template <class T> SquareMatrix<T> SquareMatrix<T>::inverse() const
{
  const int n = this->getSize1();
  SquareMatrix lu(*this), inverted(n);
  Vector<int> permutation;
  lu.luDecomp(permutation);
  Vector<T> axis(n);
  for (int j = 0; j < n; ++j)
  {
    axis.setCanonical(j);
    inverted.setColumn(j, lu.luSolve(axis, permutation));
  }
  return inverted;
}

template <class T> Vector<T> SquareMatrix<T>::tridiagSolve(const Vector<T>& b) const
{
  if constexpr (std::is_integral_v<T>)
    throw notAvailable<T>("Vector<T> SquareMatrix<T>::tridiagSolve(const Vector<T>&)");
  const char* const where = "Vector<T> SquareMatrix<T>::tridiagSolve(const Vector<T>&) const";
  requireUnknowns(b, where);
  Vector<T> x(b);
  if (!solveTridiagonal(lowerDiagonal(), diagonal(), upperDiagonal(), x))
    throw MathError(where, "Null pivoting element found.");
  return x;
}

template <class T> SquareMatrix<T> SquareMatrix<T>::tridiagInverse() const
{
  if constexpr (std::is_integral_v<T>) throw notAvailable<T>("SquareMatrix<T> SquareMatrix<T>::tridiagInverse()");
  const int n = this->getSize1();
  SquareMatrix inverted(n);
  Vector<T> column(n);
  for (int j = 0; j < n; ++j)
  {
    column.setCanonical(j);
    if (!solveTridiagonal(lowerDiagonal(), diagonal(), upperDiagonal(), column))
      throw MathError("SquareMatrix<T> SquareMatrix<T>::tridiagInverse() const",
                      "Null pivoting element found. Try another inversion method.");
    inverted.setColumn(j, column);
  }
  return inverted;
}

template <class T> Vector<T> SquareMatrix<T>::cyclicTridiagSolve(const Vector<T>& b) const
{
  if (this->getSize1() < 3) return tridiagSolve(b); // the corners are no further elements
  if constexpr (std::is_integral_v<T>)
    return tridiagSolve(b);
  else
  {
    const char* const where = "Vector<T> SquareMatrix<T>::cyclicTridiagSolve(const Vector<T>&) const";
    requireUnknowns(b, where);
    const T first = (*this)(0, 0) == 0 ? T(1) : (*this)(0, 0);
    for (const T gamma : {-first, first / 2}) // a pivot may vanish for one of them
    {
      Vector<T> x(b);
      if (solveCyclic(*this, gamma, x)) return x;
    }
    throw MathError(where, "Singular cyclic tridiagonal matrix.");
  }
}

NUMERIC_INSTANTIATE_SQUAREMATRICES
