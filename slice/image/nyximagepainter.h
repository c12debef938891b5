#pragma once

#include <QRect>

#include <vector>

class Image;
class NYXImageViewport;

/// Draws the visible part of an image into the current OpenGL context, by the fixed pipeline's pixel drawing.
class NYXImagePainter
{
public:
  /// Grey level, as a share of the largest one, that is drawn black and white; indexed images are drawn as they are.
  void setBlackAndWhite(float black, float white);

  /// Draws a level of the pyramid into a canvas of the viewport's size, whose pixels are `pixelRatio` device pixels
  /// wide. At zooms that are not whole numbers the level is sampled first: a frame costs what the screen shows, and the
  /// places of pixels do not depend on how a driver rounds. At least the part, in device pixels of the canvas, is
  /// drawn.
  void paint(const Image& level, const NYXImageViewport& viewport, double pixelRatio, const QRect& part);

private:
  struct Axis;

  void drawPixels(const Image& image, const unsigned char* pixels, const QSize& size) const;
  void drawZoomed(const Image& level, const Axis& x, const Axis& y) const;
  void drawSampled(const Image& level, const Axis& x, const Axis& y);

  float _black = 0;
  float _white = 1;
  std::vector<unsigned char> _sampled;
};
