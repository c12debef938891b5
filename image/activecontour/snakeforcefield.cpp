#include "image/activecontour/snakeforcefield.h"

#include "image/filters/gaussianfilter.h"

#include <cmath>

namespace
{
using Window = SnakeForceField::Window;

/// The part of a window, widened by a margin, that lies on an image.
Window widened(const Window& window, int margin, int width, int height)
{
  return {std::clamp(window.left - margin, 0, width - 1), std::clamp(window.top - margin, 0, height - 1),
          std::clamp(window.right + margin, 0, width - 1), std::clamp(window.bottom + margin, 0, height - 1)};
}

int widthOf(const Window& window)
{
  return window.right - window.left + 1;
}

int heightOf(const Window& window)
{
  return window.bottom - window.top + 1;
}

/// Half the difference of an element's neighbours, those beyond the border being the outermost elements.
struct Differences
{
  const PixelMatrix<float>& levels;

  float alongX(int row, int column) const
  {
    const int last = levels.getSize2() - 1;
    return (levels(row, std::min(last, column + 1)) - levels(row, std::max(0, column - 1))) / 2;
  }
  float alongY(int row, int column) const
  {
    const int last = levels.getSize1() - 1;
    return (levels(std::min(last, row + 1), column) - levels(std::max(0, row - 1), column)) / 2;
  }
};

PixelMatrix<float> gradientMagnitude(const PixelMatrix<float>& levels)
{
  PixelMatrix<float> magnitude(levels.getSize1(), levels.getSize2());
  const Differences differences{levels};
#pragma omp parallel for
  for (int i = 0; i < levels.getSize1(); ++i)
    for (int j = 0; j < levels.getSize2(); ++j)
    {
      const float x = differences.alongX(i, j), y = differences.alongY(i, j);
      magnitude(i, j) = std::sqrt(x * x + y * y);
    }
  return magnitude;
}
} // namespace

SnakeForceField::SnakeForceField(const PixelMatrix<float>& image, int scale)
  : _image(image),
    _scale(scale),
    _width((image.getSize2() - 1) / scale + 1),
    _height((image.getSize1() - 1) / scale + 1)
{
}

void SnakeForceField::setSmoothing(double sigma)
{
  _sigma = sigma;
  _window = Window();
}

bool SnakeForceField::covers(const Window& window) const
{
  return _window.left <= window.left && window.right <= _window.right && _window.top <= window.top &&
         window.bottom <= _window.bottom;
}

/// Of an even scale, the square's outermost pixels lie half inside.
PixelMatrix<float> SnakeForceField::reduced(const Window& window) const
{
  const int half = _scale / 2;
  std::vector<float> weights(static_cast<std::size_t>(2 * half + 1), 1 / static_cast<float>(_scale));
  if (_scale % 2 == 0) weights.front() = weights.back() = weights.front() / 2;
  PixelMatrix<float> levels(heightOf(window), widthOf(window));
#pragma omp parallel for
  for (int i = 0; i < levels.getSize1(); ++i)
    for (int j = 0; j < levels.getSize2(); ++j)
    {
      float sum = 0;
      for (int k = -half; k <= half; ++k)
        for (int l = -half; l <= half; ++l)
        {
          const int row = std::clamp((window.top + i) * _scale + k, 0, _image.getSize1() - 1);
          const int column = std::clamp((window.left + j) * _scale + l, 0, _image.getSize2() - 1);
          const float level = _image(row, column);
          if (std::isfinite(level)) sum += weights[k + half] * weights[l + half] * level;
        }
      levels(i, j) = sum;
    }
  return levels;
}

void SnakeForceField::cover(const Window& window, int margin)
{
  if (covers(widened(window, 0, _width, _height))) return;
  const Window wanted = widened(window, margin, _width, _height);
  const int support = static_cast<int>(std::lround(4 * _sigma)) + 2; // of the Gaussian and the differences
  const Window needed = widened(wanted, support, _width, _height);
  PixelMatrix<float> levels = reduced(needed);
  GaussianFilter<float> gaussian;
  gaussian.setSigma(_sigma);
  gaussian.apply(levels);
  const PixelMatrix<float> magnitude = gradientMagnitude(levels);
  const Differences differences{magnitude};

  _window = wanted;
  const int width = widthOf(wanted) + 1, height = heightOf(wanted) + 1;
  _stride = 2 * static_cast<std::size_t>(width);
  _forces.resize(_stride * static_cast<std::size_t>(height));
#pragma omp parallel for
  for (int i = 0; i < height; ++i)
    for (int j = 0; j < width; ++j)
    {
      const int row = std::min(wanted.top + i - needed.top, magnitude.getSize1() - 1);
      const int column = std::min(wanted.left + j - needed.left, magnitude.getSize2() - 1);
      float* const force = &_forces[i * _stride + 2 * static_cast<std::size_t>(j)];
      force[0] = differences.alongX(row, column);
      force[1] = differences.alongY(row, column);
    }
}
