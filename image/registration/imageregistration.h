#pragma once

#include "image/pixelmatrix.h"
#include "numeric/squarematrix.h"

/// A rigid transform of the plane: a position p goes to rotation() p + translation(), both in (row, column).
template <class T> class RigidRegistration
{
public:
  virtual ~RigidRegistration() = default;

  /// 2 x 2.
  const SquareMatrix<T>& rotation() const { return _rotation; }
  const Vector<T>& translation() const { return _translation; }

protected:
  RigidRegistration() { setNull(); }
  /// Rotation [[cos, sin], [-sin, cos]] of the angle in radians.
  void set(T angle, const Vector<T>& translation);
  void setNull();

private:
  SquareMatrix<T> _rotation = SquareMatrix<T>(2);
  Vector<T> _translation = Vector<T>(2);
};

/// Finds the rigid transform that brings a source image onto a target image. Lengths are in the unit of the images'
/// pixel calibrations, each with its own size of pixels.
template <class T> class ImageRegistration : public RigidRegistration<T>
{
public:
  /// Borrowed until run() is over.
  void setSource(const PixelMatrix<T>& source) { _source = &source; }
  void setTarget(const PixelMatrix<T>& target) { _target = &target; }

  /// \throw UsageError  there is no source or target
  virtual void run() = 0;

protected:
  /// \throw UsageError  they were not set
  const PixelMatrix<T>& source() const;
  const PixelMatrix<T>& target() const;

private:
  const PixelMatrix<T>* _source = nullptr;
  const PixelMatrix<T>* _target = nullptr;
};

extern template class RigidRegistration<float>;
extern template class RigidRegistration<double>;
extern template class ImageRegistration<float>;
extern template class ImageRegistration<double>;
