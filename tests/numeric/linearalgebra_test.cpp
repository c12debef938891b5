// Decompositions and systems against closed forms, invariants and each other.
#include "numeric/squarematrix.h"
#include "tests/numeric/support.h"

#include <cmath>
#include <limits>

namespace
{
template <class T> constexpr T epsilon = std::numeric_limits<T>::epsilon();

template <class T> Matrix<T> unit(int n)
{
  SquareMatrix<T> m(n);
  m.setIdentity();
  return m;
}

template <class T> Matrix<T> diagonalMatrix(const Vector<T>& values)
{
  SquareMatrix<T> m;
  m.setDiagonal(values);
  return m;
}

template <class T> SquareMatrix<T> hilbert(int n)
{
  SquareMatrix<T> m;
  m.setHilbert(n);
  return m;
}

template <class T> T largestElement(const Matrix<T>& m)
{
  return std::max(std::abs(m.range()[0]), std::abs(m.range()[1]));
}

template <class T> void expectOrthonormalColumns(const Matrix<T>& m)
{
  EXPECT_LT(largestDifference(m.transpose() * m, unit<T>(m.getSize2())), 50 * epsilon<T>);
}

template <class T> void expectSvd(const Matrix<T>& a)
{
  Matrix<T> u, v;
  const Vector<T> values = a.svd(u, v);
  EXPECT_EQ(u.getSize(), a.getSize());
  EXPECT_EQ(values.getSize(), a.getSize2());
  EXPECT_TRUE(values.isDecreasing() && values.min() >= 0);
  expectOrthonormalColumns(u);
  expectOrthonormalColumns(v);
  EXPECT_LE(largestDifference(u * diagonalMatrix(values) * v.transpose(), a), 100 * epsilon<T> * largestElement(a));
}

template <class T> void expectEigen(const SquareMatrix<T>& m)
{
  Vector<T> values;
  SquareMatrix<T> vectors;
  m.eigenJacobi(values, vectors, true);
  EXPECT_TRUE(values.isDecreasing());
  expectOrthonormalColumns<T>(vectors);
  EXPECT_LE(largestDifference<T>(Matrix<T>(m) * vectors, Matrix<T>(vectors) * diagonalMatrix(values)),
            100 * epsilon<T> * largestElement<T>(m));
}

/// Q diag(values) Q' for a random orthonormal Q.
template <class T> SquareMatrix<T> symmetricWith(const Vector<T>& values, RandomGenerator& generator)
{
  Matrix<T> u, v;
  randomMatrix<T>(values.getSize(), values.getSize(), generator).svd(u, v);
  SquareMatrix<T> m = u * diagonalMatrix(values) * u.transpose();
  return (m + m.transpose()) / T(2);
}

/// A diagonally dominant matrix with random elements on three diagonals and, when cyclic, in two corners.
SquareMatrix<double> randomTridiagonal(int n, bool cyclic, RandomGenerator& generator)
{
  SquareMatrix<double> m;
  m.setTridiagonal(randomVector<double>(n - 1, generator), randomVector<double>(n, generator, 3, 4),
                   randomVector<double>(n - 1, generator));
  if (!cyclic) return m;
  m(0, n - 1) = generator.uniformLF(-1, 1);
  m(n - 1, 0) = generator.uniformLF(-1, 1);
  return m;
}

Vector<double> integers(int n, RandomGenerator& generator)
{
  Vector<double> v(n);
  v.apply([&generator](double) { return static_cast<double>(generator.uniformLL(-3, 3)); });
  return v;
}

/// Small integers on three diagonals and in two corners.
SquareMatrix<double> integerRing(int n, RandomGenerator& generator)
{
  SquareMatrix<double> m;
  m.setTridiagonal(integers(n - 1, generator), integers(n, generator), integers(n - 1, generator));
  m(0, n - 1) = static_cast<double>(generator.uniformLL(-3, 3));
  m(n - 1, 0) = static_cast<double>(generator.uniformLL(-3, 3));
  return m;
}

/// By the recurrence of the minors of a tridiagonal matrix, which is exact for small integers.
bool hasZeroLeadingMinor(const SquareMatrix<double>& m)
{
  double before = 1, minor = m(0, 0);
  for (int i = 1; i < m.getSize1() && minor != 0; ++i)
    before = std::exchange(minor, m(i, i) * minor - m(i, i - 1) * m(i - 1, i) * before);
  return minor == 0;
}

Vector<double> denseSolution(SquareMatrix<double> m, const Vector<double>& b)
{
  Vector<int> permutation;
  m.luDecomp(permutation);
  return m.luSolve(b, permutation);
}
} // namespace

