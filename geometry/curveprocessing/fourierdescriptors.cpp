#include "geometry/curveprocessing/fourierdescriptors.h"

#include "geometry/coordinates.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace
{
/// The cosines and sines of the multiples of an angle, one after the other.
template <class R> class Multiples
{
public:
  explicit Multiples(R angle) : _angle(angle), _firstCosine(std::cos(angle)), _firstSine(std::sin(angle)) {}

  R cosine() const { return _cosine; }
  R sine() const { return _sine; }
  void next()
  {
    if (++_n % 64 == 0) // rounding errors do not grow for long
    {
      _cosine = std::cos(_n * _angle);
      _sine = std::sin(_n * _angle);
      return;
    }
    const R cosine = _cosine * _firstCosine - _sine * _firstSine;
    _sine = _sine * _firstCosine + _cosine * _firstSine;
    _cosine = cosine;
  }

private:
  R _angle, _firstCosine, _firstSine;
  R _cosine = 1, _sine = 0;
  int _n = 0;
};

template <class T> Vector<Wide<T>> wideVertex(const Curve<T>& curve, int i)
{
  Vector<Wide<T>> vertex(curve.getSpace());
  std::copy_n(curve.data(i), curve.getSpace(), vertex.begin());
  return vertex;
}

/// Calls visit(a, b, length) for each edge that has a length.
template <class T, class Visit> void forEachEdge(const Curve<T>& curve, const Visit& visit)
{
  if (curve.getSize() == 0) return;
  Vector<Wide<T>> a, b = wideVertex(curve, 0);
  for (int i = 1; i <= curve.getSize(); ++i)
  {
    a = b;
    std::copy_n(curve.data(i < curve.getSize() ? i : 0), curve.getSpace(), b.begin());
    const Wide<T> length = a.distance(b);
    if (!(length == 0)) visit(a, b, length);
  }
}

/// Mean over the edge from a to b of the squared distance from c.
template <class R> R meanSquaredDistance(const Vector<R>& a, const Vector<R>& b, const Vector<R>& c)
{
  R sum = 0;
  for (int k = 0; k < c.getSize(); ++k)
  {
    const R u = a[k] - c[k], v = b[k] - c[k];
    sum += (u * u + u * v + v * v) / 3;
  }
  return sum;
}
} // namespace

template <class T> void FourierDescriptors<T>::compute(const Curve<T>& curve, int numHarmonics)
{
  const char* const where = "void FourierDescriptors<T>::compute(const Curve<T>&, int)";
  if (curve.isOpen()) throw UsageError(where, "The curve is open");
  if (curve.getSize() == 0 || numHarmonics < 0)
    throw SizeError(where, "The curve has no vertices, or the number of descriptors is negative");
  R length = 0;
  forEachEdge(curve, [&length](const Vector<R>&, const Vector<R>&, R edgeLength) { length += edgeLength; });
  if (!std::isfinite(length)) throw MathError(where, "The length of the curve is not finite");

  setCenter(curve, length);
  _cosines.setSize(numHarmonics, curve.getSpace());
  _cosines.setZeros();
  _sines = _cosines;
  R passed = 0;
  forEachEdge(curve,
              [&](const Vector<R>& a, const Vector<R>& b, R edgeLength)
              {
                const R begin = passed / length;
                passed += edgeLength;
                addEdge(a, b, begin, passed / length);
              });
}

template <class T> void FourierDescriptors<T>::setCenter(const Curve<T>& curve, R length)
{
  _variance = 0;
  _center = wideVertex(curve, 0);
  if (length == 0) return;
  _center.setZeros();
  forEachEdge(curve,
              [&](const Vector<R>& a, const Vector<R>& b, R edgeLength)
              {
                for (int k = 0; k < a.getSize(); ++k) _center[k] += (a[k] + b[k]) / 2 * (edgeLength / length);
              });
  forEachEdge(curve, [&](const Vector<R>& a, const Vector<R>& b, R edgeLength)
              { _variance += meanSquaredDistance(a, b, _center) * (edgeLength / length); });
}

/// Adds what the edge from a to b, between two shares of the length, contributes to each harmonic.
template <class T> void FourierDescriptors<T>::addEdge(const Vector<R>& a, const Vector<R>& b, R begin, R end)
{
  if (!(end > begin)) return; // too short to tell
  constexpr R pi = std::numbers::pi_v<R>;
  Multiples<R> atBegin(2 * pi * begin), atEnd(2 * pi * end);
  for (int n = 1; n <= getNumHarmonics(); ++n)
  {
    atBegin.next();
    atEnd.next();
    const R factor = 1 / (2 * pi * pi * n * n * (end - begin));
    const R cosine = factor * (atEnd.cosine() - atBegin.cosine()), sine = factor * (atEnd.sine() - atBegin.sine());
    for (int k = 0; k < a.getSize(); ++k)
    {
      _cosines(n - 1, k) += (b[k] - a[k]) * cosine;
      _sines(n - 1, k) += (b[k] - a[k]) * sine;
    }
  }
}

template <class T> typename FourierDescriptors<T>::R FourierDescriptors<T>::fidelity(int numHarmonics) const
{
  requireHarmonics(numHarmonics, "T FourierDescriptors<T>::fidelity(int) const");
  if (_variance == 0) return 1;
  R sum = 0;
  for (int n = 1; n <= numHarmonics; ++n) sum += power(n);
  return std::min<R>(sum / _variance, 1);
}

template <class T> int FourierDescriptors<T>::numHarmonicsFor(R fidelity) const
{
  R sum = 0;
  int n = 0;
  while (n < getNumHarmonics() && sum < fidelity * _variance) sum += power(++n);
  return n;
}

template <class T> Curve<T> FourierDescriptors<T>::reconstruct(int numHarmonics, int numVertices) const
{
  const char* const where = "Curve<T> FourierDescriptors<T>::reconstruct(int, int) const";
  requireHarmonics(numHarmonics, where);
  if (numVertices < 0) throw SizeError(where, "A curve cannot have a negative size");
  const int space = _center.getSize();
  Curve<T> curve(space, numVertices);
  Vector<R> point(space);
  for (int i = 0; i < numVertices; ++i)
  {
    std::copy(_center.begin(), _center.end(), point.begin());
    Multiples<R> multiples(2 * std::numbers::pi_v<R> * i / numVertices);
    for (int n = 1; n <= numHarmonics; ++n)
    {
      multiples.next();
      for (int k = 0; k < space; ++k)
        point[k] += getCosine(n, k) * multiples.cosine() + getSine(n, k) * multiples.sine();
    }
    for (int k = 0; k < space; ++k) curve.data(i)[k] = toCoordinate<T>(static_cast<Real<T>>(point[k]));
  }
  return curve;
}

/// What a harmonic adds to the mean squared distance from the center.
template <class T> typename FourierDescriptors<T>::R FourierDescriptors<T>::power(int n) const
{
  R sum = 0;
  for (int k = 0; k < _center.getSize(); ++k)
    sum += (getCosine(n, k) * getCosine(n, k) + getSine(n, k) * getSine(n, k)) / 2;
  return sum;
}

template <class T> void FourierDescriptors<T>::requireHarmonics(int numHarmonics, const char* where) const
{
  if (numHarmonics < 0 || numHarmonics > getNumHarmonics())
    throw RangeError(where, "There are no " + std::to_string(numHarmonics) + " descriptors");
}

GEOMETRY_INSTANTIATE(FourierDescriptors)
