// Algebra of vectors.
#include "numeric/kernels.h"
#include "numeric/vector.h"

#include <algorithm>
#include <cmath>

namespace
{
template <class T> T quotient(T a, T b)
{
  if constexpr (std::is_integral_v<T> && std::is_signed_v<T>)
    if (b == -1) return Kernels::difference<T>(0, a); // the lowest integer has no opposite: its division would trap
  return static_cast<T>(a / b);
}

/// |a - b|, exact for integers.
template <class T> Accumulator<T> absoluteDifference(T a, T b)
{
  using Wide = Accumulator<T>;
  return a > b ? static_cast<Wide>(a) - static_cast<Wide>(b) : static_cast<Wide>(b) - static_cast<Wide>(a);
}

template <class T, class Operation> void combine(Vector<T>& a, const Vector<T>& b, const Operation& operation)
{
  std::transform(a.begin(), a.end(), b.begin(), a.begin(), operation);
}

template <class T> void requireNoZero(const T* divisors, int n, const char* where)
{
  if constexpr (std::is_integral_v<T>)
    if (std::find(divisors, divisors + n, T(0)) != divisors + n) throw MathError(where, "Integer division by zero");
}

template <class T> auto normOf(const Vector<T>& v)
{
  using R = Accumulator<Real<T>>;
  return Kernels::euclideanNorm(v.getSize(), [&v](std::size_t i) { return static_cast<R>(v.data()[i]); });
}

/// result[i] is the sum over k of kernel[k] x[i + k - centre]; elements beyond the ends count as 0.
template <class T> Vector<T> correlate(const Vector<T>& x, const Vector<T>& kernel, int centre)
{
  const int n = x.getSize(), m = kernel.getSize();
  Vector<T> result(n);
  for (int i = 0; i < n; ++i)
  {
    const int first = std::max(0, centre - i);
    const int last = std::min(m, n - i + centre);
    result[i] =
        first >= last
            ? T(0)
            : static_cast<T>(Kernels::dotProduct(kernel.data() + first, x.data() + (i + first - centre), last - first));
  }
  return result;
}

/// The elements of x, those where the mask is zero replaced by 0.
template <class T> Vector<T> masked(const Vector<T>& x, const Vector<T>& mask, const char* where)
{
  if (mask.getSize() != x.getSize()) throw SizeError(where, "The mask is not the same length as this vector");
  Vector<T> kept(x);
  combine(kept, mask, [](T value, T weight) { return weight == T(0) ? T(0) : value; });
  return kept;
}
} // namespace

template <class T> void Vector<T>::requireSameSize(const Vector& v, const char* where) const
{
  if (_size != v._size) throw SizeError(where, "The two vectors have different sizes");
}

template <class T> Vector<T>& Vector<T>::operator+=(const Vector& v) requires NumericElement<T>
{
  requireSameSize(v, "Vector<T>& Vector<T>::operator+=(const Vector<T>&)");
  combine(*this, v, Kernels::sumOfTwo<T>);
  return *this;
}

template <class T> Vector<T>& Vector<T>::operator-=(const Vector& v) requires NumericElement<T>
{
  requireSameSize(v, "Vector<T>& Vector<T>::operator-=(const Vector<T>&)");
  combine(*this, v, Kernels::difference<T>);
  return *this;
}

template <class T> Vector<T>& Vector<T>::operator*=(const Vector& v) requires NumericElement<T>
{
  requireSameSize(v, "Vector<T>& Vector<T>::operator*=(const Vector<T>&)");
  combine(*this, v, Kernels::product<T>);
  return *this;
}

template <class T> Vector<T>& Vector<T>::operator/=(const Vector& v) requires NumericElement<T>
{
  const char* const where = "Vector<T>& Vector<T>::operator/=(const Vector<T>&)";
  requireSameSize(v, where);
  requireNoZero(v._data, _size, where);
  combine(*this, v, quotient<T>);
  return *this;
}

template <class T> Vector<T>& Vector<T>::operator+=(T x) requires NumericElement<T>
{
  apply([x](T element) { return Kernels::sumOfTwo(element, x); });
  return *this;
}

template <class T> Vector<T>& Vector<T>::operator-=(T x) requires NumericElement<T>
{
  apply([x](T element) { return Kernels::difference(element, x); });
  return *this;
}

template <class T> Vector<T>& Vector<T>::operator*=(T x) requires NumericElement<T>
{
  apply([x](T element) { return Kernels::product(element, x); });
  return *this;
}

template <class T> Vector<T>& Vector<T>::operator/=(T x) requires NumericElement<T>
{
  requireNoZero(&x, 1, "Vector<T>& Vector<T>::operator/=(T)");
  apply([x](T element) { return quotient(element, x); });
  return *this;
}

template <class T> Vector<T> Vector<T>::operator-() const requires NumericElement<T>
{
  Vector opposite(_size);
  std::transform(begin(), end(), opposite.begin(),
                 [](T x) { return static_cast<T>(-static_cast<Kernels::Wrapping<T>>(x)); });
  return opposite;
}

template <class T> Vector<T> Vector<T>::pointwiseProduct(const Vector& v) const requires NumericElement<T>
{
  requireSameSize(v, "Vector<T> Vector<T>::pointwiseProduct(const Vector<T>&) const");
  return *this * v;
}

