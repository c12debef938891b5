#pragma once

#include "image/imagesourcevoxelmatrixbase.h"

#include <string>

/// One plane, 0-based, of a voxel-matrix file.
class ImageSourceVoxelMatrixFilePlane : public ImageSourceVoxelMatrixBase
{
public:
  ImageSourceVoxelMatrixFilePlane() : ImageSourceVoxelMatrixBase(0) {}
  explicit ImageSourceVoxelMatrixFilePlane(std::string filename, int plane = 0)
    : ImageSourceVoxelMatrixBase(plane), _filename(std::move(filename))
  {
  }

  const std::string& getVoxelMatrixFilename() const { return _filename; }
  void setVoxelMatrixFilename(const std::string& filename);

  ImageSourceType getType() const override { return ImageSourceType::VoxelMatrixFilePlane; }
  bool isDefined() const override { return !_filename.empty() && getPlane() >= 0; }
  std::unique_ptr<ImageSource> clone() const override
  {
    return std::make_unique<ImageSourceVoxelMatrixFilePlane>(*this);
  }

private:
  ImageHeader readHeader() const override;

  std::string _filename;
};
