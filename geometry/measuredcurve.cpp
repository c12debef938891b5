#include "geometry/measuredcurve.h"

#include "geometry/curveprocessing/curveresampling.h"

#include <numeric>

template <class T> MeasuredCurve<T>::MeasuredCurve(const Curve<T>& curve)
  : _curve(curve),
    _edgeLengths(curve.edgeLengths()),
    _length(std::accumulate(_edgeLengths.begin(), _edgeLengths.end(), T(0))),
    _resampled(curve.getSpace())
{
}

template <class T> const Curve<T>& MeasuredCurve<T>::resampled(int n) const
{
  if (_resampled.getSize() == n) return _resampled;
  _resampled = Curve<T>(_curve.getSpace(), n);
  CurveResampling<T>().apply(_curve, _edgeLengths, _resampled);
  _center = _resampled.cog();
  _resampled.translate(-_center);
  return _resampled;
}

GEOMETRY_INSTANTIATE_REAL(MeasuredCurve)
