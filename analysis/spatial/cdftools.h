#pragma once

#include "geometry/coordinatetypes.h"
#include "numeric/matrix.h"

/// Arithmetic of empirical cumulative distribution functions (CDF). Several of them on one grid are the rows of a
/// matrix.
template <class T> class CDFTools
{
public:
  /// Of a sorted sample: i / n at the value number i, counted from 1. \throw UsageError  the sample is not sorted
  static Vector<T> cdf(const Vector<T>& sample);
  /// At each grid value the share of the values that are not above it; 1 everywhere for an empty sample.
  /// \throw UsageError  the sample is not sorted
  static Vector<T> cdf(const Vector<T>& sample, const Vector<T>& grid);
  /// The mean of the CDFs, point by point. \throw SizeError  there is none
  static Vector<T> average(const Matrix<T>& cdfs);
  /// A percentile of the CDFs, point by point, by the rule of Vector<T>::percentile().
  /// \throw SizeError  there is no CDF   \throw RangeError  the percentage is not between 0 and 100
  static Vector<T> percentile(const Matrix<T>& cdfs, double percentage);
  /// The same for several percentages, one per row.
  static Matrix<T> percentiles(const Matrix<T>& cdfs, const Vector<double>& percentages);
  /// The signed difference of largest magnitude from the average, the first of equally large ones; 0 on an empty grid.
  /// \throw SizeError  the grids differ in size
  static T deviation(const Vector<T>& cdf, const Vector<T>& average);
  /// How many of the CDFs have a deviation from the average below that of the observed one, those of equal deviation
  /// counted by half. \throw SizeError  the grids differ in size
  static T rank(const Vector<T>& observed, const Vector<T>& average, const Matrix<T>& cdfs);
};

GEOMETRY_EXTERN_TEMPLATE_REAL(CDFTools)
