#pragma once

#include "viewer/painters/paintergl.h"

#include <array>

/// How a surface looks under the light.
struct MaterialGL
{
  std::array<int, 3> color = {255, 0, 0}; ///< red, green and blue, 0 to 255
  float opacity = 255;                    ///< 255 is opaque
  float shininess = 32;                   ///< the higher, the smaller the highlights; OpenGL knows 0 to 128
  bool isEconomic = false;                ///< only what is seen from outside is drawn

  bool isTransparent() const { return opacity < 255; }
  /// Sets colour and highlights, except for picking. \param isOneSided  the insides are not seen and need no light
  void apply(PaintPass pass, bool isOneSided = false) const;
  /// Sets the colour of what is drawn without light, except for picking.
  void applyColor(PaintPass pass) const;
};

/// Sets which triangles a pass draws. \param isOneSided  those that are seen from outside alone
void selectFaces(PaintPass pass, bool isOneSided);
