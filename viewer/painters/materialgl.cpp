#include "viewer/painters/materialgl.h"

#include "viewer/painters/glheaders.h"

#include <algorithm>

namespace
{
constexpr float highlight = 0.6F; // the share of the specular light that surfaces reflect
constexpr float mostShininess = 128;

GLubyte byteOf(float value)
{
  return static_cast<GLubyte>(std::clamp(value, 0.F, 255.F) + 0.5F); // NaN is clamped to 0 below
}
} // namespace

void MaterialGL::applyColor(PaintPass pass) const
{
  if (pass == PaintPass::Picking) return;
  const auto component = [this](std::size_t i) { return byteOf(static_cast<float>(color[i])); };
  glColor4ub(component(0), component(1), component(2), opacity >= 0 ? byteOf(opacity) : GLubyte{0});
}

void MaterialGL::apply(PaintPass pass, bool isOneSided) const
{
  if (pass == PaintPass::Picking) return;
  const bool isShiny = shininess > 0 && !isEconomic;
  const GLfloat reflected = isShiny ? highlight : 0;
  const GLfloat specular[] = {reflected, reflected, reflected, 1};
  glMaterialfv(GL_FRONT_AND_BACK, GL_SPECULAR, specular);
  glMaterialf(GL_FRONT_AND_BACK, GL_SHININESS, isShiny ? std::min(shininess, mostShininess) : 0);
  glColorMaterial(GL_FRONT_AND_BACK, GL_AMBIENT_AND_DIFFUSE);
  glEnable(GL_COLOR_MATERIAL);
  glEnable(GL_LIGHTING);
  glLightModeli(GL_LIGHT_MODEL_TWO_SIDE, isEconomic || isOneSided ? GL_FALSE : GL_TRUE);
  applyColor(pass);
}

void selectFaces(PaintPass pass, bool isOneSided)
{
  if (!isOneSided && pass != PaintPass::BackFaces && pass != PaintPass::FrontFaces) return glDisable(GL_CULL_FACE);
  glEnable(GL_CULL_FACE);
  glCullFace(pass == PaintPass::BackFaces ? GL_FRONT : GL_BACK);
}
