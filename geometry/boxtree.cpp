#include "geometry/boxtree.h"

namespace
{

template <class R> bool isUsable(const TreeBox<R>& box)
{
  for (std::size_t k = 0; k < 3; ++k)
    if (!std::isfinite(box.low[k]) || !std::isfinite(box.high[k])) return false;
  return true;
}

template <class R> std::size_t longestAxis(const TreeBox<R>& box)
{
  std::size_t longest = 0;
  for (std::size_t k = 1; k < 3; ++k)
    if (box.high[k] - box.low[k] > box.high[longest] - box.low[longest]) longest = k;
  return longest;
}

} // namespace

template <class R> BoxTree<R>::BoxTree(std::vector<TreeBox<R>> boxes) : _boxes(std::move(boxes))
{
  for (std::size_t i = 0; i < _boxes.size(); ++i)
    if (isUsable(_boxes[i])) _items.push_back(static_cast<int>(i));
  _nodes.reserve(_items.size());
  if (!_items.empty()) build(0, static_cast<int>(_items.size()));
}

/// Adds the node of the items first to last - 1 and, behind it, those of its halves.
template <class R> void BoxTree<R>::build(int first, int last)
{
  const std::size_t index = _nodes.size();
  Node node;
  for (int i = first; i < last; ++i) node.box.add(boxOf(_items[static_cast<std::size_t>(i)]));
  node.first = first;
  node.numItems = last - first <= leafSize ? last - first : 0;
  _nodes.push_back(node);
  if (node.numItems > 0) return;
  const std::size_t axis = longestAxis(node.box);
  const int middle = first + (last - first) / 2;
  std::nth_element(
      _items.begin() + first, _items.begin() + middle, _items.begin() + last,
      [this, axis](int a, int b)
      { return boxOf(a).low[axis] / 2 + boxOf(a).high[axis] / 2 < boxOf(b).low[axis] / 2 + boxOf(b).high[axis] / 2; });
  build(first, middle);
  _nodes[index].first = static_cast<int>(_nodes.size());
  build(middle, last);
}

template class BoxTree<float>;
template class BoxTree<double>;
template class BoxTree<long double>;
