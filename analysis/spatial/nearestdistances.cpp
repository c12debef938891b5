#include "analysis/spatial/nearestdistances.h"

#include "analysis/spatial/pointindex.h"
#include "numeric/exception.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <vector>

template <class T> class NearestDistances<T>::Searcher
{
public:
  virtual ~Searcher() = default;
  virtual void toNearest(const T* places, int count, T* distances) const = 0;
  virtual void toNearestOther(T* distances) const = 0;
};

/// The searches in an index of either kind.
template <class T> template <class Index> class NearestDistances<T>::SearcherIn : public Searcher
{
public:
  explicit SearcherIn(Index index) : _index(std::move(index)) {}

  void toNearest(const T* places, int count, T* distances) const override
  {
    const auto search = [&](int first, int last)
    {
      int nearest = 0; // the one of the place before
      for (int i = first; i < last; ++i)
      {
        Point place;
        std::copy_n(places + std::ptrdiff_t(i) * std::ptrdiff_t(space), space, place.begin());
        NearestSearch<T, space> nearestSearch{place, none, nearest, squaredDistance(place, point(nearest))};
        if (!(nearestSearch.squared < infinity)) nearestSearch.squared = infinity;
        distances[i] = distance(nearestSearch);
        nearest = nearestSearch.nearest;
      }
    };
    forEachBlock(count, search);
  }

  void toNearestOther(T* distances) const override
  {
    const int size = static_cast<int>(_index.getPoints().size());
    const auto search = [&](int first, int last)
    {
      for (int i = first; i < last; ++i)
      {
        NearestSearch<T, space> nearestSearch{point(i), i, i, infinity};
        for (const int other : {i - 1, i + 1}) // probably near
          if (other >= 0 && other < size) nearestSearch.look(_index.getPoints().data(), other, other + 1);
        distances[i] = distance(nearestSearch);
      }
    };
    forEachBlock(size, search);
  }

private:
  using Point = typename std::decay_t<decltype(std::declval<Index>().getPoints())>::value_type;
  static constexpr int space = static_cast<int>(std::tuple_size_v<Point>);
  static constexpr int none = -1;
  static constexpr T infinity = std::numeric_limits<T>::infinity();

  /// Calls search(first, last) for blocks of the n numbers from 0 on, on all threads when there are many.
  template <class Search> static void forEachBlock(int n, const Search& search)
  {
    constexpr int blockSize = 1024;
#pragma omp parallel for schedule(static) if (n > 4 * blockSize)
    for (int block = 0; block <= (n - 1) / blockSize; ++block)
      search(block * blockSize, std::min(n, (block + 1) * blockSize));
  }
  const Point& point(int i) const
  {
    return _index.getPoints()[static_cast<std::size_t>(i)];
  }
  T distance(NearestSearch<T, space>& search) const
  {
    _index.search(search);
    return std::sqrt(search.squared);
  }

  Index _index;
};

template <class T> template <int space> void NearestDistances<T>::build(const Vertices<T>& points)
{
  std::vector<SpacePoint<T, space>> copy(static_cast<std::size_t>(points.getSize()));
  for (int i = 0; i < points.getSize(); ++i)
    std::copy_n(points.data(i), space, copy[static_cast<std::size_t>(i)].begin());
  GridIndex<T, space> grid(copy);
  if (grid.isSuitable())
    _searcher = std::make_unique<SearcherIn<GridIndex<T, space>>>(std::move(grid));
  else
    _searcher = std::make_unique<SearcherIn<TreeIndex<T, space>>>(TreeIndex<T, space>(std::move(copy)));
}

template <class T> NearestDistances<T>::NearestDistances(const Vertices<T>& points)
{
  const char* const where = "NearestDistances<T>::NearestDistances(const Vertices<T>&)";
  const int space = points.getSpace();
  if (space != 2 && space != 3) throw SizeError(where, "The points are neither in the plane nor in space");
  const T* const coordinates = points.data();
  for (std::ptrdiff_t i = 0; i < std::ptrdiff_t(points.getSize()) * space; ++i)
    if (!std::isfinite(coordinates[i])) throw ValueError(where, "A point is not at a finite place");
  if (points.getSize() == 0) throw SizeError(where, "There is no point");
  space == 2 ? build<2>(points) : build<3>(points);
}

template <class T> NearestDistances<T>::~NearestDistances() = default;

template <class T> void NearestDistances<T>::toNearest(const T* places, int count, T* distances) const
{
  _searcher->toNearest(places, count, distances);
}

template <class T> void NearestDistances<T>::toNearestOther(T* distances) const
{
  _searcher->toNearestOther(distances);
}

/// Row by row of a grid with a few points per cell, the cells of every second row backwards.
template <class T> Vertices<T> inPathOrder(const Vertices<T>& points)
{
  const int n = points.getSize(), space = points.getSpace();
  const BoundingBox<T> box = points.boundingBox();
  const int numCells = std::max(1, static_cast<int>(std::pow(n / 2.0, 1.0 / std::max(space, 1))));
  const auto cellOf = [&](const T* point, int axis)
  {
    const T low = box.getMinimum()[axis], high = box.getMaximum()[axis];
    const T cell = high > low ? (point[axis] - low) / (high - low) * static_cast<T>(numCells) : T(0);
    return cell > 0 ? std::min(static_cast<int>(std::min(cell, static_cast<T>(numCells))), numCells - 1) : 0;
  };
  std::vector<std::int64_t> keys(static_cast<std::size_t>(n));
  std::int64_t numKeys = 1;
  for (int k = 0; k < space; ++k) numKeys *= numCells;
  std::vector<int> next(static_cast<std::size_t>(numKeys) + 1, 0);
  for (int i = 0; i < n; ++i)
  {
    std::int64_t key = 0;
    for (int k = 0; k < space; ++k)
    {
      const int cell = cellOf(points.data(i), k);
      key = key * numCells + (key % 2 == 0 ? cell : numCells - 1 - cell);
    }
    keys[static_cast<std::size_t>(i)] = key;
    ++next[static_cast<std::size_t>(key) + 1];
  }
  for (std::size_t key = 1; key < next.size(); ++key) next[key] += next[key - 1];
  Vertices<T> result(space, n);
  T* const ordered = result.data();
  for (int i = 0; i < n; ++i)
  {
    const int place = next[static_cast<std::size_t>(keys[static_cast<std::size_t>(i)])]++;
    std::copy_n(points.data(i), space, ordered + std::ptrdiff_t(place) * space);
  }
  return result;
}

GEOMETRY_INSTANTIATE_REAL(NearestDistances)
template Vertices<float> inPathOrder(const Vertices<float>&);
template Vertices<double> inPathOrder(const Vertices<double>&);
template Vertices<long double> inPathOrder(const Vertices<long double>&);
