#pragma once

#include "image/pixelmatrix.h"
#include "numeric/squarematrix.h"

/// An image seen as a distribution of mass: its centre of inertia, its matrix of inertia and its principal axis.
///
/// Elements are masses; negative ones and NaN count as 0. Places are (row, column) in the unit of the matrix's pixel
/// calibration, the mass of an element at (i, j) times the pixel's height and width.
template <class T> class MatrixPrincipalAxesAnalysis
{
public:
  void apply(const PixelMatrix<T>& matrix);

  /// Sum of the elements; the rest is 0 when it is 0.
  T getMass() const { return _mass; }
  const Vector<T>& getInertiaCenter() const { return _center; }
  /// Mean squares and products of the distances from the centre along the axes: 2 x 2.
  const SquareMatrix<T>& getInertiaMatrix() const { return _inertia; }
  /// Angle of one of the two principal axes from the direction of rising rows towards that of rising columns, in
  /// radians; see computeAngle().
  T getAngle() const { return computeAngle(_inertia); }
  /// Angle of the axis of the larger moment, in (-pi/2, pi/2], whatever the unit of length.
  T getMajorAngle() const;
  /// Whether the two moments are so close that the axes are left to chance.
  bool isRound() const;

  /// Of [[a, b], [b, d]]: atan(t + sqrt(t^2 + 1)) with t = (d - a) / 2b, which is the axis of the larger moment when
  /// b > 0 and that of the smaller one when b < 0; when |b| is not above Vector<T>::epsilon(), 0 when a >= d, else
  /// pi/2.
  static T computeAngle(const SquareMatrix<T>& inertia);

private:
  T _mass = 0;
  Vector<T> _center = Vector<T>(2);
  SquareMatrix<T> _inertia = SquareMatrix<T>(2);
};

extern template class MatrixPrincipalAxesAnalysis<float>;
extern template class MatrixPrincipalAxesAnalysis<double>;
