#include "image/registration/matrixprincipalaxesanalysis.h"

#include <cmath>
#include <cstddef>
#include <numbers>
#include <vector>

namespace
{
/// Relative difference of the moments below which axes mean nothing.
template <class T> constexpr T roundness = static_cast<T>(1e-3);

/// Moments of a row, x and y from a place near the middle of the matrix, in elements.
struct Moments
{
  double mass = 0, x = 0, y = 0, xx = 0, xy = 0, yy = 0;

  void operator+=(const Moments& other)
  {
    mass += other.mass;
    x += other.x;
    y += other.y;
    xx += other.xx;
    xy += other.xy;
    yy += other.yy;
  }
};

template <class T> Moments momentsOf(const T* row, int size, double middle, double y)
{
  Moments moments;
  for (int j = 0; j < size; ++j)
  {
    const double mass = row[j] > 0 ? static_cast<double>(row[j]) : 0.0; // NaN is not above 0
    const double x = j - middle;
    moments.mass += mass;
    moments.x += mass * x;
    moments.xx += mass * x * x;
  }
  moments.y = moments.mass * y;
  moments.xy = moments.x * y;
  moments.yy = moments.y * y;
  return moments;
}

/// The rows are summed up in their order, whatever the number of threads.
template <class T> Moments momentsOf(const PixelMatrix<T>& matrix, double middleRow, double middleCol)
{
  std::vector<Moments> rows(static_cast<std::size_t>(matrix.getSize1()));
#pragma omp parallel for schedule(static)
  for (int i = 0; i < matrix.getSize1(); ++i)
    rows[static_cast<std::size_t>(i)] = momentsOf(matrix[i].data(), matrix.getSize2(), middleCol, i - middleRow);
  Moments sum;
  for (const Moments& row : rows) sum += row;
  return sum;
}
} // namespace

template <class T> void MatrixPrincipalAxesAnalysis<T>::apply(const PixelMatrix<T>& matrix)
{
  const double height = static_cast<double>(matrix.getPixelCalibration().getPixelHeight());
  const double width = static_cast<double>(matrix.getPixelCalibration().getPixelWidth());
  const double middleRow = matrix.getSize1() / 2.0; // sums about the middle keep their digits
  const double middleCol = matrix.getSize2() / 2.0;
  const Moments moments = momentsOf(matrix, middleRow, middleCol);
  const double mass = moments.mass;
  _mass = static_cast<T>(mass);
  _center.setZeros();
  _inertia.setZeros();
  if (!(mass > 0)) return;
  const double y = moments.y / mass;
  const double x = moments.x / mass;
  _center[0] = static_cast<T>((y + middleRow) * height);
  _center[1] = static_cast<T>((x + middleCol) * width);
  _inertia(0, 0) = static_cast<T>((moments.yy / mass - y * y) * height * height);
  _inertia(0, 1) = _inertia(1, 0) = static_cast<T>((moments.xy / mass - x * y) * height * width);
  _inertia(1, 1) = static_cast<T>((moments.xx / mass - x * x) * width * width);
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
  return std::atan2(2 * _inertia(0, 1), _inertia(0, 0) - _inertia(1, 1)) / 2;
}

template <class T> bool MatrixPrincipalAxesAnalysis<T>::isRound() const
{
  const T a = _inertia(0, 0);
  const T d = _inertia(1, 1);
  return !(std::hypot(a - d, 2 * _inertia(0, 1)) > roundness<T> * (a + d));
}

template class MatrixPrincipalAxesAnalysis<float>;
template class MatrixPrincipalAxesAnalysis<double>;
