#include "image/registration/imageregistration.h"

#include <cmath>

template <class T> void RigidRegistration<T>::set(T angle, const Vector<T>& translation)
{
  _rotation(0, 0) = _rotation(1, 1) = std::cos(angle);
  _rotation(0, 1) = std::sin(angle);
  _rotation(1, 0) = -std::sin(angle);
  _translation = translation;
}

template <class T> void RigidRegistration<T>::setNull()
{
  _rotation.setIdentity();
  _translation.setZeros();
}

template <class T> const PixelMatrix<T>& ImageRegistration<T>::source() const
{
  if (!_source) throw UsageError("const PixelMatrix<T>& ImageRegistration<T>::source() const", "There is no source");
  return *_source;
}

template <class T> const PixelMatrix<T>& ImageRegistration<T>::target() const
{
  if (!_target) throw UsageError("const PixelMatrix<T>& ImageRegistration<T>::target() const", "There is no target");
  return *_target;
}

template class RigidRegistration<float>;
template class RigidRegistration<double>;
template class ImageRegistration<float>;
template class ImageRegistration<double>;
