#pragma once

#include "model/mprimitive.h"
#include "model/renderingmode.h"

#include <optional>
#include <string>
#include <string_view>

/// Display properties of a model, each of which may be undefined.
///
/// The value of an undefined property is its default; the tests tell whether it is defined.
class ModelProperties
{
public:
  bool definesGeometry() const { return _geometry.has_value(); }
  bool definesRenderingMode() const { return _renderingMode.has_value(); }
  bool definesSurfaceOpacity() const { return _surfaceOpacity.has_value(); }
  bool definesSurfaceShininess() const { return _surfaceShininess.has_value(); }
  bool definesQuadMeshWidth() const { return _quadMeshWidth.has_value(); }
  bool definesQuadMeshHeight() const { return _quadMeshHeight.has_value(); }
  bool definesVertexSmoothing() const { return _vertexSmoothing.has_value(); }
  bool definesNormalSmoothing() const { return _normalSmoothing.has_value(); }
  bool definesEconomicRendering() const { return _economicRendering.has_value(); }
  bool hasBeginCapFlag() const { return _beginCapFlag.has_value(); }
  bool hasEndCapFlag() const { return _endCapFlag.has_value(); }

  MPrimitive getGeometry() const { return _geometry.value_or(MPrimitive::Polygon); }
  RenderingMode getRenderingMode() const { return _renderingMode.value_or(RenderingMode::Surface); }
  /// 255 is opaque.
  float getSurfaceOpacity() const { return _surfaceOpacity.value_or(255.f); }
  float getSurfaceShininess() const { return _surfaceShininess.value_or(32.f); }
  int getQuadMeshWidth() const { return _quadMeshWidth.value_or(100); }
  int getQuadMeshHeight() const { return _quadMeshHeight.value_or(100); }
  int getVertexSmoothing() const { return _vertexSmoothing.value_or(0); }
  int getNormalSmoothing() const { return _normalSmoothing.value_or(0); }
  bool getEconomicRendering() const { return _economicRendering.value_or(false); }
  /// Whether the surface gets a cap at its first and at its last contour.
  bool getBeginCapFlag() const { return _beginCapFlag.value_or(false); }
  bool getEndCapFlag() const { return _endCapFlag.value_or(false); }

  void setGeometry(MPrimitive geometry) { _geometry = geometry; }
  void setRenderingMode(RenderingMode mode) { _renderingMode = mode; }
  void setSurfaceOpacity(float opacity) { _surfaceOpacity = opacity; }
  void setSurfaceShininess(float shininess) { _surfaceShininess = shininess; }
  void setQuadMeshWidth(int width) { _quadMeshWidth = width; }
  void setQuadMeshHeight(int height) { _quadMeshHeight = height; }
  void setVertexSmoothing(int smoothing) { _vertexSmoothing = smoothing; }
  void setNormalSmoothing(int smoothing) { _normalSmoothing = smoothing; }
  void setEconomicRendering(bool economic) { _economicRendering = economic; }
  void setBeginCapFlag(bool hasCap) { _beginCapFlag = hasCap; }
  void setEndCapFlag(bool hasCap) { _endCapFlag = hasCap; }

  /// Defines every property with its default.
  void setDefaults();
  /// Makes every property undefined.
  void clear() { *this = ModelProperties(); }
  /// Takes over every property that `other` defines.
  void update(const ModelProperties& other);
  /// Keeps only the properties that both define with equal values.
  void intersection(const ModelProperties& other);
  bool operator==(const ModelProperties& other) const = default;

  /// Names as in stack files; "Unknown" for any other value, and the other way round.
  static std::string toString(MPrimitive primitive);
  static std::string toString(RenderingMode mode);
  static MPrimitive toPrimitive(std::string_view name);
  static RenderingMode toRenderingMode(std::string_view name);

private:
  /// Calls f with each property of a and the same one of b.
  template <class F> static void forEach(ModelProperties& a, const ModelProperties& b, F f);

  std::optional<MPrimitive> _geometry;
  std::optional<RenderingMode> _renderingMode;
  std::optional<float> _surfaceOpacity;
  std::optional<float> _surfaceShininess;
  std::optional<int> _quadMeshWidth;
  std::optional<int> _quadMeshHeight;
  std::optional<int> _vertexSmoothing;
  std::optional<int> _normalSmoothing;
  std::optional<bool> _economicRendering;
  std::optional<bool> _beginCapFlag;
  std::optional<bool> _endCapFlag;
};
