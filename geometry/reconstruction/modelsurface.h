#pragma once

#include "geometry/reconstruction/stackreconstruction.h"
#include "geometry/trimesh.h"

#include <string>

/// Where the surface of a model is closed.
struct SurfaceCaps
{
  bool tagged = false; ///< at contours tagged Begin and End, and where the model's begin and end cap flags say so
  bool first = false;  ///< at the contours of the first level
  bool last = false;   ///< at the contours of the last level
};

/// The surface through the contours of a model: triangles between neighbouring levels, and caps.
template <class T> class ModelSurface
{
public:
  explicit ModelSurface(const StackReconstruction<T>& reconstruction) : _reconstruction(reconstruction) {}

  void setCaps(const SurfaceCaps& caps) { _caps = caps; }

  /// Builds the surface of a model of closed or open curves. The triangles of closed ones are seen from outside,
  /// however the contours were drawn.
  /// \throw UsageError  the items are no curves
  void apply(const Model& model);

  /// The mesh of the last apply(), with the model's name.
  const TriMesh<T>& getTriMesh() const { return _mesh; }
  /// Number of curves that the last apply() joined: those with an extent.
  int getNumCurves() const { return _numCurves; }
  /// One line about the contours that the last apply() left out because they have no extent; empty when there are none.
  const std::string& getWarning() const { return _warning; }

private:
  const StackReconstruction<T>& _reconstruction;
  SurfaceCaps _caps;
  TriMesh<T> _mesh;
  int _numCurves = 0;
  std::string _warning;
};

GEOMETRY_EXTERN_TEMPLATE_REAL(ModelSurface)
