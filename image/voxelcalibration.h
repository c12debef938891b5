#pragma once

#include "image/pixelcalibration.h"
#include "numeric/lengthunit.h"
#include "numeric/vector.h"

/// Physical size of a voxel: height (along rows, i), width (along columns, j) and depth (between planes, k), in a
/// LengthUnit. A new calibration has three times 1, in metres.
class VoxelCalibration
{
public:
  float getVoxelHeight() const { return _voxelSize[0]; }
  float getVoxelWidth() const { return _voxelSize[1]; }
  float getVoxelDepth() const { return _voxelSize[2]; }
  void setVoxelHeight(float height) { _voxelSize[0] = height; }
  void setVoxelWidth(float width) { _voxelSize[1] = width; }
  void setVoxelDepth(float depth) { _voxelSize[2] = depth; }

  /// (height, width, depth).
  const Vector<float>& getVoxelSize() const { return _voxelSize; }
  /// \throw SizeError  not three components
  void setVoxelSize(const Vector<float>& voxelSize);

  const LengthUnit& getLengthUnit() const { return _lengthUnit; }
  void setLengthUnit(const LengthUnit& lengthUnit) { _lengthUnit = lengthUnit; }

  /// Width, height and unit of a pixel of a plane.
  PixelCalibration pixelCalibration() const;

  bool operator==(const VoxelCalibration& other) const
  {
    return _voxelSize == other._voxelSize && _lengthUnit == other._lengthUnit;
  }
  bool operator!=(const VoxelCalibration& other) const { return !(*this == other); }

private:
  Vector<float> _voxelSize{1.0f, 1.0f, 1.0f};
  LengthUnit _lengthUnit;
};
