#pragma once

#include "image/elementtypes.h"

#include <cmath>
#include <limits>
#include <type_traits>

/// The whole number nearest to x, which is in the range of T.
template <class T, class R> __attribute__((always_inline)) inline T rounded(R x)
{
  if constexpr (sizeof(T) <= 2)
  {
    constexpr int offset = -std::numeric_limits<T>::lowest(); // truncation rounds down what is not negative
    return static_cast<T>(static_cast<int>(x + (R(0.5) + R(offset))) - offset);
  }
  else
    return static_cast<T>(std::floor(x + R(0.5)));
}

template <class T, class A> __attribute__((always_inline)) inline void convert(const T* from, long n, A* to)
{
  for (long j = 0; j < n; ++j) to[j] = static_cast<A>(from[j]);
}

template <class T, class A>
__attribute__((always_inline)) inline void scaleAndRound(const A* from, long n, Real<A> scale, T* to)
{
  for (long j = 0; j < n; ++j)
  {
    const Real<A> x = static_cast<Real<A>>(from[j]) * scale;
    if constexpr (std::is_integral_v<T>)
      to[j] = rounded<T>(x);
    else
      to[j] = static_cast<T>(x);
  }
}
