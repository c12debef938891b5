#pragma once

#include "geometry/curvestack.h"

#include <cmath>
#include <initializer_list>
#include <numbers>
#include <vector>

/// A curve through the given points, which all have as many coordinates as the first one.
template <class T = double> Curve<T> curveThrough(const std::vector<std::vector<T>>& points, bool open = false)
{
  Curve<T> curve(points.empty() ? 2 : static_cast<int>(points[0].size()));
  curve.setOpen(open);
  for (const std::vector<T>& point : points) curve.Vertices<T>::append(Vector<T>(point));
  return curve;
}

inline Curve<double> closedCurve(const std::vector<std::vector<double>>& points)
{
  return curveThrough(points);
}
inline Curve<double> openCurve(const std::vector<std::vector<double>>& points)
{
  return curveThrough(points, true);
}

/// An ellipse of n vertices at height z, counter-clockwise from angle `start`.
template <class T = double>
Curve<T> ellipse(T radiusX, T radiusY, T z, int n, T centerX = 0, T centerY = 0, T start = 0)
{
  Curve<T> curve(3, n);
  for (int i = 0; i < n; ++i)
  {
    const T angle = start + 2 * std::numbers::pi_v<T> * i / n;
    curve[i][0] = centerX + radiusX * std::cos(angle);
    curve[i][1] = centerY + radiusY * std::sin(angle);
    curve[i][2] = z;
  }
  return curve;
}

template <class T> std::vector<std::vector<T>> pointsOf(const Vertices<T>& vertices)
{
  std::vector<std::vector<T>> points;
  for (int i = 0; i < vertices.getSize(); ++i) points.emplace_back(vertices[i].begin(), vertices[i].end());
  return points;
}
