#pragma once

#include "viewer/painters/paintergl.h"
#include "viewer/painters/texturegl.h"

#include <array>
#include <vector>

class Image;

/// Draws an image on a parallelogram in space.
class ImagePlanePainterGL : public PainterGL<float>
{
public:
  using Point = std::array<float, 3>;

  /// The corners are those of the upper left, upper right, lower right and lower left pixel, at their outer corners.
  /// Images larger than 2048 pixels are drawn from a part of their pixels. Takes what it needs of the image.
  ImagePlanePainterGL(const Image& image, const std::array<Point, 4>& corners);

  /// 255 is opaque.
  void setOpacity(float opacity) { _opacity = opacity; }

  BoundingBox<float> boundingBox() const override;
  bool isTransparent() const override { return _opacity < 255; }
  void paint(PaintPass pass) override;

private:
  int _width = 0;
  int _height = 0;
  bool _isGrey = true;
  std::vector<std::uint8_t> _pixels; // until they are on the graphics card
  std::array<Point, 4> _corners;
  float _opacity = 255;
  TextureGL _texture{GL_TEXTURE_2D};
};
