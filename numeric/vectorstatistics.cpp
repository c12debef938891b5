// Statistics of vectors.
#include "numeric/kernels.h"
#include "numeric/vector.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace
{
/// Average of two numbers without overflow, truncated towards zero for integers.
template <class T> T average(T a, T b)
{
  if constexpr (std::is_integral_v<T>)
    return static_cast<T>((static_cast<Kernels::WideInteger>(a) + static_cast<Kernels::WideInteger>(b)) / 2);
  else
    return std::midpoint(a, b);
}

/// Median of n > 0 elements, which are reordered.
template <class T> T medianOf(T* x, int n)
{
  if (std::any_of(x, x + n, Kernels::isNaN<T>)) return *std::find_if(x, x + n, Kernels::isNaN<T>);
  T* const middle = x + n / 2;
  std::nth_element(x, middle, x + n);
  return n % 2 == 1 ? *middle : average(*std::max_element(x, middle), *middle);
}

template <class T, class Operation>
Vector<T> runningTotal(const Vector<T>& v, Accumulator<T> total, Operation operation)
{
  Vector<T> totals(v.getSize());
  for (int i = 0; i < v.getSize(); ++i)
  {
    total = operation(total, static_cast<Accumulator<T>>(v[i]));
    totals[i] = static_cast<T>(total);
  }
  return totals;
}

void requireBins(int count, const char* where)
{
  if (count < 1) throw ValueError(where, "A histogram needs at least one bin");
}
} // namespace

template <class T> void Vector<T>::requireNotEmpty(const char* where) const
{
  if (isEmpty()) throw SizeError(where, "This vector is empty.");
}

template <class T> T Vector<T>::min() const requires NumericElement<T>
{
  requireNotEmpty("T Vector<T>::min() const");
  return Kernels::smallest(_data, _size);
}

template <class T> T Vector<T>::max() const requires NumericElement<T>
{
  requireNotEmpty("T Vector<T>::max() const");
  return Kernels::largest(_data, _size);
}

template <class T> Vector<T> Vector<T>::range() const requires NumericElement<T>
{
  requireNotEmpty("Vector<T> Vector<T>::range() const");
  return Vector{min(), max()};
}

template <class T> int Vector<T>::minPos() const requires NumericElement<T>
{
  requireNotEmpty("int Vector<T>::minPos() const");
  return Kernels::bestPosition(
      _size, [this](int i) { return _data[i]; }, std::less<T>());
}

template <class T> int Vector<T>::maxPos() const requires NumericElement<T>
{
  requireNotEmpty("int Vector<T>::maxPos() const");
  return Kernels::bestPosition(
      _size, [this](int i) { return _data[i]; }, std::greater<T>());
}

template <class T> T Vector<T>::sum() const requires NumericElement<T>
{
  requireNotEmpty("T Vector<T>::sum() const");
  return static_cast<T>(Kernels::sumOf(_data, _size));
}

template <class T> T Vector<T>::mean() const requires NumericElement<T>
{
  if constexpr (std::is_integral_v<T>) throw notAvailable<T>("T Vector<T>::mean()");
  requireNotEmpty("T Vector<T>::mean() const");
  return static_cast<T>(Kernels::meanOf(_data, _size));
}

template <class T> T Vector<T>::median() const requires NumericElement<T>
{
  requireNotEmpty("T Vector<T>::median() const");
  Vector sorted(*this);
  return medianOf(sorted._data, _size);
}

template <class T> T Vector<T>::sse() const requires NumericElement<T>
{
  if constexpr (std::is_integral_v<T>) throw notAvailable<T>("T Vector<T>::sse()");
  requireNotEmpty("T Vector<T>::sse() const");
  return static_cast<T>(Kernels::squaredDeviations(_data, _size));
}

template <class T> T Vector<T>::var() const requires NumericElement<T>
{
  if constexpr (std::is_integral_v<T>) throw notAvailable<T>("T Vector<T>::var()");
  requireNotEmpty("T Vector<T>::var() const");
  return static_cast<T>(Kernels::varianceOf(_data, _size));
}

