#pragma once

#include "model/calibrationcurve.h"

#include <optional>

/// What may have a calibration curve of its grey levels: slices and standard images.
class Calibrated
{
public:
  /// The curve, or nullptr.
  const CalibrationCurve* getCalibrationCurve() const { return _calibrationCurve ? &*_calibrationCurve : nullptr; }
  CalibrationCurve* getCalibrationCurve() { return _calibrationCurve ? &*_calibrationCurve : nullptr; }
  bool hasCalibrationCurve() const { return _calibrationCurve.has_value(); }
  void setCalibrationCurve(CalibrationCurve curve) { _calibrationCurve = std::move(curve); }
  void removeCalibrationCurve() { _calibrationCurve.reset(); }

private:
  std::optional<CalibrationCurve> _calibrationCurve;
};
