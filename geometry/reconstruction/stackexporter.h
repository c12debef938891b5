#pragma once

#include "geometry/reconstruction/modelsurface.h"

#include <string>
#include <vector>

/// Writes the reconstructed surfaces of a stack's models as ASCII STL files.
///
/// Models of points have no surface and are passed over, as are models of fewer than two curves.
class StackExporter
{
public:
  void setCaps(const SurfaceCaps& caps) { _caps = caps; }

  /// Exports every model to "<directory>/<stack's name>-<model's name>.stl"; an empty directory or stack name leaves
  /// out its separator. Models of one name are told apart by a number behind it. All target files are checked before
  /// the first one is written.
  /// \throw FileWriteError  a file exists and `overwrite` is false, or cannot be written
  /// \throw ValueError  a model's name cannot be part of a file name
  void export2AsciiSTL(const Stack& stack, const std::string& directory, bool overwrite);
  /// The same for some models of a stack.
  void export2AsciiSTL(const std::vector<const Model*>& models, StackReconstruction<float>& reconstruction,
                       const std::string& directory, const std::string& prefix, bool overwrite);
  /// The same for one model.
  void export2AsciiSTL(const Model& model, StackReconstruction<float>& reconstruction, const std::string& directory,
                       const std::string& prefix, bool overwrite);

  /// Lines about what the last export left out.
  const std::vector<std::string>& getWarnings() const { return _warnings; }
  /// The files that the last export wrote.
  const std::vector<std::string>& getFilenames() const { return _filenames; }

private:
  void exportModel(const Model& model, const StackReconstruction<float>& reconstruction, const std::string& filename);

  SurfaceCaps _caps;
  std::vector<std::string> _warnings;
  std::vector<std::string> _filenames;
};
