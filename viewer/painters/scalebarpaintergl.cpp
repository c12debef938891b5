#include "viewer/painters/scalebarpaintergl.h"

#include "viewer/painters/materialgl.h"
#include "viewer/painters/pixelviewgl.h"
#include "viewer/painters/strokefont.h"

#include <cmath>
#include <locale>
#include <sstream>

namespace
{
constexpr float margin = 16; // in pixels of the screen, as the following
constexpr float tick = 4;    // half the height of the bar's ends
constexpr float letter = 9;  // height

void drawText(const std::string& text, float x, float y, float height)
{
  const std::vector<float> ends = StrokeFont::strokes(text);
  glBegin(GL_LINES);
  for (std::size_t i = 0; i + 1 < ends.size(); i += 2) glVertex2f(x + height * ends[i], y + height * ends[i + 1]);
  glEnd();
}
} // namespace

double roundLength(double longest)
{
  if (!(longest > 0) || !std::isfinite(longest)) return 0;
  const double power = std::pow(10, std::floor(std::log10(longest)));
  for (const double factor : {5.0, 2.0})
    if (factor * power <= longest) return factor * power;
  return power;
}

std::string lengthText(double length, const std::string& unit)
{
  std::ostringstream text;
  text.imbue(std::locale::classic());
  text << length << ' ' << unit;
  return text.str();
}

void ScaleBarPainterGL::setView(int width, int height, double lengthPerPixel, float pixelRatio)
{
  _width = width;
  _height = height;
  _lengthPerPixel = lengthPerPixel;
  setPixelRatio(pixelRatio);
}

void ScaleBarPainterGL::paint(PaintPass pass)
{
  const auto length = static_cast<float>(getNumPixels());
  if (!(length > 0)) return;
  const PixelViewGL view(_width, _height);
  MaterialGL{_color}.applyColor(pass);
  glLineWidth(1.5F * getPixelRatio());
  const float x = margin * getPixelRatio(), y = x, half = tick * getPixelRatio();
  glBegin(GL_LINES);
  for (const auto& [x1, y1, x2, y2] : {std::array{x, y, x + length, y}, std::array{x, y - half, x, y + half},
                                       std::array{x + length, y - half, x + length, y + half}})
  {
    glVertex2f(x1, y1);
    glVertex2f(x2, y2);
  }
  glEnd();
  const std::string text = lengthText(getLength(), _unit);
  const float height = letter * getPixelRatio();
  drawText(text, x + std::max((length - height * StrokeFont::width(text)) / 2, 0.F), y + 2 * half, height);
}
