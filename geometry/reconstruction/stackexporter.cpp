#include "geometry/reconstruction/stackexporter.h"

#include "geometry/outputfile.h"
#include "model/model.h"
#include "model/stack.h"

#include <set>

namespace
{

constexpr const char* exportSignature = "void StackExporter::export2AsciiSTL(...)";

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
  StackReconstruction<float> reconstruction(stack);
  std::vector<const Model*> models;
  models.reserve(static_cast<std::size_t>(stack.getNumModels()));
  for (int i = 0; i < stack.getNumModels(); ++i) models.push_back(stack.getModel(i));
  export2AsciiSTL(models, reconstruction, directory, stack.getName(), overwrite);
}

void StackExporter::export2AsciiSTL(const Model& model, StackReconstruction<float>& reconstruction,
                                    const std::string& directory, const std::string& prefix, bool overwrite)
{
  export2AsciiSTL(std::vector<const Model*>{&model}, reconstruction, directory, prefix, overwrite);
}

void StackExporter::export2AsciiSTL(const std::vector<const Model*>& models, StackReconstruction<float>& reconstruction,
                                    const std::string& directory, const std::string& prefix, bool overwrite)
{
  _warnings.clear();
  _filenames.clear();
  const std::string base = basePath(directory, prefix);
  std::vector<std::string> filenames;
  for (const std::string& name : distinctNames(models)) filenames.push_back(base + name + ".stl");
  for (std::size_t i = 0; i < models.size(); ++i)
    if (!overwrite && !hasNoSurface(*models[i])) requireAbsent(filenames[i], exportSignature);

  for (std::size_t i = 0; i < models.size(); ++i)
    if (!hasNoSurface(*models[i])) exportModel(*models[i], reconstruction, filenames[i]);
}

void StackExporter::exportModel(const Model& model, const StackReconstruction<float>& reconstruction,
                                const std::string& filename)
{
  if (model.getGeometry() == MPrimitive::Region)
  {
    _warnings.push_back("Model \"" + model.getName() + "\": regions cannot be reconstructed yet, nothing is written");
    return;
  }
  ModelSurface<float> surface(reconstruction);
  surface.setCaps(_caps);
  surface.apply(model);
  if (!surface.getWarning().empty()) _warnings.push_back(surface.getWarning());
  if (surface.getNumCurves() < 2) return;
  if (surface.getTriMesh().getNumTriangles() == 0)
  {
    _warnings.push_back("Model \"" + model.getName() + "\": no two contours can be joined, nothing is written");
    return;
  }
  OutputFile file(filename, true, exportSignature);
  surface.getTriMesh().export2AsciiSTL(file.stream());
  file.commit();
  _filenames.push_back(filename);
}
