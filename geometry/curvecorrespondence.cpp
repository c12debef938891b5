#include "geometry/curvecorrespondence.h"

#include "geometry/coordinates.h"
#include "geometry/overlaparea.h"

#include <algorithm>
#include <map>
#include <numeric>

namespace
{
template <class T> using Curves = std::vector<const Curve<T>*>;

/// Sets of numbers that grow together by links.
class LinkedSets
{
public:
  explicit LinkedSets(int size) : _parent(size) { std::iota(_parent.begin(), _parent.end(), 0); }

  int find(int i)
  {
    while (_parent[i] != i) i = _parent[i] = _parent[_parent[i]];
    return i;
  }
  void link(int i, int j) { _parent[find(i)] = find(j); }

private:
  std::vector<int> _parent;
};

template <class T> std::vector<Vector<T>> centersOfGravity(const std::vector<const Curve<T>*>& curves)
{
  std::vector<Vector<T>> centers;
  centers.reserve(curves.size());
  for (const Curve<T>* curve : curves) centers.push_back(curve->cog());
  return centers;
}

/// Squared distance between the centres of gravity of every pair.
template <class T> Matrix<T> meshCost1(const Curves<T>& lower, const Curves<T>& upper)
{
  const std::vector<Vector<T>> lowerCenters = centersOfGravity(lower), upperCenters = centersOfGravity(upper);
  Matrix<T> costs(static_cast<int>(lower.size()), static_cast<int>(upper.size()));
  for (int i = 0; i < costs.getSize1(); ++i)
    for (int j = 0; j < costs.getSize2(); ++j)
      costs(i, j) = squaredDistance(lowerCenters[i].data(), upperCenters[j].data(), 3);
  return costs;
}

/// Squared distance between the closest vertices.
template <class T> T meshCost2(const Curve<T>& lower, const Curve<T>& upper)
{
  int a, b;
  lower.closestPoints(upper, a, b);
  return squaredDistance(lower.data(a), upper.data(b), 3);
}

template <class T> T squaredDistanceToSegment(const T* p, const T* a, const T* b)
{
  T along = 0, square = 0;
  for (int k = 0; k < 3; ++k)
  {
    along += (p[k] - a[k]) * (b[k] - a[k]);
    square += (b[k] - a[k]) * (b[k] - a[k]);
  }
  const T share = square > 0 ? std::clamp(along / square, T(0), T(1)) : T(0);
  const T closest[] = {a[0] + share * (b[0] - a[0]), a[1] + share * (b[1] - a[1]), a[2] + share * (b[2] - a[2])};
  return squaredDistance(p, closest, 3);
}

/// Mean distance of the vertices of one curve from the other curve.
template <class T> T meanDistance(const Curve<T>& from, const Curve<T>& to)
{
  T sum = 0;
  for (int i = 0; i < from.getSize(); ++i)
  {
    T least = squaredDistance(from.data(i), to.data(), 3);
    for (int j = 0; j < to.getNumEdges(); ++j)
      least = std::min(least, squaredDistanceToSegment(from.data(i), to.data(j), to.data((j + 1) % to.getSize())));
    sum += std::sqrt(least);
  }
  return sum / static_cast<T>(from.getSize());
}

template <class T> T meshCost3(const Curve<T>& lower, const Curve<T>& upper)
{
  return (meanDistance(lower, upper) + meanDistance(upper, lower)) / 2;
}

/// One minus the common area over the covered one (the Jaccard distance).
template <class T> T meshCost4(const Curve<T>& lower, const Curve<T>& upper)
{
  const double common = overlapArea(lower, upper);
  const double covered = overlapArea(lower, lower) + overlapArea(upper, upper) - common;
  return static_cast<T>(covered > 0 ? 1 - common / covered : 1);
}

template <class T> T meshCost5(const Curve<T>& lower, const Curve<T>& upper)
{
  const BoundingBox<T> a = lower.boundingBox(), b = upper.boundingBox();
  return squaredDistance(a.getMinimum().data(), b.getMinimum().data(), 3) +
         squaredDistance(a.getMaximum().data(), b.getMaximum().data(), 3);
}

template <class T>
Matrix<T> costsOfPairs(const Curves<T>& lower, const Curves<T>& upper, T (*cost)(const Curve<T>&, const Curve<T>&))
{
  Matrix<T> costs(static_cast<int>(lower.size()), static_cast<int>(upper.size()));
  for (int i = 0; i < costs.getSize1(); ++i)
    for (int j = 0; j < costs.getSize2(); ++j) costs(i, j) = cost(*lower[i], *upper[j]);
  return costs;
}

template <class T> int cheapestColumn(const Matrix<T>& costs, int row)
{
  int cheapest = 0;
  for (int j = 1; j < costs.getSize2(); ++j)
    if (costs(row, j) < costs(row, cheapest)) cheapest = j;
  return cheapest;
}

template <class T> int cheapestRow(const Matrix<T>& costs, int column)
{
  int cheapest = 0;
  for (int i = 1; i < costs.getSize1(); ++i)
    if (costs(i, column) < costs(cheapest, column)) cheapest = i;
  return cheapest;
}

} // namespace

template <class T> Matrix<T> meshCost(unsigned int criterion, const std::vector<const Curve<T>*>& lower,
                                      const std::vector<const Curve<T>*>& upper)
{
  switch (criterion)
  {
  case 2:
    return costsOfPairs(lower, upper, meshCost2<T>);
  case 3:
    return costsOfPairs(lower, upper, meshCost3<T>);
  case 4:
    return costsOfPairs(lower, upper, meshCost4<T>);
  case 5:
    return costsOfPairs(lower, upper, meshCost5<T>);
  default:
    return meshCost1(lower, upper);
  }
}

template <class T> std::vector<CurveGroup> associationSearch(const Matrix<T>& costs)
{
  const int numLower = costs.getSize1(), numUpper = costs.getSize2();
  LinkedSets sets(numLower + numUpper); // the lower curves, then the upper ones
  for (int i = 0; i < numLower; ++i) sets.link(i, numLower + cheapestColumn(costs, i));
  for (int j = 0; j < numUpper; ++j) sets.link(cheapestRow(costs, j), numLower + j);

  std::map<int, int> groupOf; // by the representative of its set
  std::vector<CurveGroup> groups;
  for (int i = 0; i < numLower + numUpper; ++i)
  {
    const auto [position, isNew] = groupOf.try_emplace(sets.find(i), static_cast<int>(groups.size()));
    if (isNew) groups.emplace_back();
    CurveGroup& group = groups[position->second];
    if (i < numLower)
      group.lower.push_back(i);
    else
      group.upper.push_back(i - numLower);
  }
  return groups;
}

#define INSTANTIATE_CORRESPONDENCE(T)                                                                                  \
  template Matrix<T> meshCost<T>(unsigned int, const std::vector<const Curve<T>*>&,                                    \
                                 const std::vector<const Curve<T>*>&);                                                 \
  template std::vector<CurveGroup> associationSearch<T>(const Matrix<T>&);
INSTANTIATE_CORRESPONDENCE(float)
INSTANTIATE_CORRESPONDENCE(double)
INSTANTIATE_CORRESPONDENCE(long double)
