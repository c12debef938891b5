#pragma once

/// How a model is drawn in 3D.
enum class RenderingMode
{
  Dot,
  Curve,
  Wireframe,
  Surface,
  TriangularMesh,
  TriangularSurface,
  Unknown
};
