#pragma once

#include "image/imageheader.h"
#include "image/voxelmatrix.h"

#include <string>
#include <variant>

/// A volume of any of the element types that files have.
using AnyVolume =
    std::variant<VoxelMatrix<unsigned char>, VoxelMatrix<unsigned short>, VoxelMatrix<int>, VoxelMatrix<unsigned int>,
                 VoxelMatrix<float>, VoxelMatrix<double>, VoxelMatrix<long double>>;

/// How an image file is read, by its suffix in any case.
enum class VolumeFormat
{
  Tiff,        ///< .tif, .tiff: one page or many
  Lsm,         ///< .lsm: a confocal stack
  VoxelMatrix, ///< .vm
  Unknown
};
VolumeFormat volumeFormat(const std::string& filename);

/// What a TIFF file or a confocal stack says of its images; thumbnails are not counted.
/// \throw FileError  it cannot be read
ImageHeader imageHeader(const std::string& filename);

/// \throw BatchError  a channel is asked for but the file is no confocal stack
void requireChannels(const std::string& filename, int channel);

/// Reads all planes of an image file; colours become grey levels, and the voxel size has height, width and depth in
/// their places whatever the file's format. Of a confocal stack, one channel. The work on the volume takes some bytes
/// for each voxel besides.
/// \throw BatchError  the file is no image file, or it takes, with the work on it, more than the memory
/// \throw Exception   it cannot be read
AnyVolume readVolume(const std::string& filename, int channel = 0, double workingBytesPerVoxel = 0);

/// Bytes of the machine's memory.
double machineMemory();
/// \throw BatchError  the work on this file takes more than the machine's memory
void requireMemory(const std::string& filename, double numBytes);

/// \throw BatchError  a volume cannot be written to a file of this name, or the file exists and must not be overwritten
void requireVolumeOutput(const std::string& filename, bool overwrite);

/// Writes a voxel-matrix file or, going by the suffix, a TIFF file with a page per plane.
/// \throw BatchError  a TIFF file cannot hold these voxels   \throw FileWriteError  the file cannot be written
template <class T> void writeVolume(VoxelMatrix<T> volume, const std::string& filename);
