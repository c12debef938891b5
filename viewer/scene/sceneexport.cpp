#include "viewer/scene/sceneexport.h"

#include "geometry/outputfile.h"
#include "geometry/reconstruction/stackreconstruction.h"
#include "model/model.h"
#include "model/stack.h"
#include "numeric/progresssubject.h"
#include "viewer/scene/modelgeometry.h"
#include "viewer/scene/shownstack.h"

#include <filesystem>
#include <set>

namespace
{
constexpr const char* signature = "ExportedSurfaces exportSurfaces(const ShownStack&, ...)";

struct Target
{
  const Model* model;
  std::string filename;
};

bool isDrawnAsSurface(const Model& model)
{
  return model.getGeometry() != MPrimitive::Polypoint && hasSurface(model.getProperties().getRenderingMode());
}

/// Models of one name are told apart by a number.
std::vector<Target> targetsOf(const ShownStack& shown, const SurfaceExport& target)
{
  std::vector<Target> targets;
  std::set<std::string> taken;
  for (int i = 0; i < shown.stack->getNumModels(); ++i)
  {
    const Model& model = *shown.stack->getModel(i);
    if (!isDrawnAsSurface(model)) continue;
    std::string name = (target.prefix.empty() ? "" : target.prefix + "-") + model.getName();
    if (name.find('/') != std::string::npos)
      throw ValueError(signature, "The name \"" + name + "\" cannot be part of a file name");
    for (int number = 2; !taken.insert(name).second; ++number)
      name = (target.prefix.empty() ? "" : target.prefix + "-") + model.getName() + "-" + std::to_string(number);
    targets.push_back({&model, target.directory + "/" + name + suffixOf(target.format)});
  }
  return targets;
}

std::string warningAbout(const Model& model, const std::string& what)
{
  return "Model \"" + model.getName() + "\": " + what;
}
} // namespace

std::vector<std::string> existingTargets(const ShownStack& shown, const SurfaceExport& target)
{
  std::vector<std::string> existing;
  for (const Target& t : targetsOf(shown, target))
    if (std::error_code ignored; std::filesystem::exists(std::filesystem::symlink_status(t.filename, ignored)))
      existing.push_back(t.filename);
  return existing;
}

ExportedSurfaces exportSurfaces(const ShownStack& shown, const SurfaceExport& target, ProgressSubject& subject)
{
  const std::vector<Target> targets = targetsOf(shown, target);
  for (const Target& t : targets) const OutputFile probe(t.filename, target.overwrite, signature);
  const ProgressStep step(subject, "Exporting surfaces...", static_cast<long>(targets.size()));
  const StackReconstruction<float> reconstruction(*shown.stack);
  ExportedSurfaces result;
  for (int i = 0; i < shown.stack->getNumModels(); ++i)
    if (!isDrawnAsSurface(*shown.stack->getModel(i)))
      result.warnings.push_back(warningAbout(*shown.stack->getModel(i), "is not drawn as a surface"));
  for (const Target& t : targets)
  {
    subject.throwIfCancelled(signature);
    const ModelGeometry geometry = modelGeometry(*t.model, reconstruction, subject, target.isClosed);
    subject.progress(&t - targets.data() + 1);
    if (!geometry.surface)
    {
      result.warnings.push_back(warningAbout(*t.model, geometry.problem));
      continue;
    }
    TriMesh<float> mesh = *geometry.surface;
    mesh.setName(t.model->getName());
    OutputFile file(t.filename, target.overwrite, signature);
    writeSurface(mesh, target.format, file.stream());
    file.commit();
    result.filenames.push_back(t.filename);
  }
  return result;
}
