#include "batch/commands.h"
#include "batch/stackfile.h"
#include "batch/terminalprogress.h"
#include "geometry/reconstruction/slicealignment.h"
#include "model/io/stackwriter.h"
#include "model/stack.h"
#include "model/stackslice.h"

#include <CLI/CLI.hpp>

#include <cstdio>
#include <iostream>

namespace
{
struct Arguments
{
  std::string in;
  std::string out;
  bool isDark = false;
  bool overwrite = false;
};

std::string lineOf(const StackSlice& slice, const SliceAlignment& alignment)
{
  char numbers[128];
  std::snprintf(numbers, sizeof numbers, "\t%d\t%d\t%.3f\t%.4f\t%.4f\n", alignment.registration.getHorizontalShift(),
                alignment.registration.getVerticalShift(), static_cast<double>(alignment.registration.getAngle()),
                alignment.correlationBefore, alignment.correlationAfter);
  return slice.getName() + numbers;
}

/// Aligns all slices but the first and prints a line for each. \return how many correlate less than before
int alignSlices(Stack& stack, bool isDark)
{
  TerminalProgress progress;
  ProgressSubject subject;
  subject.addObserver(progress);
  const ProgressStep step(subject, "Registering", stack.getNumSlices());
  int numWorse = 0;
  std::cout << "slice\thorizontalShift\tverticalShift\tangle\tcorrelationBefore\tcorrelationAfter\n";
  for (int i = 1; i < stack.getNumSlices(); ++i)
  {
    StackSlice& slice = *stack.getSlice(i);
    const SliceAlignment alignment = alignOnPreviousSlice(slice, isDark);
    if (!alignment.hasMass)
      warn(slice.getName() + ": there is no specimen on it or on the slice before; its registration is null");
    slice.setRegistration(alignment.registration);
    stack.setLastRegisteredSlice(slice.getName());
    std::cout << lineOf(slice, alignment);
    numWorse += alignment.correlationAfter < alignment.correlationBefore;
    subject.progress(i + 1);
  }
  return numWorse;
}

ExitStatus registerStack(const Arguments& arguments)
{
  if (!arguments.out.ends_with(".sdf")) throw BatchError(arguments.out + ": the name of a stack file ends with .sdf");
  requireWritable(arguments.out, arguments.overwrite);
  const StackFile file = requireStackFile(arguments.in);
  const int numWorse = alignSlices(*file.stack, arguments.isDark);
  StackWriter writer;
  writer.write(*file.stack, arguments.out);
  for (const std::string& line : writer.getWarnings()) warn(arguments.out + ": " + line);
  std::cout << std::flush; // the table comes first
  if (numWorse > 0)
    warn(std::to_string(numWorse) + " of " + std::to_string(file.stack->getNumSlices() - 1) +
         " slices correlate less than before: look at them");
  return Done;
}
} // namespace

void addRegisterCommand(CLI::App& app, Run& run)
{
  auto arguments = std::make_shared<Arguments>();
  CLI::App* command =
      app.add_subcommand("register", "Align every slice on the one before by the principal axes of their images");
  command->add_option("stack", arguments->in, "stack file to read")->required();
  command->add_option("--out", arguments->out, "stack file to write")->required();
  command->add_flag("--dark", arguments->isDark, "the specimen is darker than its background");
  command->add_flag("--overwrite", arguments->overwrite, "replace an existing file");
  command->callback([=, &run] { run = [=] { return registerStack(*arguments); }; });
}
