// Singular value decomposition of matrices, and what is solved with it.
#include "numeric/matrix.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>

namespace
{
/// Diagonalises an upper bidiagonal matrix by Givens rotations, which it applies to the rows of u' and v' as well.
/// Source: Golub and Van Loan, Matrix Computations, 2nd ed., section 8.3 (algorithms 8.3.1 and 8.3.2).
template <std::floating_point T> class BidiagonalDiagonaliser
{
public:
  BidiagonalDiagonaliser(const Matrix<T>& bidiagonal, Matrix<T>& transposedU, Matrix<T>& transposedV)
    : _p(bidiagonal.getSize1()), _diagonal(_p), _upper(_p), _u(transposedU), _v(transposedV)
  {
    for (int i = 0; i < _p; ++i) _diagonal[i] = bidiagonal(i, i);
    for (int i = 0; i + 1 < _p; ++i) _upper[i] = bidiagonal(i, i + 1);
    for (int i = 0; i < _p; ++i)
      _norm = std::max({_norm, std::abs(_diagonal[i]), i + 1 < _p ? std::abs(_upper[i]) : 0});
  }

  /// Whether the matrix became diagonal within the bounded number of steps.
  bool run()
  {
    constexpr int stepsPerValue = 100; // two or three are the rule
    for (long step = 0; step <= static_cast<long>(stepsPerValue) * _p; ++step)
    {
      clearNegligible();
      int last = _p - 1;
      while (last > 0 && _upper[last - 1] == 0) --last;
      if (last <= 0) return true;
      int first = last - 1;
      while (first > 0 && _upper[first - 1] != 0) --first;
      reduce(first, last);
    }
    return false;
  }

  const Vector<T>& diagonal() const { return _diagonal; }

private:
  /// Turns (a, b) to (r, 0).
  struct Rotation
  {
    Rotation(T a, T b) : r(std::hypot(a, b)) { Matrix<T>::givens(a, b, c, s); }
    T c, s, r;
  };

  void clearNegligible()
  {
    constexpr T epsilon = std::numeric_limits<T>::epsilon();
    for (int i = 0; i + 1 < _p; ++i)
    {
      const T neighbours = std::abs(_diagonal[i]) + std::abs(_diagonal[i + 1]);
      if (std::abs(_upper[i]) <= epsilon * std::max(neighbours, epsilon * _norm)) _upper[i] = 0;
    }
    for (int i = 0; i < _p; ++i)
      if (std::abs(_diagonal[i]) <= epsilon * epsilon * _norm) _diagonal[i] = 0;
  }

  /// One step on the rows first..last, between which no superdiagonal element is zero.
  void reduce(int first, int last)
  {
    for (int i = last - 1; i >= first; --i)
      if (_diagonal[i] == 0) return clearRow(i, last);
    if (_diagonal[last] == 0) return clearColumn(first, last);
    golubKahanStep(first, last);
  }

  /// Rotates the superdiagonal element of row i, whose diagonal element is zero, out of the matrix.
  void clearRow(int i, int last)
  {
    T bulge = std::exchange(_upper[i], T(0));
    for (int k = i + 1; k <= last; ++k)
    {
      const Rotation rotation(_diagonal[k], bulge);
      _diagonal[k] = rotation.r;
      _u.leftGivensRotate(k, i, rotation.c, rotation.s);
      if (k == last) return;
      bulge = -rotation.s * _upper[k];
      _upper[k] *= rotation.c;
    }
  }

  /// Rotates the superdiagonal element of the last column, whose diagonal element is zero, out of the matrix.
  void clearColumn(int first, int last)
  {
    T bulge = std::exchange(_upper[last - 1], T(0));
    for (int k = last - 1; k >= first; --k)
    {
      const Rotation rotation(_diagonal[k], bulge);
      _diagonal[k] = rotation.r;
      _v.leftGivensRotate(k, last, rotation.c, rotation.s);
      if (k == first) return;
      bulge = -rotation.s * _upper[k - 1];
      _upper[k - 1] *= rotation.c;
    }
  }

  /// The eigenvalue of the trailing 2 x 2 block of B'B that is closer to its last element.
  T wilkinsonShift(int first, int last) const
  {
    const T above = last - 1 > first ? _upper[last - 2] : 0;
    const T a = _diagonal[last - 1] * _diagonal[last - 1] + above * above;
    const T b = _diagonal[last - 1] * _upper[last - 1];
    const T c = _diagonal[last] * _diagonal[last] + _upper[last - 1] * _upper[last - 1];
    const T half = (a - c) / 2;
    return b == 0 ? c : c - b * b / (half + std::copysign(std::hypot(half, b), half));
  }

  void golubKahanStep(int first, int last)
  {
    T y = _diagonal[first] * _diagonal[first] - wilkinsonShift(first, last);
    T z = _diagonal[first] * _upper[first];
    for (int k = first; k < last; ++k)
    {
      const Rotation right(y, z);
      if (k > first) _upper[k - 1] = right.r;
      y = right.c * _diagonal[k] + right.s * _upper[k];
      _upper[k] = right.c * _upper[k] - right.s * _diagonal[k];
      z = right.s * _diagonal[k + 1];
      _diagonal[k + 1] *= right.c;
      _v.leftGivensRotate(k, k + 1, right.c, right.s);

      const Rotation left(y, z);
      _diagonal[k] = left.r;
      y = left.c * _upper[k] + left.s * _diagonal[k + 1];
      _diagonal[k + 1] = left.c * _diagonal[k + 1] - left.s * _upper[k];
      _u.leftGivensRotate(k, k + 1, left.c, left.s);
      if (k + 1 == last) break;
      z = left.s * _upper[k + 1];
      _upper[k + 1] *= left.c;
    }
    _upper[last - 1] = y;
  }

  int _p;
  Vector<T> _diagonal;
  Vector<T> _upper;
  T _norm = 0;
  Matrix<T>& _u;
  Matrix<T>& _v;
};
template <class T> void requireFinite(const Matrix<T>& m, const char* where)
{
  if (!std::all_of(m.data(), m.data() + m.getNumElements(), [](T x) { return std::isfinite(x); }))
    throw MathError(where, "This matrix has elements that are not finite");
}

/// The power of two that brings the largest element close to 1, so that squares stay in range.
template <class T> T scaleOf(const Matrix<T>& m)
{
  T largest = 0;
  for (std::size_t i = 0; i < m.getNumElements(); ++i) largest = std::max(largest, std::abs(m.data()[i]));
  return largest > 0 ? std::ldexp(T(1), std::ilogb(largest)) : T(1);
}

/// Row i of the result is row order[i] of m.
template <class T> Matrix<T> reordered(const Matrix<T>& m, const std::vector<int>& order)
{
  Matrix<T> result(m.getSize1(), m.getSize2());
  for (std::size_t i = 0; i < order.size(); ++i) result[static_cast<int>(i)] = m[order[i]];
  return result;
}

/// Makes the values positive, turning rows of v' round, and lists their indices in decreasing order of the values.
template <class T> std::vector<int> orderValues(Vector<T>& values, Matrix<T>& transposedV)
{
  for (int i = 0; i < values.getSize(); ++i)
  {
    if (!std::signbit(values[i])) continue;
    values[i] = -values[i];
    transposedV[i] *= T(-1);
  }
  std::vector<int> order(values.getSize());
  std::iota(order.begin(), order.end(), 0);
  std::stable_sort(order.begin(), order.end(), [&values](int a, int b) { return values[a] > values[b]; });
  return order;
}

/// Values at or below this bound count as zero.
template <class T> T rankTolerance(const Matrix<T>& m, const Vector<T>& values)
{
  return values.isEmpty() ? T(0) : std::max(m.getSize1(), m.getSize2()) * std::numeric_limits<T>::epsilon() * values[0];
}
} // namespace

