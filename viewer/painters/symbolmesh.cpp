#include "viewer/painters/symbolmesh.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <numbers>
#include <utility>
#include <vector>

namespace
{
using Point = std::array<float, 3>;
using Polygon = std::vector<int>; // counter-clockwise when seen from outside

constexpr float radius = 0.5F;

Point onSphere(const Point& p)
{
  const float scale = radius / std::hypot(p[0], p[1], p[2]);
  return {p[0] * scale, p[1] * scale, p[2] * scale};
}

int addVertex(TriMesh<float>& mesh, const Point& p)
{
  mesh.Vertices<float>::append(Vector<float>{p[0], p[1], p[2]});
  return mesh.getSize() - 1;
}

/// A polyhedron whose faces do not share vertices, so that each is shaded flat.
TriMesh<float> polyhedron(const std::vector<Point>& corners, const std::vector<Polygon>& faces)
{
  TriMesh<float> mesh(3);
  for (const Polygon& face : faces)
  {
    const int first = mesh.getSize();
    for (const int corner : face) addVertex(mesh, onSphere(corners[static_cast<std::size_t>(corner)]));
    for (int k = first + 2; k < mesh.getSize(); ++k) mesh.addTriangle(first, k - 1, k);
  }
  mesh.computeNormals();
  return mesh;
}

TriMesh<float> cube()
{
  return polyhedron(
      {{-1, -1, -1}, {1, -1, -1}, {1, 1, -1}, {-1, 1, -1}, {-1, -1, 1}, {1, -1, 1}, {1, 1, 1}, {-1, 1, 1}},
      {{0, 3, 2, 1}, {4, 5, 6, 7}, {0, 1, 5, 4}, {2, 3, 7, 6}, {1, 2, 6, 5}, {0, 4, 7, 3}});
}

TriMesh<float> diamond()
{
  return polyhedron({{1, 0, 0}, {-1, 0, 0}, {0, 1, 0}, {0, -1, 0}, {0, 0, 1}, {0, 0, -1}},
                    {{0, 2, 4}, {2, 1, 4}, {1, 3, 4}, {3, 0, 4}, {2, 0, 5}, {1, 2, 5}, {3, 1, 5}, {0, 3, 5}});
}

TriMesh<float> tetrahedron()
{
  return polyhedron({{1, 1, 1}, {1, -1, -1}, {-1, 1, -1}, {-1, -1, 1}}, {{0, 1, 2}, {0, 3, 1}, {0, 2, 3}, {1, 3, 2}});
}

/// Divides each triangle in four; an edge that two triangles share gets one vertex.
std::vector<Polygon> divided(std::vector<Point>& vertices, const std::vector<Polygon>& triangles)
{
  std::map<std::pair<int, int>, int> middles;
  const auto middle = [&](int i, int j)
  {
    const auto [place, isNew] = middles.try_emplace(std::minmax(i, j), static_cast<int>(vertices.size()));
    const Point &p = vertices[static_cast<std::size_t>(i)], &q = vertices[static_cast<std::size_t>(j)];
    if (isNew) vertices.push_back(onSphere({p[0] + q[0], p[1] + q[1], p[2] + q[2]}));
    return place->second;
  };
  std::vector<Polygon> result;
  for (const Polygon& t : triangles)
  {
    const int ab = middle(t[0], t[1]), bc = middle(t[1], t[2]), ca = middle(t[2], t[0]);
    result.insert(result.end(), {{t[0], ab, ca}, {t[1], bc, ab}, {t[2], ca, bc}, {ab, bc, ca}});
  }
  return result;
}

TriMesh<float> sphere(int numDivisions)
{
  const float g = (1 + std::sqrt(5.F)) / 2;
  std::vector<Point> vertices = {{-1, g, 0},  {1, g, 0},  {-1, -g, 0}, {1, -g, 0}, {0, -1, g},  {0, 1, g},
                                 {0, -1, -g}, {0, 1, -g}, {g, 0, -1},  {g, 0, 1},  {-g, 0, -1}, {-g, 0, 1}};
  std::transform(vertices.begin(), vertices.end(), vertices.begin(), onSphere);
  std::vector<Polygon> triangles = {{0, 11, 5},  {0, 5, 1},  {0, 1, 7},  {0, 7, 10}, {0, 10, 11}, {1, 5, 9}, {5, 11, 4},
                                    {11, 10, 2}, {10, 7, 6}, {7, 1, 8},  {3, 9, 4},  {3, 4, 2},   {3, 2, 6}, {3, 6, 8},
                                    {3, 8, 9},   {4, 9, 5},  {2, 4, 11}, {6, 2, 10}, {8, 6, 7},   {9, 8, 1}};
  for (; numDivisions > 0; --numDivisions) triangles = divided(vertices, triangles);
  TriMesh<float> mesh(3);
  for (const Point& p : vertices) addVertex(mesh, p);
  for (const Polygon& t : triangles) mesh.addTriangle(t[0], t[1], t[2]);
  for (int i = 0; i < mesh.getSize(); ++i)
  {
    const float* const p = mesh.data(i);
    mesh.setNormal(i, Vector<float>{p[0] / radius, p[1] / radius, p[2] / radius});
  }
  return mesh;
}
} // namespace

