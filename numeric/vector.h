#pragma once

#include "numeric/buffer.h"
#include "numeric/elementtypes.h"

#include <initializer_list>
#include <utility>
#include <vector>

template <class T> class Matrix;
class RandomGenerator;

/// Contiguous row of elements, 0-based.
///
/// A vector owns its buffer, or is shallow: a view of a buffer that somebody else owns and keeps alive. A copy is
/// always an owner. Assigning to a shallow vector writes its elements; whatever would resize it throws SizeError.
///
/// Statistics and algebra exist for the numeric element types, the rest also for text. Results have the element's type.
/// Sums and products of integers are taken modulo 2^64 and then converted, those of float are accumulated in double.
/// Operations without meaning for integers throw TypeError: mean, sse, var, std, mad, sem, norm, normalize, distance
/// and householderVector; bool and long count as integers here. Comparisons pass over NaN where this is not stated
/// otherwise.
template <class T> class Vector
{
public:
  Vector() = default;
  /// n uninitialised elements; empty when n <= 0.
  explicit Vector(int n);
  /// Shallow view of the n elements at buffer.
  Vector(int n, T* buffer) : _size(n), _shallow(true), _data(buffer) {}
  Vector(std::initializer_list<T> values);
  explicit Vector(const std::vector<T>& values);
  Vector(const Vector& other);
  /// Takes the other's buffer over; of a shallow vector, its view.
  Vector(Vector&& other) noexcept;
  virtual ~Vector()
  {
    if (!_shallow) freeElements(_data, _size);
  }

  /// Copies the elements. \throw SizeError  this vector is shallow and of another size
  Vector& operator=(const Vector& other);
  Vector& operator=(Vector&& other);

  T& operator[](int i) { return _data[i]; }
  const T& operator[](int i) const { return _data[i]; }
  T* data() { return _data; }
  const T* data() const { return _data; }
  T* begin() { return _data; }
  T* end() { return _data + _size; }
  const T* begin() const { return _data; }
  const T* end() const { return _data + _size; }

  int getSize() const { return _size; }
  bool isEmpty() const { return _size == 0; }
  bool isShallow() const { return _shallow; }

  /// Makes room for n elements; their values are lost unless the size stays. \throw SizeError  shallow, another size
  void setSize(int n);
  /// Turns this vector into a shallow view of the n elements at buffer; an owned buffer is freed.
  void setShallow(int n, T* buffer);
  /// \throw SizeError  the sizes differ and one of the vectors is shallow
  void swap(Vector& other);

  bool operator==(const Vector& other) const;
  bool operator!=(const Vector& other) const { return !(*this == other); }

  /// Element by element with the ordinary numeric conversion.
  template <class U> Vector<U> toType() const requires ConvertibleElement<T, U>;

  // Filling.
  void fill(const T& value);
  void setZeros() requires NumericElement<T>;
  void setZeros(int n) requires NumericElement<T>;
  void setOnes() requires NumericElement<T>;
  void setOnes(int n) requires NumericElement<T>;
  /// All zero but element k, which is 1. \throw RangeError  no such element
  void setCanonical(int k) requires NumericElement<T>;
  /// Element i is start + i * step.
  void setSequence(T start, T step = T(1)) requires NumericElement<T>;
  /// Replaces every element x by f(x).
  template <class Function> void apply(Function f)
  {
    for (T& x : *this) x = f(x);
  }

  // Pieces. All throw RangeError when the piece is not inside the vector, SizeError when a shallow one would grow.
  Vector copy(int first, int count) const;
  Vector copyFrom(int first) const;
  /// The elements up to and including the last one.
  Vector copyUntil(int last) const;
  /// Overwrites elements with those of v, the first one at index `at`.
  void paste(int at, const Vector& v);
  /// Each append or prepend moves the whole vector: collect many single values in a std::vector first.
  void append(const Vector& v);
  void append(const T& x);
  void prepend(const Vector& v);

  // Order.
  /// Ascending; NaN comes last.
  void sort();
  void reverse();
  /// Random order. Returns the permutation: the new element i is the old element permutation[i].
  Vector<int> shuffle(RandomGenerator& generator);
  /// Undoes the shuffle that returned this permutation.
  /// \throw SizeError  another size    \throw ValueError  no permutation
  void unshuffle(const Vector<int>& permutation);
  /// Rotates by one place to the right: the last element becomes the first.
  void circShift();
  bool isConstant() const;
  bool isIncreasing() const;
  bool isDecreasing() const;
  /// Reads the same from both ends.
  bool isSymmetrical() const;
  /// Each element is the opposite of its mirror image; the middle one is zero.
  bool isAntiSymmetrical() const requires NumericElement<T>;
  /// Index of the first element equal to x, -1 when there is none.
  int find(const T& x) const;

  // Statistics. SizeError "This vector is empty." where an empty vector has no answer.
  T min() const requires NumericElement<T>;
  T max() const requires NumericElement<T>;
  /// (min, max).
  Vector range() const requires NumericElement<T>;
  /// The first one wins a tie.
  int minPos() const requires NumericElement<T>;
  int maxPos() const requires NumericElement<T>;
  T sum() const requires NumericElement<T>;
  T mean() const requires NumericElement<T>;
  /// Middle of the sorted elements, for an even size the average of the two in the middle, in linear time; NaN when an
  /// element is NaN. The average is truncated towards zero for integers.
  T median() const requires NumericElement<T>;
  /// Sum of squared deviations from the mean.
  T sse() const requires NumericElement<T>;
  /// Population variance: sse() / size.
  T var() const requires NumericElement<T>;
  T std() const requires NumericElement<T>;
  /// Median of the absolute deviations from the median.
  T mad() const requires NumericElement<T>;
  /// Standard error of the mean: sqrt(sse) / (sqrt(n) sqrt(n - 1)) when unbiased, else sqrt(sse) / n.
  T sem(bool unbiased) const requires NumericElement<T>;
  T prod() const requires NumericElement<T>;
  /// Running sums: element i is the sum of elements 0 to i.
  Vector csum() const requires NumericElement<T>;
  /// Running products.
  Vector cprod() const requires NumericElement<T>;
  /// Element i is x[i + k] - x[i]; the last k elements are 0. \throw SizeError  size <= k   \throw ValueError  k < 0
  Vector diff(int k = 1) const requires NumericElement<T>;
  /// The element at index round((size - 1) p / 100) of a sorted vector, p in 0..100.
  /// \throw UsageError  not in increasing order   \throw RangeError  p outside 0..100   \throw SizeError  empty
  T percentile(double p) const requires NumericElement<T>;
  /// Numbers of elements in `count` bins; bin k covers [origin + k width, origin + (k + 1) width). Elements beyond
  /// either end are counted in the end bins, NaN in the last one. \throw ValueError  count < 1
  Vector<unsigned int> histogram(T origin, T width, int count) const requires NumericElement<T>;
  /// Sums of the elements' weights instead of their numbers. \throw SizeError  weights of another size
  Vector histogram(T origin, T width, int count, const Vector& weights) const requires NumericElement<T>;
  /// The elements that are numbers: all but NaN.
  Vector numbers() const requires NumericElement<T>;

  // Algebra, element by element. SizeError "The two vectors have different sizes"; integer division by zero is a
  // MathError.
  Vector& operator+=(const Vector& v) requires NumericElement<T>;
  Vector& operator-=(const Vector& v) requires NumericElement<T>;
  Vector& operator*=(const Vector& v) requires NumericElement<T>;
  Vector& operator/=(const Vector& v) requires NumericElement<T>;
  Vector& operator+=(T x) requires NumericElement<T>;
  Vector& operator-=(T x) requires NumericElement<T>;
  Vector& operator*=(T x) requires NumericElement<T>;
  Vector& operator/=(T x) requires NumericElement<T>;
  Vector operator-() const requires NumericElement<T>;

  Vector operator+(const Vector& v) const requires NumericElement<T> { return std::move(Vector(*this) += v); }
  Vector operator+(T x) const requires NumericElement<T> { return std::move(Vector(*this) += x); }
  Vector operator-(const Vector& v) const requires NumericElement<T> { return std::move(Vector(*this) -= v); }
  Vector operator-(T x) const requires NumericElement<T> { return std::move(Vector(*this) -= x); }
  Vector operator*(const Vector& v) const requires NumericElement<T> { return std::move(Vector(*this) *= v); }
  Vector operator*(T x) const requires NumericElement<T> { return std::move(Vector(*this) *= x); }
  Vector operator/(const Vector& v) const requires NumericElement<T> { return std::move(Vector(*this) /= v); }
  Vector operator/(T x) const requires NumericElement<T> { return std::move(Vector(*this) /= x); }
  friend Vector operator*(T x, const Vector& v) requires NumericElement<T> { return v * x; }

  Vector pointwiseProduct(const Vector& v) const requires NumericElement<T>;
  T scalarProduct(const Vector& v) const requires NumericElement<T>;
  /// Cross product in 3D. \throw SizeError  a size is not 3
  Vector vectorProduct(const Vector& v) const requires NumericElement<T>;
  /// Element (i, j) is x[i] v[j].
  Matrix<T> outerProduct(const Vector& v) const requires MatrixElement<T>;

  // Algebra, lengths and angles.
  /// Squared Euclidean norm.
  T snorm() const requires NumericElement<T>;
  /// Euclidean norm, also when the squares would overflow or underflow.
  T norm() const requires NumericElement<T>;
  /// Divides by the norm; a vector of norm zero stays.
  void normalize() requires NumericElement<T>;
  /// Squared Euclidean distance.
  T sdistance(const Vector& v) const requires NumericElement<T>;
  T distance(const Vector& v) const requires NumericElement<T>;
  T manhattanDistance(const Vector& v) const requires NumericElement<T>;
  /// Angle to v in radians, 0..pi (truncated for integers); 0 when either vector is zero.
  /// Source: W. Kahan, "How futile are mindless assessments of roundoff in floating-point computation?", 2006.
  T angle(const Vector& v) const requires NumericElement<T>;
  /// Index of the element of largest absolute value; the lowest wins a tie. \throw SizeError  empty
  int closestAxis() const requires NumericElement<T>;

  /// Correlation with a kernel of size m centred on each element: result[i] is the sum over k of
  /// kernel[k] x[i + k - m / 2], elements beyond the ends counting as 0. With a mask, an element whose mask is 0
  /// counts as 0 too. \throw SizeError  the mask has another size
  Vector corr(const Vector& kernel) const requires NumericElement<T>;
  Vector corr(const Vector& kernel, const Vector& mask) const requires NumericElement<T>;
  /// Convolution, like corr() with the kernel reversed: result[i] is the sum over k of kernel[k] x[i + m / 2 - k].
  Vector conv(const Vector& kernel) const requires NumericElement<T>;
  Vector conv(const Vector& kernel, const Vector& mask) const requires NumericElement<T>;

  /// The vector v, v[0] = 1, for which I - 2 v v' / v'v maps this vector to a multiple of the first axis.
  /// Source: Golub and Van Loan, Matrix Computations, 2nd ed., algorithm 5.1.1. \throw SizeError  empty
  Vector householderVector() const requires NumericElement<T>;

  /// The library's zero tolerance: 1e-15.
  static double epsilon() { return 1e-15; }

private:
  template <class U> friend class Vector;

  void requireNotEmpty(const char* where) const;
  void requireSameSize(const Vector& v, const char* where) const;

  int _size = 0;
  bool _shallow = false; // beside the size: matrices have a vector per row
  T* _data = nullptr;
};

