#pragma once

#include "geometry/trimesh.h"

#include <cmath>
#include <functional>
#include <numbers>

/// A closed surface over a grid of two angles: vertex (i, j) is at(u, v), u and v running once around.
inline TriMesh<double> torusGrid(int numU, int numV, const std::function<Vector<double>(double, double)>& at)
{
  TriMesh<double> mesh(3);
  for (int i = 0; i < numU; ++i)
    for (int j = 0; j < numV; ++j)
      mesh.Vertices<double>::append(at(2 * std::numbers::pi * i / numU, 2 * std::numbers::pi * j / numV));
  const auto index = [=](int i, int j) { return i % numU * numV + j % numV; };
  for (int i = 0; i < numU; ++i)
    for (int j = 0; j < numV; ++j)
    {
      mesh.addTriangle(index(i, j), index(i + 1, j), index(i + 1, j + 1));
      mesh.addTriangle(index(i, j), index(i + 1, j + 1), index(i, j + 1));
    }
  return mesh;
}

inline TriMesh<double> torus(double radius, double tubeRadius, int numU, int numV)
{
  return torusGrid(numU, numV,
                   [=](double u, double v)
                   {
                     const double r = radius + tubeRadius * std::cos(v);
                     return Vector<double>{r * std::cos(u), r * std::sin(u), tubeRadius * std::sin(v)};
                   });
}

/// The surface of the cube [0, n]^3, outward, with n x n x 2 triangles a side.
template <class T> TriMesh<T> gridCube(int n)
{
  TriMesh<T> mesh(3);
  const auto vertex = [&mesh](int i, int j, int k)
  {
    mesh.Vertices<T>::append(Vector<T>{T(i), T(j), T(k)});
    return mesh.getSize() - 1;
  };
  for (int axis = 0; axis < 3; ++axis)
    for (const int side : {0, n})
      for (int i = 0; i < n; ++i)
        for (int j = 0; j < n; ++j)
        {
          int corners[4];
          for (int k = 0; k < 4; ++k)
          {
            int point[3];
            point[axis] = side;
            point[(axis + 1) % 3] = i + (k == 1 || k == 2);
            point[(axis + 2) % 3] = j + (k >= 2);
            corners[k] = vertex(point[0], point[1], point[2]);
          }
          if (side == 0) std::swap(corners[1], corners[3]);
          mesh.addTriangle(corners[0], corners[1], corners[2]);
          mesh.addTriangle(corners[0], corners[2], corners[3]);
        }
  return mesh;
}
