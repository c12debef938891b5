#include "geometry/curveprocessing/hulltree.h"

#include <algorithm>
#include <iterator>
#include <numeric>

namespace
{
/// Positive when a, b and c turn left.
template <class R> R turn(const Point2d<R>& a, const Point2d<R>& b, const Point2d<R>& c)
{
  return (b.x - a.x) * (c.y - a.y) - (b.y - a.y) * (c.x - a.x);
}
} // namespace

template <class R> HullTree<R>::HullTree(std::vector<Point2d<R>> points) : _points(std::move(points))
{
  const std::size_t numBlocks = _points.size() / blockSize;
  std::vector<Hull> hulls;
  std::vector<int> block(blockSize);
  for (std::size_t b = 0; b < numBlocks; ++b)
  {
    std::iota(block.begin(), block.end(), static_cast<int>(b) * blockSize);
    std::sort(block.begin(), block.end(), [this](int i, int j) { return isBefore(i, j); });
    hulls.push_back({chainOf(block, 1), chainOf(block, -1)});
  }
  while (!hulls.empty())
  {
    _levels.push_back(std::move(hulls));
    hulls.clear();
    const std::vector<Hull>& pieces = _levels.back();
    for (std::size_t k = 0; k + 1 < pieces.size(); k += 2)
      hulls.push_back({mergedChain(pieces[k].lower, pieces[k + 1].lower, 1),
                       mergedChain(pieces[k].upper, pieces[k + 1].upper, -1)});
  }
}

/// The lower chain of the hull of sorted points, with side -1 the upper one.
/// Source: A. M. Andrew, "Another efficient algorithm for convex hulls in two dimensions", 1979.
template <class R> std::vector<int> HullTree<R>::chainOf(const std::vector<int>& sorted, int side) const
{
  std::vector<int> chain;
  for (const int point : sorted)
  {
    while (chain.size() > 1 &&
           static_cast<R>(side) * turn((*this)[chain[chain.size() - 2]], (*this)[chain.back()], (*this)[point]) <= 0)
      chain.pop_back();
    chain.push_back(point);
  }
  return chain;
}

template <class R>
std::vector<int> HullTree<R>::mergedChain(const std::vector<int>& a, const std::vector<int>& b, int side) const
{
  std::vector<int> points;
  points.reserve(a.size() + b.size());
  std::merge(a.begin(), a.end(), b.begin(), b.end(), std::back_inserter(points),
             [this](int i, int j) { return isBefore(i, j); });
  return chainOf(points, side);
}

// Along a chain the points first lie farther and farther in a direction, and then less and less.
template <class R> int HullTree<R>::extreme(const Hull& hull, const Point2d<R>& direction) const
{
  const std::vector<int>& chain = direction.y < 0 ? hull.lower : hull.upper;
  std::size_t first = 0, last = chain.size() - 1;
  while (first < last)
  {
    const std::size_t middle = first + (last - first) / 2;
    if ((*this)[chain[middle + 1]].dot(direction) > (*this)[chain[middle]].dot(direction))
      first = middle + 1;
    else
      last = middle;
  }
  return chain[first];
}

template class HullTree<double>;
template class HullTree<long double>;
