#include "image/imagesourcevoxelmatrixfileplane.h"

#include "image/voxelmatrixfile.h"
#include "image/voxelmatrixplanes.h"

void ImageSourceVoxelMatrixFilePlane::setVoxelMatrixFilename(const std::string& filename)
{
  _filename = filename;
  forgetHeader();
}

ImageHeader ImageSourceVoxelMatrixFilePlane::readHeader() const
{
  return planeHeader(VoxelMatrixFile(_filename));
}
