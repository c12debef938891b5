#include "image/imagesourcelsmstackplane.h"

#include "image/imagereader.h"

void ImageSourceLSMStackPlane::setLSMStackFilename(const std::string& filename)
{
  _filename = filename;
  forgetHeader();
}

void ImageSourceLSMStackPlane::setPlane(int plane)
{
  _plane = plane;
  forgetHeader();
}

ImageHeader ImageSourceLSMStackPlane::readHeader() const
{
  ImageHeader header;
  ImageReader::read(header, *this);
  return header;
}
