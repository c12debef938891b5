#include "geometry/triangulationcode.h"

#include "geometry/coordinates.h"

#include <algorithm>
#include <cmath>

namespace
{

/// A walk along a curve, measured in shares of the curve's length.
template <class T> class ContourWalk
{
public:
  ContourWalk(const Curve<T>& curve, int start)
    : _points(curve.data()),
      _size(curve.getSize()),
      _space(curve.getSpace()),
      _numEdges(curve.getNumEdges()),
      _length(curve.length()),
      _vertex(start)
  {
    measureEdge();
  }

  /// Share of the length already walked.
  T progress() const { return _walked / _length; }
  /// The same after the next step.
  T progressAhead() const { return progress() + _edge / _length; }
  /// True when every edge has been passed.
  bool isComplete() const { return _numSteps >= _numEdges; }

  void advance()
  {
    _walked += _edge;
    _vertex = next();
    ++_numSteps;
    measureEdge();
  }

private:
  int next() const { return _vertex + 1 < _size ? _vertex + 1 : 0; }
  const T* point(int i) const { return _points + static_cast<std::ptrdiff_t>(i) * _space; }
  void measureEdge() { _edge = distance(point(_vertex), point(next()), _space); }

  const T* _points;
  int _size;
  int _space;
  int _numEdges;
  const T _length;
  int _vertex;
  int _numSteps = 0;
  T _walked = 0;
  T _edge = 0; // length of the next edge
};

/// Whether the next step is one on b.
template <class T> bool isStepOnB(const ContourWalk<T>& a, const ContourWalk<T>& b)
{
  const T gapIfA = std::abs(a.progressAhead() - b.progress());
  const T gapIfB = std::abs(b.progressAhead() - a.progress());
  return !(gapIfB > gapIfA);
}

} // namespace

template <class T> int findCurvesClosestPoints(const Curve<T>& a, const Curve<T>& b)
{
  const int n = std::max(a.getSize(), b.getSize());
  Curve<T> matched = a.resample(n), reference = b.resample(n);
  // The best shift does not depend on the origin, but far from it the sums would lose their digits.
  const Vector<T> center = reference.cog();
  matched.translate(-center);
  reference.translate(-center);
  matched.match(reference);
  matched.translate(center);
  const int space = a.getSpace();
  const T* const start = std::as_const(matched).data();
  const T* const points = a.data();
  int nearest = 0;
  T shortest = squaredDistance(points, start, space);
  for (int i = 1; i < a.getSize(); ++i)
  {
    const T candidate = squaredDistance(points + static_cast<std::ptrdiff_t>(i) * space, start, space);
    if (!(candidate < shortest)) continue;
    nearest = i;
    shortest = candidate;
  }
  return nearest;
}

template <class T> TriangulationCode computeTriangulationCodeGanapathy(const Curve<T>& a, const Curve<T>& b)
{
  TriangulationCode code;
  if (a.isClosed()) code.startA = findCurvesClosestPoints(a, b);
  code.stepsOnB.reserve(static_cast<std::size_t>(a.getSize()) + b.getSize());
  ContourWalk<T> walkA(a, code.startA), walkB(b, code.startB);
  while (!walkA.isComplete() || !walkB.isComplete())
  {
    // A closed curve may be walked on when it is complete, an open one ends.
    const bool onB =
        a.isOpen() && (walkA.isComplete() || walkB.isComplete()) ? walkA.isComplete() : isStepOnB(walkA, walkB);
    (onB ? walkB : walkA).advance();
    code.stepsOnB.push_back(onB);
  }
  return code;
}

#define INSTANTIATE_TRIANGULATION_CODE(T)                                                                              \
  template int findCurvesClosestPoints(const Curve<T>&, const Curve<T>&);                                              \
  template TriangulationCode computeTriangulationCodeGanapathy(const Curve<T>&, const Curve<T>&);

INSTANTIATE_TRIANGULATION_CODE(float)
INSTANTIATE_TRIANGULATION_CODE(double)
INSTANTIATE_TRIANGULATION_CODE(long double)
