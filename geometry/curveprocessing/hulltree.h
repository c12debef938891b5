#pragma once

#include <cstddef>
#include <vector>

/// Point or direction in the plane.
template <class R> struct Point2d
{
  R x, y;

  R dot(const Point2d& other) const { return x * other.x + y * other.y; }
  bool operator<(const Point2d& other) const { return x != other.x ? x < other.x : y < other.y; }
};

/// Convex hulls of pieces of a sequence of points: finds those that lie farthest in a direction among consecutive
/// points.
///
/// The pieces are blocks of equal length, pairs of blocks, pairs of pairs and so on. Building takes n log n, a search
/// the time of a squared logarithm. The coordinates must be finite.
template <class R> class HullTree
{
public:
  explicit HullTree(std::vector<Point2d<R>> points);

  const Point2d<R>& operator[](int i) const { return _points[static_cast<std::size_t>(i)]; }

  /// Calls visit(i) for some of the points first to last, among them one that lies farthest in the direction.
  template <class Visit> void visitExtremes(int first, int last, const Point2d<R>& direction, const Visit& visit) const
  {
    while (first <= last)
    {
      if (first % blockSize != 0 || last - first + 1 < blockSize)
      {
        visit(first++);
        continue;
      }
      std::size_t level = 0;
      int size = blockSize; // as long as the piece is one and ends in time
      while (first % (2 * size) == 0 && last - first + 1 >= 2 * size && level + 1 < _levels.size())
      {
        size *= 2;
        ++level;
      }
      visit(extreme(_levels[level][static_cast<std::size_t>(first / size)], direction));
      first += size;
    }
  }

private:
  static constexpr int blockSize = 32;

  /// The chains of a convex hull, as numbers of points, from the smallest point to the largest.
  struct Hull
  {
    std::vector<int> lower, upper;
  };

  bool isBefore(int i, int j) const { return (*this)[i] < (*this)[j]; }
  std::vector<int> chainOf(const std::vector<int>& sorted, int side) const;
  std::vector<int> mergedChain(const std::vector<int>& a, const std::vector<int>& b, int side) const;
  int extreme(const Hull& hull, const Point2d<R>& direction) const;

  std::vector<Point2d<R>> _points;
  std::vector<std::vector<Hull>> _levels; // hulls of whole blocks, then of pairs and so on
};

extern template class HullTree<double>;
extern template class HullTree<long double>;
