#include "geometry/curveprocessing/iterativeclosestpoint.h"

#include "geometry/kdtree.h"

#include <cmath>
#include <utility>
#include <vector>

namespace
{
template <class T> std::vector<Real<T>> coordinatesOf(const Shape<T>& shape)
{
  const Vector<T> coordinates = shape.toVector();
  return std::vector<Real<T>>(coordinates.begin(), coordinates.end());
}

/// The points, given by their coordinates, after a motion.
template <class R> std::vector<R> moved(const std::vector<R>& points, const RigidTransform<R>& transform)
{
  const int space = transform.translation.getSize();
  std::vector<R> result;
  result.reserve(points.size());
  for (std::size_t i = 0; i < points.size(); i += static_cast<std::size_t>(space))
    for (int a = 0; a < space; ++a)
    {
      R coordinate = transform.translation[a];
      for (int b = 0; b < space; ++b) coordinate += transform.rotation(a, b) * points[i + static_cast<std::size_t>(b)];
      result.push_back(coordinate);
    }
  return result;
}

/// The pairs (point, its neighbour) of those that have one.
template <class R> std::vector<std::pair<int, int>> pairsOf(const std::vector<Neighbour<R>>& neighbours)
{
  std::vector<std::pair<int, int>> pairs;
  for (std::size_t i = 0; i < neighbours.size(); ++i)
    if (neighbours[i].index >= 0) pairs.emplace_back(static_cast<int>(i), neighbours[i].index);
  return pairs;
}

/// Root of the mean squared distance to the neighbours, of which there is one at least.
template <class R> R rmsDistance(const std::vector<Neighbour<R>>& neighbours)
{
  R sum = 0;
  int count = 0;
  for (const Neighbour<R>& neighbour : neighbours)
  {
    if (neighbour.index < 0) continue;
    sum += neighbour.squaredDistance;
    ++count;
  }
  return std::sqrt(sum / static_cast<R>(count));
}
} // namespace

template <class T> void IterativeClosestPoint<T>::apply(const Shape<T>& shape, const Shape<T>& target)
{
  using R = Real<T>;
  const char* const where = "void IterativeClosestPoint<T>::apply(const Shape<T>&, const Shape<T>&)";
  const int space = shape.getSpace();
  if (target.getSpace() != space) throw SizeError(where, "The shapes have different dimensions");
  const std::vector<R> points = coordinatesOf(shape);
  const KdTree<R> tree(space, coordinatesOf(target));
  std::vector<Neighbour<R>> neighbours = tree.nearest(points);
  if (pairsOf(neighbours).empty()) throw SizeError(where, "A shape has no vertices with finite coordinates");

  _transform.rotation.setSize(space);
  _transform.rotation.setIdentity();
  _transform.translation.setZeros(space);
  _rmsDistance = rmsDistance(neighbours);
  for (_numIterations = 0; _numIterations < _maxIterations && _rmsDistance > 0; ++_numIterations)
  {
    const RigidTransform<R> transform = shape.computeLSRegistration(target, pairsOf(neighbours));
    neighbours = tree.nearest(moved(points, transform));
    const R distance = rmsDistance(neighbours);
    if (!(distance < _rmsDistance)) break;
    const bool isLast = _rmsDistance - distance <= _tolerance * _rmsDistance;
    _transform = transform;
    _rmsDistance = distance;
    if (isLast) break;
  }
}

GEOMETRY_INSTANTIATE(IterativeClosestPoint)
