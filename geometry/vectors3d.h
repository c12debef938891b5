#pragma once

#include <array>
#include <cmath>

// Arithmetic of points and directions in 3D for loops over triangles.

template <class T> using Vector3d = std::array<T, 3>;

/// The vector from a to b, given by pointers to their coordinates of any type.
template <class R, class T, class U> Vector3d<R> difference(const T* b, const U* a)
{
  return {static_cast<R>(b[0]) - static_cast<R>(a[0]), static_cast<R>(b[1]) - static_cast<R>(a[1]),
          static_cast<R>(b[2]) - static_cast<R>(a[2])};
}

template <class R> R dotProduct(const Vector3d<R>& a, const Vector3d<R>& b)
{
  return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}

template <class R> Vector3d<R> crossProduct(const Vector3d<R>& a, const Vector3d<R>& b)
{
  return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}

template <class R> R norm(const Vector3d<R>& a)
{
  return std::sqrt(dotProduct(a, a));
}

/// The vector at unit length; 0 when it has no direction.
template <class R> Vector3d<R> normalized(const Vector3d<R>& a)
{
  const R length = norm(a);
  if (!(length > 0) || !std::isfinite(length)) return {0, 0, 0};
  return {a[0] / length, a[1] / length, a[2] / length};
}
