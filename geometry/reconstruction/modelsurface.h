#pragma once

#include "geometry/quadmesh.h"
#include "geometry/reconstruction/stackreconstruction.h"
#include "geometry/trimesh.h"

#include <string>
#include <vector>

/// Where the surface of a model is closed.
struct SurfaceCaps
{
  bool tagged = false; ///< at contours tagged Begin and End, and where the model's begin and end cap flags say so
  bool first = false;  ///< at the contours of the first level
  bool last = false;   ///< at the contours of the last level
};

/// The surface through the contours of a model: triangles between neighbouring levels, and caps.
///
/// Contours that do not branch can be resampled onto a quad mesh of the model's quad-mesh width and height; a model of
/// one item gets one row. Such a surface passes through the contours only as closely as the mesh has rows and columns.
template <class T> class ModelSurface
{
public:
  explicit ModelSurface(const StackReconstruction<T>& reconstruction) : _reconstruction(reconstruction) {}

  void setCaps(const SurfaceCaps& caps) { _caps = caps; }
  /// Whether contours that do not branch are resampled onto a quad mesh; at first, they are joined as they were drawn.
  void setResampling(bool isResampling) { _isResampling = isResampling; }

  /// Whether the mesh gets normals at its vertices, as it does at first.
  void setNormals(bool normals) { _normals = normals; }

  /// Builds the surface of a model of closed or open curves or of regions. The triangles of closed curves are seen from
  /// outside, however the contours were drawn.
  /// \throw UsageError  the items are no curves
  void apply(const Model& model);
  /// Whether apply() would resample the model's contours: there are at least two with an extent, and none branches.
  bool isResampled(const Model& model) const;

  /// The mesh of the last apply(), with the model's name.
  const TriMesh<T>& getTriMesh() const { return _mesh; }
  /// The quad mesh of the last apply(), with the model's name; empty when the contours were not resampled.
  const QuadMesh<T>& getQuadMesh() const { return _quadMesh; }
  /// Number of curves that the last apply() joined: those with an extent.
  int getNumCurves() const { return _numCurves; }
  /// A line about each thing that the last apply() left out, or that the surface may not be meant to have.
  const std::vector<std::string>& getWarnings() const { return _warnings; }

private:
  /// The curves with an extent and their items.
  struct Contours
  {
    CurveStack<T> curves;
    std::vector<const ModelItem*> items;
    std::string warning; // about those without
  };

  Contours contoursOf(const Model& model) const;
  static bool canBeResampled(const CurveStack<T>& curves) { return curves.getNumCurves() > 1 && !curves.isBranching(); }
  void resample(const Model& model, const Contours& contours);
  void triangulate(const Model& model, const Contours& contours);

  const StackReconstruction<T>& _reconstruction;
  SurfaceCaps _caps;
  bool _isResampling = false;
  bool _normals = true;
  TriMesh<T> _mesh;
  QuadMesh<T> _quadMesh;
  int _numCurves = 0;
  std::vector<std::string> _warnings;
};

GEOMETRY_EXTERN_TEMPLATE_REAL(ModelSurface)
