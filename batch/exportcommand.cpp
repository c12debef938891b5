#include "batch/commands.h"
#include "batch/outputfolder.h"
#include "batch/stackfile.h"
#include "geometry/reconstruction/stackexporter.h"
#include "model/stack.h"

#include <CLI/CLI.hpp>

#include <map>

namespace
{
struct Arguments
{
  std::string stack;
  std::string directory;
  std::vector<std::string> models;
  std::string format = "stl";
  std::vector<std::string> caps;
  bool triangulate = false;
  bool overwrite = false;
};

SurfaceCaps surfaceCaps(const std::vector<std::string>& names)
{
  SurfaceCaps caps;
  for (const std::string& name : names)
  {
    const bool isAll = name == "all";
    caps.tagged |= isAll || name == "tagged";
    caps.first |= isAll || name == "first";
    caps.last |= isAll || name == "last";
  }
  return caps;
}

const std::map<std::string, SurfaceFormat> formats = {{"stl", SurfaceFormat::AsciiStl},
                                                      {"stl-binary", SurfaceFormat::BinaryStl},
                                                      {"ply", SurfaceFormat::Ply},
                                                      {"obj", SurfaceFormat::Obj}};

ExitStatus exportSurfaces(const Arguments& arguments)
{
  const StackFile file = requireStackFile(arguments.stack);
  const std::vector<const Model*> models = selectModels(file, arguments.models);
  const StackReconstruction<float> reconstruction(*file.stack);
  OutputFolder folder(arguments.directory);
  StackExporter exporter;
  exporter.setCaps(surfaceCaps(arguments.caps));
  exporter.setResampling(!arguments.triangulate);
  std::string failure;
  try
  {
    exporter.exportModels(models, reconstruction, arguments.directory, file.stack->getName(),
                          formats.at(arguments.format), arguments.overwrite);
    folder.keep();
  }
  catch (const ValueError& error)
  {
    failure = file.filename + ": " + error.getWhat();
  }
  for (const std::string& line : exporter.getWarnings()) warn(line);
  if (!failure.empty()) throw BatchError(failure);
  return Done;
}
} // namespace

void addExportCommand(CLI::App& app, Run& run)
{
  auto arguments = std::make_shared<Arguments>();
  CLI::App* command = app.add_subcommand("export", "Write the surfaces of a stack's models");
  command->add_option("stack", arguments->stack, "stack file")->required();
  command->add_option("--out", arguments->directory, "folder to write to, made when it is missing")->required();
  command->add_option("--model", arguments->models, "a model to export, repeatable; by default all")
      ->allow_extra_args(false);
  command->add_option("--format", arguments->format, "format of the files: STL as text or binary, PLY or OBJ")
      ->check(CLI::IsMember({"stl", "stl-binary", "ply", "obj"}))
      ->capture_default_str();
  command
      ->add_option(
          "--caps", arguments->caps,
          "close the surface at tagged contours, at the first or the last level, or wherever it can be; repeatable")
      ->check(CLI::IsMember({"tagged", "first", "last", "all"}))
      ->allow_extra_args(false);
  command->add_flag(
      "--triangulate", arguments->triangulate,
      "join the drawn contours themselves; by default those that do not branch are resampled onto the model's "
      "quad mesh, which is written to a .qm file, too");
  command->add_flag("--overwrite", arguments->overwrite,
                    "replace existing files; the .qm file of a surface that has no quad mesh any more is removed");
  command->callback([=, &run] { run = [=] { return exportSurfaces(*arguments); }; });
}
