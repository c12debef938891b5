#include "slice/image/nyximagepainter.h"

#include "image/image.h"
#include "numeric/colormap.h"
#include "slice/image/nyximageviewport.h"

#include <GL/gl.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>

/// Which pixels of a level are drawn along one axis.
struct NYXImagePainter::Axis
{
  int levelExtent;
  double zoom; ///< device pixels per pixel of the level
  int begin;   ///< device pixels of the canvas that are drawn: the first one,
  int extent;  ///< and their number
  int offset;  ///< of the first one from the level's corner, so that panning moves whole device pixels

  /// Of an image of which the canvas shows what comes behind the origin. Pixels are drawn as a whole at whole zooms.
  Axis(int level, int image, int origin, double scale, int firstPart, int lastPart)
    : levelExtent(level),
      zoom(scale * image / level),
      begin(isWholeZoom() ? firstPart - firstPart % static_cast<int>(zoom) : firstPart),
      extent(lastPart + 1 - begin),
      offset(static_cast<int>(std::lround(origin * scale)) + begin)
  {
  }

  /// Whether the image ends before the part.
  bool isEmpty() const { return begin > 0 && indexAt(0) >= levelExtent; }

  bool isWholeZoom() const { return zoom == std::round(zoom); }
  /// The pixel under the centre of a device pixel of the part.
  int indexAt(int position) const { return std::max(0, static_cast<int>((offset + position + 0.5) / zoom)); }
  int first() const { return std::min(indexAt(0), levelExtent - 1); }
  /// Number of pixels from the first one on.
  int count() const { return std::clamp(indexAt(extent - 1) + 1 - first(), 1, levelExtent - first()); }

  /// The pixel for every device pixel of the part that shows one; the first one shows a thinner image, too.
  std::vector<int> indices() const
  {
    std::vector<int> result = {first()};
    for (int i = 1; i < extent && indexAt(i) < levelExtent; ++i) result.push_back(indexAt(i));
    return result;
  }
};

namespace
{
bool isIdentity(const Colormap& colormap)
{
  for (int i = 0; i < colormap.getSize(); ++i)
  {
    const auto [red, green, blue] = colormap.getColor(i);
    if (red != i || green != i || blue != i) return false;
  }
  return true;
}

void setPixelMap(GLenum map, const Colormap& colormap, int component)
{
  std::array<float, 256> values;
  for (int i = 0; i < static_cast<int>(values.size()); ++i)
  {
    const auto [red, green, blue] = colormap.getColor(i);
    const std::array<int, 3> color = {red, green, blue};
    values[static_cast<std::size_t>(i)] = static_cast<float>(color[static_cast<std::size_t>(component)]) / 255;
  }
  glPixelMapfv(map, static_cast<GLsizei>(values.size()), values.data());
}

void drawIndexed(const Colormap& colormap, const unsigned char* pixels, const QSize& size)
{
  const float opaque = 1;
  setPixelMap(GL_PIXEL_MAP_I_TO_R, colormap, 0);
  setPixelMap(GL_PIXEL_MAP_I_TO_G, colormap, 1);
  setPixelMap(GL_PIXEL_MAP_I_TO_B, colormap, 2);
  glPixelMapfv(GL_PIXEL_MAP_I_TO_A, 1, &opaque);
  glPixelTransferi(GL_MAP_COLOR, GL_TRUE);
  glDrawPixels(size.width(), size.height(), GL_COLOR_INDEX, GL_UNSIGNED_BYTE, pixels);
  glPixelTransferi(GL_MAP_COLOR, GL_FALSE);
}

void setTransfer(float scale, float bias)
{
  glPixelTransferf(GL_RED_SCALE, scale);
  glPixelTransferf(GL_GREEN_SCALE, scale);
  glPixelTransferf(GL_BLUE_SCALE, scale);
  glPixelTransferf(GL_RED_BIAS, bias);
  glPixelTransferf(GL_GREEN_BIAS, bias);
  glPixelTransferf(GL_BLUE_BIAS, bias);
}

void drawLevels(int depth, float black, float white, const unsigned char* pixels, const QSize& size)
{
  const float scale = 1 / std::max(white - black, 1.0F / 65535);
  setTransfer(scale, -black * scale);
  glPixelTransferf(GL_ALPHA_SCALE, 0); // the fourth byte of 32 bits is not opacity
  glPixelTransferf(GL_ALPHA_BIAS, 1);
  const GLenum format = depth <= 16 ? GL_LUMINANCE : depth == 24 ? GL_RGB : GL_RGBA;
  glDrawPixels(size.width(), size.height(), format, depth == 16 ? GL_UNSIGNED_SHORT : GL_UNSIGNED_BYTE, pixels);
  setTransfer(1, 0);
  glPixelTransferf(GL_ALPHA_SCALE, 1);
  glPixelTransferf(GL_ALPHA_BIAS, 0);
}

/// Copies the pixels of some columns of a line.
template <int numBytes>
void sampleLine(const unsigned char* line, const std::vector<int>& columns, unsigned char* target)
{
  for (const int column : columns)
  {
    std::memcpy(target, line + std::ptrdiff_t(column) * numBytes, numBytes);
    target += numBytes;
  }
}

void sampleLine(int numBytes, const unsigned char* line, const std::vector<int>& columns, unsigned char* target)
{
  switch (numBytes)
  {
  case 1:
    return sampleLine<1>(line, columns, target);
  case 2:
    return sampleLine<2>(line, columns, target);
  case 3:
    return sampleLine<3>(line, columns, target);
  default:
    return sampleLine<4>(line, columns, target);
  }
}
} // namespace

