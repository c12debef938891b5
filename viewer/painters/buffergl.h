#pragma once

#include "viewer/painters/glheaders.h"

#include <cstddef>
#include <utility>

/// A block of memory of the graphics card. To be destroyed while its context is current.
class BufferGL
{
public:
  /// \param target  GL_ARRAY_BUFFER or GL_ELEMENT_ARRAY_BUFFER
  explicit BufferGL(GLenum target) : _target(target) {}
  BufferGL(BufferGL&& other) noexcept : _target(other._target), _name(std::exchange(other._name, 0)) {}
  BufferGL(const BufferGL&) = delete;
  BufferGL& operator=(const BufferGL&) = delete;
  ~BufferGL();

  bool isFilled() const { return _name != 0; }
  /// Makes room for a number of bytes and binds the block.
  void allocate(std::size_t numBytes);
  /// Fills a part of the block, which is bound.
  void write(std::size_t offset, const void* data, std::size_t numBytes);
  void fill(const void* data, std::size_t numBytes);
  void bind() const { glBindBuffer(_target, _name); }
  void unbind() const { glBindBuffer(_target, 0); }

private:
  GLenum _target;
  GLuint _name = 0;
};

/// An offset into the bound block, as OpenGL takes it.
const void* offsetGL(std::size_t numBytes);
