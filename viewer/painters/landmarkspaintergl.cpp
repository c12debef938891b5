#include "viewer/painters/landmarkspaintergl.h"

#include "viewer/painters/stategl.h"
#include "viewer/painters/strokefont.h"

namespace
{
constexpr float dotSize = 7; // in pixels of the screen, as the following
constexpr float letter = 9;

/// The place of a point in the viewport, in pixels.
std::array<float, 2> placeOf(const LandmarksPainterGL::Point& p)
{
  double view[16], projection[16];
  GLint viewport[4];
  glGetDoublev(GL_MODELVIEW_MATRIX, view);
  glGetDoublev(GL_PROJECTION_MATRIX, projection);
  glGetIntegerv(GL_VIEWPORT, viewport);
  const auto times = [](const double* m, const std::array<double, 4>& v)
  {
    std::array<double, 4> result{};
    for (std::size_t i = 0; i < 4; ++i)
      for (std::size_t j = 0; j < 4; ++j) result[i] += m[4 * j + i] * v[j];
    return result;
  };
  const std::array<double, 4> clip = times(projection, times(view, {p[0], p[1], p[2], 1}));
  return {static_cast<float>((clip[0] / clip[3] + 1) / 2 * viewport[2]),
          static_cast<float>((clip[1] / clip[3] + 1) / 2 * viewport[3])};
}

void paintNumber(std::size_t number, const std::array<float, 2>& place, float height)
{
  const std::vector<float> ends = StrokeFont::strokes(std::to_string(number));
  for (std::size_t i = 0; i + 1 < ends.size(); i += 2)
    glVertex2f(place[0] + height * (ends[i] + 0.8F), place[1] + height * (ends[i + 1] + 0.5F));
}
} // namespace

void LandmarksPainterGL::paintDots(float size) const
{
  glPointSize(size * getPixelRatio());
  glBegin(GL_POINTS);
  for (const Point& p : _points) glVertex3dv(p.data());
  glEnd();
}

void LandmarksPainterGL::paintNumbers(const std::vector<std::array<float, 2>>& places, float lineWidth) const
{
  glLineWidth(lineWidth * getPixelRatio());
  glBegin(GL_LINES);
  for (std::size_t i = 0; i < places.size(); ++i) paintNumber(i + 1, places[i], letter * getPixelRatio());
  glEnd();
}

void LandmarksPainterGL::paint(PaintPass)
{
  if (_points.empty()) return;
  const StateGL state(GL_CURRENT_BIT | GL_ENABLE_BIT | GL_LINE_BIT | GL_POINT_BIT | GL_TRANSFORM_BIT);
  glDisable(GL_LIGHTING);
  glDisable(GL_DEPTH_TEST);
  glColor3ub(0, 0, 0);
  paintDots(dotSize + 4);
  glColor3ub(255, 220, 0);
  paintDots(dotSize);
  std::vector<std::array<float, 2>> places;
  for (const Point& p : _points) places.push_back(placeOf(p));
  GLint viewport[4];
  glGetIntegerv(GL_VIEWPORT, viewport);
  const MatricesGL matrices;
  glMatrixMode(GL_PROJECTION);
  glLoadIdentity();
  glOrtho(0, viewport[2], 0, viewport[3], -1, 1);
  glMatrixMode(GL_MODELVIEW);
  glLoadIdentity();
  glColor3ub(0, 0, 0); // around the numbers, too
  paintNumbers(places, 4.5F);
  glColor3ub(255, 220, 0);
  paintNumbers(places, 1.5F);
}
