#pragma once

#include "geometry/coordinates.h"
#include "geometry/curve.h"
#include "numeric/matrix.h"

/// Elliptic Fourier descriptors of a closed curve, in any number of dimensions.
///
/// Each coordinate, as a function of the share t of the curve's length from vertex 0 on, 0 <= t <= 1, is the sum of its
/// mean and of harmonics n = 1, 2, ...: cosine(n) cos(2 pi n t) + sine(n) sin(2 pi n t). In the plane, each harmonic is
/// an ellipse; its coefficients a, b, c, d of the source are the cosine and sine of x and the cosine and sine of y.
/// Source: F. P. Kuhl and C. R. Giardina, "Elliptic Fourier features of a closed contour", 1982.
template <class T> class FourierDescriptors
{
public:
  /// Type of the coefficients.
  using R = Wide<T>;

  /// Describes a curve by its first harmonics, in the time of vertices times harmonics.
  /// \throw UsageError  the curve is open \throw SizeError  it has no vertices, or the number is negative
  /// \throw MathError  its length is not finite
  void compute(const Curve<T>& curve, int numHarmonics);

  int getNumHarmonics() const { return _cosines.getSize1(); }
  /// The mean of the points of the curve.
  const Vector<R>& getCenter() const { return _center; }
  /// Coefficient of harmonic n = 1 to getNumHarmonics() in a coordinate. Unchecked.
  R getCosine(int n, int coordinate) const { return _cosines(n - 1, coordinate); }
  R getSine(int n, int coordinate) const { return _sines(n - 1, coordinate); }

  /// The share, 0 to 1, of the curve's variance along its length that the first harmonics have; 1 for a curve in one
  /// place. \throw RangeError  there are not so many harmonics
  R fidelity(int numHarmonics) const;
  /// The fewest harmonics with a fidelity of at least the given one; all of them when they do not attain it.
  int numHarmonicsFor(R fidelity) const;

  /// The closed curve of the first harmonics, as vertices in equal steps of t; a low-pass filter of the curve.
  /// \throw RangeError  there are not so many harmonics \throw SizeError  a negative number of vertices
  Curve<T> reconstruct(int numHarmonics, int numVertices) const;

private:
  void setCenter(const Curve<T>& curve, R length);
  void addEdge(const Vector<R>& a, const Vector<R>& b, R begin, R end);
  R power(int n) const;
  void requireHarmonics(int numHarmonics, const char* where) const;

  Vector<R> _center;
  Matrix<R> _cosines; // one row per harmonic, one column per coordinate
  Matrix<R> _sines;
  R _variance = 0; // mean squared distance from the center
};

GEOMETRY_EXTERN_TEMPLATE(FourierDescriptors)