template <class T> class LinearAlgebra : public ::testing::Test
{
};
TYPED_TEST_SUITE(LinearAlgebra, FloatingPointTypes);

TYPED_TEST(LinearAlgebra, SvdRebuildsRandomMatrices)
{
  using T = TypeParam;
  RandomGenerator generator(1);
  for (int round = 0; round < 60; ++round)
  {
    const int n = 1 + static_cast<int>(generator.uniformL(15)), p = 1 + static_cast<int>(generator.uniformL(n));
    SCOPED_TRACE(::testing::Message() << n << " x " << p);
    Matrix<T> a = randomMatrix<T>(n, p, generator);
    expectSvd<T>(a);
    a.setColumn(p / 2, a.getColumn(0)); // lower rank
    expectSvd<T>(a);
  }
}

TYPED_TEST(LinearAlgebra, SvdHandlesSpecialMatrices)
{
  using T = TypeParam;
  Matrix<T> zero(4, 3);
  zero.setZeros();
  expectSvd<T>(zero);
  expectSvd<T>(unit<T>(5));
  expectSvd<T>(diagonalMatrix<T>({-1, 0, 3}));
  SquareMatrix<T> jordan;
  jordan.setUpperBidiagonal(vectorOf<T>({0, 0, 0, 0}), vectorOf<T>({1, 1, 1}));
  expectSvd<T>(jordan); // zero on the whole diagonal
  jordan.setUpperBidiagonal(vectorOf<T>({1, 2, 0, 3, 0}), vectorOf<T>({1, 1, 1, 1}));
  expectSvd<T>(jordan);
  expectSvd<T>(unit<T>(3) * (std::numeric_limits<T>::max() / 4));
  expectSvd<T>(unit<T>(3) * (std::numeric_limits<T>::min() * 4));
  Matrix<T> u, v;
  EXPECT_TRUE(Matrix<T>(0, 0).svd(u, v).isEmpty());
}

TYPED_TEST(LinearAlgebra, BidiagonalisationRebuildsTheMatrix)
{
  using T = TypeParam;
  RandomGenerator generator(2);
  const Matrix<T> a = randomMatrix<T>(7, 5, generator);
  Matrix<T> u, v;
  const SquareMatrix<T> b = a.householderBidiag(u, v);
  SquareMatrix<T> expected;
  expected.setUpperBidiagonal(b.diagonal(), b.upperDiagonal());
  EXPECT_EQ(b, expected);
  expectOrthonormalColumns(u);
  expectOrthonormalColumns(v);
  EXPECT_LT(largestDifference<T>(u * b * v.transpose(), a), 50 * epsilon<T>);
}

TYPED_TEST(LinearAlgebra, PseudoInverseFulfilsThePenroseConditions)
{
  using T = TypeParam;
  RandomGenerator generator(3);
  Matrix<T> a = randomMatrix<T>(6, 4, generator);
  a.setColumn(3, a.getColumn(0) + a.getColumn(1));
  const Matrix<T> inverse = a.pinverse();
  const T tolerance = 500 * epsilon<T> * largestElement(inverse);
  EXPECT_LT(largestDifference(a * inverse * a, a), tolerance);
  EXPECT_LT(largestDifference(inverse * a * inverse, inverse), tolerance);
  EXPECT_LT(largestDifference(a * inverse, (a * inverse).transpose()), tolerance);
  EXPECT_LT(largestDifference(inverse * a, (inverse * a).transpose()), tolerance);
}

