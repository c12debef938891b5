// Speed of the numeric library's hot paths beside the least that the machine allows.
#include "numeric/fouriertransform.h"
#include "numeric/randomgenerator.h"

#include <benchmark/benchmark.h>
#include <fftw3.h>

namespace
{
template <class T> Vector<T> randomNumbers(int n)
{
  RandomGenerator generator(1);
  Vector<T> v(n);
  v.apply([&generator](T) { return static_cast<T>(generator.uniformLF()); });
  return v;
}

template <class T> void setBytes(benchmark::State& state, int n)
{
  state.SetBytesProcessed(state.iterations() * n * static_cast<long>(sizeof(T)));
}

void copyIn(fftw_complex* buffer, const Vector<double>& re, const Vector<double>& im)
{
  for (int i = 0; i < re.getSize(); ++i)
  {
    buffer[i][0] = re[i];
    buffer[i][1] = im[i];
  }
}

void copyOut(const fftw_complex* buffer, Vector<double>& re, Vector<double>& im)
{
  for (int i = 0; i < re.getSize(); ++i)
  {
    re[i] = buffer[i][0];
    im[i] = buffer[i][1];
  }
}
} // namespace

static void fourierWrapper(benchmark::State& state)
{
  const int n = static_cast<int>(state.range(0));
  const Vector<double> input = randomNumbers<double>(n);
  Vector<double> re(n), im(n);
  for (auto _ : state)
  {
    re = input;
    im = input;
    FourierTransform<double>::computeForward(re, im);
  }
  setBytes<fftw_complex>(state, n);
}

static void fourierByHand(benchmark::State& state)
{
  const int n = static_cast<int>(state.range(0));
  const Vector<double> input = randomNumbers<double>(n);
  Vector<double> re(n), im(n);
  for (auto _ : state)
  {
    re = input;
    im = input;
    fftw_complex* buffer = fftw_alloc_complex(n);
    fftw_plan plan = fftw_plan_dft_1d(n, buffer, buffer, FFTW_FORWARD, FFTW_ESTIMATE);
    copyIn(buffer, re, im);
    fftw_execute(plan);
    copyOut(buffer, re, im);
    fftw_destroy_plan(plan);
    fftw_free(buffer);
  }
  setBytes<fftw_complex>(state, n);
}

static void fourierKeptPlan(benchmark::State& state)
{
  const int n = static_cast<int>(state.range(0));
  const Vector<double> input = randomNumbers<double>(n);
  Vector<double> re(n), im(n);
  fftw_complex* buffer = fftw_alloc_complex(n);
  fftw_plan plan = fftw_plan_dft_1d(n, buffer, buffer, FFTW_FORWARD, FFTW_ESTIMATE);
  for (auto _ : state)
  {
    re = input;
    im = input;
    copyIn(buffer, re, im);
    fftw_execute(plan);
    copyOut(buffer, re, im);
  }
  fftw_destroy_plan(plan);
  fftw_free(buffer);
  setBytes<fftw_complex>(state, n);
}

static void medianOf(benchmark::State& state)
{
  const int n = static_cast<int>(state.range(0));
  const Vector<double> v = randomNumbers<double>(n);
  for (auto _ : state) benchmark::DoNotOptimize(v.median());
  state.SetItemsProcessed(state.iterations() * n);
}

template <class T> static void histogramOf(benchmark::State& state)
{
  const int n = 1'000'000;
  const Vector<T> v = randomNumbers<T>(n);
  const int numBins = static_cast<int>(state.range(0));
  for (auto _ : state) benchmark::DoNotOptimize(v.histogram(T(0), T(1) / static_cast<T>(numBins), numBins));
  setBytes<T>(state, n);
}

template <class T> static void plainSum(benchmark::State& state)
{
  const int n = 1'000'000;
  const Vector<T> v = randomNumbers<T>(n);
  for (auto _ : state)
  {
    T sum = 0;
    for (T x : v) sum += x;
    benchmark::DoNotOptimize(sum);
  }
  setBytes<T>(state, n);
}

template <class T> static void vectorSum(benchmark::State& state)
{
  const int n = 1'000'000;
  const Vector<T> v = randomNumbers<T>(n);
  for (auto _ : state) benchmark::DoNotOptimize(v.sum());
  setBytes<T>(state, n);
}

#define FOURIER_SIZES ->Arg(64)->Arg(1000)->Arg(4096)->Arg(65536)->Arg(1 << 20)
BENCHMARK(fourierByHand) FOURIER_SIZES;
BENCHMARK(fourierWrapper) FOURIER_SIZES;
BENCHMARK(fourierKeptPlan) FOURIER_SIZES;
BENCHMARK(medianOf)->Arg(100'000)->Arg(1'000'000)->Arg(10'000'000);
BENCHMARK(histogramOf<float>)->Arg(10)->Arg(256)->Arg(1000);
BENCHMARK(histogramOf<double>)->Arg(256);
BENCHMARK(plainSum<float>);
BENCHMARK(vectorSum<float>);
BENCHMARK(vectorSum<double>);
