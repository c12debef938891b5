#include "slice/image/qimageconversion.h"

#include "image/image.h"
#include "numeric/colormap.h"

#include <cstring>

namespace
{
void copyLines(QImage& target, const Image& image)
{
  for (int i = 0; i < image.getHeight(); ++i) std::memcpy(target.scanLine(i), image.getLine(i), image.bytesPerLine());
}

QVector<QRgb> colorTable(const Colormap& colormap)
{
  QVector<QRgb> table(colormap.getSize());
  for (int i = 0; i < table.size(); ++i)
  {
    const auto [red, green, blue] = colormap.getColor(i);
    table[i] = qRgb(red, green, blue);
  }
  return table;
}
} // namespace

QImage toQImage(const Image& image)
{
  if (image.getDepth() == 16)
  {
    Image gray = image;
    gray.make8bitsGrayscale();
    return toQImage(gray);
  }
  const auto format = image.isIndexed()        ? QImage::Format_Indexed8
                      : image.getDepth() == 8  ? QImage::Format_Grayscale8
                      : image.getDepth() == 24 ? QImage::Format_RGB888
                                               : QImage::Format_RGBX8888;
  QImage result(image.getWidth(), image.getHeight(), format);
  if (result.isNull()) return result;
  if (image.isIndexed()) result.setColorTable(colorTable(image.getColormap()));
  copyLines(result, image);
  return result;
}
