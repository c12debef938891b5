#include "image/imageconversion.h"

#include <iostream>

namespace
{
void indexedColor_to_indexedGray(Image& image)
{
  image.setGrayscale();
}

/// Replaces every pixel by the red component of its entry in the colormap.
void indexedGray_to_gray(Image& image)
{
  unsigned char* const data = image.getData();
  for (std::size_t i = 0; i < image.getSize(); ++i) data[i] = image.getColormap().getColor(data[i])[0];
  image.deleteColormap();
}
} // namespace

bool ImageConversion::isTarget(const Image& image) const
{
  return image.isIndexed() == _isIndexed && image.getDepth() == _depth && image.isGrayscale() == _isGrayscale;
}

void ImageConversion::apply(Image& image)
{
  if (isTarget(image)) return;
  if (!_isGrayscale || !image.isIndexed() || _depth != 8)
  {
    std::cerr << "KOVA Image Lib: Conversion not implemented\n" << std::flush;
    return;
  }
  indexedColor_to_indexedGray(image);
  if (!_isIndexed) indexedGray_to_gray(image);
}
