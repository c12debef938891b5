#include "numeric/fouriertransform.h"
#include "tests/numeric/support.h"

#include <cmath>
#include <complex>
#include <thread>

namespace
{
/// The sum over j of x[j] exp(sign 2 pi i j k / n), for every k.
template <class T> std::vector<std::complex<T>> directSum(const Vector<T>& re, const Vector<T>& im, int sign)
{
  const int n = re.getSize();
  const T turn = 2 * std::acos(T(-1));
  std::vector<std::complex<T>> sums(n);
  for (int k = 0; k < n; ++k)
    for (int j = 0; j < n; ++j)
      sums[k] += std::complex<T>(re[j], im[j]) *
                 std::polar(T(1), sign * turn * static_cast<T>(static_cast<long>(j) * k % n) / n);
  return sums;
}

template <class T> T distance(const Vector<T>& re, const Vector<T>& im, const std::vector<std::complex<T>>& expected)
{
  T largest = 0;
  for (int k = 0; k < re.getSize(); ++k)
    largest = std::max(largest, std::abs(std::complex<T>(re[k], im[k]) - expected[k]));
  return largest;
}

/// Rows and then columns, by direct sums.
template <class T> void directSum2D(Matrix<T>& re, Matrix<T>& im, int sign)
{
  for (int pass = 0; pass < 2; ++pass)
  {
    for (int i = 0; i < re.getSize1(); ++i)
    {
      const auto sums = directSum(re[i], im[i], sign);
      for (int j = 0; j < re.getSize2(); ++j)
      {
        re(i, j) = sums[j].real();
        im(i, j) = sums[j].imag();
      }
    }
    re = re.transpose();
    im = im.transpose();
  }
}
} // namespace

template <class T> class FourierTransforms : public ::testing::Test
{
};
TYPED_TEST_SUITE(FourierTransforms, FloatingPointTypes);

TYPED_TEST(FourierTransforms, AgreeWithDirectSumsAndParseval)
{
  using T = TypeParam;
  RandomGenerator generator(1);
  for (int n : {0, 1, 2, 3, 7, 8, 15, 31, 64, 97})
  {
    SCOPED_TRACE(n);
    const Vector<T> re = randomVector<T>(n, generator), im = randomVector<T>(n, generator);
    const T tolerance = 20 * (n + 1) * std::numeric_limits<T>::epsilon();
    for (int sign : {-1, 1})
    {
      Vector<T> a = re, b = im;
      (sign < 0 ? FourierTransform<T>::computeForward(a, b) : FourierTransform<T>::computeBackward(a, b));
      EXPECT_LE(distance(a, b, directSum(re, im, sign)), tolerance);
      EXPECT_NEAR(a.snorm() + b.snorm(), n * (re.snorm() + im.snorm()), n * tolerance);
      (sign > 0 ? FourierTransform<T>::computeForward(a, b) : FourierTransform<T>::computeBackward(a, b));
      EXPECT_LE(a.distance(re * static_cast<T>(n)), tolerance);
      EXPECT_LE(b.distance(im * static_cast<T>(n)), tolerance);
    }
  }
}

TYPED_TEST(FourierTransforms, AgreeWithDirectSumsIn2D)
{
  using T = TypeParam;
  RandomGenerator generator(2);
  for (const auto& [rows, columns] : {std::pair(1, 5), {5, 1}, {3, 4}, {7, 6}, {0, 3}})
    for (int sign : {-1, 1})
    {
      SCOPED_TRACE(::testing::Message() << rows << " x " << columns);
      Matrix<T> re = randomMatrix<T>(rows, columns, generator), im = randomMatrix<T>(rows, columns, generator);
      Matrix<T> expectedRe = re, expectedIm = im;
      directSum2D(expectedRe, expectedIm, sign);
      (sign < 0 ? FourierTransform<T>::computeForward(re, im) : FourierTransform<T>::computeBackward(re, im));
      EXPECT_LE(largestDifference(re, expectedRe), 500 * std::numeric_limits<T>::epsilon());
      EXPECT_LE(largestDifference(im, expectedIm), 500 * std::numeric_limits<T>::epsilon());
    }
}

