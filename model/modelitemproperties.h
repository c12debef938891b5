#pragma once

#include "model/vertexsymbol.h"

#include <array>
#include <optional>
#include <string>
#include <string_view>

/// Display properties of an item, or a model's defaults for its items; each may be undefined.
///
/// The value of an undefined property is its default; the tests tell whether it is defined.
class ModelItemProperties
{
public:
  /// Red, green and blue, 0 to 255.
  using Color = std::array<int, 3>;

  bool definesColor() const { return _color.has_value(); }
  bool definesLineWidth() const { return _lineWidth.has_value(); }
  bool definesPointSize() const { return _pointSize.has_value(); }
  bool definesVertexSymbol() const { return _vertexSymbol.has_value(); }
  bool definesVertexSymbolFilling() const { return _vertexSymbolFilling.has_value(); }
  bool definesRenderingVisibility() const { return _renderingVisibility.has_value(); }
  bool definesAny() const { return *this != ModelItemProperties(); }

  Color getColor() const { return _color.value_or(Color{255, 0, 0}); }
  float getLineWidth() const { return _lineWidth.value_or(1.f); }
  float getPointSize() const { return _pointSize.value_or(1.f); }
  VertexSymbol getVertexSymbol() const { return _vertexSymbol.value_or(VertexSymbol::Sphere); }
  bool getVertexSymbolFilling() const { return _vertexSymbolFilling.value_or(true); }
  /// Whether the item is drawn in 3D.
  bool getRenderingVisibility() const { return _renderingVisibility.value_or(true); }

  void setColor(const Color& color) { _color = color; }
  void setColor(int red, int green, int blue) { _color = Color{red, green, blue}; }
  void setLineWidth(float width) { _lineWidth = width; }
  void setPointSize(float size) { _pointSize = size; }
  void setVertexSymbol(VertexSymbol symbol) { _vertexSymbol = symbol; }
  void setVertexSymbolFilling(bool isFilled) { _vertexSymbolFilling = isFilled; }
  void setRenderingVisibility(bool isVisible) { _renderingVisibility = isVisible; }

  /// Defines every property with its default.
  void setDefaults();
  /// Makes every property undefined.
  void clear() { *this = ModelItemProperties(); }
  /// Takes over every property that `other` defines.
  void update(const ModelItemProperties& other);
  /// Keeps only the properties that both define with equal values.
  void intersection(const ModelItemProperties& other);
  bool operator==(const ModelItemProperties& other) const = default;

  /// Names as in stack files; "Unknown" for any other value, and the other way round.
  static std::string toString(VertexSymbol symbol);
  static VertexSymbol toVertexSymbol(std::string_view name);

  /// Every property that a defines, and from b those that a leaves undefined.
  friend ModelItemProperties operator+(const ModelItemProperties& a, const ModelItemProperties& b);
  /// What a says beyond b: the properties that a defines and b does not define with the same value.
  friend ModelItemProperties operator-(const ModelItemProperties& a, const ModelItemProperties& b);

private:
  /// Calls f with each property of a and the same one of b.
  template <class F> static void forEach(ModelItemProperties& a, const ModelItemProperties& b, F f);

  std::optional<Color> _color;
  std::optional<float> _lineWidth;
  std::optional<float> _pointSize;
  std::optional<VertexSymbol> _vertexSymbol;
  std::optional<bool> _vertexSymbolFilling;
  std::optional<bool> _renderingVisibility;
};
