#include "viewer/painters/buffergl.h"

BufferGL::~BufferGL()
{
  if (_name != 0) glDeleteBuffers(1, &_name);
}

void BufferGL::allocate(std::size_t numBytes)
{
  if (_name == 0) glGenBuffers(1, &_name);
  bind();
  glBufferData(_target, static_cast<GLsizeiptr>(numBytes), nullptr, GL_STATIC_DRAW);
}

void BufferGL::write(std::size_t offset, const void* data, std::size_t numBytes)
{
  glBufferSubData(_target, static_cast<GLintptr>(offset), static_cast<GLsizeiptr>(numBytes), data);
}

void BufferGL::fill(const void* data, std::size_t numBytes)
{
  if (_name == 0) glGenBuffers(1, &_name);
  bind();
  glBufferData(_target, static_cast<GLsizeiptr>(numBytes), data, GL_STATIC_DRAW);
}

const void* offsetGL(std::size_t numBytes)
{
  return reinterpret_cast<const void*>(numBytes);
}
