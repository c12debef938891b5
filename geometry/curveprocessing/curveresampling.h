#pragma once

#include "geometry/curve.h"

#include <vector>

/// Resamples curves at equal distances along their length.
template <class T> class CurveResampling
{
public:
  /// Replaces `out` by the curve through as many vertices as `out` has, the first one where the curve begins. The
  /// distance between them is length / n for a closed curve; an open one keeps both its ends.
  /// \throw SizeError  the curve is empty
  void apply(const Curve<T>& curve, Curve<T>& out) const;
  /// The same for a curve whose edge lengths are known.
  void apply(const Curve<T>& curve, const std::vector<Real<T>>& edgeLengths, Curve<T>& out) const;
};

GEOMETRY_EXTERN_TEMPLATE(CurveResampling)
