#include "viewer/scene/modelpainters.h"

#include "geometry/boundingbox.h"
#include "geometry/reconstruction/stackreconstruction.h"
#include "image/imagesource.h"
#include "model/stack.h"
#include "model/stackslice.h"
#include "viewer/painters/curvestackpaintergl.h"
#include "viewer/painters/quadmeshpaintergl.h"
#include "viewer/painters/verticespaintergl.h"

#include <algorithm>
#include <cmath>

namespace
{
constexpr float symbolShare = 0.01F;    // of the stack's diagonal
constexpr float pixelsPerPointSize = 5; // of a dot
constexpr float pixelsPerVertex = 1.5F; // of one that stands for a vertex of a contour

/// Surfaces of open curves have two outsides, so that nothing of them can be spared.
MaterialGL materialOf(const ModelProperties& properties, const ModelItemProperties& itemProperties)
{
  const bool isEconomic = properties.getEconomicRendering() && properties.getGeometry() != MPrimitive::Polyline;
  return {itemProperties.getColor(), properties.getSurfaceOpacity(), properties.getSurfaceShininess(), isEconomic};
}

std::vector<LineStyleGL> lineStyles(const ModelGeometry& geometry)
{
  std::vector<LineStyleGL> styles;
  for (const ModelItemProperties& properties : geometry.levelProperties)
    styles.push_back({properties.getColor(), properties.getLineWidth()});
  return styles;
}

/// The contours of a model in dots are drawn by dots, whatever symbol stands for its points.
std::vector<SymbolStyleGL> symbolStyles(const ModelGeometry& geometry, float symbolSize)
{
  const bool isDotted = geometry.properties.getGeometry() != MPrimitive::Polypoint;
  std::vector<SymbolStyleGL> styles;
  for (const ModelItemProperties& properties : geometry.levelProperties)
  {
    const VertexSymbol symbol = isDotted ? VertexSymbol::Dot : properties.getVertexSymbol();
    const float dotSize = isDotted ? pixelsPerVertex : pixelsPerPointSize;
    const float scale = symbol == VertexSymbol::Dot ? dotSize : symbolSize;
    const float pointSize = std::max(properties.getPointSize(), 0.F);
    styles.push_back({symbol, properties.getVertexSymbolFilling(), pointSize * scale, properties.getColor()});
  }
  return styles;
}

std::unique_ptr<PainterGL<float>> surfacePainter(const ModelGeometry& geometry)
{
  const RenderingMode mode = geometry.properties.getRenderingMode();
  const bool isWire = mode == RenderingMode::Wireframe || mode == RenderingMode::TriangularMesh;
  const MeshStyle style = isWire ? MeshStyle::Lines : MeshStyle::Surface;
  const bool isOpen = geometry.properties.getGeometry() == MPrimitive::Polyline;
  std::unique_ptr<TriMeshPainterGL> painter;
  if (geometry.quadMeshHeight > 0)
    painter = std::make_unique<QuadMeshPainterGL>(geometry.surface, geometry.quadMeshWidth, geometry.quadMeshHeight,
                                                  isOpen, style);
  else
    painter = std::make_unique<TriMeshPainterGL>(geometry.surface, style);
  painter->setMaterial(materialOf(geometry.properties, geometry.itemProperties));
  return painter;
}

std::unique_ptr<PainterGL<float>> levelsPainter(const ModelGeometry& geometry, float symbolSize)
{
  const MPrimitive primitive = geometry.properties.getGeometry();
  if (primitive != MPrimitive::Polypoint && geometry.properties.getRenderingMode() != RenderingMode::Dot)
  {
    auto painter = std::make_unique<CurveStackPainterGL>(*geometry.levels, lineStyles(geometry));
    painter->setOpacity(geometry.properties.getSurfaceOpacity());
    return painter;
  }
  auto painter = std::make_unique<VerticesPainterGL>(*geometry.levels, symbolStyles(geometry, symbolSize));
  painter->setMaterial(materialOf(geometry.properties, geometry.itemProperties));
  return painter;
}
} // namespace

float symbolSize(const Stack& stack)
{
  const StackReconstruction<float> reconstruction(stack);
  BoundingBox<float> box(3);
  for (int k = 0; k < stack.getNumSlices(); ++k)
  {
    const StackSlice& slice = *stack.getSlice(k);
    if (slice.getImageSource() == nullptr) continue;
    const Vector<float>& m = reconstruction.getMap(k);
    const float w = static_cast<float>(slice.getImageSource()->getSize2());
    const float h = static_cast<float>(slice.getImageSource()->getSize1());
    for (const auto& [u, v] : {std::array{0.F, 0.F}, std::array{w, 0.F}, std::array{0.F, h}, std::array{w, h}})
      box.add(Vector<float>{m[0] * u + m[1] * v + m[2], m[3] * u + m[4] * v + m[5], reconstruction.getZMap()[k]});
  }
  if (box.isEmpty()) return 1;
  const Vector<float> diagonal = box.getMaximum() - box.getMinimum();
  const float size = symbolShare * std::hypot(diagonal[0], diagonal[1], diagonal[2]);
  return size > 0 && std::isfinite(size) ? size : 1;
}

std::unique_ptr<PainterGL<float>> createPainter(const ModelGeometry& geometry, float symbolSize)
{
  if (!geometry.levels || geometry.levels->getNumVertices() == 0) return nullptr;
  auto painter = geometry.surface ? surfacePainter(geometry) : levelsPainter(geometry, symbolSize);
  painter->setName(geometry.name);
  return painter;
}

bool changeMaterial(PainterGL<float>& painter, const ModelProperties& properties,
                    const ModelItemProperties& itemProperties)
{
  auto* const mesh = dynamic_cast<TriMeshPainterGL*>(&painter);
  if (mesh == nullptr) return false;
  mesh->setMaterial(materialOf(properties, itemProperties));
  return true;
}
