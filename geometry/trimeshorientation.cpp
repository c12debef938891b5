#include "geometry/trimesh.h"

#include <algorithm>
#include <tuple>
#include <vector>

namespace
{
/// An edge as a triangle runs along it, from its first to its second vertex or the other way.
struct Side
{
  int first, second; // first < second
  int triangle;
  bool isForward;
};

std::vector<Side> sortedSides(const int* corners, int numTriangles)
{
  std::vector<Side> sides;
  sides.reserve(3 * static_cast<std::size_t>(numTriangles));
  for (int i = 0; i < numTriangles; ++i)
    for (int k = 0; k < 3 && corners[3 * std::ptrdiff_t{i}] >= 0; ++k)
    {
      const int from = corners[3 * std::ptrdiff_t{i} + k], to = corners[3 * std::ptrdiff_t{i} + (k + 1) % 3];
      sides.push_back({std::min(from, to), std::max(from, to), i, from < to});
    }
  std::sort(sides.begin(), sides.end(),
            [](const Side& a, const Side& b)
            { return std::tie(a.first, a.second, a.triangle) < std::tie(b.first, b.second, b.triangle); });
  return sides;
}

/// A triangle across an edge, and whether both run along it in the same direction.
struct Neighbour
{
  int triangle;
  bool isOpposed;
};

/// The neighbours of each triangle across edges of just two.
std::vector<std::vector<Neighbour>> neighboursOf(const std::vector<Side>& sides, int numTriangles)
{
  std::vector<std::vector<Neighbour>> neighbours(static_cast<std::size_t>(numTriangles));
  for (std::size_t begin = 0, end = 0; begin < sides.size(); begin = end)
  {
    while (end < sides.size() && sides[end].first == sides[begin].first && sides[end].second == sides[begin].second)
      ++end;
    if (end - begin != 2) continue;
    const Side &a = sides[begin], &b = sides[begin + 1];
    neighbours[a.triangle].push_back({b.triangle, a.isForward == b.isForward});
    neighbours[b.triangle].push_back({a.triangle, a.isForward == b.isForward});
  }
  return neighbours;
}
} // namespace

template <class T> void TriMesh<T>::orientConsistently()
{
  const int numSlots = getNumTriangleSlots();
  const auto neighbours = neighboursOf(sortedSides(_indexes.data(), numSlots), numSlots);
  enum State : char
  {
    Unseen,
    Kept,
    Turned
  };
  std::vector<State> states(static_cast<std::size_t>(numSlots), Unseen);
  std::vector<int> open;
  for (int seed = 0; seed < numSlots; ++seed)
  {
    if (states[seed] != Unseen) continue;
    states[seed] = Kept;
    for (open = {seed}; !open.empty();)
    {
      const int triangle = open.back();
      open.pop_back();
      for (const auto [next, isOpposed] : neighbours[triangle])
      {
        if (states[next] != Unseen) continue;
        states[next] = (states[triangle] == Turned) != isOpposed ? Turned : Kept;
        open.push_back(next);
      }
    }
  }
  if (std::ranges::find(states, Turned) == states.end()) return;
  noteTriangleChange();
  for (int i = 0; i < numSlots; ++i)
    if (states[i] == Turned) std::swap(_indexes[3 * std::size_t(i) + 1], _indexes[3 * std::size_t(i) + 2]);
}

GEOMETRY_INSTANTIATE(TriMesh)
