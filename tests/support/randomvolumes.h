#pragma once

#include "image/voxelmatrix.h"
#include "numeric/randomgenerator.h"

/// A volume whose voxels are value(u) of uniform random numbers u in [0, 1).
template <class T, class Value>
VoxelMatrix<T> randomVolume(int rows, int columns, int planes, const Value& value, unsigned long seed = 1)
{
  RandomGenerator generator(seed);
  VoxelMatrix<T> volume(rows, columns, planes);
  volume.apply([&](T) { return static_cast<T>(value(generator.uniformLF())); });
  return volume;
}

/// 1 with the given probability, else 0.
inline VoxelMatrix<unsigned char> randomMask(int rows, int columns, int planes, double density, unsigned long seed = 1)
{
  return randomVolume<unsigned char>(
      rows, columns, planes, [density](double u) { return u < density ? 1 : 0; }, seed);
}
