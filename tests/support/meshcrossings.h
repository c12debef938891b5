#pragma once

#include "geometry/trimesh.h"
#include "geometry/vectors3d.h"

#include <algorithm>
#include <vector>

/// Whether the segment from p to q passes through the inside of a triangle; touching does not count.
inline bool passesThrough(const double* p, const double* q, const double* a, const double* b, const double* c)
{
  const auto volume = [](const double* o, const double* x, const double* y, const double* z)
  { return dotProduct(difference<double>(x, o), crossProduct(difference<double>(y, o), difference<double>(z, o))); };
  const double tolerance = 1e-12;
  const double vp = volume(p, a, b, c), vq = volume(q, a, b, c);
  if (std::min(vp, vq) > -tolerance || std::max(vp, vq) < tolerance) return false;
  const double ab = volume(p, q, a, b), bc = volume(p, q, b, c), ca = volume(p, q, c, a);
  return std::min({ab, bc, ca}) > tolerance || std::max({ab, bc, ca}) < -tolerance;
}

/// Number of pairs of an edge and a triangle without a common vertex that cross, by all pairs whose boxes meet.
inline int numCrossingTriangles(const TriMesh<double>& mesh)
{
  struct Box
  {
    double low[3], high[3];
  };
  const int count = mesh.getNumTriangleSlots();
  std::vector<Box> boxes;
  for (int i = 0; i < count; ++i)
  {
    Box box;
    for (int k = 0; k < 3; ++k)
    {
      const auto [low, high] = std::minmax(
          {mesh.data(mesh.corners(i)[0])[k], mesh.data(mesh.corners(i)[1])[k], mesh.data(mesh.corners(i)[2])[k]});
      box.low[k] = low;
      box.high[k] = high;
    }
    boxes.push_back(box);
  }
  const auto meet = [&](int i, int j)
  {
    for (int k = 0; k < 3; ++k)
      if (boxes[i].high[k] < boxes[j].low[k] || boxes[j].high[k] < boxes[i].low[k]) return false;
    return true;
  };
  int numCrossings = 0;
  for (int i = 0; i < count; ++i)
    for (int j = 0; j < count; ++j)
    {
      const int *t = mesh.corners(i), *u = mesh.corners(j);
      const bool isNeighbour = std::find_first_of(t, t + 3, u, u + 3) != t + 3;
      if (i == j || isNeighbour || !meet(i, j)) continue;
      for (int k = 0; k < 3; ++k)
        numCrossings += passesThrough(mesh.data(t[k]), mesh.data(t[(k + 1) % 3]), mesh.data(u[0]), mesh.data(u[1]),
                                      mesh.data(u[2]));
    }
  return numCrossings;
}
