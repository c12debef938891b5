#pragma once

#include "geometry/curve.h"

#include <vector>

/// A curve with what its stitching to the curves of both neighbouring levels needs, measured once.
template <class T> class MeasuredCurve
{
public:
  explicit MeasuredCurve(const Curve<T>& curve);

  const Curve<T>& getCurve() const { return _curve; }
  /// The length of each edge.
  const std::vector<T>& getEdgeLengths() const { return _edgeLengths; }
  T getLength() const { return _length; }

  /// The curve through n vertices at equal distances, moved so that its centre of gravity lies in the origin. Kept
  /// until another number of vertices is asked for; not for several threads at once.
  const Curve<T>& resampled(int n) const;
  /// What was taken off resampled() to centre it.
  const Vector<T>& getCenter() const { return _center; }

private:
  Curve<T> _curve;
  std::vector<T> _edgeLengths;
  T _length;
  mutable Curve<T> _resampled;
  mutable Vector<T> _center;
};

GEOMETRY_EXTERN_TEMPLATE_REAL(MeasuredCurve)
