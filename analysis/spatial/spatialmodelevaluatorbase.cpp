#include "analysis/spatial/spatialmodelevaluatorbase.h"

#include "analysis/spatial/cdftools.h"
#include "numeric/exception.h"

#include <algorithm>
#include <atomic>
#include <cmath>
#include <exception>
#include <omp.h>

namespace
{

/// The curves of simulated patterns by one descriptor, each on the grid up to its own largest distance, beyond which it
/// is 1.
template <class T> class Curves
{
public:
  explicit Curves(int numPatterns) : _cdfs(static_cast<std::size_t>(numPatterns)) {}

  /// \throw UsageError  the curves would take too much memory
  void set(int i, const DistanceCounts<T>& counts)
  {
    constexpr std::size_t maxNumbers = 100000000; // of all curves
    std::vector<T>& cdf = _cdfs[static_cast<std::size_t>(i)];
    cdf = counts.cdf();
    if (cdf.size() > maxNumbers / _cdfs.size())
      throw UsageError("void Curves<T>::set(int, const DistanceCounts<T>&)",
                       "The precision is too small: the curve of each of " + std::to_string(_cdfs.size()) +
                           " simulated patterns would have " + std::to_string(cdf.size()) + " points");
  }

  /// All curves on a grid of one size, one per row; they are given away.
  Matrix<T> onGrid(int gridSize)
  {
    Matrix<T> matrix(static_cast<int>(_cdfs.size()), gridSize);
    for (int i = 0; i < matrix.getSize1(); ++i)
    {
      std::vector<T>& cdf = _cdfs[static_cast<std::size_t>(i)];
      fillRow(cdf, matrix[i]);
      std::vector<T>().swap(cdf);
    }
    return matrix;
  }

  static void fillRow(const std::vector<T>& cdf, Vector<T>& row)
  {
    const auto common = static_cast<std::ptrdiff_t>(std::min(cdf.size(), static_cast<std::size_t>(row.getSize())));
    std::copy_n(cdf.begin(), common, row.begin());
    std::fill(row.begin() + common, row.end(), T(1));
  }

private:
  std::vector<std::vector<T>> _cdfs;
};

template <class T> SpatialEvaluation<T> evaluation(const DistanceCounts<T>& observed, Curves<T>& curves, int gridSize)
{
  constexpr double lowerPercentage = 2.5, upperPercentage = 97.5;
  SpatialEvaluation<T> result;
  result.grid.setSize(gridSize);
  for (int j = 0; j < gridSize; ++j) result.grid[j] = static_cast<T>(j) * observed.getPrecision();
  result.observed.setSize(gridSize);
  Curves<T>::fillRow(observed.cdf(), result.observed);
  const Matrix<T> simulated = curves.onGrid(gridSize);
  result.average = CDFTools<T>::average(simulated);
  const Matrix<T> envelope = CDFTools<T>::percentiles(simulated, {lowerPercentage, upperPercentage});
  result.lower = envelope[0];
  result.upper = envelope[1];
  result.rank = CDFTools<T>::rank(result.observed, result.average, simulated);
  const T numPatterns = static_cast<T>(simulated.getSize1() + 1); // with the observed one
  result.pValue = (numPatterns - result.rank) / numPatterns;
  return result;
}

/// Runs body(i) for i of 0..n-1 on all threads, tells the subject how many are done, and ends with the first error.
template <class Body, class Stop>
void forEachPattern(ProgressSubject& subject, int n, const Body& body, const Stop& stop, const char* where)
{
  std::exception_ptr error;
  std::atomic<bool> hasFailed = false;
  std::atomic<int> numDone = 0;
#pragma omp parallel for schedule(dynamic)
  for (int i = 0; i < n; ++i)
  {
    if (hasFailed || subject.isCancelled()) continue;
    try
    {
      body(i);
      const int done = ++numDone;
      if (omp_get_thread_num() == 0) subject.progress(done);
    }
    catch (...)
    {
      if (hasFailed.exchange(true)) continue;
      error = std::current_exception();
      stop();
    }
  }
  subject.throwIfCancelled(where);
  if (error) std::rethrow_exception(error);
}

} // namespace

