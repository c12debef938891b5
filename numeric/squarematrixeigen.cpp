// Eigenvalues of symmetric matrices.
#include "numeric/squarematrix.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace
{
/// Cosine and sine of the smaller angle that diagonalises the symmetric matrix ((a, b), (b, d)), b != 0.
template <class R> std::pair<R, R> jacobiAngle(R a, R b, R d)
{
  const R tau = (d - a) / (2 * b);
  const R tangent = std::copysign(R(1), tau) / (std::abs(tau) + std::hypot(R(1), tau));
  const R cosine = 1 / std::hypot(R(1), tangent);
  return {cosine, tangent * cosine};
}

/// Copies the elements above the diagonal to those below it.
template <class T> void mirrorUpper(SquareMatrix<T>& m)
{
  for (int i = 0; i < m.getSize1(); ++i)
    for (int j = 0; j < i; ++j) m(i, j) = m(j, i);
}

template <class T> bool areUpperElementsFinite(const SquareMatrix<T>& m)
{
  for (int i = 0; i < m.getSize1(); ++i)
    for (int j = i; j < m.getSize1(); ++j)
      if (!std::isfinite(m(i, j))) return false;
  return true;
}

/// The exponent of the power of two that is close to the largest element.
template <class T> int scaleExponent(const SquareMatrix<T>& m)
{
  T largest = 0;
  for (std::size_t i = 0; i < m.getNumElements(); ++i) largest = std::max(largest, std::abs(m.data()[i]));
  return largest > 0 ? std::ilogb(largest) : 0;
}

/// Whether element (p, q) is so small beside its diagonal elements, or beside the whole matrix, that rotating it to
/// zero changes no eigenvalue's digits.
template <class T> bool isNegligible(const SquareMatrix<T>& m, int p, int q, T norm)
{
  constexpr T epsilon = std::numeric_limits<T>::epsilon();
  const T x = std::abs(m(p, q));
  return x <= epsilon * std::sqrt(std::abs(m(p, p))) * std::sqrt(std::abs(m(q, q))) || x <= epsilon * epsilon * norm;
}

/// Rotates every element that counts, row by row. Returns how many these were.
template <class T> int jacobiSweep(SquareMatrix<T>& m, SquareMatrix<T>& vectors, T norm)
{
  int numRotations = 0;
  for (int p = 0; p < m.getSize1(); ++p)
  {
    for (int q = p + 1; q < m.getSize1(); ++q)
    {
      if (isNegligible(m, p, q, norm)) continue;
      m.jacobiRotate(p, q, vectors);
      ++numRotations;
    }
  }
  return numRotations;
}
} // namespace

template <class T> void SquareMatrix<T>::jacobiRotate(int p, int q, SquareMatrix& vectors)
{
  const char* const where = "void SquareMatrix<T>::jacobiRotate(int, int, SquareMatrix<T>&)";
  const int n = this->getSize1();
  this->requireIndex(p, n, where);
  this->requireIndex(q, n, where);
  if (p == q) throw UsageError(where, "The two axes are the same");
  if ((*this)(p, q) == T(0)) return;
  using R = Real<T>;
  const auto at = [this](int i, int j) { return static_cast<R>((*this)(i, j)); };
  const auto [c, s] = jacobiAngle(at(p, p), at(p, q), at(q, q));
  const R shift = s / c * at(p, q);
  (*this)(p, p) = static_cast<T>(at(p, p) - shift);
  (*this)(q, q) = static_cast<T>(at(q, q) + shift);
  (*this)(p, q) = (*this)(q, p) = T(0);
  for (int i = 0; i < n; ++i)
  {
    const R vp = static_cast<R>(vectors(i, p)), vq = static_cast<R>(vectors(i, q));
    vectors(i, p) = static_cast<T>(c * vp - s * vq);
    vectors(i, q) = static_cast<T>(s * vp + c * vq);
    if (i == p || i == q) continue;
    const R xp = at(p, i), xq = at(q, i);
    (*this)(p, i) = (*this)(i, p) = static_cast<T>(c * xp - s * xq);
    (*this)(q, i) = (*this)(i, q) = static_cast<T>(s * xp + c * xq);
  }
}

template <class T> void SquareMatrix<T>::eigenJacobi(Vector<T>& values, SquareMatrix& vectors, bool sort) const
{
  if constexpr (std::is_integral_v<T>)
    throw notAvailable<T>("void SquareMatrix<T>::eigenJacobi(Vector<T>&, SquareMatrix<T>&, bool)");
  else
  {
    const char* const where = "void SquareMatrix<T>::eigenJacobi(Vector<T>&, SquareMatrix<T>&, bool) const";
    if (!areUpperElementsFinite(*this)) throw MathError(where, "This matrix has elements that are not finite");
    SquareMatrix work(*this), axes(this->getSize1());
    mirrorUpper(work);
    axes.setIdentity();
    const int exponent = scaleExponent(work);
    work.apply([exponent](T x) { return std::scalbn(x, -exponent); });
    const T norm = 1;             // to a factor of two
    constexpr int maxSweeps = 60; // six to ten are the rule
    int sweep = 0;
    while (jacobiSweep(work, axes, norm) > 0)
      if (++sweep == maxSweeps) throw MathError(where, "The Jacobi rotations do not converge");
    Vector<T> found = work.diagonal();
    found.apply([exponent](T x) { return std::scalbn(x, exponent); });
    if (sort) eigenSort(found, axes);
    values = std::move(found);
    vectors = std::move(axes);
  }
}

template <class T> Vector<T> SquareMatrix<T>::eigenValues(bool sort) const
{
  Vector<T> values;
  SquareMatrix vectors;
  eigenJacobi(values, vectors, sort);
  return values;
}

template <class T> void SquareMatrix<T>::eigenSort(Vector<T>& values, SquareMatrix& vectors)
{
  const int n = values.getSize();
  if (vectors.getSize1() != n)
    throw SizeError("void SquareMatrix<T>::eigenSort(Vector<T>&, SquareMatrix<T>&)",
                    "Incompatible matrix and vector dimensions");
  for (int i = 0; i < n; ++i)
  {
    T* const largest = std::max_element(values.begin() + i, values.end());
    const std::ptrdiff_t column = largest - values.begin();
    std::rotate(values.begin() + i, largest, largest + 1);
    for (int row = 0; row < n; ++row)
    {
      T* const elements = vectors[row].begin();
      std::rotate(elements + i, elements + column, elements + column + 1);
    }
  }
}

NUMERIC_INSTANTIATE_SQUAREMATRICES
