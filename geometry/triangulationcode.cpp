#include "geometry/triangulationcode.h"

#include "geometry/coordinates.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace
{

/// Shares of a length that differ by no more than rounding, so that a tie is one however the curves lie.
template <class T> constexpr T equalProgress = std::max(T(1e-9), 8 * std::numeric_limits<T>::epsilon());

/// A walk along a curve, measured in shares of the curve's length.
template <class T> class ContourWalk
{
public:
  ContourWalk(const MeasuredCurve<T>& curve, int start)
    : _edges(curve.getEdgeLengths().data()),
      _numEdges(static_cast<int>(curve.getEdgeLengths().size())),
      _length(curve.getLength()),
      _edge(start)
  {
  }

  /// Share of the length already walked.
  T progress() const { return _progress; }
  /// The same after the next step.
  T progressAhead() const { return _progress + _edges[_edge] / _length; }
  /// True when every edge has been passed.
  bool isComplete() const { return _numSteps >= _numEdges; }

  void advance()
  {
    _walked += _edges[_edge];
    _edge = _edge + 1 < _numEdges ? _edge + 1 : 0;
    ++_numSteps;
    _progress = _walked / _length;
  }

private:
  const T* _edges;
  int _numEdges;
  const T _length;
  int _edge;
  int _numSteps = 0;
  T _walked = 0;
  T _progress = 0;
};

/// Whether the next step is one on b.
template <class T> bool isStepOnB(const ContourWalk<T>& a, const ContourWalk<T>& b)
{
  const T gapIfA = std::abs(a.progressAhead() - b.progress());
  const T gapIfB = std::abs(b.progressAhead() - a.progress());
  return !(gapIfB > gapIfA + equalProgress<T>);
}

} // namespace

template <class T> int findCurvesClosestPoints(const MeasuredCurve<T>& first, const MeasuredCurve<T>& second)
{
  const Curve<T>& a = first.getCurve();
  const int n = std::max(a.getSize(), second.getCurve().getSize());
  // The best shift does not depend on the origin, but far from it the sums would lose their digits.
  const int shift = first.resampled(n).findMatch(second.resampled(n));
  Vector<T> matched = first.getCenter();
  for (int k = 0; k < matched.getSize(); ++k) matched[k] += first.resampled(n).data(shift)[k];
  const int space = a.getSpace();
  const T* const start = matched.data();
  const T* const points = a.data();
  int nearest = 0;
  T shortest = squaredDistance(points, start, space);
  for (int i = 1; i < a.getSize(); ++i)
  {
    const T candidate = squaredDistance(points + static_cast<std::ptrdiff_t>(i) * space, start, space);
    if (!(candidate < shortest * (1 - equalProgress<T>))) continue;
    nearest = i;
    shortest = candidate;
  }
  return nearest;
}

template <class T>
TriangulationCode computeTriangulationCodeGanapathy(const MeasuredCurve<T>& a, const MeasuredCurve<T>& b)
{
  for (const T length : {a.getLength(), b.getLength()})
    if (!(length > 0) || !std::isfinite(length))
      throw ValueError("TriangulationCode computeTriangulationCodeGanapathy(const MeasuredCurve<T>&, const "
                       "MeasuredCurve<T>&)",
                       "The contours lie too far apart, or too close, for their lengths to be numbers");
  TriangulationCode code;
  const bool isOpen = a.getCurve().isOpen();
  if (!isOpen) code.startA = findCurvesClosestPoints(a, b);
  code.stepsOnB.reserve(a.getEdgeLengths().size() + b.getEdgeLengths().size());
  ContourWalk<T> walkA(a, code.startA), walkB(b, code.startB);
  while (!walkA.isComplete() || !walkB.isComplete())
  {
    // A closed curve may be walked on when it is complete, an open one ends.
    const bool onB =
        isOpen && (walkA.isComplete() || walkB.isComplete()) ? walkA.isComplete() : isStepOnB(walkA, walkB);
    (onB ? walkB : walkA).advance();
    code.stepsOnB.push_back(onB);
  }
  return code;
}

#define INSTANTIATE_TRIANGULATION_CODE(T)                                                                              \
  template int findCurvesClosestPoints(const MeasuredCurve<T>&, const MeasuredCurve<T>&);                              \
  template TriangulationCode computeTriangulationCodeGanapathy(const MeasuredCurve<T>&, const MeasuredCurve<T>&);

INSTANTIATE_TRIANGULATION_CODE(float)
INSTANTIATE_TRIANGULATION_CODE(double)
INSTANTIATE_TRIANGULATION_CODE(long double)
