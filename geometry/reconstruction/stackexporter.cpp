#include "geometry/reconstruction/stackexporter.h"

#include "geometry/outputfile.h"
#include "model/model.h"
#include "model/stack.h"

#include <filesystem>
#include <map>
#include <set>

namespace
{

constexpr const char* exportSignature = "void StackExporter::export2AsciiSTL(...)";
constexpr const char* quadMeshSuffix = ".qm";

void requireFilename(const std::string& name)
{
  if (name.find('/') != std::string::npos)
    throw ValueError(exportSignature,
                     "The name \"" + name + "\" of the stack or a model cannot be part of a file name");
}

std::string basePath(const std::string& directory, const std::string& prefix)
{
  requireFilename(prefix);
  return (directory.empty() ? "" : directory + "/") + (prefix.empty() ? "" : prefix + "-");
}

bool hasNoSurface(const Model& model)
{
  return model.getGeometry() == MPrimitive::Polypoint || model.getGeometry() == MPrimitive::Unknown;
}

/// The name of the files of each model with a surface: the model's own or, where one before it in the stack has the
/// same, with the next number behind it that makes it no other model's.
std::map<const Model*, std::string> namesOfFiles(const Stack& stack)
{
  std::map<const Model*, std::string> names;
  std::set<std::string> taken;
  std::vector<const Model*> namesakes;
  for (int i = 0; i < stack.getNumModels(); ++i)
  {
    const Model* const model = stack.getModel(i);
    if (hasNoSurface(*model)) continue;
    if (taken.insert(model->getName()).second)
      names[model] = model->getName();
    else
      namesakes.push_back(model);
  }
  std::map<std::string, int> numbers; // the last one of each name
  for (const Model* const model : namesakes)
  {
    int& number = numbers.try_emplace(model->getName(), 1).first->second;
    std::string& name = names[model];
    do name = model->getName() + "-" + std::to_string(++number);
    while (!taken.insert(name).second);
  }
  return names;
}

/// \throw FileWriteError  the file cannot be written where it is, or exists and must not be overwritten
void requireTarget(const std::string& filename, bool overwrite)
{
  const OutputFile probe(filename, overwrite, exportSignature); // made beside the target and taken away again
}

} // namespace

const char* suffixOf(SurfaceFormat format)
{
  switch (format)
  {
  case SurfaceFormat::Ply:
    return ".ply";
  case SurfaceFormat::Obj:
    return ".obj";
  default:
    return ".stl";
  }
}

void writeSurface(const TriMesh<float>& mesh, SurfaceFormat format, std::ostream& stream)
{
  switch (format)
  {
  case SurfaceFormat::AsciiStl:
    return mesh.export2AsciiSTL(stream);
  case SurfaceFormat::BinaryStl:
    return mesh.export2BinarySTL(stream);
  case SurfaceFormat::Ply:
    return mesh.export2PLY(stream);
  case SurfaceFormat::Obj:
    return mesh.export2OBJ(stream);
  }
}

void StackExporter::export2AsciiSTL(const Stack& stack, const std::string& directory, bool overwrite)
{
  const StackReconstruction<float> reconstruction(stack);
  std::vector<const Model*> models;
  models.reserve(static_cast<std::size_t>(stack.getNumModels()));
  for (int i = 0; i < stack.getNumModels(); ++i) models.push_back(stack.getModel(i));
  exportModels(models, reconstruction, directory, stack.getName(), SurfaceFormat::AsciiStl, overwrite);
}

void StackExporter::export2AsciiSTL(const Model& model, StackReconstruction<float>& reconstruction,
                                    const std::string& directory, const std::string& prefix, bool overwrite)
{
  exportModels({&model}, reconstruction, directory, prefix, SurfaceFormat::AsciiStl, overwrite);
}

void StackExporter::exportModels(const std::vector<const Model*>& models,
                                 const StackReconstruction<float>& reconstruction, const std::string& directory,
                                 const std::string& prefix, SurfaceFormat format, bool overwrite)
{
  _warnings.clear();
  _filenames.clear();
  const std::vector<Target> targets = targetsOf(models, basePath(directory, prefix));
  for (const Target& target : targets) checkTarget(target, reconstruction, format, overwrite);
  for (const Target& target : targets) exportModel(target, reconstruction, format, overwrite);
}

std::vector<StackExporter::Target> StackExporter::targetsOf(const std::vector<const Model*>& models,
                                                            const std::string& basePath)
{
  std::map<const Model*, std::string> names;
  if (!models.empty() && models[0]->getStack()) names = namesOfFiles(*models[0]->getStack());
  std::vector<Target> targets;
  for (const Model* const model : models)
  {
    if (hasNoSurface(*model)) continue;
    requireFilename(model->getName());
    const auto name = names.find(model);
    targets.push_back({*model, basePath + (name != names.end() ? name->second : model->getName())});
  }
  return targets;
}

void StackExporter::checkTarget(const Target& target, const StackReconstruction<float>& reconstruction,
                                SurfaceFormat format, bool overwrite) const
{
  requireTarget(target.basename + suffixOf(format), overwrite);
  const std::string quadMesh = target.basename + quadMeshSuffix;
  if (std::error_code ignored; !std::filesystem::exists(std::filesystem::symlink_status(quadMesh, ignored))) return;
  const bool isChanged = overwrite || surfaceOf(reconstruction).isResampled(target.model); // replaced or removed
  if (isChanged) requireTarget(quadMesh, overwrite);
}

ModelSurface<float> StackExporter::surfaceOf(const StackReconstruction<float>& reconstruction) const
{
  ModelSurface<float> surface(reconstruction);
  surface.setCaps(_caps);
  surface.setResampling(_isResampling);
  return surface;
}

void StackExporter::exportModel(const Target& target, const StackReconstruction<float>& reconstruction,
                                SurfaceFormat format, bool overwrite)
{
  ModelSurface<float> surface = surfaceOf(reconstruction);
  surface.setNormals(format == SurfaceFormat::Ply || format == SurfaceFormat::Obj); // STL has those of the triangles
  surface.apply(target.model);
  _warnings.insert(_warnings.end(), surface.getWarnings().begin(), surface.getWarnings().end());
  if (surface.getNumCurves() < 2 || surface.getTriMesh().getSize() == 0) return; // a warning has said why
  if (surface.getTriMesh().getNumTriangles() == 0)
  {
    _warnings.push_back("Model \"" + target.model.getName() + "\": no two contours are joined, nothing is written");
    return;
  }
  const std::string filename = target.basename + suffixOf(format), quadMesh = target.basename + quadMeshSuffix;
  OutputFile file(filename, overwrite, exportSignature);
  writeSurface(surface.getTriMesh(), format, file.stream());
  if (surface.getQuadMesh().isEmpty())
    file.commit();
  else
  {
    OutputFile quadMeshFile(quadMesh, overwrite, exportSignature);
    surface.getQuadMesh().write(quadMeshFile.stream());
    file.commitWith(quadMeshFile);
    _filenames.push_back(quadMesh);
  }
  _filenames.push_back(filename);
  if (surface.getQuadMesh().isEmpty()) dropQuadMesh(quadMesh, overwrite);
}

void StackExporter::dropQuadMesh(const std::string& filename, bool overwrite)
{
  if (std::error_code ignored; !std::filesystem::exists(filename, ignored)) return;
  if (!overwrite)
    return _warnings.push_back(filename + ": left as it is, the quad mesh of another surface than the one beside it");
  std::error_code error;
  std::filesystem::remove(filename, error);
  if (error) throw FileWriteError(exportSignature, filename + " : cannot be removed: " + error.message(), filename);
}
