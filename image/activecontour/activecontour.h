#pragma once

#include "geometry/curve.h"
#include "image/activecontour/snakeconfig.h"
#include "image/pixelmatrix.h"
#include "numeric/progresssubject.h"

#include <functional>
#include <string>

/// How the run of an active contour ended.
enum class SnakeEnd
{
  Converged,        ///< it rests
  IterationsUsedUp, ///< it moves still
  Collapsed,        ///< its length or area is gone
  LeftImage,        ///< more than half of it presses against the borders of the image
  Cancelled
};

/// Parametric active contour ("snake"): a curve that edges of an image attract while it resists stretching and bending.
///
/// Each iteration moves the vertices by the image force, the gradient of the gradient magnitude of the smoothed image,
/// and the balloon force along the normals, explicitly, and by the internal forces implicitly. The image force is
/// divided by its greatest magnitude within reach along the normals, averaged over the vertices, and cut at 1, so that
/// the same parameters serve images of any contrast. To find edges far away, the first iterations smooth by more, 0.6
/// times the reach, which is then halved whenever the curve has come to rest, down to the configuration's smoothing.
/// The curve keeps about one vertex per pixel and stays on the image.
/// Sources: Kass, Witkin and Terzopoulos, "Snakes: active contour models", 1988 (the scheme); Cohen, "On active
/// contour models and balloons", 1991 (balloon force and normalisation of forces).
class ActiveContour : public virtual ProgressSubject
{
public:
  /// \throw ValueError  a parameter is out of its range
  explicit ActiveContour(const SnakeConfig& config);

  /// What is told of the step; "Running snake..." at first.
  void setMessage(const std::string& message) { _message = message; }
  /// Gets the curve after each iteration, in the thread of apply().
  using Observer = std::function<void(const Curve<double>&)>;
  void setObserver(Observer observer) { _observer = std::move(observer); }

  /// Moves a planar curve from where it is. Its coordinates are those of the reduced image: pixels divided by the
  /// configuration's scale. Outward is to the right of an open curve, y counted upwards. Whatever the end, the curve is
  /// as far as it came.
  /// \throw SizeError  the image has no pixels, or the curve no vertices or another space than 2
  /// \throw ValueError  a coordinate is not finite
  SnakeEnd apply(const PixelMatrix<float>& image, Curve<double>& curve);

  /// Of the last run.
  int getNumIterations() const { return _numIterations; }

private:
  class Motion;
  SnakeEnd settle(Motion& motion);

  SnakeConfig _config;
  std::string _message = "Running snake...";
  Observer _observer;
  int _numIterations = 0;
};
