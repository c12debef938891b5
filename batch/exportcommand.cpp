#include "batch/commands.h"
#include "batch/stackfile.h"
#include "geometry/reconstruction/stackexporter.h"
#include "model/stack.h"

#include <CLI/CLI.hpp>

#include <filesystem>

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

void createDirectory(const std::string& directory)
{
  std::error_code error;
  std::filesystem::create_directories(directory, error);
  if (error) throw BatchError(directory + ": cannot create the folder: " + error.message());
}

ExitStatus exportSurfaces(const Arguments& arguments)
{
  const StackFile file = requireStackFile(arguments.stack);
  const std::vector<const Model*> models = selectModels(*file.stack, arguments.models);
  createDirectory(arguments.directory);
  StackReconstruction<float> reconstruction(*file.stack);
  StackExporter exporter;
  exporter.setCaps(surfaceCaps(arguments.caps));
  try
  {
    exporter.export2AsciiSTL(models, reconstruction, arguments.directory, file.stack->getName(), arguments.overwrite);
  }
  catch (const Exception&)
  {
    for (const std::string& line : exporter.getWarnings()) warn(line);
    throw;
  }
  for (const std::string& line : exporter.getWarnings()) warn(line);
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
  command->add_option("--format", arguments->format, "format of the files")
      ->check(CLI::IsMember({"stl"}))
      ->capture_default_str();
  command
      ->add_option(
          "--caps", arguments->caps,
          "close the surface at tagged contours, at the first or the last level, or wherever it can be; repeatable")
      ->check(CLI::IsMember({"tagged", "first", "last", "all"}))
      ->allow_extra_args(false);
  command->add_flag("--triangulate", arguments->triangulate, "join the drawn contours themselves, without resampling");
  command->add_flag("--overwrite", arguments->overwrite, "replace existing files");
  command->callback([=, &run] { run = [=] { return exportSurfaces(*arguments); }; });
}