/// Instantiates, in a source that includes vectorstorage.h, what a vector of an element type without arithmetic needs
/// to be filled, copied and compared: an enumeration, say.
#define NUMERIC_INSTANTIATE_VECTOR_STORAGE(T)                                                                          \
  template Vector<T>::Vector(int);                                                                                     \
  template Vector<T>::Vector(std::initializer_list<T>);                                                                \
  template Vector<T>::Vector(const std::vector<T>&);                                                                   \
  template Vector<T>::Vector(const Vector<T>&);                                                                        \
  template Vector<T>::Vector(Vector<T>&&) noexcept;                                                                    \
  template Vector<T>& Vector<T>::operator=(const Vector<T>&);                                                          \
  template Vector<T>& Vector<T>::operator=(Vector<T>&&);                                                               \
  template void Vector<T>::setSize(int);                                                                               \
  template void Vector<T>::setShallow(int, T*);                                                                        \
  template void Vector<T>::swap(Vector<T>&);                                                                           \
  template bool Vector<T>::operator==(const Vector<T>&) const;                                                         \
  template void Vector<T>::fill(const T&);

#define NUMERIC_EXTERN_VECTOR(T) extern template class Vector<T>;
NUMERIC_FOR_EACH_TYPE(NUMERIC_EXTERN_VECTOR)
NUMERIC_EXTERN_VECTOR(long)

/// Instantiates, at the end of each source of Vector, the members which that source defines; those of vectors of text
/// are listed in vector.cpp.
#define NUMERIC_INSTANTIATE_VECTOR(T) template class Vector<T>;
#define NUMERIC_INSTANTIATE_VECTORS                                                                                    \
  NUMERIC_FOR_EACH_TYPE(NUMERIC_INSTANTIATE_VECTOR)                                                                    \
  NUMERIC_INSTANTIATE_VECTOR(long)
