#pragma once

#include "batch/batcherror.h"

#include <functional>

namespace CLI
{
class App;
}

/// Gives the exit status of the command that the arguments chose.
using Run = std::function<ExitStatus()>;

/// Each declares one subcommand with its arguments and, when the arguments choose it, sets what is to be run.
void addInfoCommand(CLI::App& app, Run& run);
void addCheckCommand(CLI::App& app, Run& run);
void addConvertCommand(CLI::App& app, Run& run);
void addExportCommand(CLI::App& app, Run& run);
void addMeasureCommand(CLI::App& app, Run& run);
void addRegisterCommand(CLI::App& app, Run& run);
void addImageCommand(CLI::App& app, Run& run);
void addThresholdCommand(CLI::App& app, Run& run);
void addLabelCommand(CLI::App& app, Run& run);
void addFilterCommand(CLI::App& app, Run& run);
void addIsosurfaceCommand(CLI::App& app, Run& run);
void addRenderCommand(CLI::App& app, Run& run);
void addSpatialCommand(CLI::App& app, Run& run);
