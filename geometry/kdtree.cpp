#include "geometry/kdtree.h"

#include "geometry/boxtree.h"
#include "geometry/coordinates.h"
#include "numeric/exception.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <nanoflann.hpp>
#include <omp.h>
#include <utility>

namespace
{

/// Collects the nearest point, the first one of equally near ones, other than an excluded one.
template <class R> class NearestPoint
{
public:
  using DistanceType = R;

  explicit NearestPoint(int excluded) : _excluded(excluded) {}

  const Neighbour<R>& get() const { return _neighbour; }

  bool addPoint(R squaredDistance, int index)
  {
    const bool isNearer = squaredDistance < _neighbour.squaredDistance ||
                          (squaredDistance == _neighbour.squaredDistance && index < _neighbour.index);
    if (!isNearer || index == _excluded) return true;
    _neighbour = {index, squaredDistance};
    _limit = std::nextafter(squaredDistance, std::numeric_limits<R>::infinity());
    return true;
  }
  /// The search looks at points that are nearer than this: those equally near as the best one, too.
  R worstDist() const { return _limit; }
  bool full() const { return _neighbour.index >= 0; }

private:
  Neighbour<R> _neighbour;
  R _limit = std::numeric_limits<R>::infinity();
  int _excluded;
};

/// Points as the tree's library reads them.
template <class R, int space> struct PointCloud
{
  std::vector<R> coordinates;

  std::size_t kdtree_get_point_count() const { return coordinates.size() / space; }
  R kdtree_get_pt(std::size_t i, std::size_t axis) const { return coordinates[i * space + axis]; }
  template <class Box> bool kdtree_get_bbox(Box&) const { return false; }
};

/// The tree over a cloud, which must stay where it is.
template <class R, int space> class PointTree
{
public:
  explicit PointTree(const PointCloud<R, space>& cloud)
    : _tree(space, cloud, nanoflann::KDTreeSingleIndexAdaptorParams(10))
  {
  }

  void search(const R* point, NearestPoint<R>& nearestPoint) const
  {
    // Boxes count as a little nearer than they are, so that no rounding error hides a point.
    _tree.findNeighbors(nearestPoint, point, nanoflann::SearchParams(0, -1e-5f));
  }
  /// Point n in an order in which neighbours mostly follow each other.
  std::size_t pointInOrder(std::size_t n) const { return _tree.vAcc[n]; }

private:
  using Cloud = PointCloud<R, space>;
  nanoflann::KDTreeSingleIndexAdaptor<nanoflann::L2_Simple_Adaptor<R, Cloud, R, unsigned>, Cloud, space, unsigned>
      _tree;
};

/// The library does not align long double: boxes of single points take its place.
template <int space> class PointTree<long double, space>
{
public:
  explicit PointTree(const PointCloud<long double, space>& cloud) : _cloud(cloud), _tree(boxes(cloud)) {}

  void search(const long double* point, NearestPoint<long double>& nearestPoint) const
  {
    _tree.findClosest(inSpace(point),
                      [&](int i)
                      {
                        const long double* const candidate = _cloud.coordinates.data() + std::ptrdiff_t(i) * space;
                        nearestPoint.addPoint(squaredDistance(point, candidate, space), i);
                        return nearestPoint.get().squaredDistance;
                      });
  }
  std::size_t pointInOrder(std::size_t n) const { return n; }

private:
  static std::array<long double, 3> inSpace(const long double* point)
  {
    std::array<long double, 3> result = {};
    std::copy_n(point, space, result.begin());
    return result;
  }
  static std::vector<TreeBox<long double>> boxes(const PointCloud<long double, space>& cloud)
  {
    std::vector<TreeBox<long double>> boxes(cloud.kdtree_get_point_count());
    for (std::size_t i = 0; i < boxes.size(); ++i) boxes[i].add(inSpace(cloud.coordinates.data() + i * space));
    return boxes;
  }

  const PointCloud<long double, space>& _cloud;
  BoxTree<long double> _tree;
};

template <class R> bool isFinite(const R* point, int space)
{
  return std::all_of(point, point + space, [](R x) { return std::isfinite(x); });
}

} // namespace

template <class R> class KdTree<R>::Searcher
{
public:
  virtual ~Searcher() = default;
  virtual Neighbour<R> nearest(const R* point) const = 0;
  virtual std::vector<Neighbour<R>> nearest(const std::vector<R>& points) const = 0;
  virtual std::vector<Neighbour<R>> nearestOthers() const = 0;
};

