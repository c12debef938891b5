#include "model/modelproperties.h"

#include "model/enumnames.h"

namespace
{
constexpr const char* primitiveNames[] = {"Polygon", "Polyline", "Polypoint", "Region"};
constexpr const char* renderingModeNames[] = {"Dot",     "Curve",          "Wireframe",
                                              "Surface", "TriangularMesh", "TriangularSurface"};
} // namespace

template <class F> void ModelProperties::forEach(ModelProperties& a, const ModelProperties& b, F f)
{
  f(a._geometry, b._geometry);
  f(a._renderingMode, b._renderingMode);
  f(a._surfaceOpacity, b._surfaceOpacity);
  f(a._surfaceShininess, b._surfaceShininess);
  f(a._quadMeshWidth, b._quadMeshWidth);
  f(a._quadMeshHeight, b._quadMeshHeight);
  f(a._vertexSmoothing, b._vertexSmoothing);
  f(a._normalSmoothing, b._normalSmoothing);
  f(a._economicRendering, b._economicRendering);
  f(a._beginCapFlag, b._beginCapFlag);
  f(a._endCapFlag, b._endCapFlag);
}

void ModelProperties::setDefaults()
{
  const ModelProperties defaults; // the values of undefined properties
  setGeometry(defaults.getGeometry());
  setRenderingMode(defaults.getRenderingMode());
  setSurfaceOpacity(defaults.getSurfaceOpacity());
  setSurfaceShininess(defaults.getSurfaceShininess());
  setQuadMeshWidth(defaults.getQuadMeshWidth());
  setQuadMeshHeight(defaults.getQuadMeshHeight());
  setVertexSmoothing(defaults.getVertexSmoothing());
  setNormalSmoothing(defaults.getNormalSmoothing());
  setEconomicRendering(defaults.getEconomicRendering());
  setBeginCapFlag(defaults.getBeginCapFlag());
  setEndCapFlag(defaults.getEndCapFlag());
}

void ModelProperties::update(const ModelProperties& other)
{
  forEach(*this, other,
          [](auto& mine, const auto& others)
          {
            if (others) mine = others;
          });
}

void ModelProperties::intersection(const ModelProperties& other)
{
  forEach(*this, other,
          [](auto& mine, const auto& others)
          {
            if (mine != others) mine.reset();
          });
}

std::string ModelProperties::toString(MPrimitive primitive)
{
  return nameOf(primitive, primitiveNames);
}

std::string ModelProperties::toString(RenderingMode mode)
{
  return nameOf(mode, renderingModeNames);
}

MPrimitive ModelProperties::toPrimitive(std::string_view name)
{
  return valueOf<MPrimitive>(name, primitiveNames);
}

RenderingMode ModelProperties::toRenderingMode(std::string_view name)
{
  return valueOf<RenderingMode>(name, renderingModeNames);
}
