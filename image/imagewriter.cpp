#include "image/imagewriter.h"

#include "image/filewarnings.h"
#include "image/image.h"
#include "image/tifffile.h"
#include "image/tiffwriting.h"
#include "numeric/atomicfile.h"

namespace
{
constexpr const char* writeSignature = "void ImageWriter::write(const Image&, const std::string&, bool)";

void writeTIFF(const Image& image, TiffFile& file)
{
  writeTIFFHeader(image.getWidth(), image.getHeight(), image.getDepth(), image.isIndexed(), file);
  if (image.isIndexed()) writeTIFFColormap(image.getColormap(), file);
  writeTiffCalibration(image.getPixelCalibration(), file, writeSignature);
  writeTIFFPixels(image.getData(), image.getHeight(), image.bytesPerLine(), file, writeSignature);
}
} // namespace

void ImageWriter::write(const Image& image, const std::string& filename, bool overwrite)
{
  if (!overwrite && fileExists(filename)) throw FileWriteError(writeSignature, "File already exists", filename);
  if (image.getSize() == 0) throw FileWriteError(writeSignature, "An image without pixels cannot be written", filename);
  AtomicFile target(filename);
  {
    TiffFile file(target.getDescriptor(), filename, image.dataLength());
    writeTIFF(image, file);
  }
  target.commit();
  tellWarning(filename);
}
