#include "viewer/painters/framebuffergl.h"

#include "numeric/exception.h"

#include <algorithm>
#include <string>

namespace
{
constexpr const char* signature = "FramebufferGL::FramebufferGL(int, int, int)";
constexpr long mostBytes = 1L << 30; // of colours and depths, beyond which there are fewer samples
constexpr int bytesPerSample = 8;

/// As many samples as wanted if the graphics card and the memory have them.
int numSamplesFor(int width, int height, int wanted)
{
  GLint most = 0;
  glGetIntegerv(GL_MAX_SAMPLES, &most);
  const long affordable = mostBytes / (bytesPerSample * std::max(1L, long{width} * height));
  return static_cast<int>(std::min({long{wanted}, long{most}, affordable}));
}

GLuint createRenderbuffer(GLenum format, int width, int height, int numSamples)
{
  GLuint name = 0;
  glGenRenderbuffers(1, &name);
  glBindRenderbuffer(GL_RENDERBUFFER, name);
  glRenderbufferStorageMultisample(GL_RENDERBUFFER, numSamples, format, width, height);
  return name;
}

void divideByAlpha(std::vector<std::uint8_t>& pixels)
{
  for (std::size_t i = 0; i + 3 < pixels.size(); i += 4)
  {
    const int alpha = pixels[i + 3];
    if (alpha == 0 || alpha == 255) continue;
    for (std::size_t k = i; k < i + 3; ++k)
      pixels[k] = static_cast<std::uint8_t>(std::min(255, (pixels[k] * 255 + alpha / 2) / alpha));
  }
}
} // namespace

FramebufferGL::FramebufferGL(int width, int height, int numSamples) : _width(width), _height(height)
{
  glGetIntegerv(GL_DRAW_FRAMEBUFFER_BINDING, &_before);
  const int used = numSamplesFor(width, height, numSamples);
  const int largest = largestSize();
  bool isComplete = width > 0 && height > 0 && width <= largest && height <= largest;
  if (isComplete && used > 1) createTarget(_resolved, width, height, 0);
  if (isComplete) createTarget(_drawn, width, height, used > 1 ? used : 0);
  isComplete = isComplete && glCheckFramebufferStatus(GL_FRAMEBUFFER) == GL_FRAMEBUFFER_COMPLETE;
  if (isComplete) return;
  deleteTarget(_drawn);
  deleteTarget(_resolved);
  glBindFramebuffer(GL_FRAMEBUFFER, static_cast<GLuint>(_before));
  throw MathError(signature, "The graphics system cannot draw a picture of " + std::to_string(width) + " x " +
                                 std::to_string(height) + " pixels");
}

FramebufferGL::~FramebufferGL()
{
  glBindFramebuffer(GL_FRAMEBUFFER, static_cast<GLuint>(_before));
  deleteTarget(_drawn);
  deleteTarget(_resolved);
}

int FramebufferGL::largestSize()
{
  GLint renderbuffer = 0, viewport[2] = {0, 0};
  glGetIntegerv(GL_MAX_RENDERBUFFER_SIZE, &renderbuffer);
  glGetIntegerv(GL_MAX_VIEWPORT_DIMS, viewport);
  return std::min({renderbuffer, viewport[0], viewport[1]});
}

void FramebufferGL::createTarget(Target& target, int width, int height, int numSamples)
{
  target.color = createRenderbuffer(GL_RGBA8, width, height, numSamples);
  target.depth = createRenderbuffer(GL_DEPTH_COMPONENT24, width, height, numSamples);
  glGenFramebuffers(1, &target.framebuffer);
  glBindFramebuffer(GL_FRAMEBUFFER, target.framebuffer);
  glFramebufferRenderbuffer(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_RENDERBUFFER, target.color);
  glFramebufferRenderbuffer(GL_FRAMEBUFFER, GL_DEPTH_ATTACHMENT, GL_RENDERBUFFER, target.depth);
}

void FramebufferGL::deleteTarget(Target& target)
{
  if (target.framebuffer != 0) glDeleteFramebuffers(1, &target.framebuffer);
  if (target.color != 0) glDeleteRenderbuffers(1, &target.color);
  if (target.depth != 0) glDeleteRenderbuffers(1, &target.depth);
  target = {};
}

std::vector<std::uint8_t> FramebufferGL::pixels(bool isTransparent) const
{
  if (_resolved.framebuffer != 0)
  {
    glBindFramebuffer(GL_READ_FRAMEBUFFER, _drawn.framebuffer);
    glBindFramebuffer(GL_DRAW_FRAMEBUFFER, _resolved.framebuffer);
    glBlitFramebuffer(0, 0, _width, _height, 0, 0, _width, _height, GL_COLOR_BUFFER_BIT, GL_NEAREST);
    glBindFramebuffer(GL_READ_FRAMEBUFFER, _resolved.framebuffer);
  }
  const std::size_t lineSize = 4 * static_cast<std::size_t>(_width);
  std::vector<std::uint8_t> result(lineSize * static_cast<std::size_t>(_height));
  glPixelStorei(GL_PACK_ALIGNMENT, 1);
  glReadPixels(0, 0, _width, _height, GL_RGBA, GL_UNSIGNED_BYTE, result.data());
  glBindFramebuffer(GL_FRAMEBUFFER, _drawn.framebuffer);
  for (std::size_t top = 0, bottom = result.size(); top + lineSize < bottom; top += lineSize)
  {
    bottom -= lineSize; // OpenGL begins with the lowest line
    std::swap_ranges(result.begin() + static_cast<std::ptrdiff_t>(top),
                     result.begin() + static_cast<std::ptrdiff_t>(top + lineSize),
                     result.begin() + static_cast<std::ptrdiff_t>(bottom));
  }
  if (isTransparent) divideByAlpha(result);
  return result;
}

std::vector<std::uint8_t> FramebufferGL::pixel(int x, int y) const
{
  std::vector<std::uint8_t> result(4);
  glReadPixels(x, y, 1, 1, GL_RGBA, GL_UNSIGNED_BYTE, result.data());
  return result;
}

float FramebufferGL::depth(int x, int y) const
{
  float result = 1;
  glReadPixels(x, y, 1, 1, GL_DEPTH_COMPONENT, GL_FLOAT, &result);
  return result;
}
