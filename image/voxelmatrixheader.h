#pragma once

#include "image/voxelcalibration.h"

#include <cstddef>
#include <cstdint>
#include <string>

/// What a voxel-matrix file says of itself. Format 0 tells neither type nor calibration.
struct VoxelMatrixHeader
{
  int format = 1;
  int typeId = 0;
  int size1 = 0; ///< rows
  int size2 = 0; ///< columns
  int size3 = 0; ///< planes
  VoxelCalibration calibration;
  std::size_t elementSize = 0;  ///< bytes per voxel: the type's or, where that is not told, the file's length decides
  std::uint64_t dataOffset = 0; ///< of the first voxel

  std::size_t numVoxels() const
  {
    return static_cast<std::size_t>(size1) * static_cast<std::size_t>(size2) * static_cast<std::size_t>(size3);
  }
};

/// Identifies an element type in a voxel-matrix file: 2 int, 3 unsigned int, 5 float, 6 double, 7 long double, 0
/// others.
template <class T> constexpr int voxelTypeId()
{
  if constexpr (std::is_same_v<T, int>)
    return 2;
  else if constexpr (std::is_same_v<T, unsigned int>)
    return 3;
  else if constexpr (std::is_same_v<T, float>)
    return 5;
  else if constexpr (std::is_same_v<T, double>)
    return 6;
  else if constexpr (std::is_same_v<T, long double>)
    return 7;
  else
    return 0;
}
