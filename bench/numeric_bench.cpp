// Speed of the numeric library's hot paths beside the least that the machine allows.
#include "numeric/fouriertransform.h"
#include "numeric/randomgenerator.h"

#include <benchmark/benchmark.h>
#include <chrono>
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

/// A buffer and a plan as one would write them by hand.
class KeptPlan
{
public:
  explicit KeptPlan(int n)
    : _n(n), _buffer(fftw_alloc_complex(n)), _plan(fftw_plan_dft_1d(n, _buffer, _buffer, FFTW_FORWARD, FFTW_ESTIMATE))
  {
  }
  KeptPlan(const KeptPlan&) = delete;
  KeptPlan& operator=(const KeptPlan&) = delete;
  ~KeptPlan()
  {
    fftw_destroy_plan(_plan);
    fftw_free(_buffer);
  }

  void run(Vector<double>& re, Vector<double>& im) const
  {
    for (int i = 0; i < _n; ++i)
    {
      _buffer[i][0] = re[i];
      _buffer[i][1] = im[i];
    }
    fftw_execute(_plan);
    for (int i = 0; i < _n; ++i)
    {
      re[i] = _buffer[i][0];
      im[i] = _buffer[i][1];
    }
  }

private:
  int _n;
  fftw_complex* _buffer;
  fftw_plan _plan;
};

/// Time of one transform of the input as real and as imaginary part.
template <class Transform> double secondsOf(const Vector<double>& input, const Transform& transform)
{
  using Clock = std::chrono::steady_clock;
  static Vector<double> re, im;
  re = input;
  im = input;
  const Clock::time_point start = Clock::now();
  transform(re, im);
  return std::chrono::duration<double>(Clock::now() - start).count();
}
} // namespace

/// The wrapper, the same FFTW calls by hand, and a plan kept from call to call, in turns, so that what else the machine
/// does falls on all alike. The time is the wrapper's.
static void fourierForward(benchmark::State& state)
{
  const int n = static_cast<int>(state.range(0));
  const Vector<double> input = randomNumbers<double>(n);
  const KeptPlan kept(n);
  double wrapper = 0, byHand = 0, keptPlan = 0;
  for (auto _ : state)
  {
    const double time = secondsOf(input, [](auto& re, auto& im) { FourierTransform<double>::computeForward(re, im); });
    byHand += secondsOf(input, [n](auto& re, auto& im) { KeptPlan(n).run(re, im); });
    keptPlan += secondsOf(input, [&kept](auto& re, auto& im) { kept.run(re, im); });
    wrapper += time;
    state.SetIterationTime(time);
  }
  state.counters["wrapper/byHand"] = wrapper / byHand;
  state.counters["wrapper/keptPlan"] = wrapper / keptPlan;
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

BENCHMARK(fourierForward)->Arg(64)->Arg(1000)->Arg(4096)->Arg(65536)->Arg(1 << 20)->UseManualTime();
BENCHMARK(medianOf)->Arg(100'000)->Arg(1'000'000)->Arg(10'000'000);
BENCHMARK(histogramOf<float>)->Arg(10)->Arg(256)->Arg(1000);
BENCHMARK(histogramOf<double>)->Arg(256);
BENCHMARK(plainSum<float>);
BENCHMARK(vectorSum<float>);
BENCHMARK(vectorSum<double>);
