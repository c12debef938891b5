#include "viewer/painters/boundingboxpaintergl.h"

#include "viewer/painters/materialgl.h"
#include "viewer/painters/stategl.h"

void BoundingBoxPainterGL::paint(PaintPass pass)
{
  if (_box.isEmpty()) return;
  const StateGL state(GL_CURRENT_BIT | GL_ENABLE_BIT | GL_LINE_BIT);
  glDisable(GL_LIGHTING);
  glLineWidth(getPixelRatio());
  MaterialGL{_color}.applyColor(pass);
  const auto corner = [this](unsigned int k)
  {
    const auto side = [this, k](int axis) { return (k >> axis & 1 ? _box.getMaximum() : _box.getMinimum())[axis]; };
    glVertex3f(side(0), side(1), side(2));
  };
  glBegin(GL_LINES);
  for (unsigned int k = 0; k < 8; ++k)
    for (unsigned int bit = 1; bit < 8; bit <<= 1)
      if ((k & bit) == 0)
      {
        corner(k);
        corner(k | bit);
      }
  glEnd();
}
