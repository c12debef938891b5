#pragma once

#include "numeric/elementtypes.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>

/// Loops over contiguous elements that vectors and matrices share; for the sources of this library only.
namespace Kernels
{
__extension__ typedef __int128 WideInteger;

/// False for what is no floating-point number.
template <class T> bool isNaN(const T& x)
{
  if constexpr (std::is_floating_point_v<T>)
    return std::isnan(x);
  else
    return false;
}

/// Integers are added and multiplied in this type, so that they wrap around instead of overflowing.
template <class T> using Wrapping = std::conditional_t<std::is_integral_v<T>, unsigned long, T>;

template <class T> T sumOfTwo(T a, T b)
{
  return static_cast<T>(static_cast<Wrapping<T>>(a) + static_cast<Wrapping<T>>(b));
}

template <class T> T difference(T a, T b)
{
  return static_cast<T>(static_cast<Wrapping<T>>(a) - static_cast<Wrapping<T>>(b));
}

template <class T> T product(T a, T b)
{
  return static_cast<T>(static_cast<Wrapping<T>>(a) * static_cast<Wrapping<T>>(b));
}

/// The sum of term(i) for first <= i < last in type Sum: eight interleaved sums, which the compiler vectorises, added
/// pairwise over blocks, so that the rounding error grows with the logarithm of the count only.
template <class Sum, class Term> Sum sumOf(std::size_t first, std::size_t last, const Term& term)
{
  constexpr std::size_t block = 1024;
  if (last - first > block)
  {
    const std::size_t middle = first + (last - first) / 2;
    return sumOf<Sum>(first, middle, term) + sumOf<Sum>(middle, last, term);
  }
  constexpr int lanes = 8;
  Sum sums[lanes] = {};
  std::size_t i = first;
  for (; i + lanes <= last; i += lanes)
    for (int k = 0; k < lanes; ++k) sums[k] += term(i + k);
  for (; i < last; ++i) sums[0] += term(i);
  return ((sums[0] + sums[1]) + (sums[2] + sums[3])) + ((sums[4] + sums[5]) + (sums[6] + sums[7]));
}

/// Sum of all elements.
template <class T, class Sum = Accumulator<T>> Sum sumOf(const T* x, std::size_t n)
{
  return sumOf<Sum>(0, n, [x](std::size_t i) { return static_cast<Sum>(x[i]); });
}

/// Sum of the products of two rows of elements.
template <class T> Accumulator<T> dotProduct(const T* x, const T* y, std::size_t n)
{
  using Sum = Accumulator<T>;
  return sumOf<Sum>(0, n, [x, y](std::size_t i) { return static_cast<Sum>(x[i]) * static_cast<Sum>(y[i]); });
}

/// Square root of the sum of the squares of term(0) .. term(n - 1). Where squares overflow or lose digits, the terms
/// are divided by the largest one first.
template <class Term> auto euclideanNorm(std::size_t n, const Term& term)
{
  using R = decltype(term(0));
  const auto normOfScaled = [n, &term](R scale) {
    return std::sqrt(sumOf<R>(0, n, [&term, scale](std::size_t i) { return (term(i) / scale) * (term(i) / scale); }));
  };
  const R plain = normOfScaled(1);
  const R losesDigits = std::sqrt(std::numeric_limits<R>::min() / std::numeric_limits<R>::epsilon());
  if (plain > losesDigits && std::isfinite(plain)) return plain;
  R largest = 0;
  for (std::size_t i = 0; i < n; ++i) largest = std::max(largest, std::abs(term(i)));
  return largest > 0 && std::isfinite(largest) ? largest * normOfScaled(largest) : plain;
}

/// Mean in double or better.
template <class T, class Sum = Accumulator<Real<T>>> Sum meanOf(const T* x, std::size_t n)
{
  return sumOf<T, Sum>(x, n) / static_cast<Sum>(n);
}

/// Sum of squared deviations from the mean, in double or better.
template <class T, class Sum = Accumulator<Real<T>>> Sum squaredDeviations(const T* x, std::size_t n)
{
  const Sum mean = meanOf(x, n);
  return sumOf<Sum>(0, n,
                    [x, mean](std::size_t i)
                    {
                      const Sum deviation = static_cast<Sum>(x[i]) - mean;
                      return deviation * deviation;
                    });
}

/// Population variance, in double or better.
template <class T> auto varianceOf(const T* x, std::size_t n)
{
  return squaredDeviations(x, n) / static_cast<Accumulator<Real<T>>>(n);
}

/// Index of the best of keys key(0) .. key(n - 1), those that are NaN passed over; the first one wins a tie.
template <class Key, class IsBetter> int bestPosition(int n, const Key& key, const IsBetter& isBetter)
{
  int best = 0;
  for (int i = 1; i < n; ++i)
    if (isBetter(key(i), key(best)) || isNaN(key(best))) best = i;
  return best;
}

/// Smallest and largest of n > 0 elements; NaN only when all are.
template <class T> T smallest(const T* x, std::size_t n);
template <class T> T largest(const T* x, std::size_t n);

/// Adds the numbers of elements per bin to counts[0 .. numBins - 1]; see Vector<T>::histogram() for the bins.
template <class T> void countInBins(const T* x, std::size_t n, T origin, T width, int numBins, unsigned int* counts);

/// Adds the weights of the elements to the bins' sums.
template <class T> void addToBins(const T* x, const T* weights, std::size_t n, T origin, T width, int numBins, T* sums);
} // namespace Kernels
