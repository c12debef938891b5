#pragma once

#include "geometry/curve.h"
#include "geometry/vertexstack.h"
#include "viewer/painters/buffergl.h"
#include "viewer/painters/materialgl.h"

#include <array>
#include <cstdint>
#include <vector>

/// How a curve or a set of points is drawn.
struct LineStyleGL
{
  std::array<int, 3> color = {255, 0, 0}; ///< red, green and blue, 0 to 255
  float width = 1;                        ///< in pixels

  bool operator==(const LineStyleGL&) const = default;
};

/// Draws curves as lines in space, each in its colour and width.
class CurveStackPainterGL : public PainterGL<float>
{
public:
  /// The curves of a stack (any other levels are open), in the style of each. \throw SizeError  not a style for each
  CurveStackPainterGL(const VertexStack<float>& curves, const std::vector<LineStyleGL>& styles);
  CurveStackPainterGL(const Curve<float>& curve, const LineStyleGL& style);

  /// 255 is opaque.
  void setOpacity(float opacity) { _opacity = opacity; }

  BoundingBox<float> boundingBox() const override { return _box; }
  bool isTransparent() const override { return _opacity < 255; }
  void paint(PaintPass pass) override;

private:
  /// Consecutive lines of one style.
  struct Run
  {
    LineStyleGL style;
    std::size_t first = 0; // index
    GLsizei count = 0;
  };

  void add(const float* vertices, int numVertices, bool isOpen, const LineStyleGL& style);

  std::vector<float> _coordinates;      // until they are on the graphics card
  std::vector<std::uint32_t> _segments; // likewise
  std::vector<Run> _runs;
  float _opacity = 255;
  BoundingBox<float> _box{3};
  BufferGL _vertices{GL_ARRAY_BUFFER};
  BufferGL _indexes{GL_ELEMENT_ARRAY_BUFFER};
};
