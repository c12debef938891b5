// Speed and memory of reading and writing a large stack file: 1,000 slices, 100,000 items, 10 million vertices.
#include "image/imagesourcefile.h"
#include "model/io/stackreader.h"
#include "model/io/stackwriter.h"
#include "numeric/randomgenerator.h"

#include <benchmark/benchmark.h>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <malloc.h>
#include <string>
#include <unistd.h>

namespace
{
struct StackSize
{
  int numSlices = 1000;
  int numModels = 20;
  int numItems = 100000;
  int numVertices = 100; // of each item
};

std::unique_ptr<Stack> largeStack(const StackSize& size)
{
  RandomGenerator random(1);
  auto stack = std::make_unique<Stack>();
  for (int i = 0; i < size.numSlices; ++i)
  {
    StackSlice& slice = stack->addSlice(std::make_unique<StackSlice>());
    slice.setName("slice " + std::to_string(i));
    slice.setImageSource(ImageSourceFile("slice-" + std::to_string(i) + ".tif"));
  }
  for (int i = 0; i < size.numModels; ++i) stack->addModel(std::make_unique<Model>("model " + std::to_string(i)));
  for (int i = 0; i < size.numItems; ++i)
  {
    BufferVector<int> coordinates(2 * static_cast<std::size_t>(size.numVertices));
    for (int& coordinate : coordinates) coordinate = static_cast<int>(random.uniformL(100000));
    ModelItem::create(*stack->getModel(i % size.numModels), *stack->getSlice(i % size.numSlices))
        .setVertices(Vertices<int>(2, std::move(coordinates)));
  }
  return stack;
}

/// A file of this process, removed at the end.
class ScratchFile
{
public:
  ScratchFile() : _path(std::filesystem::temp_directory_path() / ("mirelo-bench-" + std::to_string(getpid()) + ".sdf"))
  {
  }
  ScratchFile(const ScratchFile&) = delete;
  ScratchFile& operator=(const ScratchFile&) = delete;
  ~ScratchFile() { std::filesystem::remove(_path); }

  std::string getPath() const { return _path.string(); }
  long getLength() const { return static_cast<long>(std::filesystem::file_size(_path)); }

private:
  std::filesystem::path _path;
};

/// A number of /proc/self/status, in bytes.
double processStatus(const std::string& name)
{
  std::ifstream status("/proc/self/status");
  for (std::string line; std::getline(status, line);)
    if (line.starts_with(name + ":")) return 1024 * std::stod(line.substr(name.size() + 1));
  return 0;
}

void resetPeakMemory()
{
  std::ofstream("/proc/self/clear_refs") << "5";
}
} // namespace

static void readLargeStack(benchmark::State& state)
{
  const ScratchFile file;
  StackWriter().write(*largeStack({}), file.getPath());
  double peak = 0, kept = 0;
  for (auto _ : state)
  {
    state.PauseTiming();
    malloc_trim(0);
    resetPeakMemory();
    const double before = processStatus("VmRSS");
    auto stack = std::make_unique<Stack>();
    state.ResumeTiming();
    StackReader().read(*stack, file.getPath());
    state.PauseTiming();
    peak = processStatus("VmHWM") - before;
    malloc_trim(0);
    kept = processStatus("VmRSS") - before;
    stack.reset();
    state.ResumeTiming();
  }
  state.SetBytesProcessed(state.iterations() * file.getLength());
  state.counters["peakMB"] = peak / 1e6;
  state.counters["modelMB"] = kept / 1e6;
  state.counters["peak/model"] = peak / kept;
}

/// The time ends with the last items, before the file is flushed to the disk.
static void writeLargeStack(benchmark::State& state)
{
  using Clock = std::chrono::steady_clock;
  const ScratchFile file;
  const std::unique_ptr<Stack> stack = largeStack({});
  Clock::time_point written;
  class FlushClock : public ProgressObserver
  {
  public:
    explicit FlushClock(Clock::time_point& time) : _time(time) {}
    void started(const std::string&) override {}
    void progressed(double share) override
    {
      if (share < 1) _time = Clock::now(); // 1 is told behind the flush
    }
    void finished() override {}

  private:
    Clock::time_point& _time;
  } flushClock(written);
  for (auto _ : state)
  {
    StackWriter writer;
    writer.addObserver(flushClock);
    const Clock::time_point start = Clock::now();
    writer.write(*stack, file.getPath());
    state.SetIterationTime(std::chrono::duration<double>(written - start).count());
  }
  state.SetBytesProcessed(state.iterations() * file.getLength());
}

/// Whatever there are many of, the time per object must not grow.
static void readManyObjects(benchmark::State& state)
{
  const ScratchFile file;
  const auto count = [&state](int i) { return static_cast<int>(state.range(i)); };
  StackWriter().write(*largeStack({count(0), count(1), count(2), 4}), file.getPath());
  for (auto _ : state)
  {
    Stack stack;
    StackReader().read(stack, file.getPath());
  }
  state.SetItemsProcessed(state.iterations() * (state.range(0) + state.range(1) + state.range(2)));
}

static void writeManyObjects(benchmark::State& state)
{
  const ScratchFile file;
  const auto count = [&state](int i) { return static_cast<int>(state.range(i)); };
  const std::unique_ptr<Stack> stack = largeStack({count(0), count(1), count(2), 4});
  for (auto _ : state) StackWriter().write(*stack, file.getPath());
  state.SetItemsProcessed(state.iterations() * (state.range(0) + state.range(1) + state.range(2)));
}

/// One statement with all vertices.
static void readOneItem(benchmark::State& state)
{
  const ScratchFile file;
  StackWriter().write(*largeStack({1, 1, 1, static_cast<int>(state.range(0))}), file.getPath());
  for (auto _ : state)
  {
    Stack stack;
    StackReader().read(stack, file.getPath());
  }
  state.SetBytesProcessed(state.iterations() * file.getLength());
}

static void countsOfObjects(benchmark::internal::Benchmark* benchmark)
{
  benchmark->ArgNames({"slices", "models", "items"})->Unit(benchmark::kMillisecond);
  for (const long many : {10000L, 100000L})
  {
    benchmark->Args({many, 1, 1});
    benchmark->Args({1, many, 1});
    benchmark->Args({1, 1, many});
    benchmark->Args({many, many, many});
  }
}

BENCHMARK(readLargeStack)->Unit(benchmark::kMillisecond);
BENCHMARK(writeLargeStack)->Unit(benchmark::kMillisecond)->UseManualTime();
BENCHMARK(readManyObjects)->Apply(countsOfObjects);
BENCHMARK(writeManyObjects)->Apply(countsOfObjects);
BENCHMARK(readOneItem)->Arg(100000)->Arg(1000000)->Arg(10000000)->Unit(benchmark::kMillisecond);
