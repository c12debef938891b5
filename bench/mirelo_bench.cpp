// Times tasks that other programs do too, so that both can be measured in one run; see timedtask.h for the calls.
#include "bench/timedtask.h"

#include <iostream>

int main(int argc, char** argv)
{
  const std::vector<std::string> arguments(argv + 1, argv + argc);
  if (arguments.size() == 1 && arguments[0] == "--version")
  {
    std::cout << "mirelo-bench " MIRELO_VERSION "\n";
    return 0;
  }
  return runTimedTasks(arguments, imageTasks());
}
