#pragma once

#include "model/calibrated.h"
#include "model/keptstatements.h"
#include "model/slice.h"

#include <string>
#include <vector>

class Stack;

/// A part of a standard image whose value is known.
struct StandardSample
{
  std::string name;
  int x = 0; ///< first column of its rectangle
  int y = 0; ///< first row
  int width = 1;
  int height = 1;
  double value = 0;

  bool operator==(const StandardSample& other) const = default;
};

/// An image of grey-level standards: samples of known values, from which a calibration curve is made.
class StandardImage : public Slice, public KeptStatements, public Calibrated
{
public:
  const std::vector<StandardSample>& getSamples() const { return _samples; }
  std::vector<StandardSample>& getSamples() { return _samples; }
  /// \throw ValueError  the sample's name cannot be stored
  void addSample(const StandardSample& sample);

  /// Reads the image and sets the curve of the samples' mean grey levels and their values.
  /// \throw UsageError  there is no image, or there are fewer samples than the fit needs
  /// \throw RangeError  a sample does not lie in the image \throw FileError  the image cannot be read
  void calibrate(CalibrationFit fit);

  /// Called by the stack that holds it; also when that got its first images path.
  void setStack(const Stack* stack);

private:
  std::string imagesPath() const override;

  const Stack* _stack = nullptr;
  std::vector<StandardSample> _samples;
};
