#pragma once

#include "image/imagesource.h"

/// One plane, 0-based, of a voxel matrix.
class ImageSourceVoxelMatrixBase : public ImageSource
{
public:
  int getPlane() const { return _plane; }
  void setPlane(int plane)
  {
    _plane = plane;
    forgetHeader();
  }

protected:
  explicit ImageSourceVoxelMatrixBase(int plane) : _plane(plane) {}

private:
  int _plane;
};
