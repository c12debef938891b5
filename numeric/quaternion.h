#pragma once

#include "numeric/vector.h"

/// w + x i + y j + z k. Unit quaternions are rotations in space.
/// Source of the formulas: K. Shoemake, "Animating rotation with quaternion curves", 1985.
template <class T> class Quaternion
{
public:
  /// The rotation by nothing.
  Quaternion() = default;
  Quaternion(T w, T x, T y, T z) : _w(w), _x(x), _y(y), _z(z) {}
  /// Rotation by an angle in radians about an axis of any length but zero, counter-clockwise when the axis points to
  /// the viewer. \throw SizeError  the axis has not 3 elements   \throw MathError  it has no direction
  Quaternion(T angle, const Vector<T>& axis);

  T getW() const { return _w; }
  T getX() const { return _x; }
  T getY() const { return _y; }
  T getZ() const { return _z; }

  bool operator==(const Quaternion& other) const = default;
  Quaternion operator+(const Quaternion& q) const { return {_w + q._w, _x + q._x, _y + q._y, _z + q._z}; }
  Quaternion operator-(const Quaternion& q) const { return {_w - q._w, _x - q._x, _y - q._y, _z - q._z}; }
  Quaternion operator*(T s) const { return {_w * s, _x * s, _y * s, _z * s}; }
  /// The rotation q followed by this one.
  Quaternion operator*(const Quaternion& q) const;
  Quaternion conjugate() const { return {_w, -_x, -_y, -_z}; }
  /// \throw MathError  the norm is zero
  Quaternion inverse() const;

  T scalarProduct(const Quaternion& q) const { return _w * q._w + _x * q._x + _y * q._y + _z * q._z; }
  /// Squared norm.
  T snorm() const { return scalarProduct(*this); }
  T norm() const;
  /// \throw MathError  the norm is zero
  void normalize();

  /// The 3D vector v turned by this unit quaternion. \throw SizeError  v has not 3 elements
  Vector<T> rotate(const Vector<T>& v) const;

private:
  T _w = 1;
  T _x = 0;
  T _y = 0;
  T _z = 0;
};

extern template class Quaternion<float>;
extern template class Quaternion<double>;
extern template class Quaternion<long double>;
