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