template <class T> Vector<T> Matrix<T>::svd(Matrix& u, Matrix& v) const
{
  if constexpr (std::is_integral_v<T>)
    throw notAvailable<T>("Vector<T> Matrix<T>::svd(Matrix<T>&, Matrix<T>&)");
  else
  {
    const char* const where = "Vector<T> Matrix<T>::svd(Matrix<T>&, Matrix<T>&) const";
    if (_size2 > _size1)
      throw SizeError(where, "Cannot perform svd of (" + std::to_string(_size1) + "," + std::to_string(_size2) +
                                 ") matrix with p > n");
    requireFinite(*this, where);
    const T scale = scaleOf(*this);
    Matrix left, right;
    const Matrix bidiagonal = (*this / scale).householderBidiag(left, right);
    left = left.transpose();
    right = right.transpose();
    BidiagonalDiagonaliser<T> diagonaliser(bidiagonal, left, right);
    if (!diagonaliser.run()) throw MathError(where, "The singular value decomposition does not converge");
    Vector<T> values = diagonaliser.diagonal() * scale;
    const std::vector<int> order = orderValues(values, right);
    u = reordered(left, order).transpose();
    v = reordered(right, order).transpose();
    Vector<T> sorted(values.getSize());
    for (int i = 0; i < sorted.getSize(); ++i) sorted[i] = values[order[i]];
    return sorted;
  }
}

template <class T> Matrix<T> Matrix<T>::pinverse() const
{
  if constexpr (OneOf<T, bool, short, unsigned short, int, unsigned int>)
    throw notAvailable<T>("Matrix<T> Matrix<T>::pinverse()");
  Matrix u, v;
  const Vector<T> values = svd(u, v);
  const T tolerance = rankTolerance(*this, values);
  for (int i = 0; i < v._size1; ++i)
    for (int j = 0; j < v._size2; ++j) v(i, j) = values[j] > tolerance ? static_cast<T>(v(i, j) / values[j]) : T(0);
  return v * u.transpose();
}

template <class T> Vector<T> Matrix<T>::solve(const Vector<T>& b) const
{
  if (b.getSize() != _size1)
    throw SizeError("Vector<T> Matrix<T>::solve(const Vector<T>&) const", "Incompatible matrix and vector dimensions");
  Matrix u, v;
  const Vector<T> values = svd(u, v);
  const T tolerance = rankTolerance(*this, values);
  Vector<T> projection = u.transpose() * b;
  for (int i = 0; i < projection.getSize(); ++i)
    projection[i] = values[i] > tolerance ? static_cast<T>(projection[i] / values[i]) : T(0);
  return v * projection;
}

NUMERIC_INSTANTIATE_MATRICES
