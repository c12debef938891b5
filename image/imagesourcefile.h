#pragma once

#include "image/imagesource.h"

#include <string>

/// A single TIFF image file.
class ImageSourceFile : public ImageSource
{
public:
  ImageSourceFile() = default;
  explicit ImageSourceFile(std::string filename) : _filename(std::move(filename)) {}

  const std::string& getFilename() const { return _filename; }
  void setFilename(const std::string& filename);

  ImageSourceType getType() const override { return ImageSourceType::File; }
  bool isDefined() const override { return !_filename.empty(); }
  std::unique_ptr<ImageSource> clone() const override { return std::make_unique<ImageSourceFile>(*this); }

private:
  ImageHeader readHeader() const override;

  std::string _filename;
};
