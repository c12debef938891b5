#pragma once

#include <memory>

/// An OpenGL context without a window or display, current while it lives.
class OffscreenContext
{
public:
  /// \throw UsageError  there is no OpenGL on this machine that can do without a display
  OffscreenContext();
  OffscreenContext(const OffscreenContext&) = delete;
  OffscreenContext& operator=(const OffscreenContext&) = delete;
  ~OffscreenContext();

private:
  struct Handles;

  std::unique_ptr<Handles> _handles;
};
