// What every benchmark program does with its arguments.
#include <benchmark/benchmark.h>

#include <cstring>
#include <iostream>

int main(int argc, char** argv)
{
  if (argc == 2 && std::strcmp(argv[1], "--version") == 0)
  {
    std::cout << "mirelo benchmarks " MIRELO_VERSION "\n";
    return 0;
  }
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 2;
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
