#pragma once

#include "image/pixelcalibration.h"

#include <QWidget>

#include <optional>

class NYXNumberBox;

/// Pixel width, height and aspect ratio, which stay consistent: a new width or aspect ratio gives another height, a new
/// height another aspect ratio.
class NYXCalibrationEditor : public QWidget
{
  Q_OBJECT

public:
  explicit NYXCalibrationEditor(QWidget* parent = nullptr);

  /// None: several. Then a change of the user starts from the fallback.
  void setCalibration(const std::optional<PixelCalibration>& calibration);
  void setFallback(const PixelCalibration& calibration) { _fallback = calibration; }
  /// Unchecked: it stands for one calibration.
  const PixelCalibration& getCalibration() const { return *_calibration; }

  /// Names the unit that is shown; no number changes.
  void setUnit(const LengthUnit& unit);
  /// Multiplies the lengths.
  void scale(double factor);

signals:
  /// The user has changed a number.
  void edited();

private:
  template <class Set> void change(Set set);
  void show();

  std::optional<PixelCalibration> _calibration;
  PixelCalibration _fallback;
  NYXNumberBox* _width;
  NYXNumberBox* _height;
  NYXNumberBox* _aspectRatio;
};

/// \throw ValueError  no stack file can hold the calibration, as after a conversion to a unit that is far away
void requireStorable(const PixelCalibration& calibration);
