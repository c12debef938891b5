#include "numeric/colormap.h"

#include <algorithm>

bool Colormap::isGrayscale() const
{
  return std::all_of(_colors.begin(), _colors.end(),
                     [](const Color& color) { return color[0] == color[1] && color[0] == color[2]; });
}

void Colormap::setGrayscale()
{
  for (Color& color : _colors) color.fill(static_cast<unsigned char>((color[0] + color[1] + color[2]) / 3));
}
