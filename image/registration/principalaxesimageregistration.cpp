#include "image/registration/principalaxesimageregistration.h"

#include "image/registration/matrixprincipalaxesanalysis.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <vector>

namespace
{
constexpr double alike = 1e-9; // difference of correlations that means nothing

template <class T> T borderMedian(const PixelMatrix<T>& matrix)
{
  const int numRows = matrix.getSize1();
  const int numCols = matrix.getSize2();
  std::vector<T> border;
  for (int i = 0; i < numRows; ++i)
    for (int j = 0; j < numCols; j += i == 0 || i == numRows - 1 ? 1 : std::max(1, numCols - 1))
      border.push_back(matrix(i, j));
  if (border.empty()) return 0;
  const auto middle = border.begin() + static_cast<std::ptrdiff_t>(border.size() / 2);
  std::nth_element(border.begin(), middle, border.end());
  return *middle;
}

/// Bilinear value at fractional indices; 0 beyond the border.
template <class T> double sample(const PixelMatrix<T>& matrix, double row, double col)
{
  const int i = static_cast<int>(std::floor(row));
  const int j = static_cast<int>(std::floor(col));
  if (i < 0 || j < 0 || i + 1 >= matrix.getSize1() || j + 1 >= matrix.getSize2()) return 0;
  const double u = row - i;
  const double v = col - j;
  const T* upper = matrix[i].data() + j;
  const T* lower = matrix[i + 1].data() + j;
  return (1 - u) * ((1 - v) * static_cast<double>(upper[0]) + v * static_cast<double>(upper[1])) +
         u * ((1 - v) * static_cast<double>(lower[0]) + v * static_cast<double>(lower[1]));
}

/// (row, column) of the centre of an image.
template <class T> Vector<T> centerOf(const PixelMatrix<T>& matrix)
{
  const PixelCalibration& calibration = matrix.getPixelCalibration();
  return Vector<T>{static_cast<T>(matrix.getSize1() / 2.0 * static_cast<double>(calibration.getPixelHeight())),
                   static_cast<T>(matrix.getSize2() / 2.0 * static_cast<double>(calibration.getPixelWidth()))};
}

/// to - R(angle) from.
template <class T> Vector<T> translationBetween(const Vector<T>& from, const Vector<T>& to, T angle)
{
  const T cosine = std::cos(angle);
  const T sine = std::sin(angle);
  return Vector<T>{to[0] - (cosine * from[0] + sine * from[1]), to[1] - (-sine * from[0] + cosine * from[1])};
}

/// Into (-pi, pi].
template <class T> T wrapped(T angle)
{
  const T turn = 2 * std::numbers::pi_v<T>;
  angle -= turn * std::floor(angle / turn);
  return angle > std::numbers::pi_v<T> ? angle - turn : angle;
}
} // namespace

template <class T> PixelMatrix<T> massAboveBackground(const PixelMatrix<T>& matrix)
{
  const T background = borderMedian(matrix);
  PixelMatrix<T> mass(matrix.getSize1(), matrix.getSize2());
  mass.setPixelCalibration(matrix.getPixelCalibration());
  const T* in = matrix.data();
  std::transform(in, in + matrix.getNumElements(), mass.data(),
                 [background](T level) { return level > background ? level - background : T(0); });
  return mass;
}

template <class T>
double correlation(const PixelMatrix<T>& source, const PixelMatrix<T>& target, double angle, double row, double column)
{
  const double sourceHeight = source.getPixelCalibration().getPixelHeight();
  const double sourceWidth = source.getPixelCalibration().getPixelWidth();
  const double targetHeight = target.getPixelCalibration().getPixelHeight();
  const double targetWidth = target.getPixelCalibration().getPixelWidth();
  const double cosine = std::cos(angle);
  const double sine = std::sin(angle);
  const int numRows = target.getSize1();
  const int numCols = target.getSize2();
  double sumS = 0, sumT = 0, sumSS = 0, sumST = 0, sumTT = 0;
#pragma omp parallel for reduction(+ : sumS, sumT, sumSS, sumST, sumTT) schedule(static)
  for (int i = 0; i < numRows; ++i)
    for (int j = 0; j < numCols; ++j)
    {
      const double y = (i - numRows / 2.0) * targetHeight - row;
      const double x = (j - numCols / 2.0) * targetWidth - column;
      const double s = sample(source, (cosine * y - sine * x) / sourceHeight + source.getSize1() / 2.0,
                              (sine * y + cosine * x) / sourceWidth + source.getSize2() / 2.0);
      const auto t = static_cast<double>(target(i, j));
      sumS += s;
      sumT += t;
      sumSS += s * s;
      sumST += s * t;
      sumTT += t * t;
    }
  const double n = static_cast<double>(numRows) * numCols;
  const double varianceS = sumSS - sumS * sumS / n;
  const double varianceT = sumTT - sumT * sumT / n;
  if (!(varianceS > 0) || !(varianceT > 0)) return 0;
  return (sumST - sumS * sumT / n) / std::sqrt(varianceS * varianceT);
}

template <class T> void PrincipalAxesImageRegistration<T>::run()
{
  const PixelMatrix<T> source = massAboveBackground(this->source());
  const PixelMatrix<T> target = massAboveBackground(this->target());
  MatrixPrincipalAxesAnalysis<T> sourceAxes, targetAxes;
  sourceAxes.apply(source);
  targetAxes.apply(target);
  this->setNull();
  _correlationBefore = _correlationAfter = static_cast<T>(correlation(source, target, 0, 0, 0));
  _hasMass = sourceAxes.getMass() > 0 && targetAxes.getMass() > 0;
  if (!_hasMass) return;

  const bool isRound = sourceAxes.isRound() || targetAxes.isRound();
  const T turn = isRound ? T(0) : wrapped(sourceAxes.getMajorAngle() - targetAxes.getMajorAngle());
  const Vector<T> from = sourceAxes.getInertiaCenter() - centerOf(source);
  const Vector<T> to = targetAxes.getInertiaCenter() - centerOf(target);
  const auto correlationAt = [&](T angle)
  {
    const Vector<T> translation = translationBetween(from, to, angle);
    return correlation(source, target, static_cast<double>(angle), static_cast<double>(translation[0]),
                       static_cast<double>(translation[1]));
  };
  T angle = turn;
  double best = correlationAt(turn);
  if (!isRound)
  {
    const T other = wrapped(turn + std::numbers::pi_v<T>);
    const double otherCorrelation = correlationAt(other);
    const bool isBetter =
        std::abs(otherCorrelation - best) > alike ? otherCorrelation > best : std::abs(other) < std::abs(angle);
    if (isBetter)
    {
      angle = other;
      best = otherCorrelation;
    }
  }
  _correlationAfter = static_cast<T>(best);
  const Vector<T> translation =
      _isImageCentered ? translationBetween(from, to, angle)
                       : translationBetween(sourceAxes.getInertiaCenter(), targetAxes.getInertiaCenter(), angle);
  this->set(angle, translation);
}

template double correlation(const PixelMatrix<float>&, const PixelMatrix<float>&, double, double, double);
template double correlation(const PixelMatrix<double>&, const PixelMatrix<double>&, double, double, double);
template PixelMatrix<float> massAboveBackground(const PixelMatrix<float>&);
template PixelMatrix<double> massAboveBackground(const PixelMatrix<double>&);
template class PrincipalAxesImageRegistration<float>;
template class PrincipalAxesImageRegistration<double>;
