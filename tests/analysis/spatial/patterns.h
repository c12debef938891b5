#pragma once

#include "geometry/curve.h"
#include "geometry/trimesh.h"
#include "numeric/randomgenerator.h"
#include "tests/support/curves.h"
#include "tests/support/meshes.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <map>
#include <utility>
#include <vector>

/// A pattern of the given points.
template <class T = double> Vertices<T> patternOf(const std::vector<std::vector<T>>& points)
{
  return Vertices<T>(curveThrough<T>(points));
}

/// Independent points, uniform in the cube (or square) from 0 to `side`.
template <class T = double> Vertices<T> randomPattern(int space, int size, T side, unsigned long seed)
{
  RandomGenerator generator(seed);
  Vertices<T> pattern(space, size);
  for (int i = 0; i < size; ++i)
    for (int k = 0; k < space; ++k) pattern[i][k] = side * static_cast<T>(generator.uniformLF());
  return pattern;
}

/// A regular polygon of n vertices around the origin.
template <class T = double> Curve<T> regularPolygon(T radius, int n)
{
  Curve<T> curve(2, n);
  const Curve<T> circle = ellipse<T>(radius, radius, 0, n);
  for (int i = 0; i < n; ++i)
    for (int k = 0; k < 2; ++k) curve[i][k] = circle[i][k];
  return curve;
}

/// A sphere around the origin: an octahedron whose triangles are divided `depth` times.
template <class T = double> TriMesh<T> sphere(T radius, int depth)
{
  std::vector<std::vector<T>> points = {{1, 0, 0}, {-1, 0, 0}, {0, 1, 0}, {0, -1, 0}, {0, 0, 1}, {0, 0, -1}};
  std::map<std::pair<int, int>, int> middles;
  const auto middle = [&](int a, int b)
  {
    const auto [place, isNew] = middles.try_emplace(std::minmax(a, b), static_cast<int>(points.size()));
    if (!isNew) return place->second;
    std::vector<T> p(3);
    T norm = 0;
    for (std::size_t k = 0; k < 3; ++k)
    {
      p[k] = points[static_cast<std::size_t>(a)][k] + points[static_cast<std::size_t>(b)][k];
      norm += p[k] * p[k];
    }
    for (T& x : p) x /= std::sqrt(norm);
    points.push_back(p);
    return place->second;
  };
  std::vector<int> corners;
  const std::function<void(int, int, int, int)> divide = [&](int a, int b, int c, int level)
  {
    if (level == 0) return void(corners.insert(corners.end(), {a, b, c}));
    const int ab = middle(a, b), bc = middle(b, c), ca = middle(c, a);
    divide(a, ab, ca, level - 1);
    divide(ab, b, bc, level - 1);
    divide(ca, bc, c, level - 1);
    divide(ab, bc, ca, level - 1);
  };
  for (const int z : {4, 5})
    for (const auto& [x, y] : {std::pair(0, 2), std::pair(2, 1), std::pair(1, 3), std::pair(3, 0)})
      z == 4 ? divide(x, y, z, depth) : divide(y, x, z, depth);
  TriMesh<T> mesh(3);
  for (std::vector<T>& p : points)
  {
    for (T& x : p) x *= radius;
    mesh.Vertices<T>::append(Vector<T>(p));
  }
  mesh.addTriangles(corners);
  return mesh;
}

/// The largest distance of the sorted sample's distribution from a continuous one.
inline double kolmogorovDistance(const std::vector<double>& sorted, const std::function<double(double)>& cdf)
{
  double largest = 0;
  const auto n = static_cast<double>(sorted.size());
  for (std::size_t i = 0; i < sorted.size(); ++i)
  {
    const double expected = cdf(sorted[i]), below = static_cast<double>(i) / n;
    largest = std::max({largest, expected - below, below + 1 / n - expected});
  }
  return largest;
}

/// What kolmogorovDistance() exceeds in one of a hundred samples of n independent values that do follow the
/// distribution. Source: M. A. Stephens, "EDF statistics for goodness of fit and some comparisons", 1974.
inline double kolmogorovLimit(std::size_t n)
{
  const double root = std::sqrt(static_cast<double>(n));
  return 1.628 / (root + 0.12 + 0.11 / root);
}
