// Speed of thresholds, histograms, component labels and filters, on all OpenMP threads, in voxels per second; of active
// contours in vertices moved per second.
#include "image/activecontour/activecontour.h"
#include "image/filters/filterkind.h"
#include "image/histogram.h"
#include "image/segmentation/connectedcomponents.h"
#include "image/segmentation/isodatathresholding.h"
#include "image/segmentation/otsuthresholding.h"
#include "numeric/randomgenerator.h"

#include <benchmark/benchmark.h>

#include <cmath>
#include <numbers>

namespace
{
constexpr int side = 256;

/// Uniform random grey levels.
template <class T> VoxelMatrix<T> greyVolume()
{
  RandomGenerator generator(1);
  VoxelMatrix<T> volume(side, side, side);
  volume.apply([&generator](T) { return static_cast<T>(256 * generator.uniformLF()); });
  return volume;
}

/// Balls (smoothed noise above a level) or, with sigma 0, single voxels; about a third of the volume.
VoxelMatrix<unsigned char> mask(double sigma)
{
  VoxelMatrix<float> volume = greyVolume<float>();
  FilterOptions options;
  options.sigma = sigma;
  findFilterKind("gaussian").make<float>(options)->apply(volume);
  IsodataThresholding<float> step;
  const float level = sigma > 0 ? step.computeThreshold(volume) + 1 : 177;
  return Thresholding<float>::levelSetMask(volume, level);
}

void setItems(benchmark::State& state)
{
  state.SetItemsProcessed(state.iterations() * side * side * side);
}

/// Applies a step to a copy of the volume, which is made while the clock stands.
template <class T> void measure(benchmark::State& state, VoxelMatrixProcessing<T>& step)
{
  const VoxelMatrix<T> volume = greyVolume<T>();
  VoxelMatrix<T> result;
  for (auto _ : state)
  {
    state.PauseTiming();
    result = volume;
    state.ResumeTiming();
    step.apply(result);
  }
  setItems(state);
}
} // namespace

template <class Step, class T> static void thresholding(benchmark::State& state)
{
  Step step;
  step.setThreshold(128);
  measure<T>(state, step);
}

template <class T> static void histogram(benchmark::State& state)
{
  const VoxelMatrix<T> volume = greyVolume<T>();
  for (auto _ : state) benchmark::DoNotOptimize(volume.histogram(Real<T>(-0.5), 1, 256));
  setItems(state);
}

/// The argument is the sigma of mask().
static void labelling(benchmark::State& state)
{
  const VoxelMatrix<unsigned char> objects = mask(static_cast<double>(state.range(0)));
  ProgressSubject subject;
  for (auto _ : state)
  {
    ConnectedComponents components(objects, subject);
    VoxelMatrix<int> labels(side, side, side);
    components.writeLabels(labels, subject);
    benchmark::DoNotOptimize(labels.data());
  }
  setItems(state);
}

/// The argument is the size of the window.
template <class T> static void meanFilter(benchmark::State& state)
{
  FilterOptions options;
  options.size = static_cast<int>(state.range(0));
  measure<T>(state, *findFilterKind("mean").make<T>(options));
}

/// The argument is sigma.
template <class T> static void gaussianFilter(benchmark::State& state)
{
  FilterOptions options;
  options.sigma = static_cast<double>(state.range(0));
  measure<T>(state, *findFilterKind("gaussian").make<T>(options));
}

/// Iterations of a contour of about a thousand vertices around a disc; the argument is their number.
static void activeContour(benchmark::State& state)
{
  constexpr int imageSide = 512, center = 256, radius = 155, numVertices = 1000;
  PixelMatrix<float> image(imageSide, imageSide);
  for (int i = 0; i < imageSide; ++i)
    for (int j = 0; j < imageSide; ++j) image(i, j) = std::hypot(i - center, j - center) < radius ? 200.f : 100.f;
  Curve<double> start(2, numVertices);
  for (int i = 0; i < numVertices; ++i)
  {
    start.data(i)[0] = center + 1.03 * radius * std::cos(2 * std::numbers::pi * i / numVertices);
    start.data(i)[1] = center + 1.03 * radius * std::sin(2 * std::numbers::pi * i / numVertices);
  }
  SnakeConfig config;
  config.reach = config.convergence = 0; // one preparation, all iterations
  config.iterations = static_cast<int>(state.range(0));
  for (auto _ : state)
  {
    Curve<double> curve = start;
    benchmark::DoNotOptimize(ActiveContour(config).apply(image, curve));
  }
  state.SetItemsProcessed(state.iterations() * config.iterations * numVertices);
}

BENCHMARK(thresholding<Thresholding<unsigned char>, unsigned char>);
BENCHMARK(thresholding<Thresholding<float>, float>);
BENCHMARK(thresholding<OtsuThresholding<unsigned char>, unsigned char>);
BENCHMARK(thresholding<OtsuThresholding<float>, float>);
BENCHMARK(thresholding<IsodataThresholding<float>, float>);
BENCHMARK(histogram<unsigned char>);
BENCHMARK(histogram<unsigned short>);
BENCHMARK(histogram<float>);
BENCHMARK(labelling)->Arg(0)->Arg(2);
BENCHMARK(meanFilter<unsigned char>)->Arg(5)->Arg(51);
BENCHMARK(meanFilter<float>)->Arg(5)->Arg(51);
BENCHMARK(gaussianFilter<unsigned char>)->Arg(2);
BENCHMARK(gaussianFilter<float>)->Arg(2)->Arg(10);
BENCHMARK(activeContour)->Arg(1)->Arg(101);
