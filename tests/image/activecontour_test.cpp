// Active contours on images of discs and ellipses, whose outlines are known.

#include "image/activecontour/activecontour.h"

#include "image/activecontour/pentadiagonalsystem.h"
#include "numeric/randomgenerator.h"
#include "numeric/squarematrix.h"
#include "tests/support/canceller.h"
#include "tests/support/errors.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

namespace
{
constexpr int side = 200;

struct Ellipse
{
  double a, b;
  double x = 101.3, y = 97.6;
};

/// Grey levels `inside` and `outside`, borders smoothed over a pixel, under Gaussian noise.
PixelMatrix<float> picture(const Ellipse& ellipse, double inside, double outside, double noise, int scale = 1)
{
  RandomGenerator generator(7);
  PixelMatrix<float> image(side * scale, side * scale);
  for (int i = 0; i < side * scale; ++i)
    for (int j = 0; j < side * scale; ++j)
    {
      const double u = (j - ellipse.x * scale) / (ellipse.a * scale), v = (i - ellipse.y * scale) / (ellipse.b * scale);
      const double r = std::hypot(u, v);
      const double slope = std::hypot(u / ellipse.a, v / ellipse.b) / (r > 0 ? r : 1) / scale;
      const double distance = slope > 0 ? (r - 1) / slope : -side;
      const double share = std::clamp(0.5 - distance, 0.0, 1.0);
      image(i, j) = static_cast<float>(outside + share * (inside - outside) + noise * generator.gauss());
    }
  return image;
}

Curve<double> outline(const Ellipse& ellipse, double offset, bool isClockwise = false)
{
  constexpr int size = 60;
  Curve<double> curve(2, size);
  for (int i = 0; i < size; ++i)
  {
    const double angle = 2 * std::numbers::pi * (isClockwise ? -i : i) / size;
    curve.data(i)[0] = ellipse.x + (ellipse.a + offset) * std::cos(angle);
    curve.data(i)[1] = ellipse.y + (ellipse.b + offset) * std::sin(angle);
  }
  return curve;
}

/// Mean distance of the vertices from the ellipse, as good as its outline is fine.
double meanError(const Curve<double>& curve, const Ellipse& ellipse)
{
  constexpr int fineness = 20000;
  double sum = 0;
  for (int i = 0; i < curve.getNumVertices(); ++i)
  {
    double least = HUGE_VAL;
    for (int k = 0; k < fineness; ++k)
    {
      const double angle = 2 * std::numbers::pi * k / fineness;
      least = std::min(least, std::hypot(curve.data(i)[0] - ellipse.x - ellipse.a * std::cos(angle),
                                         curve.data(i)[1] - ellipse.y - ellipse.b * std::sin(angle)));
    }
    sum += least;
  }
  return sum / curve.getNumVertices();
}
} // namespace

TEST(ActiveContour, FindsDiscsAndEllipsesInNoise)
{
  for (const Ellipse& ellipse : {Ellipse{40, 40}, Ellipse{20, 20}, Ellipse{50, 25}})
    for (const double contrast : {50.0, -50.0})
      for (const double noise : {0.0, 10.0, 25.0, 50.0})
        for (const double offset : {-10.0, 0.0, 10.0})
          for (const int scale : {1, 2})
          {
            SnakeConfig config;
            config.scale = scale;
            Curve<double> curve = outline(ellipse, offset, contrast < 0);
            ActiveContour snake(config);
            const SnakeEnd end = snake.apply(picture(ellipse, 100 + contrast, 100, noise, scale), curve);
            const double error = meanError(curve, ellipse);
            printf("a %g c %g n %g off %g s %d : end %d it %d err %.3f nv %d\n", ellipse.a * 100 + ellipse.b, contrast,
                   noise, offset, scale, int(end), snake.getNumIterations(), error, curve.getNumVertices());
          }
}
