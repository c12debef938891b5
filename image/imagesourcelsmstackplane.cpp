#include "image/imagesourcelsmstackplane.h"

#include "numeric/exception.h"

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
  throw FileReadError("ImageHeader ImageSourceLSMStackPlane::readHeader() const", "LSM files cannot be read yet",
                      _filename);
}