template <class R> template <int space> class KdTree<R>::SearcherIn : public Searcher
{
public:
  explicit SearcherIn(const std::vector<R>& coordinates) : _lowestEqual(coordinates.size() / space, -1)
  {
    for (const Place& place : distinctPlaces(coordinates))
    {
      const R* const point = coordinates.data() + static_cast<std::ptrdiff_t>(place.lowest) * space;
      _cloud.coordinates.insert(_cloud.coordinates.end(), point, point + space);
      _places.push_back(place);
    }
    if (!_places.empty()) _tree = std::make_unique<PointTree<R, space>>(_cloud);
  }

  Neighbour<R> nearest(const R* point) const override
  {
    return isFinite(point, space) ? search(point, -1) : Neighbour<R>();
  }

  std::vector<Neighbour<R>> nearest(const std::vector<R>& points) const override
  {
    const std::size_t count = points.size() / space;
    std::vector<Neighbour<R>> neighbours(count);
#pragma omp parallel for if (count > smallest)
    for (std::size_t i = 0; i < count; ++i) neighbours[i] = nearest(points.data() + i * space);
    return neighbours;
  }

  std::vector<Neighbour<R>> nearestOthers() const override
  {
    std::vector<Neighbour<R>> neighbours(_lowestEqual.size());
    for (std::size_t i = 0; i < neighbours.size(); ++i)
      if (_lowestEqual[i] >= 0) neighbours[i] = {_lowestEqual[i], 0};
    const std::size_t count = _places.size();
#pragma omp parallel for if (count > smallest)
    for (std::size_t n = 0; n < count; ++n)
    {
      // In the order of the leaves, where one search finds what the one before has fetched.
      const std::size_t i = _tree->pointInOrder(n);
      const auto [lowest, second] = _places[i];
      neighbours[static_cast<std::size_t>(lowest)] =
          second >= 0 ? Neighbour<R>{second, 0} : search(_cloud.coordinates.data() + i * space, static_cast<int>(i));
    }
    return neighbours;
  }

private:
  static constexpr std::size_t smallest = 2000; // number of searches from which on threads pay

  /// The two first of the points at one place; the second is -1 when there is one only.
  struct Place
  {
    int lowest;
    int second;
  };

  /// The places of the finite points in the order of their first points.
  std::vector<Place> distinctPlaces(const std::vector<R>& coordinates)
  {
    std::vector<std::pair<std::array<R, space>, int>> points;
    points.reserve(_lowestEqual.size());
    for (int i = 0; i < static_cast<int>(_lowestEqual.size()); ++i)
    {
      std::array<R, space> point;
      std::copy_n(coordinates.data() + static_cast<std::ptrdiff_t>(i) * space, space, point.begin());
      if (isFinite(point.data(), space)) points.emplace_back(point, i);
    }
    std::sort(points.begin(), points.end());
    std::vector<int> secondEqual(_lowestEqual.size(), -1);
    for (std::size_t k = 0, first = 0; k < points.size(); ++k)
    {
      if (points[k].first != points[first].first) first = k;
      if (k == first + 1) secondEqual[static_cast<std::size_t>(points[first].second)] = points[k].second;
      _lowestEqual[static_cast<std::size_t>(points[k].second)] = points[first].second;
    }
    std::vector<Place> places;
    for (int i = 0; i < static_cast<int>(_lowestEqual.size()); ++i)
      if (_lowestEqual[static_cast<std::size_t>(i)] == i)
        places.push_back({i, secondEqual[static_cast<std::size_t>(i)]});
    return places;
  }

  Neighbour<R> search(const R* point, int excluded) const
  {
    NearestPoint<R> nearestPoint(excluded);
    if (_tree) _tree->search(point, nearestPoint);
    Neighbour<R> neighbour = nearestPoint.get();
    if (neighbour.index >= 0) neighbour.index = _places[static_cast<std::size_t>(neighbour.index)].lowest;
    return neighbour;
  }

  PointCloud<R, space> _cloud;   // each place once, as equal points would all be equally near
  std::vector<Place> _places;    // of the points in the cloud
  std::vector<int> _lowestEqual; // for each point the first one of its place
  std::unique_ptr<PointTree<R, space>> _tree;
};

template <class R> KdTree<R>::KdTree(int space, std::vector<R> coordinates)
{
  const char* const where = "KdTree<R>::KdTree(int, std::vector<R>)";
  if (space < 1 || space > 3) throw SizeError(where, "The space dimension is not 1, 2 or 3");
  if (coordinates.size() % static_cast<std::size_t>(space) != 0)
    throw SizeError(where, "The coordinates end too early");
  if (space == 1)
    _searcher = std::make_unique<SearcherIn<1>>(coordinates);
  else if (space == 2)
    _searcher = std::make_unique<SearcherIn<2>>(coordinates);
  else
    _searcher = std::make_unique<SearcherIn<3>>(coordinates);
}

template <class R> KdTree<R>::~KdTree() = default;

template <class R> Neighbour<R> KdTree<R>::nearest(const R* point) const
{
  return _searcher->nearest(point);
}

template <class R> std::vector<Neighbour<R>> KdTree<R>::nearest(const std::vector<R>& points) const
{
  return _searcher->nearest(points);
}

template <class R> std::vector<Neighbour<R>> KdTree<R>::nearestOthers() const
{
  return _searcher->nearestOthers();
}

template class KdTree<float>;
template class KdTree<double>;
template class KdTree<long double>;
