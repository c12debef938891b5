#pragma once

#include "image/imageheader.h"
#include "image/voxelmatrix.h"

#include <utility>

class Image;
class ProgressSubject;
class VoxelMatrixFile;

/// Planes of voxel matrices as images: unsigned char becomes an 8-bit image, unsigned short a 16-bit one, every other
/// type 8 bits by a linear map of the range of the whole volume's finite voxels. Infinity is 255, -infinity and NaN 0.
/// @{

/// Sizes, depth and calibration of any plane's image.
template <class T> ImageHeader planeHeader(const VoxelMatrix<T>& matrix);
ImageHeader planeHeader(const VoxelMatrixFile& file);

/// Smallest and largest finite voxel; of a volume without any, the first is the larger one. \throw Cancelled
template <class T> std::pair<T, T> finiteRange(const VoxelMatrix<T>& matrix, const ProgressSubject& subject);

/// \throw RangeError  there is no such plane   \throw Cancelled  the subject is, as for the next one
template <class T> void readPlane(Image& image, const VoxelMatrix<T>& matrix, int plane, ProgressSubject& subject);
/// \throw FileFormatError  there is no such plane   \throw FileReadError  the disk fails
void readPlane(Image& image, const VoxelMatrixFile& file, int plane, ProgressSubject& subject);
/// @}
