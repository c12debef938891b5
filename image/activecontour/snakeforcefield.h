#pragma once

#include "image/pixelmatrix.h"

#include <algorithm>
#include <array>
#include <vector>

/// The force that pulls an active contour towards edges: the gradient of the gradient magnitude of an image that is
/// reduced and then smoothed by a Gaussian.
///
/// Pixel (x, y) of the reduced image stands for the image around (scale x, scale y), weighted evenly over a square of
/// side `scale`; beyond its borders the image goes on with its outermost pixels. Forces are computed for the window
/// that is asked for; what they are does not depend on it.
class SnakeForceField
{
public:
  /// The image is borrowed; it has pixels, and levels that are not finite count as 0. scale >= 1
  SnakeForceField(const PixelMatrix<float>& image, int scale);

  /// Of the reduced image.
  int getWidth() const { return _width; }
  int getHeight() const { return _height; }

  /// Standard deviation of the Gaussian, in pixels of the reduced image.
  void setSmoothing(double sigma);

  /// Pixels of the reduced image, the last ones included.
  struct Window
  {
    int left = 0, top = 0, right = -1, bottom = -1;
  };
  /// Provides the forces at the window's pixels: when some are missing, those of the window widened by a margin, as far
  /// as they lie on the image. \throw ValueError  as GaussianFilter::setSigma()
  void cover(const Window& window, int margin);

  /// The force at a point of the window, between pixels bilinear. Unchecked.
  std::array<double, 2> operator()(double x, double y) const
  {
    const int column = std::min(static_cast<int>(x), _window.right);
    const int row = std::min(static_cast<int>(y), _window.bottom);
    const double u = x - column, v = y - row;
    const float* const above =
        &_forces[(row - _window.top) * _stride + 2 * static_cast<std::size_t>(column - _window.left)];
    const float* const below = above + _stride;
    const auto between = [&](int k)
    {
      const double first = above[k] + u * (above[k + 2] - above[k]);
      const double second = below[k] + u * (below[k + 2] - below[k]);
      return first + v * (second - first);
    };
    return {between(0), between(1)};
  }

private:
  bool covers(const Window& window) const;
  PixelMatrix<float> reduced(const Window& window) const;

  const PixelMatrix<float>& _image;
  int _scale;
  int _width, _height;
  double _sigma = 0;
  Window _window;
  std::size_t _stride = 0;
  std::vector<float> _forces; // x and y; one more column and row than the window has
};
