#pragma once

#include "image/imagesource.h"

#include <string>

/// One plane, 0-based, of a multi-page TIFF file. Thumbnails are not counted.
class ImageSourceTiffStackPlane : public ImageSource
{
public:
  ImageSourceTiffStackPlane() = default;
  explicit ImageSourceTiffStackPlane(std::string filename, int plane = 0)
    : _filename(std::move(filename)), _plane(plane)
  {
  }

  const std::string& getTiffStackFilename() const { return _filename; }
  void setTiffStackFilename(const std::string& filename);
  int getPlane() const { return _plane; }
  void setPlane(int plane);

  /// Number of planes in the file. \throw FileError  it cannot be read
  int getNumImages() const { return header().getNumPlanes(); }
  float getVoxelSizeX() const { return header().getVoxelSizeX(); }
  float getVoxelSizeY() const { return header().getVoxelSizeY(); }
  float getVoxelSizeZ() const { return header().getVoxelSizeZ(); }
  bool hasVoxelSizeZ() const { return header().hasVoxelSizeZ(); }

  ImageSourceType getType() const override { return ImageSourceType::TiffStackPlane; }
  bool isDefined() const override { return !_filename.empty() && _plane >= 0; }
  std::unique_ptr<ImageSource> clone() const override { return std::make_unique<ImageSourceTiffStackPlane>(*this); }

private:
  ImageHeader readHeader() const override;

  std::string _filename;
  int _plane = 0;
};
