#include "image/registration/matrixprincipalaxesanalysis.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <numbers>
#include <vector>

namespace
{
constexpr double roundness = 1e-3; // relative difference of the moments below which axes mean nothing

/// Sums over a row of w, w j and w j^2, without the pixel's size.
struct RowSums
{
  double mass = 0;
  double first = 0;
  double second = 0;
};

template <class T> RowSums sumsOf(const T* row, int size, double center)
{
  RowSums sums;
  for (int j = 0; j < size; ++j)
  {
    const double mass = row[j] > 0 ? static_cast<double>(row[j]) : 0.0; // NaN is not above 0
    const double x = j - center;
    sums.mass += mass;
    sums.first += mass * x;
    sums.second += mass * x * x;
  }
  return sums;
}
} // namespace

template <class T> void MatrixPrincipalAxesAnalysis<T>::apply(const PixelMatrix<T>& matrix)
{
  const int numRows = matrix.getSize1();
  const int numCols = matrix.getSize2();
  const double height = matrix.getPixelCalibration().getPixelHeight();
  const double width = matrix.getPixelCalibration().getPixelWidth();
  const double middleRow = numRows / 2.0; // sums about the middle keep their digits
  const double middleCol = numCols / 2.0;
  double mass = 0, sumY = 0, sumX = 0, sumYY = 0, sumXY = 0, sumXX = 0;
#pragma omp parallel for reduction(+ : mass, sumY, sumX, sumYY, sumXY, sumXX) schedule(static)
  for (int i = 0; i < numRows; ++i)
  {
    const RowSums row = sumsOf(matrix[i].data(), numCols, middleCol);
    const double y = i - middleRow;
    mass += row.mass;
    sumY += row.mass * y;
    sumX += row.first;
    sumYY += row.mass * y * y;
    sumXY += row.first * y;
    sumXX += row.second;
  }
  _mass = static_cast<T>(mass);
  _center.setZeros();
  _inertia.setZeros();
  if (!(mass > 0)) return;
  const double y = sumY / mass;
  const double x = sumX / mass;
  _center[0] = static_cast<T>((y + middleRow) * height);
  _center[1] = static_cast<T>((x + middleCol) * width);
  _inertia(0, 0) = static_cast<T>((sumYY / mass - y * y) * height * height);
  _inertia(0, 1) = _inertia(1, 0) = static_cast<T>((sumXY / mass - x * y) * height * width);
  _inertia(1, 1) = static_cast<T>((sumXX / mass - x * x) * width * width);
}

template <class T> T MatrixPrincipalAxesAnalysis<T>::computeAngle(const SquareMatrix<T>& inertia)
{
  const T a = inertia(0, 0);
  const T b = inertia(0, 1);
  const T d = inertia(1, 1);
  if (std::abs(b) <= static_cast<T>(Vector<T>::epsilon())) return a >= d ? T(0) : std::numbers::pi_v<T> / 2;
  const T t = (d - a) / (2 * b);
  return std::atan(t + std::sqrt(t * t + 1));
}

template <class T> T MatrixPrincipalAxesAnalysis<T>::getMajorAngle() const
{
  const T angle = getAngle();
  const T cosine = std::cos(angle);
  const T sine = std::sin(angle);
  const T a = _inertia(0, 0);
  const T b = _inertia(0, 1);
  const T d = _inertia(1, 1);
  const T along = a * cosine * cosine + 2 * b * cosine * sine + d * sine * sine;
  return 2 * along >= a + d ? angle : angle - std::numbers::pi_v<T> / 2;
}

template <class T> bool MatrixPrincipalAxesAnalysis<T>::isRound() const
{
  const double a = static_cast<double>(_inertia(0, 0));
  const double d = static_cast<double>(_inertia(1, 1));
  return std::hypot(a - d, 2 * static_cast<double>(_inertia(0, 1))) <= roundness * (a + d);
}

template class MatrixPrincipalAxesAnalysis<float>;
template class MatrixPrincipalAxesAnalysis<double>;
