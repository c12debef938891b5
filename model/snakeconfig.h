#pragma once

/// Parameters of the active contour that refines the curves of a model.
struct SnakeConfig
{
  double elasticity = 0.1;   ///< resistance to stretching
  double rigidity = 0.1;     ///< resistance to bending
  double imageForce = 1;     ///< weight of the gradient of the smoothed image
  double balloonForce = 0;   ///< push outward (positive) or inward
  double step = 0.5;         ///< time step
  int iterations = 200;      ///< at the most
  double scale = 2;          ///< sigma of the smoothing, in pixels
  double convergence = 0.01; ///< mean movement per iteration, in pixels, at which the contour rests

  bool operator==(const SnakeConfig& other) const = default;
};
