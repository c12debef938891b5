#include "geometry/reconstruction/stackexporter.h"

#include "geometry/outputfile.h"
#include "model/model.h"
#include "model/stack.h"

#include <algorithm>
#include <filesystem>
#include <set>

namespace
{

constexpr const char* exportSignature = "void StackExporter::export2AsciiSTL(...)";
constexpr const char* quadMeshSuffix = ".qm";

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

void write(const TriMesh<float>& mesh, SurfaceFormat format, std::ostream& stream)
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

/// One name per model, its own or, where another model has it already, with a number behind it.
std::vector<std::string> distinctNames(const std::vector<const Model*>& models)
{
  std::vector<std::string> names;
  names.reserve(models.size());
  std::set<std::string> taken;
  for (const Model* model : models)
  {
    requireFilename(model->getName());
    std::string name = model->getName();
    for (int number = 2; !taken.insert(name).second; ++number) name = model->getName() + "-" + std::to_string(number);
    names.push_back(name);
  }
  return names;
}

bool hasNoSurface(const Model& model)
{
  return model.getGeometry() == MPrimitive::Polypoint || model.getGeometry() == MPrimitive::Unknown;
}

} // namespace

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
  std::vector<std::string> basenames = distinctNames(models);
  for (std::string& name : basenames) name.insert(0, basePath(directory, prefix));
  for (std::size_t i = 0; i < models.size() && !overwrite; ++i)
  {
    if (hasNoSurface(*models[i])) continue;
    requireAbsent(basenames[i] + suffixOf(format), exportSignature);
    const std::string quadMesh = basenames[i] + quadMeshSuffix;
    if (std::error_code ignored;
        std::filesystem::exists(quadMesh, ignored) && surfaceOf(reconstruction).isResampled(*models[i]))
      requireAbsent(quadMesh, exportSignature);
  }
  for (std::size_t i = 0; i < models.size(); ++i)
    if (!hasNoSurface(*models[i])) exportModel(*models[i], reconstruction, basenames[i], format, overwrite);
}

ModelSurface<float> StackExporter::surfaceOf(const StackReconstruction<float>& reconstruction) const
{
  ModelSurface<float> surface(reconstruction);
  surface.setCaps(_caps);
  surface.setResampling(_isResampling);
  return surface;
}

void StackExporter::exportModel(const Model& model, const StackReconstruction<float>& reconstruction,
                                const std::string& basename, SurfaceFormat format, bool overwrite)
{
  ModelSurface<float> surface = surfaceOf(reconstruction);
  surface.setNormals(format == SurfaceFormat::Ply || format == SurfaceFormat::Obj); // STL has those of the triangles
  surface.apply(model);
  _warnings.insert(_warnings.end(), surface.getWarnings().begin(), surface.getWarnings().end());
  if (surface.getNumCurves() < 2) return;
  if (surface.getTriMesh().getNumTriangles() == 0)
  {
    _warnings.push_back("Model \"" + model.getName() + "\": no two contours are joined, nothing is written");
    return;
  }
  if (!surface.getQuadMesh().isEmpty())
  {
    surface.getQuadMesh().save(basename + quadMeshSuffix, true);
    _filenames.push_back(basename + quadMeshSuffix);
  }
  OutputFile file(basename + suffixOf(format), true, exportSignature);
  write(surface.getTriMesh(), format, file.stream());
  file.commit();
  _filenames.push_back(basename + suffixOf(format));
  if (surface.getQuadMesh().isEmpty()) dropQuadMesh(basename + quadMeshSuffix, overwrite);
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
