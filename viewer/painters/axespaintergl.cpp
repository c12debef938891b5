#include "viewer/painters/axespaintergl.h"

#include "viewer/painters/materialgl.h"
#include "viewer/painters/pixelviewgl.h"
#include "viewer/painters/strokefont.h"

#include <algorithm>

namespace
{
constexpr float reach = 26;  // in pixels of the screen, as the following
constexpr float margin = 44; // of the centre from the borders
constexpr float letter = 8;  // height

struct Axis
{
  const char* name;
  std::array<int, 3> color;
  float x, y, z; // of its tip as it is seen
};
} // namespace

void AxesPainterGL::setView(int width, int height, float pixelRatio, const std::array<double, 9>& rotation)
{
  _width = width;
  _height = height;
  setPixelRatio(pixelRatio);
  _rotation = rotation;
}

/// The axis that points away from the viewer most is drawn first.
void AxesPainterGL::paint(PaintPass pass)
{
  const PixelViewGL view(_width, _height);
  glTranslatef(static_cast<float>(_width) - margin * getPixelRatio(), margin * getPixelRatio(), 0);
  glScalef(getPixelRatio(), getPixelRatio(), 1);
  glLineWidth(2 * getPixelRatio());
  const auto axis = [this](std::size_t k, const char* name, const std::array<int, 3>& color)
  {
    const auto at = [this, k](std::size_t row) { return static_cast<float>(_rotation[3 * row + k]); };
    return Axis{name, color, at(0), at(1), at(2)};
  };
  std::array axes = {axis(0, "X", {220, 50, 47}), axis(1, "Y", {60, 160, 60}), axis(2, "Z", {60, 120, 230})};
  std::sort(axes.begin(), axes.end(), [](const Axis& a, const Axis& b) { return a.z < b.z; });
  for (const Axis& a : axes)
  {
    MaterialGL{a.color}.applyColor(pass);
    const std::vector<float> ends = StrokeFont::strokes(a.name);
    const float left = 1.35F * reach * a.x - letter / 3, bottom = 1.35F * reach * a.y - letter / 2;
    glBegin(GL_LINES);
    glVertex2f(0, 0);
    glVertex2f(reach * a.x, reach * a.y);
    for (std::size_t i = 0; i + 1 < ends.size(); i += 2)
      glVertex2f(left + letter * ends[i], bottom + letter * ends[i + 1]);
    glEnd();
  }
}
