#include "image/filters/gaussianfilter.h"

#include "image/filters/separablefilter.h"
#include "numeric/targetclones.h"

#include <cmath>

namespace
{
constexpr double numSigmas = 4; // beyond which weights are neglected

/// out[j] = weights[0] line(r)[j] + weights[1] (line(r - 1)[j] + line(r + 1)[j]) + ... for j < n. Four distances at a
/// time, so that out is not loaded and stored for each of them.
template <class A, class Line> __attribute__((always_inline)) inline void
addWeighted(const Line& line, const A* weights, int r, long n, A* __restrict out)
{
  const A* const centre = line(r);
  const A w0 = weights[0];
  for (long j = 0; j < n; ++j) out[j] = w0 * centre[j];
  int d = 1;
  for (; d + 3 <= r; d += 4)
  {
    const A *const a1 = line(r - d), *const b1 = line(r + d), *const a2 = line(r - d - 1), *const b2 = line(r + d + 1);
    const A *const a3 = line(r - d - 2), *const b3 = line(r + d + 2), *const a4 = line(r - d - 3),
                   *const b4 = line(r + d + 3);
    const A w1 = weights[d], w2 = weights[d + 1], w3 = weights[d + 2], w4 = weights[d + 3];
    for (long j = 0; j < n; ++j)
      out[j] += (w1 * (a1[j] + b1[j]) + w2 * (a2[j] + b2[j])) + (w3 * (a3[j] + b3[j]) + w4 * (a4[j] + b4[j]));
  }
  for (; d <= r; ++d)
  {
    const A *const a = line(r - d), *const b = line(r + d);
    const A w = weights[d];
    for (long j = 0; j < n; ++j) out[j] += w * (a[j] + b[j]);
  }
}

#define IMAGE_WEIGHTED_SUMS(A)                                                                                         \
  MIRELO_TARGET_CLONES void sumAcross(const A* const* lines, const A* weights, int r, long n, A* __restrict out)       \
  {                                                                                                                    \
    addWeighted([lines](int d) { return lines[d]; }, weights, r, n, out);                                              \
  }                                                                                                                    \
  MIRELO_TARGET_CLONES void sumAlong(const A* x, const A* weights, int r, long n, A* __restrict out)                   \
  {                                                                                                                    \
    addWeighted([x](int d) { return x + d; }, weights, r, n, out);                                                     \
  }
IMAGE_WEIGHTED_SUMS(float)
IMAGE_WEIGHTED_SUMS(double)
IMAGE_WEIGHTED_SUMS(long double)

/// Type in which weighted elements of type T are summed up.
template <class T> using Sum = std::conditional_t<sizeof(T) <= 2 || std::is_same_v<T, float>, float, Real<T>>;

int radiusOf(double sigma)
{
  return static_cast<int>(std::lround(numSigmas * sigma));
}

template <class A> class Weights : public LineFilter<A>
{
public:
  explicit Weights(double sigma)
  {
    double sum = 0;
    std::vector<double> weights{1};
    for (int d = 1; d <= radiusOf(sigma); ++d) weights.push_back(std::exp(-0.5 * (d / sigma) * (d / sigma)));
    for (std::size_t d = weights.size(); d-- > 1;) sum += 2 * weights[d];
    for (const double weight : weights) _weights.push_back(static_cast<A>(weight / (sum + 1)));
  }

  int radius() const override { return static_cast<int>(_weights.size()) - 1; }

  void along(A* x, long n, A* out) const override { sumAlong(x, _weights.data(), radius(), n, out); }
  void across(const A* const* lines, int count, long n, A* const* out) const override
  {
    for (int d = 0; d < count; ++d) sumAcross(lines + d, _weights.data(), radius(), n, out[d]);
  }

private:
  std::vector<A> _weights; // by distance
};
} // namespace

template <class T> void GaussianFilter<T>::setSigma(double rows, double columns, double planes)
{
  for (const double sigma : {rows, columns, planes})
    if (!(sigma >= 0 && sigma <= largestRadius / numSigmas))
      throw ValueError("void GaussianFilter<T>::setSigma(double, double, double)",
                       "The sigma of a Gaussian filter must be from 0 to " +
                           std::to_string(static_cast<int>(largestRadius / numSigmas)));
  _sigmas[0] = rows;
  _sigmas[1] = columns;
  _sigmas[2] = planes;
}

template <class T> int GaussianFilter<T>::numSlicesKept(const SliceView<T>& image) const
{
  return 2 * radiusOf(_sigmas[image.sliceAxis()]) + 1;
}

template <class T> int GaussianFilter<T>::bytesPerPixelKept() const
{
  return sizeof(Sum<T>);
}

template <class T> void GaussianFilter<T>::filter(const SliceView<T>& image)
{
  using A = Sum<T>;
  const auto weightsFor = [&](typename SliceView<T>::Axis axis)
  { return Weights<A>(image.size(axis) == 1 ? 0 : _sigmas[axis]); };
  const Weights<A> alongColumns = weightsFor(SliceView<T>::Columns), acrossLines = weightsFor(image.lineAxis()),
                   acrossSlices = weightsFor(image.sliceAxis());
  filterSeparably<T, A, A>(image, {alongColumns, acrossLines, acrossSlices}, 1, *this);
}

IMAGE_INSTANTIATE(GaussianFilter)

extern const FilterKind gaussianFilterKind = filterKind<GaussianFilter>("gaussian", FilterOption::Sigma);
