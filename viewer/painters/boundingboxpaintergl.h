#pragma once

#include "viewer/painters/paintergl.h"

#include <array>

/// Draws the edges of a box.
class BoundingBoxPainterGL : public PainterGL<float>
{
public:
  void setBox(const BoundingBox<float>& box) { _box = box; }
  /// Red, green and blue, 0 to 255.
  void setColor(const std::array<int, 3>& color) { _color = color; }

  BoundingBox<float> boundingBox() const override { return _box; }
  void paint(PaintPass pass) override;

private:
  BoundingBox<float> _box{3};
  std::array<int, 3> _color = {128, 128, 128};
};
