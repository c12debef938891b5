#pragma once

#include <array>

/// What is seen behind the scene.
struct BackgroundGL
{
  enum Type
  {
    Uniform,
    LinearGradient, ///< the colour at the bottom, lighter towards the top
    RadialGradient, ///< lighter in the middle, the colour in the corners
    None            ///< transparent, for pictures that are put in front of something else
  };

  Type type = LinearGradient;
  std::array<int, 3> color = {38, 44, 56}; ///< red, green and blue, 0 to 255

  bool operator==(const BackgroundGL&) const = default;

  /// Black or white, whatever is seen better in front of it.
  std::array<int, 3> contrastingColor() const;
  /// Fills the picture, and the depth of all its pixels with the greatest one.
  void paint() const;
};
