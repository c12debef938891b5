#pragma once

#include "geometry/reconstruction/modelsurface.h"

#include <ostream>
#include <string>
#include <vector>

/// The formats of surface files.
enum class SurfaceFormat
{
  AsciiStl,
  BinaryStl,
  Ply,
  Obj
};

/// How the names of surface files end: ".stl", ".ply" or ".obj".
const char* suffixOf(SurfaceFormat format);
void writeSurface(const TriMesh<float>& mesh, SurfaceFormat format, std::ostream& stream);

/// Writes the reconstructed surfaces of a stack's models.
///
/// Models of points have no surface and are passed over, as are models of fewer than two curves. Contours that do not
/// branch are resampled onto the model's quad mesh, which is saved beside the surface in a ".qm" file; contours that do
/// are joined as they were drawn. Where the new surface has no quad mesh but a ".qm" file of an earlier one lies beside
/// it, that is removed if files may be overwritten; a warning tells of it if not.
class StackExporter
{
public:
  void setCaps(const SurfaceCaps& caps) { _caps = caps; }
  /// Whether contours that do not branch are resampled, too; they are at first.
  void setResampling(bool isResampling) { _isResampling = isResampling; }

  /// Exports every model as ASCII STL to "<directory>/<stack's name>-<model's name>.stl"; an empty directory or stack
  /// name leaves out its separator. Models of one name are told apart by a number behind it, the same one whether the
  /// stack's other models are exported or not. All target files are checked before the first one is written, and a
  /// model's surface and quad mesh are replaced together.
  /// \throw FileWriteError  a file exists and `overwrite` is false, or cannot be written
  /// \throw ValueError  the name of the stack or of an exported model cannot be part of a file name
  void export2AsciiSTL(const Stack& stack, const std::string& directory, bool overwrite);
  /// The same for one model.
  void export2AsciiSTL(const Model& model, StackReconstruction<float>& reconstruction, const std::string& directory,
                       const std::string& prefix, bool overwrite);
  /// The same for some models of a stack, in any format: the files end with ".stl", ".ply" or ".obj".
  void exportModels(const std::vector<const Model*>& models, const StackReconstruction<float>& reconstruction,
                    const std::string& directory, const std::string& prefix, SurfaceFormat format, bool overwrite);

  /// Lines about what the last export left out.
  const std::vector<std::string>& getWarnings() const { return _warnings; }
  /// The files that the last export wrote.
  const std::vector<std::string>& getFilenames() const { return _filenames; }

private:
  /// A model and its files' path without the suffix.
  struct Target
  {
    const Model& model;
    std::string basename;
  };

  static std::vector<Target> targetsOf(const std::vector<const Model*>& models, const std::string& basePath);
  void checkTarget(const Target& target, const StackReconstruction<float>& reconstruction, SurfaceFormat format,
                   bool overwrite) const;
  ModelSurface<float> surfaceOf(const StackReconstruction<float>& reconstruction) const;
  void exportModel(const Target& target, const StackReconstruction<float>& reconstruction, SurfaceFormat format,
                   bool overwrite);
  /// Removes the quad mesh of an earlier surface, or warns of it.
  void dropQuadMesh(const std::string& filename, bool overwrite);

  SurfaceCaps _caps;
  bool _isResampling = true;
  std::vector<std::string> _warnings;
  std::vector<std::string> _filenames;
};
