#include "geometry/trimesh.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace
{

/// The neighbours of every vertex, and which vertices lie on the border of an open mesh.
struct VertexGraph
{
  std::vector<std::size_t> first = {0}; // of the neighbours of each vertex; one entry more at the end
  std::vector<int> neighbours;
  std::vector<bool> isOnBorder;
  bool isClosed = true; // every edge has two triangles, which run along it in opposite directions

  bool isLoose(std::size_t vertex) const { return first[vertex] == first[vertex + 1]; }
};

/// Appends the neighbours of the next vertex, sorted. An edge of the border has a single triangle, hence its far end
/// occurs only once.
template <class T> void appendNeighbours(const TriMesh<T>& mesh, std::span<const int> star, VertexGraph& graph)
{
  const int vertex = static_cast<int>(graph.isOnBorder.size());
  std::vector<std::pair<int, bool>> ends; // and whether the triangle runs to them
  for (const int triangle : star)
    for (int k = 0; k < 3; ++k)
      if (const int* const corners = mesh.corners(triangle); corners[k] != vertex)
        ends.emplace_back(corners[k], corners[(k + 2) % 3] == vertex);
  std::sort(ends.begin(), ends.end());
  bool isOnBorder = false;
  for (std::size_t i = 0, next = 0; i < ends.size(); i = next)
  {
    while (next < ends.size() && ends[next].first == ends[i].first) ++next;
    isOnBorder |= next - i == 1;
    graph.isClosed &= next - i == 2 && ends[i].second != ends[i + 1].second;
    graph.neighbours.push_back(ends[i].first);
  }
  graph.isOnBorder.push_back(isOnBorder);
  graph.first.push_back(graph.neighbours.size());
}

template <class T> VertexGraph vertexGraph(const TriMesh<T>& mesh, const TriangleStars& stars)
{
  VertexGraph graph;
  for (int i = 0; i < mesh.getSize(); ++i) appendNeighbours(mesh, stars.star(i), graph);
  return graph;
}

/// Whether a mesh in 3D encloses more than what rounding leaves.
template <class T> bool enclosesVolume(const TriMesh<T>& mesh)
{
  return mesh.volume() > std::sqrt(std::numeric_limits<T>::epsilon()) * std::pow(mesh.area(), T(1.5));
}

/// Scales a closed mesh about its centre of gravity to a volume; loose vertices stay.
template <class T> void scaleToVolume(TriMesh<T>& mesh, const VertexGraph& graph, T volume)
{
  const T growth = std::cbrt(volume / mesh.volume()) - 1;
  const Vector<T> center = mesh.centerOfGravity();
  T* point = mesh.data();
  for (std::size_t i = 0; i + 1 < graph.first.size(); ++i, point += 3)
    for (int axis = 0; axis < 3 && !graph.isLoose(i); ++axis) point[axis] += growth * (point[axis] - center[axis]);
}

/// Moves each inner vertex by a share of the way to the mean of its neighbours.
template <class T> void moveTowardsNeighbours(const VertexGraph& graph, int space, T share, const T* from, T* to)
{
  for (std::size_t i = 0; i + 1 < graph.first.size(); ++i)
  {
    const std::size_t first = graph.first[i], last = graph.first[i + 1];
    const bool stays = graph.isOnBorder[i] || graph.isLoose(i);
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
    const bool keepsVolume = graph.isClosed && space == 3 && enclosesVolume(*this);
    const T volumeBefore = keepsVolume ? volume() : T(0);
    std::vector<T> moved(static_cast<std::size_t>(this->getSize()) * static_cast<std::size_t>(space)), previous;
    for (int i = 0; i < iterations; ++i)
    {
      T* const points = this->data();
      if (keepsVolume) previous.assign(points, points + moved.size());
      moveTowardsNeighbours(graph, space, inwards, points, moved.data());
      moveTowardsNeighbours(graph, space, outwards, moved.data(), points);
      if (!keepsVolume) continue;
      if (!enclosesVolume(*this))
      {
        std::copy(previous.begin(), previous.end(), this->data());
        return;
      }
      scaleToVolume(*this, graph, volumeBefore);
    }
  }
}

GEOMETRY_INSTANTIATE(TriMesh)