template <class T> T Vector<T>::std() const requires NumericElement<T>
{
  if constexpr (std::is_integral_v<T>)
    throw notAvailable<T>("T Vector<T>::std()");
  else
    return std::sqrt(var());
}

template <class T> T Vector<T>::mad() const requires NumericElement<T>
{
  if constexpr (std::is_integral_v<T>)
    throw notAvailable<T>("T Vector<T>::mad()");
  else
  {
    requireNotEmpty("T Vector<T>::mad() const");
    Vector deviations(*this);
    const T centre = medianOf(deviations._data, _size);
    deviations.apply([centre](T x) { return std::abs(x - centre); });
    return medianOf(deviations._data, _size);
  }
}

template <class T> T Vector<T>::sem(bool unbiased) const requires NumericElement<T>
{
  if constexpr (std::is_integral_v<T>) throw notAvailable<T>("T Vector<T>::sem(bool)");
  const char* const where = "T Vector<T>::sem(bool) const";
  requireNotEmpty(where);
  if (unbiased && _size == 1) throw SizeError(where, "This vector contains a single value.");
  using Wide = Accumulator<Real<T>>;
  const Wide n = static_cast<Wide>(_size);
  const Wide divisor = unbiased ? std::sqrt(n) * std::sqrt(n - 1) : n;
  return static_cast<T>(std::sqrt(Kernels::squaredDeviations(_data, _size)) / divisor);
}

template <class T> T Vector<T>::prod() const requires NumericElement<T>
{
  requireNotEmpty("T Vector<T>::prod() const");
  return static_cast<T>(std::accumulate(begin(), end(), Accumulator<T>(1), std::multiplies<Accumulator<T>>()));
}

template <class T> Vector<T> Vector<T>::csum() const requires NumericElement<T>
{
  return runningTotal(*this, 0, std::plus<Accumulator<T>>());
}

template <class T> Vector<T> Vector<T>::cprod() const requires NumericElement<T>
{
  return runningTotal(*this, 1, std::multiplies<Accumulator<T>>());
}

template <class T> Vector<T> Vector<T>::diff(int k) const requires NumericElement<T>
{
  const char* const where = "Vector<T> Vector<T>::diff(int) const";
  if (k < 0) throw ValueError(where, "The distance of the elements is negative");
  if (_size <= k) throw SizeError(where, "This vector does not contain enough elements");
  Vector differences(_size);
  differences.setZeros();
  for (int i = 0; i < _size - k; ++i) differences[i] = Kernels::difference(_data[i + k], _data[i]);
  return differences;
}

template <class T> T Vector<T>::percentile(double p) const requires NumericElement<T>
{
  const char* const where = "T Vector<T>::percentile(double) const";
  requireNotEmpty(where);
  if (!isIncreasing()) throw UsageError(where, "This vector is not sorted in increasing order");
  if (!(p >= 0 && p <= 100)) throw RangeError(where, "The percentage is not between 0 and 100");
  return _data[std::lround((_size - 1.0) * p / 100)];
}

template <class T>
Vector<unsigned int> Vector<T>::histogram(T origin, T width, int count) const requires NumericElement<T>
{
  requireBins(count, "Vector<unsigned int> Vector<T>::histogram(T, T, int) const");
  Vector<unsigned int> counts(count);
  counts.setZeros();
  Kernels::countInBins(_data, _size, origin, width, count, counts.data());
  return counts;
}

template <class T>
Vector<T> Vector<T>::histogram(T origin, T width, int count, const Vector& weights) const requires NumericElement<T>
{
  const char* const where = "Vector<T> Vector<T>::histogram(T, T, int, const Vector<T>&) const";
  requireBins(count, where);
  requireSameSize(weights, where);
  Vector sums(count);
  sums.setZeros();
  Kernels::addToBins(_data, weights._data, _size, origin, width, count, sums._data);
  return sums;
}

template <class T> Vector<T> Vector<T>::numbers() const requires NumericElement<T>
{
  Vector kept(static_cast<int>(_size - std::count_if(begin(), end(), Kernels::isNaN<T>)));
  std::remove_copy_if(begin(), end(), kept.begin(), Kernels::isNaN<T>);
  return kept;
}

NUMERIC_INSTANTIATE_VECTORS
