#pragma once

#include "geometry/rigidtransform.h"
#include "geometry/shape.h"

/// Moves a shape onto another one: each vertex is paired with the closest vertex of the target, the shape is moved by
/// the best rotation and translation of the pairs, and so on until that brings it hardly closer.
///
/// The result is the best one near to where the shape lies at first, not the best of all.
/// Source: P. J. Besl and N. D. McKay, "A method for registration of 3-D shapes", 1992.
template <class T> class IterativeClosestPoint
{
public:
  void setMaxIterations(int maxIterations) { _maxIterations = maxIterations; }
  /// The share of the distance by which an iteration must bring the shapes closer for another one to follow.
  void setTolerance(Real<T> tolerance) { _tolerance = tolerance; }

  /// Finds how to move the shape onto the target. Vertices that are not finite take no part.
  /// \throw SizeError  the dimensions differ, or there is no vertex in one of them
  void apply(const Shape<T>& shape, const Shape<T>& target);

  /// What the last apply() found, for Shape::transform().
  const RigidTransform<Real<T>>& getTransform() const { return _transform; }
  /// Root of the mean squared distance of the moved vertices from the closest ones of the target.
  Real<T> getRmsDistance() const { return _rmsDistance; }
  int getNumIterations() const { return _numIterations; }

private:
  int _maxIterations = 100;
  Real<T> _tolerance = static_cast<Real<T>>(1e-6);
  RigidTransform<Real<T>> _transform;
  Real<T> _rmsDistance = 0;
  int _numIterations = 0;
};

GEOMETRY_EXTERN_TEMPLATE(IterativeClosestPoint)