template <class T> T Vector<T>::scalarProduct(const Vector& v) const requires NumericElement<T>
{
  requireSameSize(v, "T Vector<T>::scalarProduct(const Vector<T>&) const");
  return static_cast<T>(Kernels::dotProduct(_data, v._data, _size));
}

template <class T> Vector<T> Vector<T>::vectorProduct(const Vector& v) const requires NumericElement<T>
{
  if (_size != 3 || v._size != 3)
    throw SizeError("Vector<T> Vector<T>::vectorProduct(const Vector<T>&) const",
                    "At least one vector have a size different from 3");
  const auto minor = [this, &v](int i, int j)
  { return Kernels::difference(Kernels::product(_data[i], v._data[j]), Kernels::product(_data[j], v._data[i])); };
  return Vector{minor(1, 2), minor(2, 0), minor(0, 1)};
}

template <class T> T Vector<T>::snorm() const requires NumericElement<T>
{
  return static_cast<T>(Kernels::dotProduct(_data, _data, _size));
}

template <class T> T Vector<T>::norm() const requires NumericElement<T>
{
  if constexpr (std::is_integral_v<T>) throw notAvailable<T>("T Vector<T>::norm()");
  return static_cast<T>(normOf(*this));
}

template <class T> void Vector<T>::normalize() requires NumericElement<T>
{
  if constexpr (std::is_integral_v<T>) throw notAvailable<T>("void Vector<T>::normalize()");
  const auto length = normOf(*this);
  if (length == 0) return;
  apply([length](T x) { return static_cast<T>(x / length); });
}

template <class T> T Vector<T>::sdistance(const Vector& v) const requires NumericElement<T>
{
  requireSameSize(v, "T Vector<T>::sdistance(const Vector<T>&) const");
  using Sum = Accumulator<T>;
  return static_cast<T>(Kernels::sumOf<Sum>(0, _size,
                                            [this, &v](std::size_t i)
                                            {
                                              const Sum distance = absoluteDifference(_data[i], v._data[i]);
                                              return distance * distance;
                                            }));
}

template <class T> T Vector<T>::distance(const Vector& v) const requires NumericElement<T>
{
  if constexpr (std::is_integral_v<T>) throw notAvailable<T>("T Vector<T>::distance(const Vector<T>&)");
  requireSameSize(v, "T Vector<T>::distance(const Vector<T>&) const");
  return static_cast<T>(Kernels::euclideanNorm(
      _size, [this, &v](std::size_t i) { return Accumulator<Real<T>>(absoluteDifference(_data[i], v._data[i])); }));
}

template <class T> T Vector<T>::manhattanDistance(const Vector& v) const requires NumericElement<T>
{
  requireSameSize(v, "T Vector<T>::manhattanDistance(const Vector<T>&) const");
  return static_cast<T>(Kernels::sumOf<Accumulator<T>>(
      0, _size, [this, &v](std::size_t i) { return absoluteDifference(_data[i], v._data[i]); }));
}

template <class T> T Vector<T>::angle(const Vector& v) const requires NumericElement<T>
{
  requireSameSize(v, "T Vector<T>::angle(const Vector<T>&) const");
  using R = Accumulator<Real<T>>;
  const R a = normOf(*this), b = normOf(v);
  if (a == 0 || b == 0) return T(0);
  const auto lengthOfCombined = [&](R sign) {
    return Kernels::euclideanNorm(_size, [&](std::size_t i) { return R(_data[i]) / a + sign * (R(v._data[i]) / b); });
  };
  return static_cast<T>(2 * std::atan2(lengthOfCombined(-1), lengthOfCombined(1)));
}

template <class T> int Vector<T>::closestAxis() const requires NumericElement<T>
{
  requireNotEmpty("int Vector<T>::closestAxis() const");
  return Kernels::bestPosition(
      _size, [this](int i) { return absoluteDifference(_data[i], T(0)); }, std::greater<Accumulator<T>>());
}

template <class T> Vector<T> Vector<T>::corr(const Vector& kernel) const requires NumericElement<T>
{
  return correlate(*this, kernel, kernel._size / 2);
}

template <class T> Vector<T> Vector<T>::corr(const Vector& kernel, const Vector& mask) const requires NumericElement<T>
{
  return masked(*this, mask, "Vector<T> Vector<T>::corr(const Vector<T>&, const Vector<T>&) const").corr(kernel);
}

template <class T> Vector<T> Vector<T>::conv(const Vector& kernel) const requires NumericElement<T>
{
  Vector reversed(kernel);
  reversed.reverse();
  return correlate(*this, reversed, kernel._size - 1 - kernel._size / 2);
}

template <class T> Vector<T> Vector<T>::conv(const Vector& kernel, const Vector& mask) const requires NumericElement<T>
{
  return masked(*this, mask, "Vector<T> Vector<T>::conv(const Vector<T>&, const Vector<T>&) const").conv(kernel);
}

template <class T> Vector<T> Vector<T>::householderVector() const requires NumericElement<T>
{
  if constexpr (std::is_integral_v<T>) throw notAvailable<T>("Vector<T> Vector<T>::householderVector()");
  requireNotEmpty("Vector<T> Vector<T>::householderVector() const");
  Vector v(*this);
  const auto length = normOf(*this);
  if (length > 0)
  {
    const auto pivot = _data[0] + std::copysign(length, static_cast<decltype(length)>(_data[0]));
    v.apply([pivot](T x) { return static_cast<T>(x / pivot); });
  }
  v[0] = T(1);
  return v;
}

NUMERIC_INSTANTIATE_VECTORS
