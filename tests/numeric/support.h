#pragma once

#include "numeric/exception.h"
#include "numeric/matrix.h"
#include "numeric/randomgenerator.h"

#include <gtest/gtest.h>
#include <string>

/// The call must throw exactly this class with this message and, where one is given, this where-text.
template <class Error, class Function>
void expectError(const std::string& what, Function f, const std::string& where = "")
{
  try
  {
    f();
    ADD_FAILURE() << "no error, expected: " << what;
  }
  catch (const Exception& error)
  {
    EXPECT_EQ(typeid(error), typeid(Error));
    EXPECT_EQ(error.getWhat(), what);
    EXPECT_EQ(where.empty() ? "" : error.getWhere(), where);
  }
}

template <class T> void PrintTo(const Vector<T>& v, std::ostream* stream)
{
  for (const T& x : v) *stream << ::testing::PrintToString(x) << ' ';
}

template <class T> void PrintTo(const Matrix<T>& m, std::ostream* stream)
{
  for (int i = 0; i < m.getSize1(); ++i) *stream << ::testing::PrintToString(m[i]) << "; ";
}

/// The elements of v, each converted from int.
template <class T> Vector<T> vectorOf(std::initializer_list<int> values)
{
  Vector<T> v(static_cast<int>(values.size()));
  int i = 0;
  for (int value : values) v[i++] = static_cast<T>(value);
  return v;
}

template <class T> Matrix<T> matrixOf(int columns, std::initializer_list<int> values)
{
  Matrix<T> m(static_cast<int>(values.size()) / columns, columns);
  T* target = m.data();
  for (int value : values) *target++ = static_cast<T>(value);
  return m;
}

template <class T> Vector<T> randomVector(int n, RandomGenerator& generator, double low = -1, double high = 1)
{
  Vector<T> v(n);
  v.apply([&](T) { return static_cast<T>(generator.uniformLF(low, high)); });
  return v;
}

template <class T> Matrix<T> randomMatrix(int rows, int columns, RandomGenerator& generator)
{
  Matrix<T> m(rows, columns);
  m.apply([&](T) { return static_cast<T>(generator.uniformLF(-1, 1)); });
  return m;
}

/// Largest difference of two elements.
template <class T> T largestDifference(const Matrix<T>& a, const Matrix<T>& b)
{
  T largest = 0;
  for (int i = 0; i < a.getSize1(); ++i)
    for (int j = 0; j < a.getSize2(); ++j) largest = std::max(largest, std::abs(a(i, j) - b(i, j)));
  return largest;
}

using FloatingPointTypes = ::testing::Types<float, double, long double>;
using ElementTypes =
    ::testing::Types<bool, char, unsigned char, short, unsigned short, int, unsigned int, float, double, long double>;
