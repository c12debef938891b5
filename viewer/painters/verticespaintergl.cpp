#include "viewer/painters/verticespaintergl.h"

#include "numeric/exception.h"
#include "viewer/painters/stategl.h"
#include "viewer/painters/symbolmesh.h"

#include <algorithm>
#include <cmath>

namespace
{
constexpr std::size_t manySymbols = 2000; // are drawn with fewer triangles each
constexpr float economicDotSize = 5;      // in pixels

void addCopy(const TriMesh<float>& symbol, const float* center, float size, std::vector<float>& coordinates,
             std::vector<float>& normals)
{
  const auto numCoordinates = 3 * static_cast<std::size_t>(symbol.getSize());
  for (std::size_t i = 0; i < numCoordinates; ++i) coordinates.push_back(center[i % 3] + size * symbol.data()[i]);
  normals.insert(normals.end(), symbol.getNormals().data(), symbol.getNormals().data() + numCoordinates);
}

/// The corners of the symbol's triangles.
std::vector<int> cornersOf(const TriMesh<float>& symbol)
{
  std::vector<int> corners;
  for (int i = 0; i < symbol.getNumTriangles(); ++i)
    corners.insert(corners.end(), symbol.corners(i), symbol.corners(i) + 3);
  return corners;
}
} // namespace

VerticesPainterGL::VerticesPainterGL(const VertexStack<float>& vertices, const std::vector<SymbolStyleGL>& styles)
{
  if (styles.size() != static_cast<std::size_t>(vertices.getNumLevels()))
    throw SizeError("VerticesPainterGL::VerticesPainterGL(const VertexStack<float>&, ...)",
                    "There is not one style for each set of vertices");
  for (int i = 0; i < vertices.getNumLevels(); ++i) addDots(vertices.level(i), styles[static_cast<std::size_t>(i)]);
  buildSymbols();
}

void VerticesPainterGL::addDots(const Vertices<float>& vertices, const SymbolStyleGL& style)
{
  if (_runs.empty() || _runs.back().style != style)
    _runs.push_back({style, static_cast<GLint>(_dots.size() / 3), 0, 0, 0});
  for (int i = 0; i < vertices.getSize(); ++i)
  {
    const float* const p = vertices.data() + 3 * static_cast<std::size_t>(i);
    if (!std::isfinite(p[0]) || !std::isfinite(p[1]) || !std::isfinite(p[2])) continue;
    _dots.insert(_dots.end(), p, p + 3);
    ++_runs.back().numDots;
    const float r = style.symbol == VertexSymbol::Dot ? 0 : style.size / 2;
    for (const float sign : {-1.F, 1.F}) _box.add(Vector<float>{p[0] + sign * r, p[1] + sign * r, p[2] + sign * r});
  }
}

void VerticesPainterGL::buildSymbols()
{
  const int numDivisions = _dots.size() / 3 > manySymbols ? 1 : 2;
  for (Run& run : _runs)
  {
    const auto [symbol, lines] = run.style.isFilled ? SymbolLines{symbolMesh(run.style.symbol, numDivisions), {}}
                                                    : symbolLines(run.style.symbol);
    const std::vector<int> indexes = run.style.isFilled ? cornersOf(symbol) : lines;
    run.firstIndex = _corners.size();
    for (int i = 0; i < run.numDots; ++i)
    {
      const auto first = static_cast<std::uint32_t>(_coordinates.size() / 3);
      for (const int index : indexes) _corners.push_back(first + static_cast<std::uint32_t>(index));
      addCopy(symbol, _dots.data() + 3 * static_cast<std::size_t>(run.firstDot + i), run.style.size, _coordinates,
              _normals);
    }
    run.numIndexes = static_cast<GLsizei>(_corners.size() - run.firstIndex);
  }
}

void VerticesPainterGL::upload()
{
  _dotBuffer.fill(_dots.data(), _dots.size() * sizeof(float));
  _normalsOffset = _coordinates.size() * sizeof(float);
  _symbolBuffer.allocate(2 * _normalsOffset);
  _symbolBuffer.write(0, _coordinates.data(), _normalsOffset);
  _symbolBuffer.write(_normalsOffset, _normals.data(), _normalsOffset);
  _indexes.fill(_corners.data(), _corners.size() * sizeof(std::uint32_t));
  _dots = {};
  _coordinates = {};
  _normals = {};
  _corners = {};
}

void VerticesPainterGL::paintDots(const Run& run, PaintPass pass) const
{
  if (pass == PaintPass::BackFaces) return; // dots have none
  MaterialGL material = _material;
  material.color = run.style.color;
  glDisable(GL_LIGHTING);
  material.applyColor(pass);
  if (pass != PaintPass::Picking)
  {
    glDisable(GL_MULTISAMPLE); // with which points are square
    glEnable(GL_POINT_SMOOTH);
    glEnable(GL_ALPHA_TEST); // the corners of smooth points are transparent
    glAlphaFunc(GL_GREATER, 0);
  }
  const float size = run.style.symbol == VertexSymbol::Dot ? run.style.size : economicDotSize;
  glPointSize(std::max(size, 1.F) * getPixelRatio());
  _dotBuffer.bind();
  glVertexPointer(3, GL_FLOAT, 0, nullptr);
  glDrawArrays(GL_POINTS, run.firstDot, run.numDots);
}

void VerticesPainterGL::paintSymbols(const Run& run, PaintPass pass) const
{
  const bool isFilled = run.style.isFilled;
  if (!isFilled && pass == PaintPass::BackFaces) return; // lines have none
  MaterialGL material = _material;
  material.color = run.style.color;
  material.apply(pass);
  selectFaces(pass, false);
  glLineWidth(getPixelRatio());
  if (!isFilled) glDisable(GL_LIGHTING); // lines have no side that faces the light
  _symbolBuffer.bind();
  glVertexPointer(3, GL_FLOAT, 0, nullptr);
  if (pass != PaintPass::Picking)
  {
    glEnableClientState(GL_NORMAL_ARRAY);
    glNormalPointer(GL_FLOAT, 0, offsetGL(_normalsOffset));
  }
  _indexes.bind();
  glDrawElements(isFilled ? GL_TRIANGLES : GL_LINES, run.numIndexes, GL_UNSIGNED_INT,
                 offsetGL(run.firstIndex * sizeof(std::uint32_t)));
  glDisableClientState(GL_NORMAL_ARRAY);
}

void VerticesPainterGL::paint(PaintPass pass)
{
  if (_box.isEmpty()) return;
  const StateGL state(GL_CURRENT_BIT | GL_ENABLE_BIT | GL_LIGHTING_BIT | GL_POLYGON_BIT | GL_POINT_BIT | GL_LINE_BIT |
                      GL_COLOR_BUFFER_BIT | GL_MULTISAMPLE_BIT);
  if (!_dotBuffer.isFilled()) upload();
  glEnableClientState(GL_VERTEX_ARRAY);
  for (const Run& run : _runs)
    run.numIndexes == 0 || _material.isEconomic ? paintDots(run, pass) : paintSymbols(run, pass);
  _dotBuffer.unbind();
  _indexes.unbind();
}
