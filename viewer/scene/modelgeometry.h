#pragma once

#include "geometry/trimesh.h"
#include "geometry/vertexstack.h"
#include "model/modelitemproperties.h"
#include "model/modelproperties.h"

#include <memory>
#include <string>
#include <vector>

class Model;
class ProgressSubject;
template <class T> class StackReconstruction;

/// A model in space, as its rendering mode asks for it.
struct ModelGeometry
{
  std::string name;
  ModelProperties properties;
  ModelItemProperties itemProperties; ///< of those items that have none of their own
  /// The contours or points, one level for each, and the properties that count for each.
  std::shared_ptr<const VertexStack<float>> levels;
  std::vector<ModelItemProperties> levelProperties;
  /// The surface through the contours, with normals; none where the mode does not ask for it or there is none.
  std::shared_ptr<const TriMesh<float>> surface;
  /// Vertices per row and number of rows where the surface is that of a quad mesh, else 0.
  int quadMeshWidth = 0;
  int quadMeshHeight = 0;
  /// Why there is nothing to draw, or something else than the mode asks for; empty otherwise.
  std::string problem;
};

/// Whether the mode draws a surface through the contours, and whether that is one of the contours as they were drawn.
constexpr bool hasSurface(RenderingMode mode)
{
  return mode != RenderingMode::Dot && mode != RenderingMode::Curve;
}
constexpr bool isTriangular(RenderingMode mode)
{
  return mode == RenderingMode::TriangularMesh || mode == RenderingMode::TriangularSurface;
}

/// Dots and curves are the contours themselves. A wireframe and a surface come from contours that are resampled onto
/// the model's quad mesh unless they branch, the triangular ones from the contours as they were drawn. Surfaces get the
/// caps and the smoothing that the model asks for; with `isClosed` also caps at the first and the last contours.
/// \throw Cancelled  the subject was, before or during the smoothing
ModelGeometry modelGeometry(const Model& model, const StackReconstruction<float>& reconstruction,
                            ProgressSubject& subject, bool isClosed = false);

/// Whether geometry made with some properties is out of date with others; colours and opacity do not matter.
bool needsOtherGeometry(const ModelProperties& before, const ModelProperties& after);
