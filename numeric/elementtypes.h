#pragma once

#include "numeric/exception.h"

#include <concepts>
#include <string>
#include <type_traits>

/// Calls MACRO(T) for each of the ten element types of vectors and matrices.
#define NUMERIC_FOR_EACH_TYPE(MACRO)                                                                                   \
  MACRO(bool)                                                                                                          \
  MACRO(char)                                                                                                          \
  MACRO(unsigned char)                                                                                                 \
  MACRO(short)                                                                                                         \
  MACRO(unsigned short)                                                                                                \
  MACRO(int)                                                                                                           \
  MACRO(unsigned int)                                                                                                  \
  MACRO(float)                                                                                                         \
  MACRO(double)                                                                                                        \
  MACRO(long double)

/// Calls MACRO(T, U) for each conversion that toType<U>() offers on containers of T.
#define NUMERIC_FOR_EACH_CONVERSION(MACRO)                                                                             \
  NUMERIC_FOR_EACH_TARGET(MACRO, int)                                                                                  \
  NUMERIC_FOR_EACH_TARGET(MACRO, unsigned int)                                                                         \
  NUMERIC_FOR_EACH_TARGET(MACRO, float)                                                                                \
  NUMERIC_FOR_EACH_TARGET(MACRO, double)                                                                               \
  NUMERIC_FOR_EACH_TARGET(MACRO, long double)                                                                          \
  MACRO(unsigned int, unsigned int)

#define NUMERIC_FOR_EACH_TARGET(MACRO, T)                                                                              \
  MACRO(T, unsigned char)                                                                                              \
  MACRO(T, int)                                                                                                        \
  MACRO(T, float)                                                                                                      \
  MACRO(T, double)                                                                                                     \
  MACRO(T, long double)

template <class T, class... Types>
concept OneOf = (std::same_as<T, Types> || ...);

/// The ten element types of vectors and matrices.
template <class T>
concept MatrixElement =
    OneOf<T, bool, char, unsigned char, short, unsigned short, int, unsigned int, float, double, long double>;

/// Element types with arithmetic and statistics: the ten and long, but not text.
template <class T>
concept NumericElement = MatrixElement<T> || std::same_as<T, long>;

/// The pairs for which toType<U>() exists on containers of T.
template <class T, class U>
concept ConvertibleElement = (OneOf<T, int, unsigned int, float, double, long double> &&
                              OneOf<U, unsigned char, int, float, double, long double>) ||
                             (std::same_as<T, unsigned int> && std::same_as<U, unsigned int>);

/// Sums, products and dot products of T are accumulated in this type and converted to T once, at the end:
/// modulo 2^64 for integers (so that no intermediate result overflows), in double for float.
template <class T> using Accumulator =
    std::conditional_t<std::is_integral_v<T>, unsigned long, std::conditional_t<std::is_same_v<T, float>, double, T>>;

/// Type in which single values are computed: double for integers, T itself for floating-point types.
template <class T> using Real = std::conditional_t<std::is_integral_v<T>, double, T>;

/// Name of an element type as messages show it: "unsigned char".
template <class T> std::string typeName();

/// The error for an operation that has no meaning in the integer element type T. The signature is the generic one,
/// "T Vector<T>::mean()"; the error names the concrete one, "int Vector<int>::mean()".
template <class T> TypeError notAvailable(const std::string& genericSignature);
