#include "analysis/spatial/cdftools.h"

#include "geometry/coordinates.h"
#include "numeric/exception.h"

#include <algorithm>
#include <cmath>

namespace
{

template <class T> void requireSorted(const Vector<T>& sample, const char* where)
{
  for (int i = 0; i < sample.getSize(); ++i)
    if (std::isnan(sample[i]) || (i > 0 && sample[i] < sample[i - 1]))
      throw UsageError(where, "The sample is not sorted in increasing order");
}

template <class T> void requireSomeCDF(const Matrix<T>& cdfs, const char* where)
{
  if (cdfs.getSize1() == 0) throw SizeError(where, "There is no CDF");
}

} // namespace

template <class T> Vector<T> CDFTools<T>::cdf(const Vector<T>& sample)
{
  requireSorted(sample, "Vector<T> CDFTools<T>::cdf(const Vector<T>&)");
  const int n = sample.getSize();
  Vector<T> result(n);
  for (int i = 0; i < n; ++i) result[i] = static_cast<T>(i + 1) / static_cast<T>(n);
  return result;
}

template <class T> Vector<T> CDFTools<T>::cdf(const Vector<T>& sample, const Vector<T>& grid)
{
  requireSorted(sample, "Vector<T> CDFTools<T>::cdf(const Vector<T>&, const Vector<T>&)");
  const int n = sample.getSize();
  Vector<T> result(grid.getSize());
  for (int j = 0; j < grid.getSize(); ++j)
  {
    const auto count = std::upper_bound(sample.begin(), sample.end(), grid[j]) - sample.begin();
    result[j] = n == 0 ? T(1) : static_cast<T>(count) / static_cast<T>(n);
  }
  return result;
}

template <class T> Vector<T> CDFTools<T>::average(const Matrix<T>& cdfs)
{
  requireSomeCDF(cdfs, "Vector<T> CDFTools<T>::average(const Matrix<T>&)");
  const int n = cdfs.getSize1(), size = cdfs.getSize2();
  std::vector<Wide<T>> sums(static_cast<std::size_t>(size), 0);
  for (int i = 0; i < n; ++i)
    for (int j = 0; j < size; ++j) sums[static_cast<std::size_t>(j)] += cdfs(i, j);
  Vector<T> result(size);
  for (int j = 0; j < size; ++j) result[j] = static_cast<T>(sums[static_cast<std::size_t>(j)] / n);
  return result;
}

template <class T> Vector<T> CDFTools<T>::percentile(const Matrix<T>& cdfs, double percentage)
{
  return percentiles(cdfs, Vector<double>{percentage})[0];
}

template <class T> Matrix<T> CDFTools<T>::percentiles(const Matrix<T>& cdfs, const Vector<double>& percentages)
{
  const char* const where = "Matrix<T> CDFTools<T>::percentiles(const Matrix<T>&, const Vector<double>&)";
  requireSomeCDF(cdfs, where);
  for (const double percentage : percentages)
    if (!(percentage >= 0 && percentage <= 100)) throw RangeError(where, "The percentage is not between 0 and 100");
  const int n = cdfs.getSize1(), size = cdfs.getSize2();
  Matrix<T> result(percentages.getSize(), size);
#pragma omp parallel
  {
    Vector<T> values(n); // of all CDFs at one grid point
#pragma omp for
    for (int j = 0; j < size; ++j)
    {
      for (int i = 0; i < n; ++i) values[i] = cdfs(i, j);
      values.sort();
      for (int k = 0; k < percentages.getSize(); ++k) result(k, j) = values.percentile(percentages[k]);
    }
  }
  return result;
}

template <class T> T CDFTools<T>::deviation(const Vector<T>& cdf, const Vector<T>& average)
{
  if (cdf.getSize() != average.getSize())
    throw SizeError("T CDFTools<T>::deviation(const Vector<T>&, const Vector<T>&)", "The grids have different sizes");
  T largest = 0;
  for (int j = 0; j < cdf.getSize(); ++j)
    if (const T difference = cdf[j] - average[j]; std::abs(difference) > std::abs(largest)) largest = difference;
  return largest;
}

template <class T> T CDFTools<T>::rank(const Vector<T>& observed, const Vector<T>& average, const Matrix<T>& cdfs)
{
  const T deviationObserved = deviation(observed, average);
  T rank = 0;
  for (int i = 0; i < cdfs.getSize1(); ++i)
  {
    const T simulated = deviation(cdfs[i], average);
    rank += simulated < deviationObserved ? T(1) : simulated == deviationObserved ? T(0.5) : T(0);
  }
  return rank;
}

GEOMETRY_INSTANTIATE_REAL(CDFTools)