void NYXImagePainter::setBlackAndWhite(float black, float white)
{
  _black = black;
  _white = white;
}

void NYXImagePainter::paint(const Image& level, const NYXImageViewport& viewport, double pixelRatio, const QRect& part)
{
  const QSize image = viewport.getImageSize();
  const QSize canvas = viewport.getCanvasSize() * pixelRatio;
  if (level.getSize() == 0 || !image.isValid() || image.isEmpty() || part.isEmpty()) return;
  const QPoint origin = viewport.getViewOrigin();
  const Axis x(level.getWidth(), image.width(), origin.x(), viewport.scaleX() * pixelRatio, part.left(), part.right());
  const Axis y(level.getHeight(), image.height(), origin.y(), viewport.scaleY() * pixelRatio, part.top(),
               part.bottom());
  if (x.isEmpty() || y.isEmpty()) return;

  glMatrixMode(GL_PROJECTION);
  glLoadIdentity();
  glOrtho(0, canvas.width(), canvas.height(), 0, -1, 1);
  glMatrixMode(GL_MODELVIEW);
  glLoadIdentity();
  glRasterPos2i(x.begin, y.begin);
  glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
  // Mesa draws colour indices from the image's corner on, whatever is to be skipped.
  const bool isZoomed = x.isWholeZoom() && y.isWholeZoom() && !level.isIndexed();
  isZoomed ? drawZoomed(level, x, y) : drawSampled(level, x, y);
  glPixelStorei(GL_UNPACK_ALIGNMENT, 4);
  glPixelZoom(1, 1);
}

void NYXImagePainter::drawZoomed(const Image& level, const Axis& x, const Axis& y) const
{
  glPixelZoom(static_cast<float>(x.zoom), static_cast<float>(-y.zoom));
  glPixelStorei(GL_UNPACK_ROW_LENGTH, level.getWidth());
  glPixelStorei(GL_UNPACK_SKIP_PIXELS, x.first());
  glPixelStorei(GL_UNPACK_SKIP_ROWS, y.first());
  drawPixels(level, level.getData(), QSize(x.count(), y.count()));
  glPixelStorei(GL_UNPACK_ROW_LENGTH, 0);
  glPixelStorei(GL_UNPACK_SKIP_PIXELS, 0);
  glPixelStorei(GL_UNPACK_SKIP_ROWS, 0);
}

void NYXImagePainter::drawSampled(const Image& level, const Axis& x, const Axis& y)
{
  const std::vector<int> columns = x.indices();
  const std::vector<int> rows = y.indices();
  const int numBytes = level.bytesPerPixel();
  const std::size_t bytesPerLine = columns.size() * static_cast<std::size_t>(numBytes);
  _sampled.resize(rows.size() * bytesPerLine);
  unsigned char* target = _sampled.data();
  for (std::size_t i = 0; i < rows.size(); ++i, target += bytesPerLine)
  {
    if (i > 0 && rows[i] == rows[i - 1])
      std::memcpy(target, target - bytesPerLine, bytesPerLine);
    else
      sampleLine(numBytes, level.getLine(rows[i]), columns, target);
  }
  glPixelZoom(1, -1);
  drawPixels(level, _sampled.data(), QSize(static_cast<int>(columns.size()), static_cast<int>(rows.size())));
}

void NYXImagePainter::drawPixels(const Image& image, const unsigned char* pixels, const QSize& size) const
{
  if (image.isIndexed() && !isIdentity(image.getColormap()))
    drawIndexed(image.getColormap(), pixels, size);
  else
    drawLevels(image.getDepth(), _black, _white, pixels, size);
}
