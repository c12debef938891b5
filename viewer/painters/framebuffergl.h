#pragma once

#include "viewer/painters/glheaders.h"

#include <cstdint>
#include <vector>

/// A picture of colours and depths that is drawn into instead of the window while this object lives.
///
/// To be used and destroyed while the context is current in which it was made.
class FramebufferGL
{
public:
  /// \param numSamples  per pixel, for smooth edges; fewer when the graphics card does not have as many
  /// \throw MathError  the graphics card cannot have a picture of that size
  FramebufferGL(int width, int height, int numSamples = 0);
  FramebufferGL(const FramebufferGL&) = delete;
  FramebufferGL& operator=(const FramebufferGL&) = delete;
  ~FramebufferGL();

  /// The largest width and height that pictures can have in the current context.
  static int largestSize();

  /// Red, green, blue and alpha of each pixel, the top line first. The colours are multiplied by alpha as they were
  /// blended, except where `isTransparent` is set, which divides them by it.
  std::vector<std::uint8_t> pixels(bool isTransparent) const;
  /// Red, green, blue and alpha of a pixel, counted from the lower left; without samples only.
  std::vector<std::uint8_t> pixel(int x, int y) const;
  /// The depth of that pixel, 1 where nothing was drawn; without samples only.
  float depth(int x, int y) const;

private:
  struct Target
  {
    GLuint framebuffer = 0;
    GLuint color = 0;
    GLuint depth = 0;
  };

  static void createTarget(Target& target, int width, int height, int numSamples);
  static void deleteTarget(Target& target);

  int _width;
  int _height;
  GLint _before = 0;
  Target _drawn;
  Target _resolved; // the same with one sample per pixel, when there are several
};