template <class T> void SpatialEvaluation<T>::writeTo(DataSet& dataSet) const
{
  dataSet = DataSet(dataSet.getFieldSeparator());
  dataSet.setValues<T>("grid", grid);
  dataSet.setValues<T>("observed", observed);
  dataSet.setValues<T>("average", average);
  dataSet.setValues<T>("lower", lower);
  dataSet.setValues<T>("upper", upper);
}

template <class T> void SpatialModelEvaluatorBase<T>::setPrecision(T precision)
{
  if (!(precision > 0) || !std::isfinite(precision))
    throw ValueError("void SpatialModelEvaluatorBase<T>::setPrecision(T)", "The precision is not a positive number");
  _precision = precision;
}

template <class T> T SpatialModelEvaluatorBase<T>::eval(const Vertices<T>& observed,
                                                        const SpatialDescriptor<T>& descriptor,
                                                        const ShapeSet<T>& simulatedSet, T* pValue, DataSet* dataSet)
{
  return output(compare(observed, {&descriptor}, simulatedSet).front(), pValue, dataSet);
}

template <class T> std::vector<SpatialEvaluation<T>> SpatialModelEvaluatorBase<T>::eval(const Vertices<T>& observed,
                                                                                        const ShapeSet<T>& simulatedSet)
{
  return compare(observed, _descriptors, simulatedSet);
}

template <class T> T SpatialModelEvaluatorBase<T>::output(const Evaluation& evaluation, T* pValue, DataSet* dataSet)
{
  if (pValue) *pValue = evaluation.pValue;
  if (dataSet) evaluation.writeTo(*dataSet);
  return evaluation.rank;
}

template <class T>
std::vector<SpatialEvaluation<T>> SpatialModelEvaluatorBase<T>::compare(const Vertices<T>& observed,
                                                                        const Descriptors& descriptors,
                                                                        const ShapeSet<T>& simulatedSet)
{
  const auto pattern = [&](int i) { return asPattern(simulatedSet[i]); };
  return compare(observed, descriptors, simulatedSet.getSize(), pattern, _precision);
}

template <class T>
std::vector<SpatialEvaluation<T>> SpatialModelEvaluatorBase<T>::compare(const Vertices<T>& observed,
                                                                        const Descriptors& descriptors, int numPatterns,
                                                                        const PatternSource& pattern, T precision)
{
  const char* const where = "std::vector<SpatialEvaluation<T>> SpatialModelEvaluatorBase<T>::compare(const "
                            "Vertices<T>&, const Descriptors&, int, const PatternSource&, T)";
  if (descriptors.empty()) throw UsageError(where, "There is no descriptor");
  if (!(precision > 0)) throw UsageError(where, "There is no precision");
  if (numPatterns < 1) throw UsageError(where, "There is no simulated pattern");
  const ProgressStep step(*this, _stepName, numPatterns);
  const std::size_t numDescriptors = descriptors.size();
  std::vector<DistanceCounts<T>> observedCounts;
  std::vector<std::atomic<int>> gridSizes(numDescriptors);
  for (std::size_t k = 0; k < numDescriptors; ++k)
  {
    descriptors[k]->count(observed, observedCounts.emplace_back(precision));
    gridSizes[k] = observedCounts[k].getGridSize();
  }
  std::vector<Curves<T>> curves(numDescriptors, Curves<T>(numPatterns));
  const auto simulate = [&](int i)
  {
    const Vertices<T> simulated = pattern(i);
    for (std::size_t k = 0; k < numDescriptors; ++k)
    {
      DistanceCounts<T> counts(precision);
      descriptors[k]->count(simulated, counts);
      curves[k].set(i, counts);
      for (int size = gridSizes[k]; size < counts.getGridSize();)
        if (gridSizes[k].compare_exchange_weak(size, counts.getGridSize())) break;
    }
  };
  forEachPattern(
      *this, numPatterns, simulate, [this] { stop(); }, where);
  std::vector<Evaluation> evaluations;
  for (std::size_t k = 0; k < numDescriptors; ++k)
    evaluations.push_back(evaluation(observedCounts[k], curves[k], gridSizes[k]));
  return evaluations;
}

template struct SpatialEvaluation<float>;
template struct SpatialEvaluation<double>;
template struct SpatialEvaluation<long double>;
GEOMETRY_INSTANTIATE_REAL(SpatialModelEvaluatorBase)
