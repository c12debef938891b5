#include "viewer/painters/texturegl.h"

#include <initializer_list>

TextureGL::~TextureGL()
{
  if (_name != 0) glDeleteTextures(1, &_name);
}

void TextureGL::begin()
{
  if (_name == 0) glGenTextures(1, &_name);
  glBindTexture(_target, _name);
  for (const GLenum parameter : {GL_TEXTURE_MIN_FILTER, GL_TEXTURE_MAG_FILTER})
    glTexParameteri(_target, parameter, GL_LINEAR);
  for (const GLenum parameter : {GL_TEXTURE_WRAP_S, GL_TEXTURE_WRAP_T, GL_TEXTURE_WRAP_R})
    glTexParameteri(_target, parameter, GL_CLAMP_TO_EDGE);
  glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
}

void TextureGL::fill2D(GLint internalFormat, GLenum format, int width, int height, const std::uint8_t* data)
{
  begin();
  glTexImage2D(_target, 0, internalFormat, width, height, 0, format, GL_UNSIGNED_BYTE, data);
}

void TextureGL::fill3D(GLint internalFormat, GLenum format, int width, int height, int depth, const std::uint8_t* data)
{
  begin();
  glTexImage3D(_target, 0, internalFormat, width, height, depth, 0, format, GL_UNSIGNED_BYTE, data);
}

void TextureGL::enable() const
{
  glEnable(_target);
  glBindTexture(_target, _name);
  glTexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_MODULATE);
}
