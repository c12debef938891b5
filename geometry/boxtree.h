#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <utility>
#include <vector>

/// Box along the axes of space, its borders included; in the plane the third coordinate is 0.
template <class R> struct TreeBox
{
  static constexpr R infinity = std::numeric_limits<R>::infinity();
  std::array<R, 3> low = {infinity, infinity, infinity};
  std::array<R, 3> high = {-infinity, -infinity, -infinity};

  void add(const TreeBox& box)
  {
    for (std::size_t k = 0; k < 3; ++k)
    {
      low[k] = std::min(low[k], box.low[k]);
      high[k] = std::max(high[k], box.high[k]);
    }
  }
  void add(const std::array<R, 3>& point) { add({point, point}); }
  bool overlaps(const TreeBox& box) const
  {
    for (std::size_t k = 0; k < 3; ++k)
      if (!(low[k] <= box.high[k] && box.low[k] <= high[k])) return false;
    return true;
  }
  R squaredDistance(const std::array<R, 3>& point) const
  {
    R sum = 0;
    for (std::size_t k = 0; k < 3; ++k)
    {
      const R outside = std::max({low[k] - point[k], point[k] - high[k], R(0)});
      sum += outside * outside;
    }
    return sum;
  }
};

/// Tree of boxes, for finding those that overlap a box or lie near a point without looking at all of them.
///
/// Boxes that are empty or not finite are never found.
template <class R> class BoxTree
{
public:
  explicit BoxTree(std::vector<TreeBox<R>> boxes);

  /// Calls visit(item) for the boxes that overlap the given one until it returns true; returns whether it did.
  template <class Visit> bool findOverlap(const TreeBox<R>& box, const Visit& visit) const
  {
    std::array<int, maxDepth> waiting;
    std::size_t numWaiting = 0;
    if (!_nodes.empty()) waiting[numWaiting++] = 0;
    while (numWaiting > 0)
    {
      const Node& node = _nodes[static_cast<std::size_t>(waiting[--numWaiting])];
      if (!node.box.overlaps(box)) continue;
      if (node.numItems == 0)
      {
        waiting[numWaiting++] = node.first;
        waiting[numWaiting++] = indexOf(node) + 1;
      }
      for (int i = node.first; i < node.first + node.numItems; ++i)
        if (const int item = _items[static_cast<std::size_t>(i)]; boxOf(item).overlaps(box) && visit(item)) return true;
    }
    return false;
  }

  /// Calls visit(item), which gives the squared distance of an item from the point, for the items that may be the
  /// closest. Returns the smallest distance; infinity when there is none.
  template <class Visit> R findClosest(const std::array<R, 3>& point, const Visit& visit) const
  {
    std::array<std::pair<R, int>, maxDepth> waiting;
    std::size_t numWaiting = 0;
    R closest = std::numeric_limits<R>::infinity();
    if (!_nodes.empty()) waiting[numWaiting++] = {_nodes[0].box.squaredDistance(point), 0};
    while (numWaiting > 0)
    {
      const auto [distance, index] = waiting[--numWaiting];
      if (!(distance <= closest)) continue;
      const Node& node = _nodes[static_cast<std::size_t>(index)];
      for (int i = node.first; i < node.first + node.numItems; ++i)
        if (const int item = _items[static_cast<std::size_t>(i)]; boxOf(item).squaredDistance(point) <= closest)
          closest = std::min(closest, static_cast<R>(visit(item)));
      if (node.numItems > 0) continue;
      std::pair<R, int> near = distanceTo(index + 1, point), far = distanceTo(node.first, point);
      if (far.first < near.first) std::swap(near, far);
      waiting[numWaiting++] = far;
      waiting[numWaiting++] = near;
    }
    return closest;
  }

private:
  struct Node
  {
    TreeBox<R> box;
    int first = 0;    // of a leaf, its first item; else its second child: the first child is the next node
    int numItems = 0; // 0 when it is no leaf
  };
  static constexpr int leafSize = 4;
  static constexpr std::size_t maxDepth = 64; // halving 2^31 items takes 31 levels

  const TreeBox<R>& boxOf(int item) const { return _boxes[static_cast<std::size_t>(item)]; }
  int indexOf(const Node& node) const { return static_cast<int>(&node - _nodes.data()); }
  std::pair<R, int> distanceTo(int index, const std::array<R, 3>& point) const
  {
    return {_nodes[static_cast<std::size_t>(index)].box.squaredDistance(point), index};
  }
  void build(int first, int last);

  std::vector<TreeBox<R>> _boxes;
  std::vector<int> _items;
  std::vector<Node> _nodes;
};

extern template class BoxTree<float>;
extern template class BoxTree<double>;
extern template class BoxTree<long double>;
