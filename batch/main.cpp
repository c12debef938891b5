#include "batch/commands.h"
#include "image/imagereader.h"

#include <CLI/CLI.hpp>

#include <clocale>
#include <csignal>
#include <exception>
#include <iostream>
#include <locale>
#include <new>
#include <string>
#include <vector>

namespace
{
/// What is wrong with the arguments, in one line. An unknown command is named; the parser would only miss a known one.
std::string describeArguments(const CLI::App& app, const std::vector<std::string>& arguments,
                              const CLI::ParseError& error)
{
  const bool isCommand = !arguments.empty() && !arguments.front().starts_with('-');
  const auto isNamed = [&](const CLI::App* command) { return command->check_name(arguments.front()); };
  const bool isUnknown = isCommand && app.get_subcommands(isNamed).empty();
  return (isUnknown ? "unknown command " + arguments.front() : std::string(error.what())) + "; see mirelo-batch --help";
}

ExitStatus finish(ExitStatus status)
{
  std::cout.flush();
  if (!std::cout) throw BatchError("standard output: not everything could be written");
  return status;
}

ExitStatus parseAndRun(int argc, char** argv)
{
  CLI::App app("Works on stacks of slice images without a window.", "mirelo-batch");
  app.set_version_flag("--version", "mirelo-batch " MIRELO_VERSION, "print the version and exit");
  app.set_help_flag("--help", "print this text and exit");
  app.require_subcommand(1);
  ImageReader::setMagicNumberStream(std::cerr); // nothing but results goes to standard output
  Run run;
  addInfoCommand(app, run);
  addCheckCommand(app, run);
  addConvertCommand(app, run);
  addExportCommand(app, run);
  addMeasureCommand(app, run);
  addRegisterCommand(app, run);
  addImageCommand(app, run);
  addThresholdCommand(app, run);
  addLabelCommand(app, run);
  addFilterCommand(app, run);
  addIsosurfaceCommand(app, run);
  addRenderCommand(app, run);
  addSpatialCommand(app, run);
  try
  {
    app.parse(argc, argv);
  }
  catch (const CLI::Success& request)
  {
    app.exit(request);
    return finish(Done);
  }
  catch (const CLI::ParseError& error)
  {
    throw BatchError(describeArguments(app, {argv + 1, argv + argc}, error));
  }
  return finish(run());
}
} // namespace

int main(int argc, char** argv)
{
  std::signal(SIGXFSZ, SIG_IGN); // a file that may not grow is an error like a full disk, not the end of the program
  std::setlocale(LC_ALL, "C");
  std::locale::global(std::locale::classic());
  try
  {
    return parseAndRun(argc, argv);
  }
  catch (const Exception& error)
  {
    warn(describe(error));
  }
  catch (const std::bad_alloc&)
  {
    warn("there is not enough memory for: " + CLI::detail::join(std::vector<std::string>(argv + 1, argv + argc), " "));
  }
  catch (const std::exception& error)
  {
    warn(error.what());
  }
  return Bad;
}