TYPED_TEST(LinearAlgebra, LeastSquaresFitsALine)
{
  using T = TypeParam;
  const Matrix<T> a = matrixOf<T>(2, {0, 1, 1, 1, 2, 1, 3, 1}); // slope and intercept of (0, 1), (1, 3), (2, 5), (3, 6)
  EXPECT_LT(a.solve(vectorOf<T>({1, 3, 5, 6})).distance({T(1.7L), T(1.2L)}), 50 * epsilon<T>);
}

TYPED_TEST(LinearAlgebra, HilbertSystemsAreSolvedAsWellAsTheirConditionAllows)
{
  using T = TypeParam;
  // Condition numbers in the spectral norm as they are published; det from the closed form c(n)^4 / c(2n).
  const struct
  {
    int n;
    double condition, det;
  } cases[] = {{2, 1.93e1, 1.0 / 12}, {3, 5.24e2, 1.0 / 2160}, {5, 4.77e5, 1.0 / 266716800000}};
  for (const auto& c : cases)
  {
    SCOPED_TRACE(c.n);
    const SquareMatrix<T> h = hilbert<T>(c.n);
    const T bound = static_cast<T>(20 * c.n * c.condition) * epsilon<T>;
    Vector<T> ones(c.n);
    ones.setOnes();
    EXPECT_LT((h.inverse() * (h * ones)).distance(ones), bound);
    EXPECT_LT(h.solve(h * ones).distance(ones), bound);
    EXPECT_NEAR(static_cast<double>(h.det() / static_cast<T>(c.det)), 1, static_cast<double>(bound));
    Matrix<T> u, v;
    const Vector<T> values = h.svd(u, v);
    EXPECT_NEAR(static_cast<double>(values[0] / values[c.n - 1]) / c.condition, 1, 0.005 + static_cast<double>(bound));
  }
}

TYPED_TEST(LinearAlgebra, EigenvectorsOfRepeatedEigenvaluesAreOrthonormal)
{
  using T = TypeParam;
  RandomGenerator generator(4);
  for (const Vector<T>& values :
       {vectorOf<T>({3, 3, 1}), vectorOf<T>({2, 2, 2, 2}), vectorOf<T>({5, 0, 0, 0, -5, -5}), vectorOf<T>({0, 0, 0})})
  {
    const SquareMatrix<T> m = symmetricWith(values, generator);
    expectEigen(m);
    EXPECT_LT(m.eigenValues(true).distance(values), 50 * epsilon<T>);
  }
  SquareMatrix<T> ones(12);
  ones.setOnes();
  expectEigen(ones);
  EXPECT_NEAR(ones.eigenValues(true)[0], T(12), 50 * epsilon<T>);
}

TYPED_TEST(LinearAlgebra, EigenvaluesOfTheSecondDifferenceFollowTheClosedForm)
{
  using T = TypeParam;
  const int n = 20;
  SquareMatrix<T> m;
  Vector<T> minusOnes(n - 1), twos(n);
  minusOnes.fill(-1);
  twos.fill(2);
  m.setTridiagonal(minusOnes, twos, minusOnes);
  const Vector<T> values = m.eigenValues(true);
  const T pi = std::acos(T(-1));
  for (int k = 0; k < n; ++k)
    EXPECT_NEAR(values[k], 2 - 2 * std::cos(static_cast<T>(n - k) * pi / (n + 1)), 20 * epsilon<T>);
}