TriMesh<float> symbolMesh(VertexSymbol symbol, int numDivisions)
{
  switch (symbol)
  {
  case VertexSymbol::Cube:
    return cube();
  case VertexSymbol::Diamond:
    return diamond();
  case VertexSymbol::Tetrahedron:
    return tetrahedron();
  case VertexSymbol::Dot:
    return TriMesh<float>(3);
  default:
    return sphere(numDivisions);
  }
}

namespace
{
/// The faces of a polyhedron do not share vertices: an edge of one triangle alone is one of its face.
std::vector<int> edgesOfFaces(const TriMesh<float>& mesh)
{
  std::map<std::pair<int, int>, int> numTriangles;
  for (int i = 0; i < mesh.getNumTriangles(); ++i)
    for (int k = 0; k < 3; ++k) ++numTriangles[std::minmax(mesh.corners(i)[k], mesh.corners(i)[(k + 1) % 3])];
  std::vector<int> ends;
  for (const auto& [edge, count] : numTriangles)
    if (count == 1) ends.insert(ends.end(), {edge.first, edge.second});
  return ends;
}

/// As which unknown symbols are drawn, too.
bool isSphere(VertexSymbol symbol)
{
  return symbol != VertexSymbol::Cube && symbol != VertexSymbol::Diamond && symbol != VertexSymbol::Tetrahedron &&
         symbol != VertexSymbol::Dot;
}

/// In the planes of the coordinates.
SymbolLines circles()
{
  constexpr int size = 24;
  SymbolLines lines{TriMesh<float>(3), {}};
  for (std::size_t axis = 0; axis < 3; ++axis)
    for (int k = 0; k < size; ++k)
    {
      const float angle = 2 * std::numbers::pi_v<float> * static_cast<float>(k) / size;
      Point p = {0, 0, 0};
      p[(axis + 1) % 3] = radius * std::cos(angle);
      p[(axis + 2) % 3] = radius * std::sin(angle);
      const int first = static_cast<int>(axis) * size;
      addVertex(lines.vertices, p);
      lines.ends.insert(lines.ends.end(), {first + k, first + (k + 1) % size});
    }
  lines.vertices.computeNormals();
  return lines;
}
} // namespace

SymbolLines symbolLines(VertexSymbol symbol)
{
  if (isSphere(symbol)) return circles();
  TriMesh<float> mesh = symbolMesh(symbol);
  std::vector<int> ends = edgesOfFaces(mesh);
  return {std::move(mesh), std::move(ends)};
}
