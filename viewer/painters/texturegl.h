#pragma once

#include "viewer/painters/glheaders.h"

#include <cstdint>

/// A picture or a volume in the memory of the graphics card. To be destroyed while its context is current.
class TextureGL
{
public:
  /// \param target  GL_TEXTURE_2D or GL_TEXTURE_3D
  explicit TextureGL(GLenum target) : _target(target) {}
  TextureGL(const TextureGL&) = delete;
  TextureGL& operator=(const TextureGL&) = delete;
  ~TextureGL();

  bool isFilled() const { return _name != 0; }
  /// Lines of `width` elements of the format (GL_LUMINANCE, GL_RGB), without gaps; drawn with linear interpolation.
  void fill2D(GLint internalFormat, GLenum format, int width, int height, const std::uint8_t* data);
  void fill3D(GLint internalFormat, GLenum format, int width, int height, int depth, const std::uint8_t* data);
  /// Makes it the colour of what is drawn, multiplied by the colour that is set.
  void enable() const;

private:
  void begin();

  GLenum _target;
  GLuint _name = 0;
};
