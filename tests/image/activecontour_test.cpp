// Active contours on images of discs and ellipses, whose outlines are known.

#include "image/activecontour/activecontour.h"

#include "image/activecontour/pentadiagonalsystem.h"
#include "numeric/randomgenerator.h"
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

/// From the outline, positive outside; to first order.
double signedDistance(const Ellipse& ellipse, double x, double y)
{
  const double u = (x - ellipse.x) / ellipse.a, v = (y - ellipse.y) / ellipse.b;
  const double r = std::hypot(u, v);
  return r > 0 ? (r - 1) * r / std::hypot(u / ellipse.a, v / ellipse.b) : -std::min(ellipse.a, ellipse.b);
}

/// Grey levels inside and outside, mixed over a pixel at the outline, under Gaussian noise (Box and Muller).
PixelMatrix<float> picture(const Ellipse& ellipse, double inside, double outside, double noise, int scale = 1)
{
  RandomGenerator generator(7);
  PixelMatrix<float> image(side * scale, side * scale);
  for (int i = 0; i < image.getSize1(); ++i)
    for (int j = 0; j < image.getSize2(); ++j)
    {
      const double distance = scale * signedDistance(ellipse, double(j) / scale, double(i) / scale);
      const double share = std::clamp(0.5 - distance, 0.0, 1.0);
      const double length = std::sqrt(-2 * std::log(1 - generator.uniformLF()));
      const double angle = 2 * std::numbers::pi * generator.uniformLF();
      image(i, j) = static_cast<float>(outside + share * (inside - outside) + noise * length * std::cos(angle));
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

/// Mean distance of the vertices from the ellipse, to first order.
double meanError(const Curve<double>& curve, const Ellipse& ellipse)
{
  double sum = 0;
  for (int i = 0; i < curve.getNumVertices(); ++i)
    sum += std::abs(signedDistance(ellipse, curve.data(i)[0], curve.data(i)[1]));
  return sum / curve.getNumVertices();
}
} // namespace

TEST(ActiveContour, FindsDiscsAndEllipsesInNoise)
{
  for (const Ellipse& ellipse : {Ellipse{40, 40}, Ellipse{20, 20}, Ellipse{50, 25}})
    for (const double contrast : {50.0, -50.0})
      for (const double noise : {0.0, 50.0})
        for (const int scale : {1, 2})
        {
          const PixelMatrix<float> image = picture(ellipse, 100 + contrast, 100, noise, scale);
          for (const double offset : {-10.0, 0.0, 10.0})
          {
            SCOPED_TRACE(testing::Message() << "axes " << ellipse.a << " and " << ellipse.b << ", contrast " << contrast
                                            << ", noise " << noise << ", scale " << scale << ", offset " << offset);
            SnakeConfig config;
            config.scale = scale;
            Curve<double> curve = outline(ellipse, offset, contrast < 0);
            EXPECT_EQ(ActiveContour(config).apply(image, curve), SnakeEnd::Converged);
            EXPECT_LT(scale * meanError(curve, ellipse), noise > 0 ? 0.9 : 0.3);
            EXPECT_NEAR(curve.getNumVertices(), curve.length(), 0.03 * curve.length());
            EXPECT_EQ(curve.isClockwise(0, 1), contrast < 0);
          }
        }
}

TEST(ActiveContour, PutsAnOpenCurveOnAnEdge)
{
  const Ellipse plane{1e6, 1e6, 101.3 - 1e6, 100}; // its border is the line x = 101.3
  Curve<double> curve(2, 2);
  curve.setOpen(true);
  curve.data(0)[0] = 94;
  curve.data(0)[1] = 60;
  curve.data(1)[0] = 108;
  curve.data(1)[1] = 140;
  EXPECT_EQ(ActiveContour(SnakeConfig()).apply(picture(plane, 80, 100, 5), curve), SnakeEnd::Converged);
  EXPECT_TRUE(curve.isOpen());
  EXPECT_NEAR(curve.length(), 80, 4);
  for (int i = 0; i < curve.getNumVertices(); ++i) EXPECT_NEAR(curve.data(i)[0], 101.3, 0.7);
}

TEST(ActiveContour, TellsHowItEnds)
{
  const PixelMatrix<float> flat = picture({40, 40}, 100, 100, 0);
  SnakeConfig shrinking, growing, resting, hasty;
  shrinking.balloonForce = -1;
  growing.balloonForce = 1;
  shrinking.iterations = growing.iterations = 2000;
  resting.elasticity = resting.rigidity = 0;
  hasty.iterations = 3;
  hasty.balloonForce = 1;
  const Curve<double> start = outline({30, 30}, 0);
  Curve<double> point(2, 5);
  for (int i = 0; i < 5; ++i) point.data(i)[0] = point.data(i)[1] = 50;
  Curve<double> outside = start;
  for (int i = 0; i < outside.getNumVertices(); ++i) outside.data(i)[0] -= 500;
  const struct
  {
    const char* name;
    SnakeConfig config;
    Curve<double> curve;
    SnakeEnd end;
  } cases[] = {
      {"shrinking", shrinking, start, SnakeEnd::Collapsed},
      {"shrinking clockwise", shrinking, outline({30, 30}, 0, true), SnakeEnd::Collapsed},
      {"growing", growing, start, SnakeEnd::LeftImage},
      {"growing clockwise", growing, outline({30, 30}, 0, true), SnakeEnd::LeftImage},
      {"without forces", resting, start, SnakeEnd::Converged},
      {"too few iterations", hasty, start, SnakeEnd::IterationsUsedUp},
      {"one point", resting, point, SnakeEnd::Collapsed},
      {"beside the image", resting, outside, SnakeEnd::Collapsed},
  };
  for (const auto& c : cases)
  {
    SCOPED_TRACE(c.name);
    Curve<double> curve = c.curve;
    EXPECT_EQ(ActiveContour(c.config).apply(flat, curve), c.end);
  }
}

TEST(ActiveContour, BalloonMovesAllVerticesAtOneSpeed)
{
  const PixelMatrix<float> flat = picture({40, 40}, 100, 100, 0);
  for (const double force : {-0.4, 0.4})
    for (const bool isClockwise : {false, true})
    {
      SnakeConfig config;
      config.balloonForce = force;
      config.elasticity = config.rigidity = config.convergence = 0;
      config.iterations = 50;
      Curve<double> curve = outline({40, 40}, 0, isClockwise);
      ActiveContour(config).apply(flat, curve);
      EXPECT_LT(meanError(curve, {40 + 50 * 0.5 * force, 40 + 50 * 0.5 * force}), 0.2);
    }
}

TEST(ActiveContour, CanBeCancelledAndWatched)
{
  SnakeConfig config;
  config.balloonForce = 0.1;
  config.convergence = 0;
  config.iterations = 100;
  ActiveContour snake(config);
  int numSeen = 0;
  snake.setObserver([&numSeen](const Curve<double>&) { ++numSeen; });
  const Canceller canceller(snake, 0.2);
  Curve<double> curve = outline({40, 40}, 5);
  EXPECT_EQ(snake.apply(picture({40, 40}, 150, 100, 0), curve), SnakeEnd::Cancelled);
  EXPECT_TRUE(canceller.isFinished());
  EXPECT_EQ(numSeen, 20);
  EXPECT_EQ(snake.getNumIterations(), 20);
}

TEST(ActiveContour, RefusesWhatItCannotUse)
{
  SnakeConfig config;
  config.step = std::nan("");
  expectError<ValueError>("step is out of its range", [&] { ActiveContour snake(config); });
  config = SnakeConfig();
  config.scale = 0;
  expectError<ValueError>("scale is out of its range", [&] { ActiveContour snake(config); });
  ActiveContour snake{SnakeConfig()};
  Curve<double> curve = outline({40, 40}, 0);
  expectError<SizeError>("The image is empty", [&] { snake.apply(PixelMatrix<float>(), curve); });
  PixelMatrix<float> pixel(1, 1);
  pixel.setZeros();
  EXPECT_EQ(snake.apply(pixel, curve), SnakeEnd::Collapsed);
  curve = outline({40, 40}, 0);
  curve.data(3)[1] = HUGE_VAL;
  expectError<ValueError>("not finite", [&] { snake.apply(pixel, curve); });
  Curve<double> empty;
  expectError<SizeError>("no planar curve", [&] { snake.apply(pixel, empty); });
}

/// The differences of the solution, taken twice and four times, give the right side back.
TEST(PentadiagonalSystem, SolvesForClosedAndOpenCurves)
{
  RandomGenerator generator(3);
  const double a = 0.7, b = 12;
  for (const int n : {6, 7, 50})
    for (const bool isClosed : {false, true})
    {
      std::vector<double> right(2 * n);
      for (double& value : right) value = generator.uniformLF(-100, 100);
      std::vector<double> x = right;
      PentadiagonalSystem system;
      system.factorise(n, isClosed, a, b);
      system.solve(x.data());
      std::vector<double> product = x;
      const auto addDifference = [&](std::initializer_list<double> weights, int first, double factor)
      {
        for (int k = 0; k < 2; ++k)
        {
          double difference = 0;
          int i = first;
          for (const double weight : weights) difference += weight * x[2 * (i++ % n) + k];
          i = first;
          for (const double weight : weights) product[2 * (i++ % n) + k] += factor * weight * difference;
        }
      };
      for (int i = 0; i < (isClosed ? n : n - 1); ++i) addDifference({-1, 1}, i, a);
      for (int i = 0; i < (isClosed ? n : n - 2); ++i) addDifference({1, -2, 1}, i, b);
      for (int i = 0; i < 2 * n; ++i) EXPECT_NEAR(product[i], right[i], 1e-9) << n << " vertices, closed " << isClosed;
    }
}
