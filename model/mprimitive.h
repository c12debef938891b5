#pragma once

/// Geometry of a model's items.
enum class MPrimitive
{
  Polygon,   ///< closed curves
  Polyline,  ///< open curves
  Polypoint, ///< sets of points
  Region,    ///< run-length-coded regions
  Unknown
};

/// The fewest vertices that make an item of a geometry.
constexpr int minNumVertices(MPrimitive geometry)
{
  return geometry == MPrimitive::Polygon ? 3 : geometry == MPrimitive::Polyline ? 2 : 1;
}
