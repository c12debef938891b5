#include "numeric/quaternion.h"

#include <cmath>

namespace
{
template <class T> void require3D(const Vector<T>& v, const char* where)
{
  if (v.getSize() != 3) throw SizeError(where, "This vector has a size different from 3");
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

template class Quaternion<float>;
template class Quaternion<double>;
template class Quaternion<long double>;
