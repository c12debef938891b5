#include "image/imagesourcevoxelmatrixfileplane.h"

#include "numeric/exception.h"

void ImageSourceVoxelMatrixFilePlane::setVoxelMatrixFilename(const std::string& filename)
{
  _filename = filename;
  forgetHeader();
}

ImageHeader ImageSourceVoxelMatrixFilePlane::readHeader() const
{
  throw FileReadError("ImageHeader ImageSourceVoxelMatrixFilePlane::readHeader() const",
                      "Voxel-matrix files cannot be read yet", _filename);
}
