#pragma once

#include "geometry/curve.h"

#include <map>
#include <utility>
#include <vector>

/// The outlines, clockwise, of where a field is positive in the plane at height z, from -extentX to extentX and from
/// -extentY to extentY: marching squares on a grid, with the field's zeros interpolated along the grid lines.
template <class Field>
std::vector<Curve<double>> sectionOf(const Field& field, double z, double extentX, double extentY, int resolution)
{
  using Key = std::pair<int, int>; // of a grid line's piece: twice the grid place of its middle
  const auto x = [&](int i) { return extentX * (2.0 * i / resolution - 1); };
  const auto y = [&](int j) { return extentY * (2.0 * j / resolution - 1); };
  std::vector<std::vector<double>> values(static_cast<std::size_t>(resolution) + 1);
  for (int i = 0; i <= resolution; ++i)
    for (int j = 0; j <= resolution; ++j) values[i].push_back(field(x(i), y(j), z));

  std::map<Key, Key> next;
  const int corner[4][2] = {{0, 0}, {1, 0}, {1, 1}, {0, 1}};
  for (int i = 0; i < resolution; ++i)
    for (int j = 0; j < resolution; ++j)
    {
      bool inside[4];
      for (int k = 0; k < 4; ++k) inside[k] = values[i + corner[k][0]][j + corner[k][1]] > 0;
      const auto side = [&](int k) // between corners k and k + 1
      {
        const int l = (k + 1) % 4;
        return Key{2 * i + corner[k][0] + corner[l][0], 2 * j + corner[k][1] + corner[l][1]};
      };
      // Each side that leads out of the inside starts a piece that ends on the side that leads in before it.
      for (int k = 0; k < 4; ++k)
        if (inside[k] && !inside[(k + 1) % 4])
          for (int l = k;; l = (l + 3) % 4)
            if (!inside[l] && inside[(l + 1) % 4])
            {
              next[side(l)] = side(k);
              break;
            }
    }

  const auto place = [&](const Key& key)
  {
    const int i0 = key.first / 2, j0 = key.second / 2, i1 = (key.first + 1) / 2, j1 = (key.second + 1) / 2;
    const double a = values[i0][j0], b = values[i1][j1], share = a / (a - b);
    return Vector<double>{x(i0) + share * (x(i1) - x(i0)), y(j0) + share * (y(j1) - y(j0)), z};
  };
  std::vector<Curve<double>> outlines;
  while (!next.empty())
  {
    Curve<double> outline(3);
    for (auto at = next.begin(); at != next.end();)
    {
      outline.append(place(at->first));
      const Key follower = at->second;
      next.erase(at);
      at = next.find(follower);
    }
    outline.setClockwise(true, 0, 1);
    if (outline.getSize() >= 3) outlines.push_back(outline);
  }
  return outlines;
}
