#include "analysis/measures/stackmeasures.h"
#include "model/model.h"
#include "model/modelitem.h"
#include "model/stack.h"
#include "model/stackslice.h"

#include <benchmark/benchmark.h>
#include <cmath>
#include <memory>
#include <numbers>

namespace
{
/// Items of 100 vertices: a closed contour on each slice, or ten.
struct ManyItems
{
  ManyItems(MPrimitive geometry, int numItems, int itemsPerSlice)
  {
    auto owned = std::make_unique<Model>("model");
    owned->getProperties().setGeometry(geometry);
    model = &stack.addModel(std::move(owned));
    stack.setDefaultRelativePosition(1);
    for (int i = 0; i < numItems; ++i)
    {
      if (i % itemsPerSlice == 0) stack.addSlice(std::make_unique<StackSlice>());
      draw(i, 30 * (i % itemsPerSlice));
    }
  }

  void draw(int item, int center)
  {
    Vertices<int> vertices(2, 100);
    int* const pixels = vertices.data();
    for (int k = 0; k < 100; ++k)
    {
      const double angle = 2 * std::numbers::pi * k / 100, radius = 100 + 9 * std::sin(5 * angle + item);
      pixels[2 * k] = center + static_cast<int>(std::lround(radius * std::cos(angle)));
      pixels[2 * k + 1] = static_cast<int>(std::lround(radius * std::sin(angle)));
    }
    ModelItem::create(*model, *stack.getSlice(stack.getNumSlices() - 1)).setVertices(std::move(vertices));
  }

  Stack stack;
  Model* model = nullptr;
};

void measureItems(benchmark::State& state)
{
  const ManyItems items(static_cast<MPrimitive>(state.range(0)), static_cast<int>(state.range(1)), 10);
  ProgressSubject progress;
  for (auto _ : state) benchmark::DoNotOptimize(itemTable(items.stack, *items.model, progress).getNumRows());
  state.SetItemsProcessed(state.iterations() * state.range(1));
}

void measureWholeModel(benchmark::State& state)
{
  const ManyItems items(static_cast<MPrimitive>(state.range(0)), static_cast<int>(state.range(1)),
                        static_cast<int>(state.range(2)));
  for (auto _ : state) benchmark::DoNotOptimize(measureModel(*items.model).volume);
  state.SetItemsProcessed(state.iterations() * state.range(1));
}

void writeItems(benchmark::State& state)
{
  const ManyItems items(MPrimitive::Polygon, static_cast<int>(state.range(0)), 10);
  ProgressSubject progress;
  const MeasureTable table = itemTable(items.stack, *items.model, progress);
  for (auto _ : state) benchmark::DoNotOptimize(table.toCsv().size());
  state.SetItemsProcessed(state.iterations() * state.range(0));
}

constexpr int polygon = static_cast<int>(MPrimitive::Polygon), polyline = static_cast<int>(MPrimitive::Polyline),
              points = static_cast<int>(MPrimitive::Polypoint);
} // namespace

// Items per second; the second number counts the items, the third those of a slice: with one the surface is measured.
BENCHMARK(measureItems)
    ->Args({polygon, 100000})
    ->Args({polyline, 100000})
    ->Args({points, 100000})
    ->Unit(benchmark::kMillisecond);
BENCHMARK(measureWholeModel)
    ->Args({polygon, 100000, 10})
    ->Args({polygon, 100000, 1})
    ->Args({points, 100000, 10})
    ->Unit(benchmark::kMillisecond);
BENCHMARK(writeItems)->Arg(100000)->Unit(benchmark::kMillisecond);
