#include "numeric/colormap.h"

#include "numeric/exception.h"
#include "numeric/maths.h"

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

Colormap Colormap::cold2Hot(int n)
{
  if (n < 0 || n % 4 != 0)
    throw SizeError("Colormap Colormap::cold2Hot(int)", "Colormap dimension is not a multiple of 4");
  constexpr unsigned char full = 255;
  Colormap map(n);
  for (int i = 0; i < n; ++i)
  {
    const double position = 4.0 * i / (n - 1); // 0 blue, 1 cyan, 2 green, 3 yellow, 4 red
    const int segment = std::min(static_cast<int>(position), 3);
    const auto rising = static_cast<unsigned char>(Maths::fround((position - segment) * full));
    const auto falling = static_cast<unsigned char>(full - rising);
    const Color colors[] = {{0, rising, full}, {0, full, falling}, {rising, full, 0}, {full, falling, 0}};
    map.setColor(i, colors[segment]);
  }
  return map;
}
