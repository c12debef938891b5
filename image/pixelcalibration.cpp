#include "image/pixelcalibration.h"

#include <cmath>

void PixelCalibration::setPixelWidth(float width)
{
  _width = width;
  _isWidthSet = true;
}

void PixelCalibration::setPixelHeight(float height)
{
  _height = height;
  _isHeightSet = true;
}

void PixelCalibration::setAspectRatio(float aspectRatio)
{
  _aspectRatio = aspectRatio;
  _isAspectRatioSet = true;
}

void PixelCalibration::compute()
{
  if (_isHeightSet && !_isAspectRatioSet)
    _aspectRatio = _height / _width;
  else if (_isHeightSet && !_isWidthSet)
    _width = _height / _aspectRatio;
  else
    _height = _aspectRatio * _width;
}

float PixelCalibration::pixelDiagonal() const
{
  return std::hypot(_width, _height);
}

bool PixelCalibration::operator==(const PixelCalibration& other) const
{
  return _width == other._width && _height == other._height && _aspectRatio == other._aspectRatio &&
         _lengthUnit == other._lengthUnit;
}
