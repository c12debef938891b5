#pragma once

#include <functional>
#include <string>
#include <vector>

/// One timed piece of work, once its input is loaded.
struct TimedWork
{
  std::function<void()> run;           ///< the timed part; allocates its output anew
  double amount = 0;                   ///< units of work per run
  std::string unit;                    ///< of the amount: "Mvoxel"
  std::function<std::string()> result; ///< a check value of the last run, not timed
};

/// A task on an input that other programs do too, so that the times can be compared.
struct TimedTask
{
  std::string task;
  std::string input;
  std::vector<int> threads;
  /// Loads the input from the folder of inputs.
  std::function<TimedWork(const std::string& folder, const std::string& input)> prepare;
};

inline constexpr const char* timedTasksUsage =
    "usage: mirelo-bench --list | --one TASK INPUT PEER THREADS --data DIR [--runs N] [--budget SECONDS]\n";

/// Image files, segmentation, filters and surfaces.
std::vector<TimedTask> imageTasks();
/// Polygons and contours.
std::vector<TimedTask> geometryTasks();
/// Distances of points, random patterns.
std::vector<TimedTask> spatialTasks();

/// Answers `--list`, one line per task, input and number of threads, and `--one TASK INPUT PEER THREADS --data DIR
/// --runs N --budget SECONDS`: a warm-up and up to N timed runs within the budget, as one line of JSON. Gives the exit
/// status.
int runTimedTasks(const std::vector<std::string>& arguments, const std::vector<TimedTask>& tasks);
