#include "image/voxelcalibration.h"

#include "numeric/exception.h"

void VoxelCalibration::setVoxelSize(const Vector<float>& voxelSize)
{
  if (voxelSize.getSize() != 3)
    throw SizeError("void VoxelCalibration::setVoxelSize(const Vector<float>&)", "A voxel size has three components");
  _voxelSize = voxelSize;
}

PixelCalibration VoxelCalibration::pixelCalibration() const
{
  PixelCalibration calibration;
  calibration.clearFlags();
  calibration.setPixelWidth(getVoxelWidth());
  calibration.setPixelHeight(getVoxelHeight());
  calibration.compute();
  calibration.setLengthUnit(_lengthUnit);
  return calibration;
}
