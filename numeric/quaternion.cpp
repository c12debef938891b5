#include "numeric/quaternion.h"

#include "numeric/squarematrix.h"

#include <cmath>

namespace
{
template <class T> void require3D(const Vector<T>& v, const char* where)
{
  if (v.getSize() != 3) throw SizeError(where, "This vector has a size different from 3");
}

/// The rows of a rotation matrix. Source: K. Shoemake, "Animating rotation with quaternion curves", 1985.
template <class T> Matrix<T> rotation(const Quaternion<T>& q)
{
  const T w = q.getW(), x = q.getX(), y = q.getY(), z = q.getZ();
  return {{1 - 2 * (y * y + z * z), 2 * (x * y - w * z), 2 * (x * z + w * y)},
          {2 * (x * y + w * z), 1 - 2 * (x * x + z * z), 2 * (y * z - w * x)},
          {2 * (x * z - w * y), 2 * (y * z + w * x), 1 - 2 * (x * x + y * y)}};
}
} // namespace

template <class T> Quaternion<T>::Quaternion(T angle, const Vector<T>& axis)
{
  const char* const where = "Quaternion<T>::Quaternion(T, const Vector<T>&)";
  require3D(axis, where);
  const T length = axis.norm();
  if (!(length > 0)) throw MathError(where, "The rotation axis has no direction");
  const T factor = std::sin(angle / 2) / length;
  *this = Quaternion(std::cos(angle / 2), factor * axis[0], factor * axis[1], factor * axis[2]);
}

template <class T> Quaternion<T> Quaternion<T>::operator*(const Quaternion& q) const
{
  return {_w * q._w - _x * q._x - _y * q._y - _z * q._z, _w * q._x + _x * q._w + _y * q._z - _z * q._y,
          _w * q._y - _x * q._z + _y * q._w + _z * q._x, _w * q._z + _x * q._y - _y * q._x + _z * q._w};
}

template <class T> Quaternion<T> Quaternion<T>::inverse() const
{
  if (!(snorm() > 0)) throw MathError("Quaternion<T> Quaternion<T>::inverse() const", "This quaternion is zero");
  return conjugate() * (1 / snorm());
}

template <class T> T Quaternion<T>::norm() const
{
  return std::sqrt(snorm());
}

template <class T> void Quaternion<T>::normalize()
{
  if (!(snorm() > 0)) throw MathError("void Quaternion<T>::normalize()", "This quaternion is zero");
  *this = *this * (1 / norm());
}

template <class T> Vector<T> Quaternion<T>::rotate(const Vector<T>& v) const
{
  require3D(v, "Vector<T> Quaternion<T>::rotate(const Vector<T>&) const");
  const Quaternion turned = *this * Quaternion(0, v[0], v[1], v[2]) * conjugate();
  return Vector<T>{turned._x, turned._y, turned._z};
}

template <class T>
SquareMatrix<T>::SquareMatrix(const Quaternion<T>& q, bool homogeneous) requires std::floating_point<T>
  : SquareMatrix(homogeneous ? 4 : 3)
{
  setIdentity();
  this->paste(0, 0, rotation(q));
}

template class Quaternion<float>;
template class Quaternion<double>;
template class Quaternion<long double>;
template SquareMatrix<float>::SquareMatrix(const Quaternion<float>&, bool);
template SquareMatrix<double>::SquareMatrix(const Quaternion<double>&, bool);
template SquareMatrix<long double>::SquareMatrix(const Quaternion<long double>&, bool);
