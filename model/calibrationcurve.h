#pragma once

#include <string>
#include <string_view>
#include <vector>

/// Polynomial that is fitted to the samples of a calibration curve.
enum class CalibrationFit
{
  Linear,
  Polynomial2,
  Polynomial3,
  Unknown
};

/// Maps grey levels to the values that they stand for, by the least-squares polynomial through known samples.
class CalibrationCurve
{
public:
  struct Sample
  {
    double greyLevel;
    double value;
    bool operator==(const Sample& other) const = default;
  };

  CalibrationCurve() = default;
  explicit CalibrationCurve(std::vector<Sample> samples, CalibrationFit fit = CalibrationFit::Linear);

  CalibrationFit getFit() const { return _fit; }
  void setFit(CalibrationFit fit);
  const std::vector<Sample>& getSamples() const { return _samples; }
  void setSamples(std::vector<Sample> samples);

  /// Whether there are enough samples of different grey levels for the fit: 2, 3 or 4.
  bool isDefined() const { return !_coefficients.empty(); }
  /// The value of a grey level. \throw UsageError  the curve is not defined
  double eval(double greyLevel) const;

  bool operator==(const CalibrationCurve& other) const { return _fit == other._fit && _samples == other._samples; }

  static std::string toString(CalibrationFit fit);
  /// Unknown for any other text.
  static CalibrationFit toFit(std::string_view name);

private:
  void compute();
  int numCoefficients() const { return static_cast<int>(_fit) + 2; }
  int numGreyLevels() const;

  CalibrationFit _fit = CalibrationFit::Linear;
  std::vector<Sample> _samples;
  // The polynomial of (grey level - _center) / _scale, lowest power first: sound numbers for levels of any size.
  std::vector<double> _coefficients;
  double _center = 0;
  double _scale = 1;
};
