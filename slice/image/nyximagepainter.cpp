#include "slice/image/nyximagepainter.h"

#include "image/image.h"
#include "numeric/colormap.h"
#include "slice/image/nyximageviewport.h"

#include <GL/gl.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>

/// What is drawn of a level along one axis.
struct NYXImagePainter::Axis
{
  int first;   ///< index of the first pixel
  int step;    ///< every step-th pixel is drawn
  int count;   ///< number of pixels drawn
  double zoom; ///< device pixels per drawn pixel

  Axis(int levelExtent, int imageExtent, int origin, int canvasExtent, double scale)
  {
    const double share = static_cast<double>(levelExtent) / imageExtent;
    zoom = scale / share;
    step = std::max(1, static_cast<int>(1 / zoom));
    zoom *= step;
    first =
        std::clamp(static_cast<int>(origin * share), 0, levelExtent - 1) / step * step; // does not jump while panning
    const int available = (levelExtent - first + step - 1) / step;
    count = static_cast<int>(std::min(std::ceil(canvasExtent / zoom) + 1, static_cast<double>(available)));
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

/// Copies every step-th pixel of a line.
template <int numBytes> void sampleLine(const unsigned char* line, int step, int count, unsigned char* target)
{
  for (int i = 0; i < count; ++i)
    std::memcpy(target + i * numBytes, line + std::ptrdiff_t(i) * step * numBytes, numBytes);
}

void sampleLine(int numBytes, const unsigned char* line, int step, int count, unsigned char* target)
{
  switch (numBytes)
  {
  case 1:
    return sampleLine<1>(line, step, count, target);
  case 2:
    return sampleLine<2>(line, step, count, target);
  case 3:
    return sampleLine<3>(line, step, count, target);
  default:
    return sampleLine<4>(line, step, count, target);
  }
}
} // namespace

void NYXImagePainter::setBlackAndWhite(float black, float white)
{
  _black = black;
  _white = white;
}

void NYXImagePainter::paint(const Image& level, const NYXImageViewport& viewport, double pixelRatio)
{
  const QSize image = viewport.getImageSize();
  const QSize canvas = viewport.getCanvasSize() * pixelRatio;
  if (level.getSize() == 0 || !image.isValid() || image.isEmpty() || canvas.isEmpty()) return;
  const QPoint origin = viewport.getViewOrigin();
  const Axis x(level.getWidth(), image.width(), origin.x(), canvas.width(), viewport.scaleX() * pixelRatio);
  const Axis y(level.getHeight(), image.height(), origin.y(), canvas.height(), viewport.scaleY() * pixelRatio);
  const bool isSampled = x.step > 1 || y.step > 1;

  glMatrixMode(GL_PROJECTION);
  glLoadIdentity();
  glOrtho(0, canvas.width(), canvas.height(), 0, -1, 1);
  glMatrixMode(GL_MODELVIEW);
  glLoadIdentity();
  glRasterPos2i(0, 0);
  glPixelZoom(static_cast<float>(x.zoom), static_cast<float>(-y.zoom));
  glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
  glPixelStorei(GL_UNPACK_ROW_LENGTH, isSampled ? x.count : level.getWidth());
  glPixelStorei(GL_UNPACK_SKIP_PIXELS, isSampled ? 0 : x.first);
  glPixelStorei(GL_UNPACK_SKIP_ROWS, isSampled ? 0 : y.first);
  drawPixels(level, isSampled ? sample(level, x, y) : level.getData(), QSize(x.count, y.count));
  glPixelStorei(GL_UNPACK_ALIGNMENT, 4);
  glPixelStorei(GL_UNPACK_ROW_LENGTH, 0);
  glPixelStorei(GL_UNPACK_SKIP_PIXELS, 0);
  glPixelStorei(GL_UNPACK_SKIP_ROWS, 0);
  glPixelZoom(1, 1);
}

void NYXImagePainter::drawPixels(const Image& image, const unsigned char* pixels, const QSize& size) const
{
  if (image.isIndexed() && !isIdentity(image.getColormap()))
    drawIndexed(image.getColormap(), pixels, size);
  else
    drawLevels(image.getDepth(), _black, _white, pixels, size);
}

const unsigned char* NYXImagePainter::sample(const Image& level, const Axis& x, const Axis& y)
{
  const int numBytes = level.bytesPerPixel();
  const auto bytesPerLine = static_cast<std::size_t>(x.count) * static_cast<std::size_t>(numBytes);
  _sampled.resize(bytesPerLine * static_cast<std::size_t>(y.count));
  for (int i = 0; i < y.count; ++i)
    sampleLine(numBytes, level.getLine(y.first + i * y.step) + std::ptrdiff_t(x.first) * numBytes, x.step, x.count,
               _sampled.data() + static_cast<std::size_t>(i) * bytesPerLine);
  return _sampled.data();
}
