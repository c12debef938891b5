#include "image/segmentation/marchingcubes.h"

#include <benchmark/benchmark.h>

#include <cmath>
#include <random>

namespace
{
constexpr int size = 128;

/// Waves, most of which the surface passes.
template <class T> VoxelMatrix<T> waves()
{
  VoxelMatrix<T> volume(size, size, size);
  for (int k = 0; k < size; ++k)
    for (int i = 0; i < size; ++i)
      for (int j = 0; j < size; ++j)
        volume(i, j, k) = static_cast<T>(60 + 20 * (std::sin(0.4 * i) + std::sin(0.3 * j) + std::sin(0.35 * k)));
  return volume;
}

/// Noise, in which many cubes are ambiguous.
template <class T> VoxelMatrix<T> noise()
{
  VoxelMatrix<T> volume(size, size, size);
  std::mt19937 engine(1);
  volume.apply([&engine](T) { return static_cast<T>(engine() % 120); });
  return volume;
}

template <class T> void buildMesh(benchmark::State& state, const VoxelMatrix<T>& volume)
{
  MarchingCubes<T> marchingCubes;
  for (auto _ : state) benchmark::DoNotOptimize(marchingCubes.buildMesh(volume, Real<T>(60.5), true).getSize());
  state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(volume.getNumVoxels()));
}

void waves_float(benchmark::State& state)
{
  buildMesh(state, waves<float>());
}
BENCHMARK(waves_float)->Unit(benchmark::kMillisecond);

void waves_uchar(benchmark::State& state)
{
  buildMesh(state, waves<unsigned char>());
}
BENCHMARK(waves_uchar)->Unit(benchmark::kMillisecond);

void noise_float(benchmark::State& state)
{
  buildMesh(state, noise<float>());
}
BENCHMARK(noise_float)->Unit(benchmark::kMillisecond);
} // namespace
