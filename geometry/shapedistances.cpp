#include "geometry/coordinates.h"
#include "geometry/kdtree.h"
#include "geometry/shape.h"

#include <algorithm>
#include <cmath>

namespace
{

template <class R> Vector<R> squaredDistances(const std::vector<Neighbour<R>>& neighbours)
{
  Vector<R> distances(static_cast<int>(neighbours.size()));
  std::transform(neighbours.begin(), neighbours.end(), distances.begin(),
                 [](const Neighbour<R>& neighbour) { return neighbour.squaredDistance; });
  return distances;
}

} // namespace

template <class T> std::vector<Real<T>> Shape<T>::realCoordinates() const
{
  std::vector<Real<T>> all;
  const int space = this->getSpace();
  all.reserve(static_cast<std::size_t>(getNumVertices()) * static_cast<std::size_t>(space));
  forEachVertex([&all, space](const T* coordinates) { all.insert(all.end(), coordinates, coordinates + space); });
  return all;
}

template <class T> int Shape<T>::nearestVertex(const Vector<T>& point) const
{
  requireSpace(point, "int Shape<T>::nearestVertex(const Vector<T>&) const");
  int nearest = -1, vertex = 0;
  Real<T> shortest = std::numeric_limits<Real<T>>::infinity();
  forEachVertex(
      [&](const T* coordinates)
      {
        const Real<T> candidate = squaredDistance(coordinates, point.data(), point.getSize());
        if (candidate < shortest)
        {
          shortest = candidate;
          nearest = vertex;
        }
        ++vertex;
      });
  return nearest;
}

template <class T> Vector<Real<T>> Shape<T>::squareDistances(const Shape<T>& other) const
{
  requireSameLayout(other, "Vector<T> Shape<T>::squareDistances(const Shape<T>&) const");
  const int space = this->getSpace();
  const std::vector<Real<T>> here = realCoordinates(), there = other.realCoordinates();
  Vector<Real<T>> distances(getNumVertices());
  for (int i = 0; i < distances.getSize(); ++i)
  {
    const std::ptrdiff_t offset = static_cast<std::ptrdiff_t>(i) * space;
    distances[i] = squaredDistance(here.data() + offset, there.data() + offset, space);
  }
  return distances;
}

template <class T> Real<T> Shape<T>::rmsDistance(const Shape<T>& other) const
{
  const Vector<Real<T>> distances = squareDistances(other);
  return distances.getSize() > 0 ? std::sqrt(distances.mean()) : 0;
}

template <class T> Matrix<Real<T>> Shape<T>::deformations(const Shape<T>& other) const
{
  requireSameLayout(other, "Matrix<T> Shape<T>::deformations(const Shape<T>&) const");
  const std::vector<Real<T>> here = realCoordinates(), there = other.realCoordinates();
  Matrix<Real<T>> rows(getNumVertices(), this->getSpace());
  std::transform(there.begin(), there.end(), here.begin(), rows.data(), std::minus<>());
  return rows;
}

template <class T> Vector<int> Shape<T>::nearestNeighbors() const
{
  const std::vector<Neighbour<Real<T>>> neighbours =
      KdTree<Real<T>>(this->getSpace(), realCoordinates()).nearestOthers();
  Vector<int> indexes(static_cast<int>(neighbours.size()));
  std::transform(neighbours.begin(), neighbours.end(), indexes.begin(),
                 [](const Neighbour<Real<T>>& neighbour) { return neighbour.index; });
  return indexes;
}

template <class T> Vector<Real<T>> Shape<T>::squareNearestNeighborDistances() const
{
  return squaredDistances(KdTree<Real<T>>(this->getSpace(), realCoordinates()).nearestOthers());
}

template <class T> Vector<Real<T>> Shape<T>::squareNearestNeighborDistances(const Shape<T>& other) const
{
  if (other.getSpace() != this->getSpace())
    throw SizeError("Vector<T> Shape<T>::squareNearestNeighborDistances(const Shape<T>&) const",
                    "The shapes have different dimensions");
  return squaredDistances(KdTree<Real<T>>(this->getSpace(), other.realCoordinates()).nearest(realCoordinates()));
}

template <class T> Vector<Real<T>> Shape<T>::nearestNeighborDistances(const Shape<T>& other) const
{
  Vector<Real<T>> distances = squareNearestNeighborDistances(other);
  for (Real<T>& distance : distances) distance = std::sqrt(distance);
  return distances;
}

GEOMETRY_INSTANTIATE(Shape)
