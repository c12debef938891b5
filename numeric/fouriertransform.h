#pragma once

#include "numeric/matrix.h"

/// Discrete Fourier transforms of vectors (1D) and matrices (2D), in place, real and imaginary parts apart.
/// For float, double and long double; any size. May be called by several threads at a time.
/// All throw SizeError "Real and imaginary parts have different sizes".
template <class T> class FourierTransform
{
public:
  /// x[k] becomes the sum over j of x[j] exp(-2 pi i j k / n). Not scaled: forward and backward again multiply by n.
  static void computeForward(Vector<T>& re, Vector<T>& im);
  static void computeForward(Matrix<T>& re, Matrix<T>& im);
  /// The same with exp(+2 pi i j k / n).
  static void computeBackward(Vector<T>& re, Vector<T>& im);
  static void computeBackward(Matrix<T>& re, Matrix<T>& im);

  /// Exchanges the halves of each dimension, the first one being longer for odd lengths: frequency zero moves to n / 2.
  static void shift(Vector<T>& re, Vector<T>& im);
  static void shift(Matrix<T>& re, Matrix<T>& im);
  /// Undoes shift().
  static void ishift(Vector<T>& re, Vector<T>& im);
  static void ishift(Matrix<T>& re, Matrix<T>& im);

  /// Angle of each complex number, -pi..pi.
  static void phaseAngle(Vector<T>& out, const Vector<T>& re, const Vector<T>& im);
  static void phaseAngle(Matrix<T>& out, const Matrix<T>& re, const Matrix<T>& im);
  /// Squared modulus of each complex number.
  static void powerSpectrum(Vector<T>& out, const Vector<T>& re, const Vector<T>& im);
  static void powerSpectrum(Matrix<T>& out, const Matrix<T>& re, const Matrix<T>& im);
};

extern template class FourierTransform<float>;
extern template class FourierTransform<double>;
extern template class FourierTransform<long double>;
