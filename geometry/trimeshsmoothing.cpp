#include "geometry/trimesh.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace
{

/// The neighbours of every vertex, and which vertices lie on the border of an open mesh.
struct VertexGraph
{
  std::vector<std::size_t> first; // of the neighbours of each vertex; one entry more at the end
  std::vector<int> neighbours;
  std::vector<bool> isOnBorder;
};

/// Collects the neighbours of one vertex, sorted. An edge of the border has a single triangle, hence its far end occurs
/// only once.
template <class T>
bool appendNeighbours(const TriMesh<T>& mesh, std::span<const int> star, int vertex, std::vector<int>& out)
{
  std::vector<int> ends;
  for (const int triangle : star)
    for (int k = 0; k < 3; ++k)
      if (const int other = mesh.corners(triangle)[k]; other != vertex) ends.push_back(other);
  std::sort(ends.begin(), ends.end());
  bool isOnBorder = false;
  for (std::size_t i = 0, next = 0; i < ends.size(); i = next)
  {
    while (next < ends.size() && ends[next] == ends[i]) ++next;
    isOnBorder |= next - i == 1;
    out.push_back(ends[i]);
  }
  return isOnBorder;
}

template <class T> VertexGraph vertexGraph(const TriMesh<T>& mesh, const TriangleStars& stars)
{
  VertexGraph graph;
  graph.isOnBorder.resize(static_cast<std::size_t>(mesh.getSize()));
  graph.first.push_back(0);
  for (int i = 0; i < mesh.getSize(); ++i)
  {
    graph.isOnBorder[static_cast<std::size_t>(i)] = appendNeighbours(mesh, stars.star(i), i, graph.neighbours);
    graph.first.push_back(graph.neighbours.size());
  }
  return graph;
}

/// Moves each inner vertex by a share of the way to the mean of its neighbours.
template <class T> void moveTowardsNeighbours(const VertexGraph& graph, int space, T share, const T* from, T* to)
{
  for (std::size_t i = 0; i + 1 < graph.first.size(); ++i)
  {
    const std::size_t first = graph.first[i], last = graph.first[i + 1];
    const bool stays = graph.isOnBorder[i] || first == last;
    for (std::size_t axis = 0; axis < static_cast<std::size_t>(space); ++axis)
    {
      const T old = from[i * static_cast<std::size_t>(space) + axis];
      T sum = 0;
      for (std::size_t n = first; n < last && !stays; ++n)
        sum += from[static_cast<std::size_t>(graph.neighbours[n]) * static_cast<std::size_t>(space) + axis] - old;
      to[i * static_cast<std::size_t>(space) + axis] = stays ? old : old + share * sum / static_cast<T>(last - first);
    }
  }
}

/// Replaces each normal by the direction of the sum of its own and its neighbours'.
template <class T> void averageNormals(const VertexGraph& graph, const T* from, T* to)
{
  for (std::size_t i = 0; i + 1 < graph.first.size(); ++i)
  {
    Vector3d<T> sum = {from[3 * i], from[3 * i + 1], from[3 * i + 2]};
    for (std::size_t n = graph.first[i]; n < graph.first[i + 1]; ++n)
      for (std::size_t axis = 0; axis < 3; ++axis)
        sum[axis] += from[3 * static_cast<std::size_t>(graph.neighbours[n]) + axis];
    sum = normalized(sum);
    std::copy(sum.begin(), sum.end(), to + 3 * i);
  }
}

} // namespace

template <class T> void TriMesh<T>::smoothNormals(int iterations)
{
  const char* const where = "void TriMesh<T>::smoothNormals(int)";
  requireSpace3(where);
  if (!hasNormals()) throw UsageError(where, "This mesh has no normals");
  if constexpr (std::is_integral_v<T>)
    throw notAvailable<T>(where);
  else
  {
    requireConsistency(where);
    const VertexGraph graph = vertexGraph(*this, stars());
    for (int i = 0; i < iterations; ++i)
    {
      Vertices<T> smoothed(3, this->getSize());
      averageNormals(graph, std::as_const(_normals).data(), smoothed.data());
      _normals = smoothed;
    }
  }
}

template <class T> void TriMesh<T>::smooth(int iterations)
{
  const char* const where = "void TriMesh<T>::smooth(int)";
  if constexpr (std::is_integral_v<T>)
    throw notAvailable<T>(where);
  else
  {
    requireConsistency(where);
    constexpr T inwards = T(0.5), passBand = T(0.1), outwards = 1 / (passBand - 1 / inwards);
    const VertexGraph graph = vertexGraph(*this, stars());
    const int space = this->getSpace();
    T* const points = this->data();
    std::vector<T> moved(static_cast<std::size_t>(this->getSize()) * static_cast<std::size_t>(space));
    for (int i = 0; i < iterations; ++i)
    {
      moveTowardsNeighbours(graph, space, inwards, points, moved.data());
      moveTowardsNeighbours(graph, space, outwards, moved.data(), points);
    }
  }
}

GEOMETRY_INSTANTIATE(TriMesh)
