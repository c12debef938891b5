#include "bench/timedtask.h"

#include "numeric/exception.h"

#include <algorithm>
#include <chrono>
#include <ctime>
#include <fstream>
#include <iostream>
#include <map>
#include <nlohmann/json.hpp>
#include <omp.h>
#include <stdexcept>

namespace
{
constexpr const char* program = "mirelo"; // under which its times are reported

double wallTime()
{
  return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

double processTime()
{
  return static_cast<double>(std::clock()) / CLOCKS_PER_SEC;
}

/// A size of this process in MiB, by its name in the kernel's status file.
double memory(const std::string& name)
{
  std::ifstream status("/proc/self/status");
  for (std::string line; std::getline(status, line);)
    if (line.starts_with(name)) return std::stod(line.substr(name.size())) / 1024;
  return 0;
}

struct Timing
{
  std::vector<double> wall;
  std::vector<double> process;
};

double median(std::vector<double> values)
{
  std::sort(values.begin(), values.end());
  const std::size_t n = values.size();
  return n % 2 == 1 ? values[n / 2] : (values[n / 2 - 1] + values[n / 2]) / 2;
}

Timing timeRuns(const TimedWork& work, int maxRuns, double budget)
{
  Timing timing;
  double spent = 0;
  for (int run = 0; run <= maxRuns; ++run)
  {
    const double wall = wallTime(), process = processTime();
    work.run();
    const double seconds = wallTime() - wall;
    spent += seconds;
    const bool isWarmUp = run == 0 && seconds < budget / 2;
    if (isWarmUp) continue;
    timing.wall.push_back(seconds);
    timing.process.push_back(processTime() - process);
    if (spent > budget) break;
  }
  return timing;
}

nlohmann::ordered_json measure(const TimedTask& task, int threads, const std::string& folder, int runs, double budget)
{
  omp_set_num_threads(threads);
  const TimedWork work = task.prepare(folder, task.input);
  const double base = memory("VmRSS:");
  std::ofstream("/proc/self/clear_refs") << "5"; // forget the peak so far
  const Timing timing = timeRuns(work, runs, budget);
  const double peak = memory("VmHWM:"), seconds = median(timing.wall);
  return {{"task", task.task},
          {"input", task.input},
          {"peer", program},
          {"threads", threads},
          {"seconds_median", seconds},
          {"seconds_min", std::ranges::min(timing.wall)},
          {"seconds_max", std::ranges::max(timing.wall)},
          {"cpu_median", median(timing.process)},
          {"runs", timing.wall.size()},
          {"samples", timing.wall},
          {"peak_mib", peak},
          {"base_mib", base},
          {"throughput", work.amount / seconds},
          {"amount", work.amount},
          {"throughput_unit", work.unit + "/s"},
          {"result", work.result ? work.result() : ""}};
}

void list(const std::vector<TimedTask>& tasks)
{
  for (const TimedTask& task : tasks)
    for (int threads : task.threads)
      std::cout << task.task << '\t' << task.input << '\t' << program << '\t' << threads << '\n';
}

const TimedTask* find(const std::vector<TimedTask>& tasks, const std::string& task, const std::string& input)
{
  const auto found =
      std::ranges::find_if(tasks, [&](const TimedTask& each) { return each.task == task && each.input == input; });
  return found == tasks.end() ? nullptr : &*found;
}

int usage()
{
  std::cerr << timedTasksUsage;
  return 2;
}
} // namespace

int runTimedTasks(const std::vector<std::string>& arguments, const std::vector<TimedTask>& tasks)
{
  std::map<std::string, std::string> options{{"--data", "."}, {"--runs", "5"}, {"--budget", "8"}};
  std::vector<std::string> words;
  for (std::size_t i = 0; i < arguments.size(); ++i)
  {
    if (options.contains(arguments[i]) && i + 1 < arguments.size())
    {
      options[arguments[i]] = arguments[i + 1];
      ++i;
    }
    else
      words.push_back(arguments[i]);
  }
  if (!words.empty() && words[0] == "--list") return list(tasks), 0;
  if (words.size() != 5 || words[0] != "--one" || words[3] != program) return usage();
  const TimedTask* task = find(tasks, words[1], words[2]);
  if (!task) return usage();
  try
  {
    std::cout << measure(*task, std::stoi(words[4]), options["--data"], std::stoi(options["--runs"]),
                         std::stod(options["--budget"]))
              << "\n";
    return 0;
  }
  catch (const Exception& error)
  {
    std::cerr << "mirelo-bench: " << error.getWhat() << "\n";
  }
  catch (const std::exception& error)
  {
    std::cerr << "mirelo-bench: " << error.what() << "\n";
  }
  return 2;
}
