// Time of the automatic alignment of one slice on another, images in memory, on all OpenMP threads; in pixels of an
// image per second.
#include "geometry/reconstruction/slicealignment.h"
#include "tests/support/specimens.h"

#include <benchmark/benchmark.h>

namespace
{
void alignPair(benchmark::State& state)
{
  const int side = static_cast<int>(state.range(0));
  const double pixel = 256.0 / side;
  const SpecimenView view = {side, side, pixel, pixel, 5};
  Stack stack;
  addSpecimenSlice(stack, view, {120, 130, 10});
  const StackSlice& slice = addSpecimenSlice(stack, view, {140, 120, 200});
  for (auto _ : state) benchmark::DoNotOptimize(alignOnPreviousSlice(slice, false));
  state.SetItemsProcessed(state.iterations() * side * side);
}
} // namespace

BENCHMARK(alignPair)->Arg(512)->Arg(2048)->Unit(benchmark::kMillisecond)->UseRealTime();
