#pragma once

#include "image/imagesourcevoxelmatrixplane.h"
#include "model/stack.h"
#include "model/stackslice.h"
#include "numeric/randomgenerator.h"
#include "tests/support/stacks.h"

#include <algorithm>
#include <cmath>
#include <memory>
#include <numbers>
#include <string>

/// Where a specimen lies on an image: its middle from the image's corner, rightwards and downwards, in lengths, and the
/// turn of its long axis from the rightward direction, clockwise on the screen.
struct SpecimenPose
{
  double x, y, degrees;
};

/// An image to look through: its size in pixels, theirs in lengths, and the standard deviation of its noise.
struct SpecimenView
{
  int width = 256, height = 256;
  double pixelWidth = 1, pixelHeight = 1;
  double noise = 0;
};

inline constexpr double specimenBackground = 40;

/// Grey level of the specimen at (x, y) from its middle, x along its long axis: an ellipse of 100 by 50 with a bright
/// end, which tells its two senses apart, and a hole. Its edges are a few lengths wide.
inline double specimenLevel(double x, double y)
{
  const auto blob = [](double u, double v) { return 1 / (1 + std::exp(12 * (std::hypot(u, v) - 1))); };
  return specimenBackground + 110 * blob(x / 50, y / 25) + 70 * blob((x - 26) / 13, (y - 4) / 10) -
         60 * blob((x + 20) / 9, (y + 6) / 7);
}

/// What the view shows of a specimen: grey levels from the formula above at the place of each pixel, whose index is
/// the place of its middle, with Gaussian noise (Box and Muller).
inline std::shared_ptr<VoxelMatrix<unsigned char>> specimenImage(const SpecimenView& view, const SpecimenPose& pose,
                                                                 int seed)
{
  RandomGenerator random(seed);
  auto image = std::make_shared<VoxelMatrix<unsigned char>>(view.height, view.width, 1);
  const double angle = pose.degrees * std::numbers::pi / 180;
  for (int i = 0; i < view.height; ++i)
    for (int j = 0; j < view.width; ++j)
    {
      const double x = j * view.pixelWidth - pose.x, y = i * view.pixelHeight - pose.y;
      const double level =
          specimenLevel(std::cos(angle) * x + std::sin(angle) * y, -std::sin(angle) * x + std::cos(angle) * y);
      const double length = std::sqrt(-2 * std::log(1 - random.uniformLF()));
      const double noise = view.noise * length * std::cos(2 * std::numbers::pi * random.uniformLF());
      (*image)(i, j, 0) = static_cast<unsigned char>(std::clamp(std::lround(level + noise), 0L, 255L));
    }
  return image;
}

/// Adds a slice that shows the specimen, with the view's size of pixels.
inline StackSlice& addSpecimenSlice(Stack& stack, const SpecimenView& view, const SpecimenPose& pose)
{
  StackSlice& slice = addSlice(stack, 0, 0);
  slice.setImageSource(ImageSourceVoxelMatrixPlane(
      std::shared_ptr<const VoxelMatrix<unsigned char>>(specimenImage(view, pose, stack.getNumSlices()))));
  setPixelSize(slice, static_cast<float>(view.pixelWidth), static_cast<float>(view.pixelHeight));
  return slice;
}