TYPED_TEST(FourierTransforms, GivePhaseAndPower)
{
  using T = TypeParam;
  const Vector<T> re{3, 0, -1}, im{4, 2, 0};
  Vector<T> out;
  FourierTransform<T>::powerSpectrum(out, re, im);
  EXPECT_EQ(out, (Vector<T>{25, 4, 1}));
  FourierTransform<T>::phaseAngle(out, re, im);
  EXPECT_EQ(out, (Vector<T>{std::atan2(T(4), T(3)), std::acos(T(-1)) / 2, std::acos(T(-1))}));
  Matrix<T> out2;
  FourierTransform<T>::powerSpectrum(out2, Matrix<T>(re, false), Matrix<T>(im, false));
  EXPECT_EQ(out2, matrixOf<T>(1, {25, 4, 1}));
  FourierTransform<T>::phaseAngle(out2, Matrix<T>(re, true), Matrix<T>(im, true));
  EXPECT_EQ(out2[0], out);
}

TEST(FourierShift, MovesFrequencyZeroToTheCentreAndBack)
{
  const std::pair<Vector<double>, Vector<double>> cases[] = {{{0, 1, 2, 3}, {2, 3, 0, 1}},
                                                             {{0, 1, 2, 3, 4}, {3, 4, 0, 1, 2}},
                                                             {{7}, {7}},
                                                             {Vector<double>(), Vector<double>()}};
  for (const auto& [plain, shifted] : cases)
  {
    Vector<double> re = plain, im = -plain;
    FourierTransform<double>::shift(re, im);
    EXPECT_EQ(re, shifted);
    EXPECT_EQ(im, -shifted);
    FourierTransform<double>::ishift(re, im);
    EXPECT_EQ(re, plain);
  }
  Matrix<double> re = matrixOf<double>(3, {0, 1, 2, 3, 4, 5}), im = re;
  FourierTransform<double>::shift(re, im);
  EXPECT_EQ(re, matrixOf<double>(3, {5, 3, 4, 2, 0, 1}));
  FourierTransform<double>::ishift(re, im);
  EXPECT_EQ(im, matrixOf<double>(3, {0, 1, 2, 3, 4, 5}));
}

TEST(FourierErrors, PartsOfDifferentSizesAreRefused)
{
  using F = FourierTransform<double>;
  Vector<double> a(3), b(4);
  Matrix<double> m(2, 3), k(3, 2);
  const std::string what = "Real and imaginary parts have different sizes";
  expectError<SizeError>(
      what, [&] { F::computeForward(a, b); }, "void FourierTransform<T>::computeForward(Vector<T>&, Vector<T>&)");
  expectError<SizeError>(what, [&] { F::computeBackward(a, b); });
  expectError<SizeError>(what, [&] { F::shift(a, b); });
  expectError<SizeError>(what, [&] { F::ishift(a, b); });
  expectError<SizeError>(what, [&] { F::phaseAngle(a, a, b); });
  expectError<SizeError>(what, [&] { F::powerSpectrum(a, a, b); });
  expectError<SizeError>(what, [&] { F::computeForward(m, k); });
  expectError<SizeError>(what, [&] { F::computeBackward(m, k); });
  expectError<SizeError>(what, [&] { F::shift(m, k); });
  expectError<SizeError>(what, [&] { F::ishift(m, k); });
  expectError<SizeError>(what, [&] { F::phaseAngle(m, m, k); });
  expectError<SizeError>(what, [&] { F::powerSpectrum(m, m, k); });
}

TEST(FourierThreads, MayTransformAtTheSameTime)
{
  const auto work = []
  {
    for (int n = 2; n < 200; ++n)
    {
      Vector<double> re(n), im(n);
      re.setOnes();
      im.setZeros();
      FourierTransform<double>::computeForward(re, im);
      EXPECT_NEAR(re[0], n, 1e-12);
    }
  };
  std::thread first(work), second(work);
  first.join();
  second.join();
}