TYPED_TEST(LinearAlgebra, EigenvaluesNearTheEndsOfTheRangeKeepTheirDigits)
{
  using T = TypeParam;
  for (const int exponent : {std::numeric_limits<T>::max_exponent - 5, std::numeric_limits<T>::min_exponent + 2})
  {
    SquareMatrix<T> m = matrixOf<T>(2, {10, 1, 1, -10}), vectors;
    m.apply([exponent](T x) { return std::scalbn(x, exponent); });
    Vector<T> values;
    m.eigenJacobi(values, vectors, true);
    values.apply([exponent](T x) { return std::scalbn(x, -exponent); });
    EXPECT_LT(values.distance({std::sqrt(T(101)), -std::sqrt(T(101))}), 20 * epsilon<T>) << exponent;
    EXPECT_NEAR(vectors(1, 0) / vectors(0, 0), std::sqrt(T(101)) - 10, 20 * epsilon<T>) << exponent;
  }
}

TYPED_TEST(LinearAlgebra, NeitherIterationRunsForEver)
{
  using T = TypeParam;
  for (T bad : {std::numeric_limits<T>::quiet_NaN(), std::numeric_limits<T>::infinity()})
  {
    SquareMatrix<T> m = unit<T>(4);
    m(1, 2) = bad;
    Matrix<T> u, v;
    const std::string what = "This matrix has elements that are not finite";
    expectError<MathError>(what, [&] { m.eigenValues(true); });
    expectError<MathError>(what, [&] { m.svd(u, v); });
    expectError<MathError>(what, [&] { m.pinverse(); });
  }
}

TYPED_TEST(LinearAlgebra, SingularMatricesAreReported)
{
  using T = TypeParam;
  SquareMatrix<T> singular = matrixOf<T>(3, {1, 2, 3, 2, 4, 6, 1, 0, 1});
  const SquareMatrix<T> before = singular;
  Vector<int> permutation{7};
  expectError<MathError>(
      "This matrix is singular", [&] { singular.luDecomp(permutation); },
      "int SquareMatrix<T>::luDecomp(Vector<int>&, T)");
  EXPECT_EQ(singular, before);
  EXPECT_EQ(permutation, Vector<int>{7});
  EXPECT_EQ(singular.det(), T(0));
  expectError<MathError>("This matrix is singular", [&] { singular.inverse(); });
  SquareMatrix<T> nearly = matrixOf<T>(2, {1, 1, 1, 1});
  nearly(1, 1) += 4 * epsilon<T>;
  expectError<MathError>("This matrix is singular", [&] { nearly.luDecomp(permutation, 8 * epsilon<T>); });
  EXPECT_EQ(nearly.det(), 4 * epsilon<T>);
  EXPECT_EQ(nearly.luDecomp(permutation), 1);
}

TEST(LuDecomposition, PermutesTheRowsItFactorises)
{
  RandomGenerator generator(6);
  for (int n : {0, 1, 2, 6, 13})
  {
    const SquareMatrix<double> a = randomMatrix<double>(n, n, generator);
    SquareMatrix<double> lu = a, lower = unit<double>(n), upper(n), permuted(n);
    Vector<int> permutation;
    lu.luDecomp(permutation);
    upper.setZeros();
    for (int i = 0; i < n; ++i)
    {
      permuted[i] = a[permutation[i]];
      for (int j = 0; j < n; ++j) (j < i ? lower : upper)(i, j) = lu(i, j);
    }
    EXPECT_LT(largestDifference<double>(Matrix<double>(lower) * upper, permuted), 1e-14);
  }
  EXPECT_EQ(SquareMatrix<double>(matrixOf<double>(2, {0, 1, 1, 0})).det(), -1);
}

