#pragma once

#include "numeric/matrix.h"
#include "numeric/quaternion.h"

/// Matrix with as many columns as rows.
///
/// For integers, setHilbert, luDecomp, luSolve, eigenJacobi, tridiagSolve and tridiagInverse throw TypeError, and so
/// does what is computed with them (det, inverse, eigenValues, cyclicTridiagSolve), for all seven integer types alike.
template <class T> class SquareMatrix : public Matrix<T>
{
public:
  SquareMatrix() = default;
  explicit SquareMatrix(int n) : Matrix<T>(n, n) {}
  /// \throw SizeError  the matrix is not square
  SquareMatrix(const Matrix<T>& m);
  SquareMatrix(std::initializer_list<std::initializer_list<T>> rows) : SquareMatrix(Matrix<T>(rows)) {}
  /// The rotation by a unit quaternion, 3 x 3, or 4 x 4 in homogeneous coordinates.
  explicit SquareMatrix(const Quaternion<T>& q, bool homogeneous = false) requires std::floating_point<T>;

  using Matrix<T>::setSize;
  void setSize(int n) { Matrix<T>::setSize(n, n); }

  /// Element by element with the ordinary numeric conversion.
  template <class U> SquareMatrix<U> toType() const requires ConvertibleElement<T, U>
  {
    return SquareMatrix<U>(Matrix<T>::template toType<U>());
  }

  // Filling the whole matrix; what is not named becomes zero. Sizes follow the vectors: a diagonal of size n, diagonals
  // beside it of size n - 1. SizeError when they do not fit each other.
  void setIdentity();
  /// Element (i, j) is 1 / (i + j + 1), n x n.
  void setHilbert(int n);
  void setDiagonal(T value);
  void setDiagonal(const Vector<T>& diagonal);
  void setUpperBidiagonal(const Vector<T>& diagonal, const Vector<T>& upper);
  void setLowerBidiagonal(const Vector<T>& diagonal, const Vector<T>& lower);
  void setTridiagonal(const Vector<T>& lower, const Vector<T>& diagonal, const Vector<T>& upper);

  // Overwriting one diagonal; the 2 stands for the second one off the main diagonal.
  // SizeError "Incompatible matrix and vector dimensions".
  void pasteDiagonal(const Vector<T>& v);
  void pasteUpperDiagonal(const Vector<T>& v);
  void pasteLowerDiagonal(const Vector<T>& v);
  void pasteUpperDiagonal2(const Vector<T>& v);
  void pasteLowerDiagonal2(const Vector<T>& v);

  Vector<T> diagonal() const { return diagonalAt(0); }
  Vector<T> upperDiagonal() const { return diagonalAt(1); }
  Vector<T> lowerDiagonal() const { return diagonalAt(-1); }

  bool isSymmetrical() const;
  /// Element (j, i) is the opposite of element (i, j).
  bool isAntiSymmetrical() const;
  /// Whether the columns form a right-handed frame. \throw SizeError  not 3 x 3
  bool isRHSystem() const;

  /// Sum of the diagonal elements.
  T trace() const;
  /// Determinant by LU decomposition; 0 for a singular matrix, 1 for an empty one.
  T det() const;
  /// \throw MathError  "This matrix is singular"
  SquareMatrix inverse() const;

  /// Replaces this matrix by L (below the diagonal, its own diagonal of ones left out) and U of the LU decomposition
  /// with partial pivoting of its rows: row i of LU is row permutation[i] of this matrix. Returns the sign of the
  /// permutation. Source: Golub and Van Loan, Matrix Computations, 2nd ed., algorithm 3.4.1 by rows. \throw MathError
  /// "This matrix is singular": no pivot of magnitude above the tolerance; the matrix stays as it was
  int luDecomp(Vector<int>& permutation, T tolerance = T(0));
  /// Solves for b with the result of luDecomp(). \throw SizeError  "Incompatible matrix and vector dimensions"
  Vector<T> luSolve(const Vector<T>& b, const Vector<int>& permutation) const;

  // Systems with non-zero elements on the three middle diagonals only; other elements are ignored.
  // Source: Golub and Van Loan, section 4.3 (elimination without pivoting).
  /// \throw MathError  "Null pivoting element found.": one is zero, or nothing but rounding
  Vector<T> tridiagSolve(const Vector<T>& b) const;
  /// \throw MathError  "Null pivoting element found. Try another inversion method."
  SquareMatrix tridiagInverse() const;
  /// Also takes the corners (0, n - 1) and (n - 1, 0) into account and interchanges rows, so that every regular system
  /// is solved, in linear time. \throw MathError  "Singular cyclic tridiagonal matrix."
  Vector<T> cyclicTridiagSolve(const Vector<T>& b) const;

  // Symmetric matrices; only the diagonal and the elements above it are read.
  /// Turns the plane of axes p < q so that element (p, q) becomes zero; the columns p and q of `vectors` turn with it.
  /// Source: Golub and Van Loan, algorithm 8.5.1.
  void jacobiRotate(int p, int q, SquareMatrix& vectors);
  /// Eigenvalues, and eigenvectors as columns, by cyclic Jacobi rotations; sorted by eigenSort() when asked for.
  /// \throw MathError  elements that are not finite, or no convergence
  void eigenJacobi(Vector<T>& values, SquareMatrix& vectors, bool sort) const;
  Vector<T> eigenValues(bool sort) const;
  /// Orders by decreasing eigenvalue, the earlier one first among equals, and the columns of `vectors` with them.
  /// \throw SizeError  "Incompatible matrix and vector dimensions"
  static void eigenSort(Vector<T>& values, SquareMatrix& vectors);

protected:
  void requireShape(int rows, int columns) const override;

private:
  Vector<T> diagonalAt(int offset) const;
  void pasteDiagonalAt(int offset, const Vector<T>& v, const char* where);
  void requireUnknowns(const Vector<T>& b, const char* where) const;
};

#define NUMERIC_EXTERN_SQUAREMATRIX(T) extern template class SquareMatrix<T>;
NUMERIC_FOR_EACH_TYPE(NUMERIC_EXTERN_SQUAREMATRIX)

/// Instantiates, at the end of each source of SquareMatrix, the members which that source defines.
#define NUMERIC_INSTANTIATE_SQUAREMATRIX(T) template class SquareMatrix<T>;
#define NUMERIC_INSTANTIATE_SQUAREMATRICES NUMERIC_FOR_EACH_TYPE(NUMERIC_INSTANTIATE_SQUAREMATRIX)
