#include "batch/commands.h"
#include "batch/stackfile.h"
#include "model/stack.h"

#include <CLI/CLI.hpp>

#include <iostream>

namespace
{
ExitStatus check(const std::string& filename)
{
  const StackFile file = readStackFile(filename);
  for (const std::string& line : file.log) std::cout << line << "\n";
  if (file.isFatal) return Bad;
  if (!file.isStack) throw BatchError(filename + ": not a stack file (no STACK statement was read)");
  return file.log.empty() ? Done : Finding;
}
} // namespace

void addCheckCommand(CLI::App& app, Run& run)
{
  auto filename = std::make_shared<std::string>();
  CLI::App* command = app.add_subcommand(
      "check", "Print what the reader has to say about a stack file: exit status 0 nothing, 1 something, 2 unreadable");
  command->add_option("stack", *filename, "stack file")->required();
  command->callback([=, &run] { run = [=] { return check(*filename); }; });
}
