#pragma once

#include "image/registration/imageregistration.h"

/// Superposes the centres of inertia and the principal axes of two images, the major axis on the major one.
///
/// Bright elements are mass: what exceeds the background, which is the median of the elements at the border. Of the two
/// senses of an axis, the one is taken in which the images correlate better, and the smaller rotation when they do so
/// alike. A round specimen is not rotated. Positions are distances from the images' first corners, or, for a rotation
/// about the centres of the images, from these centres.
template <class T> class PrincipalAxesImageRegistration : public ImageRegistration<T>
{
public:
  void setImageCenteredRotation(bool isOn) { _isImageCentered = isOn; }

  /// Without mass in one of the images the transform is null. \throw UsageError  there is no source or target
  void run() override;

  /// Whether both images had mass.
  bool hasMass() const { return _hasMass; }
  /// Correlation of the two images, their centres on each other, before the transform and after it.
  T correlationBefore() const { return _correlationBefore; }
  T correlationAfter() const { return _correlationAfter; }

private:
  bool _isImageCentered = false;
  bool _hasMass = false;
  T _correlationBefore = 0;
  T _correlationAfter = 0;
};

/// Correlation (Pearson's) between the elements of the target and those of the source that come to lie on them, 0
/// beyond its border, when a position p of the source goes to R(angle) p + (row, column), both from the centres of the
/// images in the unit of their pixel calibrations; R as in RigidRegistration. 0 when one of them is constant.
template <class T>
double correlation(const PixelMatrix<T>& source, const PixelMatrix<T>& target, double angle, double row, double column);

/// What exceeds the median of the border, at least 0. The calibration is kept.
template <class T> PixelMatrix<T> massAboveBackground(const PixelMatrix<T>& matrix);

extern template class PrincipalAxesImageRegistration<float>;
extern template class PrincipalAxesImageRegistration<double>;
