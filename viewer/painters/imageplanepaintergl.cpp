#include "viewer/painters/imageplanepaintergl.h"

#include "image/image.h"
#include "viewer/painters/materialgl.h"
#include "viewer/painters/stategl.h"

#include <algorithm>

namespace
{
constexpr int largestSide = 2048;

/// In 8 bits of grey or 24 of colour.
Image drawableImage(const Image& image)
{
  Image result = image;
  if (image.getDepth() == 16)
    result.make8bitsGrayscale();
  else if (image.isIndexed() || image.getDepth() == 32)
    result.make24bits();
  return result;
}
} // namespace

ImagePlanePainterGL::ImagePlanePainterGL(const Image& image, const std::array<Point, 4>& corners) : _corners(corners)
{
  const Image source = drawableImage(image);
  const int step = (std::max({source.getWidth(), source.getHeight(), 1}) - 1) / largestSide + 1;
  const int numBytes = source.bytesPerPixel();
  _isGrey = numBytes == 1;
  _width = (source.getWidth() + step - 1) / step;
  _height = (source.getHeight() + step - 1) / step;
  _pixels.reserve(static_cast<std::size_t>(_width) * static_cast<std::size_t>(_height * numBytes));
  for (int i = 0; i < source.getHeight(); i += step)
    for (int j = 0; j < source.getWidth(); j += step)
      _pixels.insert(_pixels.end(), source.getLine(i) + j * numBytes, source.getLine(i) + (j + 1) * numBytes);
}

BoundingBox<float> ImagePlanePainterGL::boundingBox() const
{
  BoundingBox<float> box(3);
  if (_width > 0 && _height > 0)
    for (const Point& corner : _corners) box.add(corner.data());
  return box;
}

void ImagePlanePainterGL::paint(PaintPass pass)
{
  if (_width == 0 || _height == 0) return;
  const StateGL state(GL_CURRENT_BIT | GL_ENABLE_BIT | GL_TEXTURE_BIT);
  if (!_texture.isFilled())
  {
    _texture.fill2D(_isGrey ? GL_LUMINANCE8 : GL_RGB8, _isGrey ? GL_LUMINANCE : GL_RGB, _width, _height,
                    _pixels.data());
    _pixels = {};
  }
  glDisable(GL_LIGHTING);
  glDisable(GL_CULL_FACE);
  if (pass != PaintPass::Picking) _texture.enable();
  MaterialGL{{255, 255, 255}, _opacity}.applyColor(pass);
  glBegin(GL_QUADS);
  for (std::size_t k = 0; k < 4; ++k)
  {
    glTexCoord2f(k == 1 || k == 2 ? 1.F : 0.F, k >= 2 ? 1.F : 0.F);
    glVertex3fv(_corners[k].data());
  }
  glEnd();
}
