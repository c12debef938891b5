#pragma once

/// Symbol that stands for a point in 3D.
enum class VertexSymbol
{
  Cube,
  Dot,
  Diamond,
  Sphere,
  Tetrahedron,
  Unknown
};
