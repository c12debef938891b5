#include "model/calibrationcurve.h"

#include "model/enumnames.h"
#include "numeric/exception.h"
#include "numeric/matrix.h"

#include <algorithm>
#include <cmath>

namespace
{
constexpr const char* fitNames[] = {"Linear", "Polynomial2", "Polynomial3"};
} // namespace

CalibrationCurve::CalibrationCurve(std::vector<Sample> samples, CalibrationFit fit)
  : _fit(fit), _samples(std::move(samples))
{
  compute();
}

void CalibrationCurve::setFit(CalibrationFit fit)
{
  if (fit == _fit) return;
  _fit = fit;
  compute();
}

void CalibrationCurve::setSamples(std::vector<Sample> samples)
{
  _samples = std::move(samples);
  compute();
}

int CalibrationCurve::numGreyLevels() const
{
  std::vector<double> levels;
  for (const Sample& sample : _samples) levels.push_back(sample.greyLevel);
  std::sort(levels.begin(), levels.end());
  return static_cast<int>(std::unique(levels.begin(), levels.end()) - levels.begin());
}

void CalibrationCurve::compute()
{
  _coefficients.clear();
  if (_fit == CalibrationFit::Unknown || numGreyLevels() < numCoefficients()) return;
  const auto [least, greatest] = std::minmax_element(
      _samples.begin(), _samples.end(), [](const Sample& a, const Sample& b) { return a.greyLevel < b.greyLevel; });
  _center = least->greyLevel / 2 + greatest->greyLevel / 2;
  _scale = greatest->greyLevel / 2 - least->greyLevel / 2;
  const int numSamples = static_cast<int>(_samples.size());
  Matrix<double> powers(numSamples, numCoefficients());
  Vector<double> values(numSamples);
  for (int i = 0; i < numSamples; ++i)
  {
    const Sample& sample = _samples[static_cast<std::size_t>(i)];
    const double x = (sample.greyLevel - _center) / _scale;
    for (int j = 0; j < numCoefficients(); ++j) powers(i, j) = std::pow(x, j);
    values[i] = sample.value;
  }
  const Vector<double> coefficients = powers.solve(values);
  _coefficients.assign(coefficients.begin(), coefficients.end());
}

double CalibrationCurve::eval(double greyLevel) const
{
  if (!isDefined())
    throw UsageError("double CalibrationCurve::eval(double) const",
                     "A calibration curve of the fit " + toString(_fit) + " needs samples of " +
                         std::to_string(numCoefficients()) + " grey levels; it has " + std::to_string(numGreyLevels()));
  const double x = (greyLevel - _center) / _scale;
  double value = 0;
  for (auto coefficient = _coefficients.rbegin(); coefficient != _coefficients.rend(); ++coefficient)
    value = value * x + *coefficient;
  return value;
}

std::string CalibrationCurve::toString(CalibrationFit fit)
{
  return nameOf(fit, fitNames);
}

CalibrationFit CalibrationCurve::toFit(std::string_view name)
{
  return valueOf<CalibrationFit>(name, fitNames);
}
