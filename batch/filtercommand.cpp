#include "batch/commands.h"
#include "batch/terminalprogress.h"
#include "batch/volumefile.h"
#include "batch/volumestep.h"
#include "image/filters/filterkind.h"

#include <CLI/CLI.hpp>

#include <optional>

namespace
{
struct Arguments
{
  std::string in;
  std::string out;
  std::string kind;
  std::optional<int> size;
  std::optional<double> sigma;
  bool overwrite = false;
};

FilterOptions optionsFor(const FilterKind& kind, const Arguments& arguments)
{
  const bool takesSize = kind.option == FilterOption::Size;
  if (takesSize ? arguments.sigma.has_value() : arguments.size.has_value())
    throw BatchError("the filter " + kind.name + " takes " +
                     (takesSize ? "--size, not --sigma" : "--sigma, not --size"));
  FilterOptions options;
  options.size = arguments.size.value_or(options.size);
  options.sigma = arguments.sigma.value_or(options.sigma);
  return options;
}

ExitStatus filter(const Arguments& arguments)
{
  const FilterKind& kind = findFilterKind(arguments.kind);
  const FilterOptions options = optionsFor(kind, arguments);
  requireVolumeOutput(arguments.out, arguments.overwrite);
  AnyVolume volume = readVolume(arguments.in);
  TerminalProgress progress;
  workOn(arguments.in, volume,
         [&]<class T>(VoxelMatrix<T>& matrix)
         {
           const auto step = kind.make<T>(options);
           const auto volumeSize = static_cast<double>(matrix.getNumVoxels() * sizeof(T));
           requireMemory(arguments.in, volumeSize + step->workingMemory(matrix));
           step->addObserver(progress);
           step->apply(matrix);
           writeVolume(std::move(matrix), arguments.out);
         });
  return Done;
}

std::string namesOfKinds()
{
  std::string names;
  for (const FilterKind* kind : filterKinds())
    names +=
        (names.empty() ? "" : ", ") + kind->name + (kind->option == FilterOption::Size ? " (--size)" : " (--sigma)");
  return names;
}
} // namespace

void addFilterCommand(CLI::App& app, Run& run)
{
  auto arguments = std::make_shared<Arguments>();
  CLI::App* command = app.add_subcommand("filter", "Filter a volume; a single page is filtered as a plane");
  command->add_option("in", arguments->in, "image file to read: .tif, .tiff, .lsm or .vm")->required();
  command->add_option("--kind", arguments->kind, "the filter: " + namesOfKinds())->required();
  command->add_option("--size", arguments->size, "size of the neighbourhood along each axis, in voxels; by default 3");
  command->add_option("--sigma", arguments->sigma, "standard deviation along each axis, in voxels; by default 1");
  command->add_option("--out", arguments->out, "image file to write: .tif, .tiff or .vm")->required();
  command->add_flag("--overwrite", arguments->overwrite, "replace an existing file");
  command->callback([=, &run] { run = [=] { return filter(*arguments); }; });
}
