#pragma once

/// Parameters of the active contour that refines the curves of a model. Lengths are in pixels of the reduced image.
struct SnakeConfig
{
  double elasticity = 0.1;   ///< resistance to stretching
  double rigidity = 5;       ///< resistance to bending
  double imageForce = 1;     ///< pull towards edges, at its strongest
  double balloonForce = 0;   ///< push outward (positive) or inward
  double step = 0.5;         ///< time step: forces times this are pixels per iteration
  int iterations = 500;      ///< at the most
  int scale = 1;             ///< the image is reduced by this factor first
  double convergence = 0.01; ///< mean movement per iteration at which the contour rests
  double smoothing = 2;      ///< standard deviation of the Gaussian that smooths the image
  double reach = 10;         ///< how far away edges are sought; 0: only as far as the smoothing carries
  bool propagates = false;   ///< goes on through the slices that follow

  bool operator==(const SnakeConfig& other) const = default;
};
