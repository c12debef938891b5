#include "viewer/scene/backgroundgl.h"

#include "viewer/painters/stategl.h"

#include <cmath>
#include <numbers>

namespace
{
constexpr float lightShare = 0.35F; // of white in the lighter colour
constexpr int numSegments = 64;     // of the circle

void setColor(const std::array<int, 3>& color, float white)
{
  const auto component = [&](std::size_t i) { return (static_cast<float>(color[i]) / 255) * (1 - white) + white; };
  glColor3f(component(0), component(1), component(2));
}

void paintLinear(const std::array<int, 3>& color)
{
  glBegin(GL_QUADS);
  setColor(color, 0);
  glVertex2f(-1, -1);
  glVertex2f(1, -1);
  setColor(color, lightShare);
  glVertex2f(1, 1);
  glVertex2f(-1, 1);
  glEnd();
}

void paintRadial(const std::array<int, 3>& color)
{
  glBegin(GL_TRIANGLE_FAN);
  setColor(color, lightShare);
  glVertex2f(0, 0);
  setColor(color, 0);
  for (int k = 0; k <= numSegments; ++k)
  {
    const float angle = 2 * std::numbers::pi_v<float> * static_cast<float>(k) / numSegments;
    glVertex2f(std::numbers::sqrt2_v<float> * std::cos(angle), std::numbers::sqrt2_v<float> * std::sin(angle));
  }
  glEnd();
}
} // namespace

std::array<int, 3> BackgroundGL::contrastingColor() const
{
  const bool isBright = type != None && 299 * color[0] + 587 * color[1] + 114 * color[2] > 128 * 1000;
  return type == None || isBright ? std::array{0, 0, 0} : std::array{255, 255, 255};
}

void BackgroundGL::paint() const
{
  const auto component = [this](std::size_t i) { return static_cast<float>(color[i]) / 255; };
  const float alpha = type == None ? 0 : 1;
  glClearColor(component(0) * alpha, component(1) * alpha, component(2) * alpha, alpha);
  glClearDepth(1);
  glDepthMask(GL_TRUE);
  glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
  if (type == Uniform || type == None) return;
  const StateGL state(GL_CURRENT_BIT | GL_ENABLE_BIT | GL_DEPTH_BUFFER_BIT | GL_TRANSFORM_BIT);
  const MatricesGL matrices;
  glMatrixMode(GL_PROJECTION);
  glLoadIdentity();
  glMatrixMode(GL_MODELVIEW);
  glLoadIdentity();
  glDisable(GL_LIGHTING);
  glDisable(GL_DEPTH_TEST);
  glDepthMask(GL_FALSE);
  type == LinearGradient ? paintLinear(color) : paintRadial(color);
}
