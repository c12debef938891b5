#pragma once

#include "image/imageheader.h"

#include <memory>
#include <vector>

enum class ImageSourceType
{
  File,
  FileMosaic,
  TiffStackPlane,
  LSMStackPlane,
  VoxelMatrixFilePlane,
  VoxelMatrixPlane
};

/// Says where an image comes from: a small value that is copied by clone().
///
/// What it tells of the image comes from the file's header, read at the first question and kept for this source and
/// the clones made later. A source must not be questioned by two threads at once; each thread takes a clone.
class ImageSource
{
public:
  virtual ~ImageSource() = default;

  virtual ImageSourceType getType() const = 0;
  /// Whether the source names an image at all; the image need not exist.
  virtual bool isDefined() const = 0;
  /// Height in pixels. \throw FileError  the image cannot be read and its size was not set
  virtual int getSize1() const;
  /// Width in pixels. \throw FileError  the image cannot be read and its size was not set
  virtual int getSize2() const;
  /// Bits per pixel. \throw FileError  the image cannot be read
  virtual int getDepth() const;
  /// The palette, or nullptr. \throw FileError  the image cannot be read
  virtual const Colormap* getColormap() const;
  /// \throw FileError  the image cannot be read
  virtual PixelCalibration getPixelCalibration() const;
  virtual std::unique_ptr<ImageSource> clone() const = 0;

  /// Height and width. \throw FileError  the image cannot be read and its size was not set
  std::vector<int> getSize() const { return {getSize1(), getSize2()}; }
  /// Sizes to answer with when the image cannot be read; 0 for an unknown one.
  void setFallbackSize(int size1, int size2);
  int getFallbackSize1() const { return _fallbackSize1; }
  int getFallbackSize2() const { return _fallbackSize2; }

protected:
  ImageSource() = default;
  ImageSource(const ImageSource&) = default;
  ImageSource& operator=(const ImageSource&) = default;

  /// The header, read on first use. \throw FileError  it cannot be read
  const ImageHeader& header() const;
  /// To be called when the source names another image.
  void forgetHeader() { _header.reset(); }

private:
  virtual ImageHeader readHeader() const = 0;

  int _fallbackSize1 = 0;
  int _fallbackSize2 = 0;
  mutable std::shared_ptr<const ImageHeader> _header; // null until asked for
};
