#pragma once

#include "numeric/lengthunit.h"

/// Physical size of a pixel: width, height and aspect ratio (height / width), in a LengthUnit.
///
/// Each of the three remembers whether it was set; compute() derives the others. A new calibration has width, height
/// and aspect ratio 1, all three set, in metres.
class PixelCalibration
{
public:
  float getPixelWidth() const { return _width; }
  float getPixelHeight() const { return _height; }
  float getAspectRatio() const { return _aspectRatio; }
  const LengthUnit& getLengthUnit() const { return _lengthUnit; }

  void setPixelWidth(float width);
  void setPixelHeight(float height);
  void setAspectRatio(float aspectRatio);
  void setLengthUnit(const LengthUnit& lengthUnit) { _lengthUnit = lengthUnit; }

  bool isPixelWidthSet() const { return _isWidthSet; }
  bool isPixelHeightSet() const { return _isHeightSet; }
  bool isAspectRatioSet() const { return _isAspectRatioSet; }

  /// Marks the three values as not set; the values themselves stay.
  void clearFlags() { _isWidthSet = _isHeightSet = _isAspectRatioSet = false; }

  /// Derives what was not set: the aspect ratio when the height was set without it, the width when height and aspect
  /// ratio were set, the height otherwise (also when all three were set). Where two values are missing, the old width
  /// or aspect ratio counts.
  void compute();

  /// Length of the pixel's diagonal.
  float pixelDiagonal() const;

  /// Equal values and units, however they were set.
  bool operator==(const PixelCalibration& other) const;
  bool operator!=(const PixelCalibration& other) const { return !(*this == other); }

private:
  float _width = 1;
  float _height = 1;
  float _aspectRatio = 1;
  bool _isWidthSet = true;
  bool _isHeightSet = true;
  bool _isAspectRatioSet = true;
  LengthUnit _lengthUnit;
};
