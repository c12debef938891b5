// Times tasks that other programs do too, so that both can be measured in one run; see timedtask.h for the calls.
#include "bench/timedtask.h"

#include <iostream>

int main(int argc, char** argv)
{
  const std::vector<std::string> arguments(argv + 1, argv + argc);
  const std::string first = arguments.empty() ? "" : arguments[0];
  if (first == "--version")
    std::cout << "mirelo-bench " MIRELO_VERSION "\n";
  else if (first == "--help")
    std::cout << timedTasksUsage;
  else
  {
    std::vector<TimedTask> tasks = imageTasks();
    for (const std::vector<TimedTask>& others : {geometryTasks(), spatialTasks()})
      tasks.insert(tasks.end(), others.begin(), others.end());
    return runTimedTasks(arguments, tasks);
  }
  return 0;
}
