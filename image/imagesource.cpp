#include "image/imagesource.h"

#include "numeric/exception.h"

const ImageHeader& ImageSource::header() const
{
  if (!_header) _header = std::make_shared<const ImageHeader>(readHeader());
  return *_header;
}

int ImageSource::getSize1() const
{
  try
  {
    return header().getHeight();
  }
  catch (const FileError&)
  {
    if (_fallbackSize1 > 0) return _fallbackSize1;
    throw;
  }
}

int ImageSource::getSize2() const
{
  try
  {
    return header().getWidth();
  }
  catch (const FileError&)
  {
    if (_fallbackSize2 > 0) return _fallbackSize2;
    throw;
  }
}

int ImageSource::getDepth() const
{
  return header().getDepth();
}

const Colormap* ImageSource::getColormap() const
{
  return header().hasColormap() ? &header().getColormap() : nullptr;
}

PixelCalibration ImageSource::getPixelCalibration() const
{
  return header().getPixelCalibration();
}

void ImageSource::setFallbackSize(int size1, int size2)
{
  _fallbackSize1 = size1;
  _fallbackSize2 = size2;
}
