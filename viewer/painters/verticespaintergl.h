#pragma once

#include "geometry/vertexstack.h"
#include "model/vertexsymbol.h"
#include "viewer/painters/buffergl.h"
#include "viewer/painters/materialgl.h"

#include <array>
#include <cstdint>
#include <vector>

/// How a set of vertices is drawn.
struct SymbolStyleGL
{
  VertexSymbol symbol = VertexSymbol::Sphere;
  bool isFilled = true;                   ///< solid, otherwise its edges alone
  float size = 1;                         ///< its diameter, in the unit of the vertices; of a dot in pixels
  std::array<int, 3> color = {255, 0, 0}; ///< red, green and blue, 0 to 255

  bool operator==(const SymbolStyleGL&) const = default;
};

/// Draws a symbol at each vertex. Vertices that are not finite are left out.
class VerticesPainterGL : public PainterGL<float>
{
public:
  /// The levels of a stack, in the style of each. \throw SizeError  not a style for each
  VerticesPainterGL(const VertexStack<float>& vertices, const std::vector<SymbolStyleGL>& styles);

  /// The colour is that of each style. An economic material makes dots of all symbols.
  void setMaterial(const MaterialGL& material) { _material = material; }

  BoundingBox<float> boundingBox() const override { return _box; }
  bool isTransparent() const override { return _material.isTransparent(); }
  bool hasFaces() const override { return true; }
  void paint(PaintPass pass) override;

private:
  /// Consecutive levels of one style.
  struct Run
  {
    SymbolStyleGL style;
    GLint firstDot = 0;
    GLsizei numDots = 0;
    std::size_t firstIndex = 0;
    GLsizei numIndexes = 0;
  };

  void addDots(const Vertices<float>& vertices, const SymbolStyleGL& style);
  void buildSymbols();
  void upload();
  void paintDots(const Run& run, PaintPass pass) const;
  void paintSymbols(const Run& run, PaintPass pass) const;

  std::vector<float> _dots;            // the vertices; until they are on the graphics card
  std::vector<float> _coordinates;     // of the symbols, then their normals; likewise
  std::vector<float> _normals;         // likewise
  std::vector<std::uint32_t> _corners; // of their triangles, or the ends of their edges; likewise
  std::size_t _normalsOffset = 0;
  std::vector<Run> _runs;
  MaterialGL _material;
  BoundingBox<float> _box{3};
  BufferGL _dotBuffer{GL_ARRAY_BUFFER};
  BufferGL _symbolBuffer{GL_ARRAY_BUFFER};
  BufferGL _indexes{GL_ELEMENT_ARRAY_BUFFER};
};
