#pragma once

#include "image/imagesource.h"

#include <string>

/// One plane, 0-based, of a confocal stack in the LSM variant of TIFF.
class ImageSourceLSMStackPlane : public ImageSource
{
public:
  ImageSourceLSMStackPlane() = default;
  explicit ImageSourceLSMStackPlane(std::string filename, int plane = 0) : _filename(std::move(filename)), _plane(plane)
  {
  }

  const std::string& getLSMStackFilename() const { return _filename; }
  void setLSMStackFilename(const std::string& filename);
  int getPlane() const { return _plane; }
  void setPlane(int plane);

  ImageSourceType getType() const override { return ImageSourceType::LSMStackPlane; }
  bool isDefined() const override { return !_filename.empty() && _plane >= 0; }
  std::unique_ptr<ImageSource> clone() const override { return std::make_unique<ImageSourceLSMStackPlane>(*this); }

private:
  ImageHeader readHeader() const override;

  std::string _filename;
  int _plane = 0;
};
