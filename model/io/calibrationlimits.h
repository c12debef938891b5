#pragma once

#include "image/pixelcalibration.h"

#include <cmath>

/// Whether a pixel width or an aspect ratio can stand in a stack file: what is computed from two such numbers neither
/// overflows nor vanishes.
inline bool isStorableFactor(float factor)
{
  constexpr float least = 1e-15f, greatest = 1e15f;
  return least <= factor && factor <= greatest;
}

/// Whether width and aspect ratio can be written, and the height, which is not, is one at all.
inline bool isStorableCalibration(const PixelCalibration& calibration)
{
  const float height = calibration.getPixelHeight();
  return isStorableFactor(calibration.getPixelWidth()) && isStorableFactor(calibration.getAspectRatio()) &&
         height > 0 && std::isfinite(height);
}
