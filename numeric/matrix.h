#pragma once

#include "numeric/vector.h"

#include <atomic>
#include <cstddef>

/// Rows of equal length, row by row in one contiguous block; element (i, j) is column j of row i, both 0-based.
///
/// A matrix owns its block, or is a view of a block that somebody else owns and keeps alive. Its rows are shallow
/// vectors into the block. A copy is always an owner. Assigning to a view writes its elements; resizing it throws
/// SizeError.
///
/// The element types have the same arithmetic as in Vector. For integers, mean, var and std throw TypeError, as do
/// mean2, var2, std2, pinverse and givens (not for char and unsigned char), svd and householderBidiag.
template <class T> class Matrix
{
public:
  Matrix() = default;
  /// Uninitialised elements. With `owner` false, a view that has no elements until setBlock() gives it some.
  Matrix(int rows, int columns, bool owner = true);
  /// View of the rows * columns elements at block.
  Matrix(int rows, int columns, T* block) { setBlock(rows, columns, block); }
  /// A pointer that is no T* would become the flag of the constructor above.
  Matrix(int rows, int columns, const void* block) = delete;
  /// A 1 x n row matrix of v, or an n x 1 column matrix.
  Matrix(const Vector<T>& v, bool asRow);
  /// Rows of equal length. \throw SizeError  they are not
  Matrix(std::initializer_list<std::initializer_list<T>> rows);
  Matrix(const Matrix& other);
  /// Takes the other's block over; of a view, the view.
  Matrix(Matrix&& other) noexcept;
  virtual ~Matrix();

  /// Copies the elements. \throw SizeError  this matrix is a view of another size
  Matrix& operator=(const Matrix& other);
  Matrix& operator=(Matrix&& other);

  T& operator()(int i, int j) { return _block[static_cast<std::size_t>(i) * _size2 + j]; }
  const T& operator()(int i, int j) const { return _block[static_cast<std::size_t>(i) * _size2 + j]; }
  /// Row i, a shallow vector.
  Vector<T>& operator[](int i) { return rowViews()[i]; }
  const Vector<T>& operator[](int i) const { return rowViews()[i]; }
  /// The block of all elements, row after row.
  T* data() { return _block; }
  const T* data() const { return _block; }

  int getSize1() const { return _size1; }
  int getSize2() const { return _size2; }
  /// Number of rows for k = 0, of columns for k = 1.
  int getSize(int k) const { return k == 0 ? _size1 : _size2; }
  /// (rows, columns).
  Vector<int> getSize() const { return Vector<int>{_size1, _size2}; }
  std::size_t getNumElements() const { return static_cast<std::size_t>(_size1) * _size2; }
  bool isOwner() const { return _owner; }

  /// Makes room; the values are lost unless both sizes stay. \throw SizeError  a view, another size
  void setSize(int rows, int columns);
  /// Turns this matrix into a view of the rows * columns elements at block; an owned block is freed.
  /// \throw SizeError  a negative size; this matrix stays as it was
  void setBlock(int rows, int columns, T* block);
  /// \throw SizeError  the sizes differ and one of the matrices is a view
  void swap(Matrix& other);

  bool operator==(const Matrix& other) const;
  bool operator!=(const Matrix& other) const { return !(*this == other); }

  /// Element by element with the ordinary numeric conversion.
  template <class U> Matrix<U> toType() const requires ConvertibleElement<T, U>;

  // Filling.
  void fill(T value);
  void setZeros();
  void setOnes();
  /// Replaces every element x by f(x).
  template <class Function> void apply(Function f)
  {
    T* const end = _block + getNumElements();
    for (T* x = _block; x != end; ++x) *x = f(*x);
  }

  // Pieces. RangeError for indices outside the matrix.
  Vector<T> getRow(int i) const;
  Vector<T> getColumn(int j) const;
  /// \throw SizeError  "Incompatible matrix row and vector dimensions"
  void setRow(int i, const Vector<T>& v);
  /// \throw SizeError  "Incompatible matrix column and vector dimensions"
  void setColumn(int j, const Vector<T>& v);
  /// Overwrites elements with those of the block, its first one at (i, j).
  void paste(int i, int j, const Matrix& block);
  Matrix copy(int i, int j, int rows, int columns) const;
  /// All elements, row after row. \throw SizeError  more than a vector can hold
  Vector<T> cat() const;
  Matrix transpose() const;
  /// Exchanges the contents of two rows.
  void swapRows(int i, int k);
  /// Reorders whole rows by increasing value in the given column, NaN last; equal values keep their order.
  void sortRows(int column);
  /// The same for the rows firstRow to lastRow, both included.
  void sortRows(int column, int firstRow, int lastRow);

  // Arithmetic. Element by element, but *= is the matrix product. SizeError for sizes that do not fit.
  Matrix& operator+=(const Matrix& m);
  Matrix& operator-=(const Matrix& m);
  Matrix& operator*=(const Matrix& m);
  Matrix& operator/=(const Matrix& m);
  Matrix& operator+=(T x);
  Matrix& operator-=(T x);
  Matrix& operator*=(T x);
  Matrix& operator/=(T x);
  Matrix operator-() const;
  Matrix operator+(const Matrix& m) const { return std::move(Matrix(*this) += m); }
  Matrix operator-(const Matrix& m) const { return std::move(Matrix(*this) -= m); }
  Matrix operator/(const Matrix& m) const { return std::move(Matrix(*this) /= m); }
  Matrix operator+(T x) const { return std::move(Matrix(*this) += x); }
  Matrix operator-(T x) const { return std::move(Matrix(*this) -= x); }
  Matrix operator*(T x) const { return std::move(Matrix(*this) *= x); }
  Matrix operator/(T x) const { return std::move(Matrix(*this) /= x); }
  friend Matrix operator*(T x, const Matrix& m) { return m * x; }
  Matrix pointwiseProduct(const Matrix& m) const;
  /// \throw SizeError  "Incompatible matrix dimensions"
  Matrix operator*(const Matrix& m) const;
  /// \throw SizeError  "Incompatible matrix and vector dimensions"
  Vector<T> operator*(const Vector<T>& v) const;

  // Statistics, one value per row.
  Vector<T> min() const;
  Vector<T> max() const;
  Vector<T> sum() const;
  Vector<T> mean() const;
  Vector<T> var() const;
  Vector<T> std() const;
  Vector<T> prod() const;

  // Statistics of all elements. SizeError "This matrix is empty."
  /// (min, max).
  Vector<T> range() const;
  T mean2() const;
  /// Population variance.
  T var2() const;
  T std2() const;
  /// Numbers of elements per bin, see Vector<T>::histogram().
  Vector<unsigned int> histogram(T origin, T width, int count) const;

  // Decompositions of an n x p matrix, p <= n. MathError for elements that are not finite.
  /// This matrix is u b v' with the returned upper bidiagonal p x p matrix b and orthonormal columns of u (n x p) and
  /// v. Source: Golub and Van Loan, Matrix Computations, 2nd ed., algorithm 5.4.2. \throw SizeError  "Cannot perform
  /// bidiagonalization of (n,p) matrix with p > n"
  Matrix householderBidiag(Matrix& u, Matrix& v) const;
  /// Singular values in decreasing order; this matrix is u diag(values) v', u (n x p) and v (p x p) with orthonormal
  /// columns. Source: Golub and Van Loan, section 8.3: bidiagonalisation, then Golub-Kahan steps of Givens rotations.
  /// \throw SizeError  "Cannot perform svd of (n,p) matrix with p > n"   \throw MathError  it does not converge
  Vector<T> svd(Matrix& u, Matrix& v) const;
  /// Moore-Penrose inverse, p x n. Singular values below max(n, p) * (machine epsilon) * (the largest) count as zero.
  Matrix pinverse() const;
  /// The x of least norm that minimises |this x - b|. \throw SizeError  "Incompatible matrix and vector dimensions"
  Vector<T> solve(const Vector<T>& b) const;

  // Elementary transformations.
  /// Multiplies the block of all rows from `row` and columns from `column` on by I - 2 v v' / v'v from the left.
  /// \throw SizeError  "Incompatible block and Householder vector dimensions": v has not the block's number of rows
  void leftHouseholderTransform(const Vector<T>& v, int row = 0, int column = 0);
  /// The same from the right: v has the block's number of columns.
  void rightHouseholderTransform(const Vector<T>& v, int row = 0, int column = 0);
  /// Rows i and k become c row_i + s row_k and c row_k - s row_i.
  void leftGivensRotate(int i, int k, T c, T s);
  /// Columns i and k become c column_i + s column_k and c column_k - s column_i.
  void rightGivensRotate(int i, int k, T c, T s);
  /// The rotation that turns (a, b) to (r, 0): c a + s b = r >= 0, c b - s a = 0, without overflow; (1, 0) for zeros.
  static void givens(T a, T b, T& c, T& s);

protected:
  void requireIndex(int i, int size, const char* where) const;
  /// Called before the sizes change; a derived class throws SizeError for those it cannot have.
  virtual void requireShape(int /*rows*/, int /*columns*/) const {}

private:
  /// The rows, made when one is asked for first, by any thread: many matrices are only ever used as a block.
  Vector<T>* rowViews() const
  {
    Vector<T>* const known = _rows.load(std::memory_order_acquire);
    return known ? known : makeRowViews();
  }
  Vector<T>* makeRowViews() const;
  void release();
  void requireSameSize(const Matrix& m, const char* where) const;
  void requireElements(const char* where) const;
  template <class Function> Vector<T> forEachRow(Function f, const char* where) const;

  int _size1 = 0;
  int _size2 = 0;
  T* _block = nullptr;
  bool _owner = true;
  mutable std::atomic<Vector<T>*> _rows = nullptr; // shallow, into the block
};

#define NUMERIC_EXTERN_MATRIX(T) extern template class Matrix<T>;
NUMERIC_FOR_EACH_TYPE(NUMERIC_EXTERN_MATRIX)

/// Instantiates, at the end of each source of Matrix, the members which that source defines.
#define NUMERIC_INSTANTIATE_MATRIX(T) template class Matrix<T>;
#define NUMERIC_INSTANTIATE_MATRICES NUMERIC_FOR_EACH_TYPE(NUMERIC_INSTANTIATE_MATRIX)
