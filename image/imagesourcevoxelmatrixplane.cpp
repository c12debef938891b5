#include "image/imagesourcevoxelmatrixplane.h"

#include "image/image.h"
#include "image/voxelmatrixplanes.h"

bool ImageSourceVoxelMatrixPlane::isDefined() const
{
  return std::visit([this](const auto& matrix) { return matrix && 0 <= getPlane() && getPlane() < matrix->getSize3(); },
                    _voxelMatrix);
}

void ImageSourceVoxelMatrixPlane::readImage(Image& image, ProgressSubject& subject) const
{
  requireMatrix("void ImageSourceVoxelMatrixPlane::readImage(Image&, ProgressSubject&) const");
  std::visit([&](const auto& matrix) { readPlane(image, *matrix, getPlane(), subject); }, _voxelMatrix);
}

ImageHeader ImageSourceVoxelMatrixPlane::readHeader() const
{
  requireMatrix("ImageHeader ImageSourceVoxelMatrixPlane::readHeader() const");
  return std::visit([](const auto& matrix) { return planeHeader(*matrix); }, _voxelMatrix);
}

void ImageSourceVoxelMatrixPlane::requireMatrix(const char* where) const
{
  if (!isDefined()) throw RangeError(where, "The source names no plane of a voxel matrix");
}
