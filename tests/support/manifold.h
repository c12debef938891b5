#pragma once

#include "geometry/trimesh.h"

#include <map>
#include <utility>
#include <vector>

/// How the triangles of a mesh meet at their edges.
struct EdgeCounts
{
  int numBoundary = 0;     ///< edges of one triangle
  int numNonManifold = 0;  ///< edges of three triangles or more
  int numInconsistent = 0; ///< edges that two triangles run along in the same direction
  int numEdges = 0;
};

template <class T> EdgeCounts countEdges(const TriMesh<T>& mesh)
{
  std::map<std::pair<int, int>, std::pair<int, int>> uses; // triangles that run up and down along each edge
  for (int i = 0; i < mesh.getNumTriangleSlots(); ++i)
    for (int k = 0; mesh.hasTriangle(i) && k < 3; ++k)
    {
      const int a = mesh.corners(i)[k], b = mesh.corners(i)[(k + 1) % 3];
      ++(a < b ? uses[{a, b}].first : uses[{b, a}].second);
    }
  EdgeCounts counts;
  counts.numEdges = static_cast<int>(uses.size());
  for (const auto& [edge, use] : uses)
  {
    const int total = use.first + use.second;
    counts.numBoundary += total == 1;
    counts.numNonManifold += total > 2;
    counts.numInconsistent += total == 2 && use.first != 1;
  }
  return counts;
}

/// Every edge has two triangles of opposite directions.
template <class T> bool isClosedManifold(const TriMesh<T>& mesh)
{
  const EdgeCounts counts = countEdges(mesh);
  return counts.numEdges > 0 && counts.numBoundary + counts.numNonManifold + counts.numInconsistent == 0;
}

template <class T> int eulerCharacteristic(const TriMesh<T>& mesh)
{
  return mesh.getSize() - countEdges(mesh).numEdges + mesh.getNumTriangles();
}

/// Number of vertices whose triangles do not hang together, edge by edge, in one fan.
template <class T> int numSplitVertices(const TriMesh<T>& mesh)
{
  std::vector<std::vector<std::pair<int, int>>> edgesAcross(static_cast<std::size_t>(mesh.getSize()));
  for (int i = 0; i < mesh.getNumTriangleSlots(); ++i)
    for (int k = 0; mesh.hasTriangle(i) && k < 3; ++k)
      edgesAcross[mesh.corners(i)[k]].emplace_back(mesh.corners(i)[(k + 1) % 3], mesh.corners(i)[(k + 2) % 3]);
  int count = 0;
  for (std::vector<std::pair<int, int>>& edges : edgesAcross)
  {
    if (edges.empty()) continue;
    std::map<int, int> next(edges.begin(), edges.end());
    std::map<int, int> previous;
    for (const auto& [a, b] : edges) previous[b] = a;
    int start = edges[0].first; // walk back to where the fan begins, if it is open
    for (std::size_t steps = 0; previous.contains(start) && steps < edges.size(); ++steps) start = previous[start];
    std::size_t length = 0;
    for (int at = start; next.contains(at) && length < edges.size(); ++length) at = next[at];
    count += length != edges.size() || next.size() != edges.size();
  }
  return count;
}

/// Enclosed volume, positive when the triangles face out.
template <class T> double signedVolume(const TriMesh<T>& mesh)
{
  double sum = 0;
  for (int i = 0; i < mesh.getNumTriangleSlots(); ++i)
  {
    if (!mesh.hasTriangle(i)) continue;
    const Vector<double> a = mesh[mesh.corners(i)[0]].template toType<double>();
    const Vector<double> b = mesh[mesh.corners(i)[1]].template toType<double>();
    const Vector<double> c = mesh[mesh.corners(i)[2]].template toType<double>();
    sum += a.scalarProduct(b.vectorProduct(c));
  }
  return sum / 6;
}
