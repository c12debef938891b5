#pragma once

#include "image/registration/imageregistration.h"

/// Superposes the centres of inertia and the principal axes of two images, the major axis on the major one.
///
/// Bright elements are mass: what exceeds the background, which is the median of the elements at the border, as
/// massAboveBackground() says. Of the two senses of an axis, the one is taken in which the masses correlate better, and
/// the smaller rotation when they do so alike. A round specimen is not rotated. Positions are distances from the middle
/// of the images' first pixels or, for a rotation about the centres of the images, from these centres.
template <class T> class PrincipalAxesImageRegistration : public ImageRegistration<T>
{
public:
  /// Off by default.
  void setImageCenteredRotation(bool isOn) { _isImageCentered = isOn; }

  /// Without mass in one of the images the transform is null. \throw UsageError  there is no source or target
  void run() override;

  /// Whether both images had mass.
  bool hasMass() const { return _hasMass; }

private:
  bool _isImageCentered = false;
  bool _hasMass = false;
};

/// Correlation (Pearson's) between the elements of the target and the source where they lie on each other, when a
/// position p of the source goes to R(angle) p + (row, column), both from the centres of the images in the unit of
/// their pixel calibrations; R as in RigidRegistration, the angle in radians. The source is interpolated linearly. 0
/// when the images do not overlap, or one of them is constant there.
template <class T>
double correlation(const PixelMatrix<T>& source, const PixelMatrix<T>& target, double angle, double row, double column);

/// What exceeds the median of the border, at least 0. The calibration is kept.
///
/// Noise would weigh as much as a specimen, being everywhere: what exceeds the median by no more than five standard
/// deviations of the border counts as 0, unless nothing would be left. A border without noise takes nothing away.
template <class T> PixelMatrix<T> massAboveBackground(const PixelMatrix<T>& matrix);

extern template class PrincipalAxesImageRegistration<float>;
extern template class PrincipalAxesImageRegistration<double>;
