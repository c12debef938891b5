#pragma once

#include "geometry/boundingbox.h"
#include "image/imagesource.h"
#include "image/pixelcalibration.h"

#include <memory>
#include <string>

class Image;

/// One image: where it comes from, the size of its pixels, a name and a note.
///
/// The corrected size is that of the image squeezed along the longer side of its pixels until they are square.
class Slice
{
public:
  Slice() = default;
  Slice(const Slice&) = delete;
  Slice& operator=(const Slice&) = delete;
  virtual ~Slice() = default;

  const std::string& getName() const { return _name; }
  /// \throw ValueError  the name cannot be stored
  virtual void setName(const std::string& name);
  const std::string& getAnnotation() const { return _annotation; }
  void setAnnotation(const std::string& annotation) { _annotation = annotation; }

  /// The source, owned by the slice; nullptr when there is none.
  const ImageSource* getImageSource() const { return _imageSource.get(); }
  ImageSource* getImageSource() { return _imageSource.get(); }
  /// Stores a copy of the source.
  virtual void setImageSource(const ImageSource& source) { _imageSource = source.clone(); }
  /// True when no image is named.
  bool isEmpty() const { return !_imageSource || !_imageSource->isDefined(); }

  const PixelCalibration& getPixelCalibration() const { return _pixelCalibration; }
  void setPixelCalibration(const PixelCalibration& calibration) { _pixelCalibration = calibration; }

  /// Corrected sizes in pixels, 0 without an image source.
  /// \throw FileError  the source cannot tell the size of its image
  int width() const;
  int height() const;
  /// From (0, 0) to (width() - 1, height() - 1).
  BoundingBox<int> boundingBox() const;
  /// Fits the corrected aspect into a box by shrinking one of its sizes. \return the size that changed, else height()
  unsigned int sizeForSize(unsigned int& boxWidth, unsigned int& boxHeight) const;

  /// Reads the slice's image. \throw UsageError  there is no image source \throw FileError  it cannot be read
  void load(Image& image) const;

private:
  std::string _name;
  std::string _annotation;
  std::unique_ptr<ImageSource> _imageSource;
  PixelCalibration _pixelCalibration;
};
