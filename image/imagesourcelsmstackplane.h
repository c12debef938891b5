#pragma once

#include "image/imagesource.h"

#include <string>

/// One image of a confocal stack in the LSM variant of TIFF: one channel of one plane, 8 or 16 bits.
///
/// The images are counted from 0, the planes of the first channel first: channel c of plane z is image
/// c * getNumPlanes() + z, so that one number tells both. Thumbnails are not counted. Sizes and pixel sizes are those
/// of the raster, scanline i in row i.
class ImageSourceLSMStackPlane : public ImageSource
{
public:
  ImageSourceLSMStackPlane() = default;
  explicit ImageSourceLSMStackPlane(std::string filename, int plane = 0) : _filename(std::move(filename)), _plane(plane)
  {
  }

  const std::string& getLSMStackFilename() const { return _filename; }
  void setLSMStackFilename(const std::string& filename);
  /// Number of the image.
  int getPlane() const { return _plane; }
  void setPlane(int plane);

  /// Number of planes of each channel. \throw FileError  the file cannot be read
  int getNumPlanes() const { return header().getNumPlanes(); }
  int getNumChannels() const { return header().getNumChannels(); }
  float getVoxelSizeX() const { return header().getVoxelSizeX(); }
  float getVoxelSizeY() const { return header().getVoxelSizeY(); }
  float getVoxelSizeZ() const { return header().getVoxelSizeZ(); }
  bool hasVoxelSizeZ() const { return header().hasVoxelSizeZ(); }

  ImageSourceType getType() const override { return ImageSourceType::LSMStackPlane; }
  bool isDefined() const override { return !_filename.empty() && _plane >= 0; }
  std::unique_ptr<ImageSource> clone() const override { return std::make_unique<ImageSourceLSMStackPlane>(*this); }

private:
  ImageHeader readHeader() const override;

  std::string _filename;
  int _plane = 0;
};
