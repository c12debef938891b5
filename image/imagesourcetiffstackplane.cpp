#include "image/imagesourcetiffstackplane.h"

#include "image/imagereader.h"

void ImageSourceTiffStackPlane::setTiffStackFilename(const std::string& filename)
{
  _filename = filename;
  forgetHeader();
}

void ImageSourceTiffStackPlane::setPlane(int plane)
{
  _plane = plane;
  forgetHeader();
}

ImageHeader ImageSourceTiffStackPlane::readHeader() const
{
  ImageHeader header;
  ImageReader::read(header, *this);
  return header;
}
