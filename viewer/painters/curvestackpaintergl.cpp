#include "viewer/painters/curvestackpaintergl.h"

#include "numeric/exception.h"
#include "viewer/painters/stategl.h"

#include <algorithm>
#include <cmath>

CurveStackPainterGL::CurveStackPainterGL(const VertexStack<float>& curves, const std::vector<LineStyleGL>& styles)
{
  if (styles.size() != static_cast<std::size_t>(curves.getNumLevels()))
    throw SizeError("CurveStackPainterGL::CurveStackPainterGL(const VertexStack<float>&, ...)",
                    "There is not one style for each curve");
  for (int i = 0; i < curves.getNumLevels(); ++i)
  {
    const auto* const curve = dynamic_cast<const Curve<float>*>(&curves.level(i));
    add(curves.level(i).data(), curves.level(i).getSize(), curve == nullptr || curve->isOpen(),
        styles[static_cast<std::size_t>(i)]);
  }
}

CurveStackPainterGL::CurveStackPainterGL(const Curve<float>& curve, const LineStyleGL& style)
{
  add(curve.data(), curve.getSize(), curve.isOpen(), style);
}

/// Edges with an end that is not finite are left out.
void CurveStackPainterGL::add(const float* vertices, int numVertices, bool isOpen, const LineStyleGL& style)
{
  const auto first = static_cast<std::uint32_t>(_coordinates.size() / 3);
  _coordinates.insert(_coordinates.end(), vertices, vertices + 3 * static_cast<std::size_t>(numVertices));
  if (_runs.empty() || _runs.back().style != style) _runs.push_back({style, _segments.size(), 0});
  const auto isFinite = [&](int i) {
    return std::isfinite(vertices[3 * i]) && std::isfinite(vertices[3 * i + 1]) && std::isfinite(vertices[3 * i + 2]);
  };
  for (int i = 0; i < numVertices; ++i)
  {
    if (!isFinite(i)) continue;
    _box.add(vertices + 3 * static_cast<std::size_t>(i));
    const int next = (i + 1) % numVertices;
    if ((isOpen && next == 0) || !isFinite(next)) continue;
    _segments.push_back(first + static_cast<std::uint32_t>(i));
    _segments.push_back(first + static_cast<std::uint32_t>(next));
  }
  _runs.back().count = static_cast<GLsizei>(_segments.size() - _runs.back().first);
}

void CurveStackPainterGL::paint(PaintPass pass)
{
  if (_runs.empty()) return;
  const StateGL state(GL_CURRENT_BIT | GL_ENABLE_BIT | GL_LINE_BIT);
  if (!_vertices.isFilled())
  {
    _vertices.fill(_coordinates.data(), _coordinates.size() * sizeof(float));
    _indexes.fill(_segments.data(), _segments.size() * sizeof(std::uint32_t));
    _coordinates = {};
    _segments = {};
  }
  glDisable(GL_LIGHTING);
  _vertices.bind();
  _indexes.bind();
  glEnableClientState(GL_VERTEX_ARRAY);
  glVertexPointer(3, GL_FLOAT, 0, nullptr);
  for (const Run& run : _runs)
  {
    MaterialGL{run.style.color, _opacity}.applyColor(pass);
    glLineWidth(std::max(run.style.width, 1.F) * getPixelRatio());
    glDrawElements(GL_LINES, run.count, GL_UNSIGNED_INT, offsetGL(run.first * sizeof(std::uint32_t)));
  }
  _vertices.unbind();
  _indexes.unbind();
}
