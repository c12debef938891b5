#pragma once

#include "viewer/painters/paintergl.h"

#include <array>

/// Draws the directions of the axes, X red, Y green and Z blue, as a cross at the lower right of the picture.
class AxesPainterGL : public PainterGL<float>
{
public:
  /// The size of the picture in pixels, how many of them make one of the screen's, and the rotation of the scene, rows
  /// one after the other.
  void setView(int width, int height, float pixelRatio, const std::array<double, 9>& rotation);

  /// Empty: the axes do not belong to the scene.
  BoundingBox<float> boundingBox() const override { return BoundingBox<float>(3); }
  void paint(PaintPass pass) override;

private:
  int _width = 0;
  int _height = 0;
  std::array<double, 9> _rotation = {1, 0, 0, 0, 1, 0, 0, 0, 1};
};