TEST(TridiagonalSystems, AgreeWithDenseOnes)
{
  RandomGenerator generator(7);
  for (int n : {1, 2, 3, 4, 30})
    for (bool cyclic : {false, true})
    {
      SCOPED_TRACE(::testing::Message() << n << (cyclic ? " cyclic" : ""));
      const SquareMatrix<double> m = randomTridiagonal(n, cyclic && n > 2, generator);
      const Vector<double> b = randomVector<double>(n, generator), x = m.inverse() * b;
      EXPECT_LT((cyclic ? m.cyclicTridiagSolve(b) : m.tridiagSolve(b)).distance(x), 1e-14);
      if (cyclic) continue;
      EXPECT_LT(largestDifference<double>(m.tridiagInverse(), m.inverse()), 1e-14);
    }
  SquareMatrix<double> zeroStart = matrixOf<double>(3, {0, 1, 2, 3, 1, 1, 1, 2, 5});
  EXPECT_LT(zeroStart.cyclicTridiagSolve({3, 5, 8}).distance({1, 1, 1}), 1e-14);
}

TEST(TridiagonalSystems, AreSolvedUnlessALeadingMinorIsZero)
{
  RandomGenerator generator(8);
  int numRefused = 0;
  for (int round = 0; round < 20000; ++round)
  {
    const int n = 1 + round % 9;
    const SquareMatrix<double> m = integerRing(n, generator);
    const Vector<double> b = integers(n, generator);
    if (hasZeroLeadingMinor(m))
    {
      expectError<MathError>("Null pivoting element found.", [&] { m.tridiagSolve(b); });
      ++numRefused;
    }
    else
    {
      const Vector<double> x = m.tridiagSolve(b);
      SquareMatrix<double> middle;
      middle.setTridiagonal(m.lowerDiagonal(), m.diagonal(), m.upperDiagonal());
      ASSERT_LT(x.distance(denseSolution(middle, b)), 1e-9 * (1 + x.norm()))
          << ::testing::PrintToString<Matrix<double>>(m);
    }
  }
  EXPECT_GT(numRefused, 1000);
}

TEST(TridiagonalSystems, AreSolvedOnRingsUnlessTheDeterminantIsZero)
{
  RandomGenerator generator(9);
  int numSingular = 0;
  for (int round = 0; round < 20000; ++round)
  {
    const int n = 1 + round % 9;
    SquareMatrix<double> m = integerRing(n, generator);
    Vector<double> b = integers(n, generator);
    const bool isSingular = std::round(m.det()) == 0;
    const Vector<double> expected = isSingular ? b : denseSolution(m, b);
    const double scale = std::ldexp(1.0, static_cast<int>(generator.uniformLL(-900, 900)));
    m[n / 2] *= scale; // one equation in another unit
    b[n / 2] *= scale;
    if (isSingular)
    {
      expectError<MathError>("Singular cyclic tridiagonal matrix.", [&] { m.cyclicTridiagSolve(b); });
      ++numSingular;
    }
    else
    {
      const Vector<double> x = m.cyclicTridiagSolve(b);
      ASSERT_LT(x.distance(expected), 1e-10 * (1 + x.norm())) << ::testing::PrintToString<Matrix<double>>(m);
    }
  }
  EXPECT_GT(numSingular, 1000);
}

TEST(TridiagonalSystems, ReportNullPivots)
{
  const SquareMatrix<double> m = matrixOf<double>(3, {0, 1, 0, 1, 0, 0, 0, 0, 1}); // regular, but its first pivot is 0
  expectError<MathError>("Null pivoting element found.", [&] { m.tridiagSolve({1, 1, 1}); });
  expectError<MathError>("Null pivoting element found. Try another inversion method.", [&] { m.tridiagInverse(); });
  SquareMatrix<double> ring = matrixOf<double>(3, {2, -1, -1, -1, 2, -1, -1, -1, 2});
  expectError<MathError>(
      "Singular cyclic tridiagonal matrix.",
      [&] {
        ring.cyclicTridiagSolve({1, 0, -1});
      },
      "Vector<T> SquareMatrix<T>::cyclicTridiagSolve(const Vector<T>&) const");
}

