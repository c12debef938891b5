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

/// Elimination for a tridiagonal system; the vectors hold the diagonals. Returns false at a pivot that is zero or
/// nothing but rounding: the relative error of each pivot is bounded by that of the one before it, carried on to first
/// order, and the rounding of its own two terms.
template <std::floating_point T>
bool solveTridiagonal(const Vector<T>& lower, const Vector<T>& diagonal, const Vector<T>& upper, Vector<T>& x)
{
  const int n = diagonal.getSize();
  Vector<T> pivots(diagonal);
  T relativeError = 0;
  for (int i = 0; i < n; ++i)
  {
    T error = 0;
    if (i > 0)
    {
      const T factor = static_cast<T>(lower[i - 1] / pivots[i - 1]), change = factor * upper[i - 1];
      pivots[i] -= change;
      x[i] -= factor * x[i - 1];
      const T rounding = std::numeric_limits<T>::epsilon();
      error = rounding * std::abs(diagonal[i]) + (relativeError + rounding) * std::abs(change);
    }
    if (!(std::abs(pivots[i]) > error)) return false;
    relativeError = error / std::abs(pivots[i]);
  }
  for (int i = n - 1; i >= 0; --i)
  {
    if (i + 1 < n) x[i] -= upper[i] * x[i + 1];
    x[i] /= pivots[i];
  }
  return true;
}

/// Elimination with partial pivoting for a cyclic tridiagonal system.
///
/// The ring of unknowns is folded flat, 0, n - 1, 1, n - 2, .., which places neighbours two apart at most: the system
/// becomes a banded one. Row i of the band holds the columns i - 2 to i + 4, the last two for the row interchanges.
/// Source: Golub and Van Loan, Matrix Computations, 2nd ed., section 4.3.3.
template <std::floating_point T> class FoldedRing
{
public:
  FoldedRing(const SquareMatrix<T>& m, const Vector<T>& b) : _n(m.getSize1()), _band(_n, 7), _right(_n)
  {
    _band.setZeros();
    for (int i = 0; i < _n; ++i)
    {
      for (int j : {i, (i + 1) % _n, (i + _n - 1) % _n}) at(place(i), place(j)) = m(i, j);
      _right[place(i)] = b[i];
    }
  }

  /// Whether the system is regular beyond rounding.
  bool eliminate()
  {
    scaleRows();
    const Vector<T> magnitudes = columnMagnitudes();
    for (int k = 0; k < _n; ++k)
    {
      exchangePivot(k);
      if (!(std::abs(at(k, k)) > 0)) return false;
      for (int i = k + 1; i <= lastRow(k); ++i) subtractRow(k, i);
    }
    const T rounding = static_cast<T>(_n) * std::numeric_limits<T>::epsilon();
    return conditionEstimate(magnitudes) * rounding < 1;
  }

  /// The unknowns, after the elimination.
  Vector<T> substitute()
  {
    for (int i = _n - 1; i >= 0; --i)
    {
      for (int j = i + 1; j <= lastColumn(i); ++j) _right[i] -= at(i, j) * _right[j];
      _right[i] /= at(i, i);
    }
    Vector<T> x(_n);
    for (int i = 0; i < _n; ++i) x[i] = _right[place(i)];
    return x;
  }

private:
  int place(int i) const { return i < _n - i ? 2 * i : 2 * (_n - 1 - i) + 1; }
  T& at(int i, int j) { return _band(i, j - i + 2); }
  int lastRow(int column) const { return std::min(column + 2, _n - 1); }
  int lastColumn(int row) const { return std::min(row + 4, _n - 1); }

  /// Divides each equation by a power of two that brings its largest element close to 1.
  void scaleRows()
  {
    for (int i = 0; i < _n; ++i)
    {
      T largest = 0;
      for (T element : _band[i]) largest = std::max(largest, std::abs(element));
      if (!(largest > 0)) continue;
      const int exponent = -std::ilogb(largest);
      _band[i].apply([exponent](T element) { return std::scalbn(element, exponent); });
      _right[i] = std::scalbn(_right[i], exponent);
    }
  }

  Vector<T> columnMagnitudes()
  {
    Vector<T> magnitudes(_n);
    magnitudes.setZeros();
    for (int i = 0; i < _n; ++i)
      for (int j = std::max(i - 2, 0); j <= lastRow(i); ++j) // the band is as wide as it is high
        magnitudes[j] = std::max(magnitudes[j], std::abs(at(i, j)));
    return magnitudes;
  }

  /// The size that unknowns, each in units of its column's magnitude, can have for a right-hand side of ones and minus
  /// ones in the eliminated system. Source: Cline, Moler, Stewart and Wilkinson, "An estimate for the condition number
  /// of a matrix", 1979.
  T conditionEstimate(const Vector<T>& magnitudes)
  {
    Vector<T> grown(_n);
    T largest = 0;
    for (int i = _n - 1; i >= 0; --i)
    {
      T sum = 0;
      for (int j = i + 1; j <= lastColumn(i); ++j) sum += at(i, j) * grown[j];
      grown[i] = -(sum + std::copysign(T(1), sum)) / at(i, i);
      largest = std::max(largest, std::abs(grown[i]) * magnitudes[i]);
    }
    return largest;
  }

  void exchangePivot(int k)
  {
    int pivot = k;
    for (int i = k + 1; i <= lastRow(k); ++i)
      if (std::abs(at(i, k)) > std::abs(at(pivot, k))) pivot = i;
    if (pivot == k) return;
    for (int j = k; j <= lastColumn(k); ++j) std::swap(at(k, j), at(pivot, j));
    std::swap(_right[k], _right[pivot]);
  }

  void subtractRow(int k, int i)
  {
    const T factor = at(i, k) / at(k, k);
    for (int j = k + 1; j <= lastColumn(k); ++j) at(i, j) -= factor * at(k, j);
    _right[i] -= factor * _right[k];
  }

  int _n;
  Matrix<T> _band;
  Vector<T> _right;
};
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
  else
  {
    const char* const where = "Vector<T> SquareMatrix<T>::tridiagSolve(const Vector<T>&) const";
    requireUnknowns(b, where);
    Vector<T> x(b);
    if (!solveTridiagonal(lowerDiagonal(), diagonal(), upperDiagonal(), x))
      throw MathError(where, "Null pivoting element found.");
    return x;
  }
}

template <class T> SquareMatrix<T> SquareMatrix<T>::tridiagInverse() const
{
  if constexpr (std::is_integral_v<T>)
    throw notAvailable<T>("SquareMatrix<T> SquareMatrix<T>::tridiagInverse()");
  else
  {
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
}

template <class T> Vector<T> SquareMatrix<T>::cyclicTridiagSolve(const Vector<T>& b) const
{
  if constexpr (std::is_integral_v<T>)
    return tridiagSolve(b);
  else
  {
    const char* const where = "Vector<T> SquareMatrix<T>::cyclicTridiagSolve(const Vector<T>&) const";
    requireUnknowns(b, where);
    FoldedRing<T> ring(*this, b);
    if (!ring.eliminate()) throw MathError(where, "Singular cyclic tridiagonal matrix.");
    return ring.substitute();
  }
}

NUMERIC_INSTANTIATE_SQUAREMATRICES
