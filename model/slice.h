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
///
/// File names of the image: of a slice or standard image in a stack with an images path, relative names are made
/// absolute against it, once, as soon as both are there: when it is added, gets an image, or the stack gets its first
/// images path. A relative images path counts from the program's folder. Absolute names stay as they are, so that a
/// later images path, another stack or setting the same source again changes nothing. Without an images path relative
/// names stay and count from the program's folder. Loading, sizes and stack files all take the name that stands in the
/// source then, also one that was put into it in place.
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
  /// Stores a copy of the source, its file names as said above.
  void setImageSource(const ImageSource& source);
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

protected:
  /// The images path of the stack that holds this, "" without one.
  virtual std::string imagesPath() const { return ""; }
  /// To be called when there is an images path that was not there before.
  void resolveImageNames();

private:
  std::string _name;
  std::string _annotation;
  std::unique_ptr<ImageSource> _imageSource;
  PixelCalibration _pixelCalibration;
};
