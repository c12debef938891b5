#include "image/imagesourcefile.h"

#include "image/imagereader.h"

void ImageSourceFile::setFilename(const std::string& filename)
{
  _filename = filename;
  forgetHeader();
}

ImageHeader ImageSourceFile::readHeader() const
{
  ImageHeader header;
  ImageReader::read(header, *this);
  return header;
}
