#pragma once

#include "image/filters/neighbourhoodfilter.h"

/// A filter along one axis: every result is a function of 2 radius() + 1 consecutive values of type A; those of other
/// lines may be of a smaller type S.
template <class A, class S = A> class LineFilter
{
public:
  virtual ~LineFilter() = default;
  virtual int radius() const = 0;
  /// Results for multiples of this many consecutive places cost least.
  virtual int period() const { return 1; }
  /// out[j] from x[j] to x[j + 2 radius()], for j < n; may change x. They do not overlap.
  virtual void along(A* x, long n, A* out) const = 0;
  /// out[d][j] from lines[d][j] to lines[d + 2 radius()][j], for d < count and j < n. out[d] and lines do not overlap.
  virtual void across(const S* const* lines, int count, long n, A* const* out) const = 0;
};

/// The filters of a separable filter along the three axes of an image. What the first two make of the slices is kept as
/// values of type S: when that is not A, multiplied by a scale.
template <class A, class S = A> struct LineFilters
{
  const LineFilter<A>& alongColumns; // from column to column
  const LineFilter<A>& acrossLines;
  const LineFilter<A, S>& acrossSlices;
  Real<A> scaleOfKept = 1;
};

/// Filters an image along its three axes in turn, with intermediate results of type A; the last one is multiplied by
/// `scale` and, for integers, rounded to the nearest.
/// Exists for A = double and the integers, float and double; A = float for integers below 32 bits and float; A = int
/// for integers below 32 bits; A = long double for long double. S is A, or float for A = double and T = float.
template <class T, class A, class S> void filterSeparably(const SliceView<T>& image, const LineFilters<A, S>& filters,
                                                          Real<A> scale, ProgressSubject& subject);
