#pragma once

#include "analysis/spatial/spatialdescriptor.h"
#include "numeric/dataset.h"
#include "numeric/progresssubject.h"

#include <functional>
#include <string>
#include <vector>

/// How a pattern compares with simulated ones by one descriptor. The curves are CDFs on the grid 0, p, 2 p, ... of the
/// precision p, up to the largest distance of all patterns.
template <class T> struct SpatialEvaluation
{
  /// Number of the simulated deviations from the average below the observed one, equal ones counted by half. The
  /// deviation of a CDF is its signed difference of largest magnitude.
  T rank = 0;
  /// 1 - rank / (N + 1) for N simulated patterns: small when short distances are more frequent than simulated.
  T pValue = 0;
  Vector<T> grid;
  Vector<T> observed;
  Vector<T> average; ///< of the simulated CDFs
  Vector<T> lower;   ///< their 2.5th percentile
  Vector<T> upper;   ///< their 97.5th percentile

  /// Replaces the columns "grid", "observed", "average", "lower" and "upper".
  void writeTo(DataSet& dataSet) const;
};

/// Compares an observed pattern with simulated ones by their distance functions.
///
/// The simulated patterns are worked on by several threads; the results do not depend on their number.
template <class T> class SpatialModelEvaluatorBase : public virtual ProgressSubject
{
public:
  using Evaluation = SpatialEvaluation<T>;

  /// The step of the distance grid. \throw ValueError  it is no positive number
  void setPrecision(T precision);
  T getPrecision() const { return _precision; }

  /// What the step is called that tells its progress; "Simulating" at first.
  void setStepName(const std::string& name) { _stepName = name; }

  /// Descriptors are borrowed. \throw UsageError  at evaluation, when there is none
  void addDescriptor(const SpatialDescriptor<T>& descriptor) { _descriptors.push_back(&descriptor); }
  /// Replaces all descriptors by one.
  void setDescriptor(const SpatialDescriptor<T>& descriptor) { _descriptors = {&descriptor}; }
  int getNumDescriptors() const { return static_cast<int>(_descriptors.size()); }

  /// Compares by one descriptor. Gives the rank, and the p-value and curves where asked for.
  /// \throw UsageError  there is no precision or no simulated pattern, or the precision is too small for that many
  /// \throw Cancelled  this step was
  T eval(const Vertices<T>& observed, const SpatialDescriptor<T>& descriptor, const ShapeSet<T>& simulatedSet,
         T* pValue = nullptr, DataSet* dataSet = nullptr);
  /// Compares by each of the descriptors, in their order.
  std::vector<Evaluation> eval(const Vertices<T>& observed, const ShapeSet<T>& simulatedSet);

protected:
  /// Gives simulated pattern i. Several threads call it at once.
  using PatternSource = std::function<Vertices<T>(int)>;

  using Descriptors = std::vector<const SpatialDescriptor<T>*>;

  std::vector<Evaluation> compare(const Vertices<T>& observed, const Descriptors& descriptors, int numPatterns,
                                  const PatternSource& pattern, T precision);
  const Descriptors& getDescriptors() const { return _descriptors; }
  /// The rank; p-value and curves go where they are asked for.
  static T output(const Evaluation& evaluation, T* pValue, DataSet* dataSet);
  /// Called once an error has ended the simulation in one of the threads.
  virtual void stop() {}

private:
  std::vector<Evaluation> compare(const Vertices<T>& observed, const Descriptors& descriptors,
                                  const ShapeSet<T>& simulatedSet);

  Descriptors _descriptors;
  T _precision = 0;
  std::string _stepName = "Simulating";
};

extern template struct SpatialEvaluation<float>;
extern template struct SpatialEvaluation<double>;
extern template struct SpatialEvaluation<long double>;
GEOMETRY_EXTERN_TEMPLATE_REAL(SpatialModelEvaluatorBase)
