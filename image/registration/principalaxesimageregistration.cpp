#include "image/registration/principalaxesimageregistration.h"

#include "image/registration/matrixprincipalaxesanalysis.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <numbers>
#include <utility>
#include <vector>

namespace
{
constexpr double alike = 1e-9;               // difference of correlations that means nothing
constexpr double noiseGate = 5;              // standard deviations
constexpr double deviationOfMedian = 1.4826; // standard deviation of normal noise by its median absolute deviation

/// The elements at the border, each once, in a walk around it, without NaN.
template <class T> std::vector<T> borderOf(const PixelMatrix<T>& matrix)
{
  std::vector<T> border;
  if (matrix.getNumElements() == 0) return border;
  const int lastRow = matrix.getSize1() - 1;
  const int lastCol = matrix.getSize2() - 1;
  for (int j = 0; j <= lastCol; ++j) border.push_back(matrix(0, j));
  for (int i = 1; i <= lastRow; ++i) border.push_back(matrix(i, lastCol));
  for (int j = lastCol - 1; j >= 0 && lastRow > 0; --j) border.push_back(matrix(lastRow, j));
  for (int i = lastRow - 1; i > 0 && lastCol > 0; --i) border.push_back(matrix(i, 0));
  std::erase_if(border, [](T level) { return std::isnan(level); });
  return border;
}

/// The upper one of two middle elements; 0 of none.
template <class T> T medianOf(std::vector<T> values)
{
  if (values.empty()) return 0;
  const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  return *middle;
}

/// The smallest difference between two of the levels; 0 when all are alike.
template <class T> T stepOf(std::vector<T> levels)
{
  std::ranges::sort(levels);
  T step = 0;
  for (std::size_t i = 1; i < levels.size(); ++i)
  {
    const T difference = levels[i] - levels[i - 1];
    if (difference > 0 && (step == 0 || difference < step)) step = difference;
  }
  return step;
}

/// Whether each element that is not background has a neighbour of its level: the specimen may reach the border in
/// flat parts, while noise changes from one element to the next.
template <class T> bool isFlat(const std::vector<T>& border, T background)
{
  const std::size_t size = border.size();
  for (std::size_t i = 0; i < size; ++i)
    if (border[i] != background && border[i] != border[(i + 1) % size] && border[i] != border[(i + size - 1) % size])
      return false;
  return true;
}

/// How far noise may rise above the background. Each grey level stands for what lies within half a step of it.
template <class T> T noiseOf(const std::vector<T>& border, T background)
{
  std::vector<T> deviations(border.size());
  std::ranges::transform(border, deviations.begin(), [&](T level) { return std::abs(level - background); });
  const T deviation = medianOf(std::move(deviations));
  if (deviation == 0 && isFlat(border, background)) return 0;
  return static_cast<T>(noiseGate * deviationOfMedian) * (deviation + stepOf(border) / 2);
}

/// Rises above the background of more than `noise`. \return whether there are any
template <class T> bool fillMass(const PixelMatrix<T>& matrix, T background, T noise, PixelMatrix<T>& mass)
{
  const T* in = matrix.data();
  T heaviest = 0;
  std::transform(in, in + matrix.getNumElements(), mass.data(),
                 [&](T level)
                 {
                   const T rise = level - background;
                   const T weight = rise > noise ? rise : T(0);
                   heaviest = std::max(heaviest, weight);
                   return weight;
                 });
  return heaviest > 0;
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

/// Sums over the pairs of elements that lie on each other.
struct PairSums
{
  double number = 0, s = 0, t = 0, ss = 0, st = 0, tt = 0;

  void add(double source, double target)
  {
    number += 1;
    s += source;
    t += target;
    ss += source * source;
    st += source * target;
    tt += target * target;
  }

  void operator+=(const PairSums& other)
  {
    number += other.number;
    s += other.s;
    t += other.t;
    ss += other.ss;
    st += other.st;
    tt += other.tt;
  }

  double correlation() const
  {
    constexpr double rounding = 1e-12; // of a variance that is 0, relative to the sum of squares
    const double varianceS = ss - s * s / number;
    const double varianceT = tt - t * t / number;
    if (!(varianceS > rounding * ss) || !(varianceT > rounding * tt)) return 0;
    return (st - s * t / number) / std::sqrt(varianceS * varianceT);
  }
};

/// Bilinear value between the elements; the indices are inside of the matrix, but for a rounding error.
template <class T> double sample(const PixelMatrix<T>& matrix, double row, double col)
{
  const int i = static_cast<int>(row);
  const int j = static_cast<int>(col);
  const T* upper = matrix[i].data();
  const T* lower = matrix[std::min(i + 1, matrix.getSize1() - 1)].data();
  const int right = std::min(j + 1, matrix.getSize2() - 1);
  const double u = row - i;
  const double v = col - j;
  return (1 - u) * ((1 - v) * static_cast<double>(upper[j]) + v * static_cast<double>(upper[right])) +
         u * ((1 - v) * static_cast<double>(lower[j]) + v * static_cast<double>(lower[right]));
}

/// Where the elements of a target lie in the source: indices of the source, linear in the target's.
class InverseMap
{
public:
  template <class T>
  InverseMap(const PixelMatrix<T>& source, const PixelMatrix<T>& target, double angle, double row, double column)
  {
    const double sourceHeight = static_cast<double>(source.getPixelCalibration().getPixelHeight());
    const double sourceWidth = static_cast<double>(source.getPixelCalibration().getPixelWidth());
    const double targetHeight = static_cast<double>(target.getPixelCalibration().getPixelHeight());
    const double targetWidth = static_cast<double>(target.getPixelCalibration().getPixelWidth());
    const double cosine = std::cos(angle);
    const double sine = std::sin(angle);
    const double y = -target.getSize1() / 2.0 * targetHeight - row;   // the target's first element from the source's
    const double x = -target.getSize2() / 2.0 * targetWidth - column; // centre, as it is placed
    _row = {(cosine * y - sine * x) / sourceHeight + source.getSize1() / 2.0, cosine * targetHeight / sourceHeight,
            -sine * targetWidth / sourceHeight};
    _column = {(sine * y + cosine * x) / sourceWidth + source.getSize2() / 2.0, sine * targetHeight / sourceWidth,
               cosine * targetWidth / sourceWidth};
  }

  double row(int i, int j) const { return _row.at(i, j); }
  double column(int i, int j) const { return _column.at(i, j); }

private:
  struct Linear
  {
    double first, perRow, perColumn;

    double at(int i, int j) const { return first + i * perRow + j * perColumn; }
  };

  Linear _row;
  Linear _column;
};

/// What elements of the target count that lie beyond the border of the source.
enum class Beyond
{
  Ignored,
  Zero ///< as the source's, where nothing is mass
};

template <class T>
double correlationOf(const PixelMatrix<T>& source, const PixelMatrix<T>& target, const InverseMap& map, Beyond beyond)
{
  const int numCols = target.getSize2();
  constexpr double slack = 1e-9; // of places at the border, for rounding
  const double lastRow = source.getSize1() - 1 + slack;
  const double lastCol = source.getSize2() - 1 + slack;
  std::vector<PairSums> rows(static_cast<std::size_t>(target.getSize1()));
#pragma omp parallel for schedule(static)
  for (int i = 0; i < target.getSize1(); ++i)
  {
    PairSums sums;
    for (int j = 0; j < numCols; ++j)
    {
      const double y = map.row(i, j);
      const double x = map.column(i, j);
      if (y >= -slack && y <= lastRow && x >= -slack && x <= lastCol)
        sums.add(sample(source, y, x), static_cast<double>(target(i, j)));
      else if (beyond == Beyond::Zero)
        sums.add(0, static_cast<double>(target(i, j)));
    }
    rows[static_cast<std::size_t>(i)] = sums;
  }
  PairSums sum; // in the order of the rows, whatever the number of threads
  for (const PairSums& sums : rows) sum += sums;
  return sum.correlation();
}

/// The angle or the one half a turn from it: the one at which the masses correlate better, the smaller one when they do
/// so alike.
template <class T> T betterSense(const PixelMatrix<T>& source, const PixelMatrix<T>& target, T angle,
                                 const Vector<T>& from, const Vector<T>& to)
{
  const auto correlationAt = [&](T turn)
  {
    const Vector<T> shift = translationBetween(from, to, turn);
    const InverseMap map(source, target, static_cast<double>(turn), static_cast<double>(shift[0]),
                         static_cast<double>(shift[1]));
    return correlationOf(source, target, map, Beyond::Zero);
  };
  const T smaller = std::abs(angle) <= std::numbers::pi_v<T> / 2 ? angle : wrapped(angle + std::numbers::pi_v<T>);
  const T larger = wrapped(smaller + std::numbers::pi_v<T>);
  return correlationAt(larger) > correlationAt(smaller) + alike ? larger : smaller;
}
} // namespace

template <class T> PixelMatrix<T> massAboveBackground(const PixelMatrix<T>& matrix)
{
  const std::vector<T> border = borderOf(matrix);
  const T background = medianOf(border);
  PixelMatrix<T> mass(matrix.getSize1(), matrix.getSize2());
  mass.setPixelCalibration(matrix.getPixelCalibration());
  if (!fillMass(matrix, background, noiseOf(border, background), mass)) fillMass(matrix, background, T(0), mass);
  return mass;
}

template <class T>
double correlation(const PixelMatrix<T>& source, const PixelMatrix<T>& target, double angle, double row, double column)
{
  return correlationOf(source, target, InverseMap(source, target, angle, row, column), Beyond::Ignored);
}

template <class T> void PrincipalAxesImageRegistration<T>::run()
{
  const PixelMatrix<T> source = massAboveBackground(this->source());
  const PixelMatrix<T> target = massAboveBackground(this->target());
  MatrixPrincipalAxesAnalysis<T> sourceAxes, targetAxes;
  sourceAxes.apply(source);
  targetAxes.apply(target);
  this->setNull();
  _hasMass = sourceAxes.getMass() > 0 && targetAxes.getMass() > 0;
  if (!_hasMass) return;

  const bool isRound = sourceAxes.isRound() || targetAxes.isRound();
  const Vector<T> from = sourceAxes.getInertiaCenter() - centerOf(source);
  const Vector<T> to = targetAxes.getInertiaCenter() - centerOf(target);
  const T turn = wrapped(sourceAxes.getMajorAngle() - targetAxes.getMajorAngle());
  const T angle = isRound ? T(0) : betterSense(source, target, turn, from, to);
  const Vector<T>& sourceCenter = _isImageCentered ? from : sourceAxes.getInertiaCenter();
  const Vector<T>& targetCenter = _isImageCentered ? to : targetAxes.getInertiaCenter();
  this->set(angle, translationBetween(sourceCenter, targetCenter, angle));
}

template double correlation(const PixelMatrix<float>&, const PixelMatrix<float>&, double, double, double);
template double correlation(const PixelMatrix<double>&, const PixelMatrix<double>&, double, double, double);
template PixelMatrix<float> massAboveBackground(const PixelMatrix<float>&);
template PixelMatrix<double> massAboveBackground(const PixelMatrix<double>&);
template class PrincipalAxesImageRegistration<float>;
template class PrincipalAxesImageRegistration<double>;
