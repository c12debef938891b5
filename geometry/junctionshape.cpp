#include "geometry/junctionshape.h"

#include <algorithm>
#include <numeric>

namespace
{
template <class T> struct Point
{
  T x, y;
};

/// Positive when a, b, c turn counter-clockwise.
template <class T> T turn(const Point<T>& a, const Point<T>& b, const Point<T>& c)
{
  return (b.x - a.x) * (c.y - a.y) - (b.y - a.y) * (c.x - a.x);
}

/// Adds the points, given in ascending order, that bound the set on one side.
template <class T, class Iterator>
void addHalfHull(const std::vector<Point<T>>& points, Iterator first, Iterator last, std::vector<int>& hull)
{
  const std::size_t start = hull.size();
  for (Iterator i = first; i != last; ++i)
  {
    while (hull.size() >= start + 2 && turn(points[hull[hull.size() - 2]], points[hull.back()], points[*i]) <= 0)
      hull.pop_back();
    hull.push_back(*i);
  }
  hull.pop_back(); // begins the other side
}

template <class T> std::vector<Point<T>> planarPoints(const Curve<T>& curve)
{
  std::vector<Point<T>> points;
  for (int i = 0; i < curve.getSize(); ++i) points.push_back({curve.data(i)[0], curve.data(i)[1]});
  return points;
}

/// The strip's section at a share of the way from a to b: a point on each of its edges between the curves.
template <class T>
std::vector<Point<T>> section(const Curve<T>& a, const Curve<T>& b, const TriangulationCode& code, T share)
{
  std::vector<Point<T>> points;
  int i = code.startA, j = code.startB;
  for (const bool isStepOnB : code.stepsOnB)
  {
    const T *p = a.data(i), *q = b.data(j);
    points.push_back({p[0] + share * (q[0] - p[0]), p[1] + share * (q[1] - p[1])});
    int& moving = isStepOnB ? j : i;
    moving = moving + 1 < (isStepOnB ? b : a).getSize() ? moving + 1 : 0;
  }
  return points;
}

template <class T> bool doCross(const Point<T>& a, const Point<T>& b, const Point<T>& c, const Point<T>& d)
{
  const T abc = turn(a, b, c), abd = turn(a, b, d);
  if (!((abc < 0 && abd > 0) || (abc > 0 && abd < 0))) return false;
  const T cda = turn(c, d, a), cdb = turn(c, d, b);
  return (cda < 0 && cdb > 0) || (cda > 0 && cdb < 0);
}

/// Number of pairs of edges of a polygon that cross, found by a sweep along x.
template <class T> int numCrossings(const std::vector<Point<T>>& polygon)
{
  const int size = static_cast<int>(polygon.size());
  const auto from = [&](int edge) -> const Point<T>& { return polygon[edge]; };
  const auto to = [&](int edge) -> const Point<T>& { return polygon[edge + 1 < size ? edge + 1 : 0]; };
  const auto left = [&](int edge) { return std::min(from(edge).x, to(edge).x); };
  std::vector<int> order(size);
  std::iota(order.begin(), order.end(), 0);
  std::sort(order.begin(), order.end(), [&](int a, int b) { return left(a) < left(b); });
  int count = 0;
  std::vector<int> active;
  for (const int edge : order)
  {
    std::erase_if(active, [&](int other) { return std::max(from(other).x, to(other).x) < left(edge); });
    for (const int other : active) count += doCross(from(edge), to(edge), from(other), to(other));
    active.push_back(edge);
  }
  return count;
}
} // namespace

template <class T> std::vector<int> convexHull(const Curve<T>& curve)
{
  const std::vector<Point<T>> points = planarPoints(curve);
  std::vector<int> order(points.size());
  std::iota(order.begin(), order.end(), 0);
  std::sort(order.begin(), order.end(),
            [&](int i, int j)
            { return points[i].x != points[j].x ? points[i].x < points[j].x : points[i].y < points[j].y; });
  std::vector<int> hull;
  addHalfHull(points, order.begin(), order.end(), hull);
  addHalfHull(points, order.rbegin(), order.rend(), hull);
  std::sort(hull.begin(), hull.end());
  return hull;
}

template <class T> int numSectionCrossings(const Curve<T>& a, const Curve<T>& b, const TriangulationCode& code)
{
  int count = 0;
  for (const T share : {T(1) / 4, T(1) / 2, T(3) / 4}) count += numCrossings(section(a, b, code, share));
  return count;
}

#define INSTANTIATE_JUNCTION_SHAPE(T)                                                                                  \
  template std::vector<int> convexHull<T>(const Curve<T>&);                                                            \
  template int numSectionCrossings<T>(const Curve<T>&, const Curve<T>&, const TriangulationCode&);
INSTANTIATE_JUNCTION_SHAPE(float)
INSTANTIATE_JUNCTION_SHAPE(double)
INSTANTIATE_JUNCTION_SHAPE(long double)
