#include "batch/commands.h"
#include "batch/stackfile.h"
#include "batch/terminalprogress.h"
#include "model/io/stackwriter.h"
#include "model/stack.h"

#include <CLI/CLI.hpp>

namespace
{
struct Arguments
{
  std::string in;
  std::string out;
  bool overwrite = false;
};

ExitStatus convert(const Arguments& arguments)
{
  if (!arguments.out.ends_with(".sdf")) throw BatchError(arguments.out + ": the name of a stack file ends with .sdf");
  requireWritable(arguments.out, arguments.overwrite);
  const StackFile file = requireStackFile(arguments.in);
  StackWriter writer;
  TerminalProgress progress;
  writer.addObserver(progress);
  writer.write(*file.stack, arguments.out);
  for (const std::string& line : writer.getWarnings()) warn(arguments.out + ": " + line);
  return Done;
}
} // namespace

void addConvertCommand(CLI::App& app, Run& run)
{
  auto arguments = std::make_shared<Arguments>();
  CLI::App* command = app.add_subcommand("convert", "Read a stack file and write it in the current format");
  command->add_option("in", arguments->in, "stack file to read")->required();
  command->add_option("out", arguments->out, "stack file to write")->required();
  command->add_flag("--overwrite", arguments->overwrite, "replace an existing file");
  command->callback([=, &run] { run = [=] { return convert(*arguments); }; });
}