TEST(MatrixShapes, AreChecked)
{
  Matrix<double> wide(2, 3), u, v;
  wide.setOnes();
  const Vector<double> two{1, 1};
  expectError<SizeError>("Cannot perform svd of (2,3) matrix with p > n", [&] { wide.svd(u, v); });
  expectError<SizeError>("Cannot perform bidiagonalization of (2,3) matrix with p > n",
                         [&] { wide.householderBidiag(u, v); });
  expectError<SizeError>("Incompatible matrix row and vector dimensions", [&] { wide.setRow(0, two); });
  expectError<SizeError>("Incompatible matrix column and vector dimensions", [&] { wide.setColumn(0, {1, 2, 3}); });
  expectError<SizeError>("Incompatible matrix and vector dimensions", [&] { wide* two; });
  expectError<SizeError>("Incompatible matrix and vector dimensions", [&] { wide.solve({1, 2, 3}); });
  expectError<SizeError>("Incompatible block and Householder vector dimensions",
                         [&] { wide.leftHouseholderTransform(two, 1); });
  expectError<SizeError>("Incompatible block and Householder vector dimensions",
                         [&] { wide.rightHouseholderTransform(two); });
  expectError<SizeError>(
      "This matrix is not square", [&] { SquareMatrix<double> s(wide); },
      "SquareMatrix<T>::SquareMatrix(const Matrix<T>&)");
  SquareMatrix<double> square(2);
  Matrix<double>& asMatrix = square;
  EXPECT_THROW(asMatrix = wide, SizeError);
  EXPECT_THROW(asMatrix = Matrix<double>(2, 3), SizeError);
  EXPECT_THROW(asMatrix.swap(wide), SizeError);
  EXPECT_THROW(wide.paste(1, 1, wide), RangeError);
  EXPECT_THROW(wide.copy(0, 0, 3, 1), RangeError);
  EXPECT_THROW(wide.getColumn(3), RangeError);
}

TEST(MatrixStorage, IsOneBlockWhoseRowsAreViews)
{
  double block[] = {3, 1, 2, 2, 1, 9};
  Matrix<double> view(3, 2, block);
  EXPECT_FALSE(view.isOwner());
  EXPECT_TRUE(view[1].isShallow());
  EXPECT_EQ(view[1].data(), block + 2);
  view.swapRows(0, 2);
  EXPECT_EQ(block[1], 9);
  view.sortRows(1);
  EXPECT_EQ(view, matrixOf<double>(2, {3, 1, 2, 2, 1, 9}));
  Matrix<double> copy(view);
  EXPECT_TRUE(copy.isOwner());
  copy *= copy.transpose() * copy;
  EXPECT_EQ(block[0], 3);
  EXPECT_THROW(view = Matrix<double>(2, 2), SizeError);
  view = Matrix<double>(copy * 0.0);
  EXPECT_EQ(block[5], 0);
  Matrix<double> unbound(3, 2, false);
  EXPECT_FALSE(unbound.isOwner());
  unbound.setBlock(3, 2, block);
  unbound.fill(4);
  EXPECT_EQ(block[0], 4);
  static_assert(!std::is_constructible_v<Matrix<double>, int, int, const double*>);
  static_assert(!std::is_constructible_v<Matrix<double>, int, int, float*>);
  expectError<SizeError>("There cannot be a matrix of -1 rows and 3 columns", [] { Matrix<double>(-1, 3, false); });
  expectError<SizeError>("There cannot be a matrix of 3 rows and -2 columns", [&] { unbound.setBlock(3, -2, block); });
  EXPECT_EQ(unbound.data(), block);
  const Matrix<double> moved(std::move(unbound));
  EXPECT_EQ(moved[2].data(), block + 4);
  Matrix<int> large(37, 53);
  large.apply([k = 0](int) mutable { return ++k; });
  EXPECT_EQ(large.transpose()(52, 36), 37 * 53);
  EXPECT_EQ(large.transpose().transpose(), large);
}
