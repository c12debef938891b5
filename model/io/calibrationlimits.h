#pragma once

#include "image/pixelcalibration.h"

/// Whether a pixel width or an aspect ratio can stand in a stack file: what is computed from two such numbers neither
/// overflows nor vanishes, so that statements count in any order.
inline bool isStorableFactor(float factor)
{
  constexpr float least = 1e-15f, greatest = 1e15f;
  return least <= factor && factor <= greatest;
}

inline bool isStorableCalibration(const PixelCalibration& calibration)
{
  return isStorableFactor(calibration.getPixelWidth()) && isStorableFactor(calibration.getAspectRatio());
}
