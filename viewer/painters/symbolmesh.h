#pragma once

#include "geometry/trimesh.h"
#include "model/vertexsymbol.h"

#include <vector>

/// The surface of a symbol for vertices, around the origin and within a ball of diameter 1: a cube, a diamond (an
/// octahedron), a sphere or a tetrahedron; empty for a dot. Flat faces have vertices of their own, with their normals.
/// \param numDivisions  how often the triangles of a sphere, an icosahedron at first, are divided in four
TriMesh<float> symbolMesh(VertexSymbol symbol, int numDivisions = 2);
/// What is drawn of a symbol by lines: the edges of its flat faces, or three circles around a sphere.
struct SymbolLines
{
  TriMesh<float> vertices; ///< with normals
  std::vector<int> ends;   ///< of the lines, two for each
};
SymbolLines symbolLines(VertexSymbol symbol);
