#include "model/modelitemproperties.h"

#include "model/enumnames.h"

namespace
{
constexpr const char* vertexSymbolNames[] = {"Cube", "Dot", "Diamond", "Sphere", "Tetrahedron"};
} // namespace

template <class F> void ModelItemProperties::forEach(ModelItemProperties& a, const ModelItemProperties& b, F f)
{
  f(a._color, b._color);
  f(a._lineWidth, b._lineWidth);
  f(a._pointSize, b._pointSize);
  f(a._vertexSymbol, b._vertexSymbol);
  f(a._vertexSymbolFilling, b._vertexSymbolFilling);
  f(a._renderingVisibility, b._renderingVisibility);
}

void ModelItemProperties::setDefaults()
{
  const ModelItemProperties defaults; // the values of undefined properties
  setColor(defaults.getColor());
  setLineWidth(defaults.getLineWidth());
  setPointSize(defaults.getPointSize());
  setVertexSymbol(defaults.getVertexSymbol());
  setVertexSymbolFilling(defaults.getVertexSymbolFilling());
  setRenderingVisibility(defaults.getRenderingVisibility());
}

void ModelItemProperties::update(const ModelItemProperties& other)
{
  forEach(*this, other,
          [](auto& mine, const auto& others)
          {
            if (others) mine = others;
          });
}

void ModelItemProperties::intersection(const ModelItemProperties& other)
{
  forEach(*this, other,
          [](auto& mine, const auto& others)
          {
            if (mine != others) mine.reset();
          });
}

ModelItemProperties operator+(const ModelItemProperties& a, const ModelItemProperties& b)
{
  ModelItemProperties sum = b;
  sum.update(a);
  return sum;
}

ModelItemProperties operator-(const ModelItemProperties& a, const ModelItemProperties& b)
{
  ModelItemProperties difference = a;
  ModelItemProperties::forEach(difference, b,
                               [](auto& mine, const auto& others)
                               {
                                 if (mine == others) mine.reset();
                               });
  return difference;
}

std::string ModelItemProperties::toString(VertexSymbol symbol)
{
  return nameOf(symbol, vertexSymbolNames);
}

VertexSymbol ModelItemProperties::toVertexSymbol(std::string_view name)
{
  return valueOf<VertexSymbol>(name, vertexSymbolNames);
}
