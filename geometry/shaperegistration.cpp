#include "geometry/coordinates.h"
#include "geometry/shape.h"

#include <algorithm>
#include <cmath>

namespace
{

/// The means of paired points and the sums of the products of their coordinates about these means.
template <class S> struct PairMoments
{
  Vector<S> meanHere, meanThere;
  SquareMatrix<S> products; // row: axis here, column: axis there
};

/// The paired points stand at the same places in both blocks of coordinates.
template <class S> PairMoments<S> pairMoments(int space, const std::vector<S>& here, const std::vector<S>& there)
{
  PairMoments<S> moments{Vector<S>(space), Vector<S>(space), SquareMatrix<S>(space)};
  moments.meanHere.setZeros(space);
  moments.meanThere.setZeros(space);
  moments.products.setZeros();
  const std::size_t step = static_cast<std::size_t>(space), size = here.size();
  for (std::size_t i = 0; i < size; ++i)
  {
    moments.meanHere[static_cast<int>(i % step)] += here[i];
    moments.meanThere[static_cast<int>(i % step)] += there[i];
  }
  moments.meanHere /= static_cast<S>(size / step);
  moments.meanThere /= static_cast<S>(size / step);
  for (std::size_t i = 0; i < size; i += step)
    for (int a = 0; a < space; ++a)
      for (int b = 0; b < space; ++b)
        moments.products(a, b) += (here[i + static_cast<std::size_t>(a)] - moments.meanHere[a]) *
                                  (there[i + static_cast<std::size_t>(b)] - moments.meanThere[b]);
  return moments;
}

/// In space, the rotation by the unit quaternion that is the main eigenvector of Horn's matrix.
template <class S> SquareMatrix<S> bestRotation3(const SquareMatrix<S>& s)
{
  const S xx = s(0, 0), yy = s(1, 1), zz = s(2, 2);
  const S x = s(1, 2) - s(2, 1), y = s(2, 0) - s(0, 2), z = s(0, 1) - s(1, 0);
  const S xy = s(0, 1) + s(1, 0), yz = s(1, 2) + s(2, 1), zx = s(2, 0) + s(0, 2);
  const SquareMatrix<S> n{
      {xx + yy + zz, x, y, z}, {x, xx - yy - zz, xy, zx}, {y, xy, yy - xx - zz, yz}, {z, zx, yz, zz - xx - yy}};
  Vector<S> values;
  SquareMatrix<S> vectors;
  n.eigenJacobi(values, vectors, true);
  const Vector<S> q = vectors.getColumn(0);
  const S a = q[0], b = q[1], c = q[2], d = q[3], norm2 = a * a + b * b + c * c + d * d;
  SquareMatrix<S> rotation{{a * a + b * b - c * c - d * d, 2 * (b * c - a * d), 2 * (b * d + a * c)},
                           {2 * (b * c + a * d), a * a - b * b + c * c - d * d, 2 * (c * d - a * b)},
                           {2 * (b * d - a * c), 2 * (c * d + a * b), a * a - b * b - c * c + d * d}};
  rotation /= norm2;
  return rotation;
}

template <class S> SquareMatrix<S> bestRotation(const SquareMatrix<S>& products)
{
  const int space = products.getSize1();
  if (space == 3) return bestRotation3(products);
  SquareMatrix<S> rotation(space);
  rotation.setIdentity();
  if (space < 2) return rotation;
  const S cosine = products(0, 0) + products(1, 1), sine = products(0, 1) - products(1, 0);
  const S length = std::hypot(cosine, sine);
  if (length > 0) rotation = {{cosine / length, -sine / length}, {sine / length, cosine / length}};
  return rotation;
}

/// The transform that turns points and then moves one of them to a given place.
template <class R, class S>
RigidTransform<R> transformMoving(const SquareMatrix<S>& rotation, const Vector<S>& from, const Vector<S>& to)
{
  const int space = from.getSize();
  RigidTransform<R> transform{SquareMatrix<R>(space), Vector<R>(space)};
  for (int a = 0; a < space; ++a)
  {
    S turned = 0;
    for (int b = 0; b < space; ++b)
    {
      turned += rotation(a, b) * from[b];
      transform.rotation(a, b) = static_cast<R>(rotation(a, b));
    }
    transform.translation[a] = static_cast<R>(to[a] - turned);
  }
  return transform;
}

/// Gives each column but the last the sign that makes its greatest component positive, and the last one that which
/// makes the frame right-handed.
template <class S> void orientAxes(SquareMatrix<S>& axes)
{
  const int space = axes.getSize1();
  const auto turn = [&axes, space](int column)
  {
    for (int i = 0; i < space; ++i) axes(i, column) = -axes(i, column);
  };
  for (int j = 0; j + 1 < space; ++j)
  {
    const Vector<S> axis = axes.getColumn(j);
    const auto isSmaller = [](S a, S b) { return std::abs(a) < std::abs(b); };
    if (*std::max_element(axis.begin(), axis.end(), isSmaller) < 0) turn(j);
  }
  if (axes.det() < 0) turn(space - 1);
}

} // namespace

template <class T> void Shape<T>::stats(Vector<Real<T>>& mean, Vector<Real<T>>& deviation) const
{
  const Vector<Real<T>> variances = inertia().diagonal();
  mean = cog();
  deviation = variances;
  for (Real<T>& value : deviation) value = std::sqrt(value);
}

template <class T> SquareMatrix<Real<T>> Shape<T>::principalAxes() const
{
  Vector<Real<T>> values;
  SquareMatrix<Real<T>> axes;
  inertia().eigenJacobi(values, axes, true);
  orientAxes(axes);
  return axes;
}

template <class T> RigidTransform<Real<T>> Shape<T>::computePAT() const
{
  const SquareMatrix<Real<T>> rotation = principalAxes().transpose();
  Vector<Real<T>> origin;
  origin.setZeros(this->getSpace());
  return transformMoving<Real<T>>(rotation, cog(), origin);
}

template <class T> RigidTransform<Real<T>> Shape<T>::computeLSRegistration(const Shape<T>& other) const
{
  requireSameLayout(other, "RigidTransform<T> Shape<T>::computeLSRegistration(const Shape<T>&) const");
  std::vector<std::pair<int, int>> pairs(static_cast<std::size_t>(getNumVertices()));
  for (std::size_t i = 0; i < pairs.size(); ++i) pairs[i] = {static_cast<int>(i), static_cast<int>(i)};
  return computeLSRegistration(other, pairs);
}

template <class T> RigidTransform<Real<T>>
Shape<T>::computeLSRegistration(const Shape<T>& other, const std::vector<std::pair<int, int>>& pairs) const
{
  const char* const where = "RigidTransform<T> Shape<T>::computeLSRegistration(const Shape<T>&, "
                            "const std::vector<std::pair<int, int>>&) const";
  if (other.getSpace() != this->getSpace()) throw SizeError(where, "The shapes have different dimensions");
  if (pairs.empty()) throw SizeError(where, "There are no pairs of vertices");
  using S = Wide<T>;
  const int space = this->getSpace();
  const std::vector<Real<T>> here = realCoordinates(), there = other.realCoordinates();
  std::vector<S> pairedHere, pairedThere;
  for (const auto& [i, j] : pairs)
  {
    if (i < 0 || i >= getNumVertices() || j < 0 || j >= other.getNumVertices())
      throw RangeError(where, "There is no vertex " + std::to_string(i < 0 || i >= getNumVertices() ? i : j));
    for (int k = 0; k < space; ++k)
    {
      pairedHere.push_back(
          here[static_cast<std::size_t>(i) * static_cast<std::size_t>(space) + static_cast<std::size_t>(k)]);
      pairedThere.push_back(
          there[static_cast<std::size_t>(j) * static_cast<std::size_t>(space) + static_cast<std::size_t>(k)]);
    }
  }
  const PairMoments<S> moments = pairMoments(space, pairedHere, pairedThere);
  if (const S* const all = moments.products.data();
      !std::all_of(all, all + moments.products.getNumElements(), [](S x) { return std::isfinite(x); }))
    throw MathError(where, "The coordinates are not finite");
  return transformMoving<Real<T>>(bestRotation(moments.products), moments.meanHere, moments.meanThere);
}

template <class T> void Shape<T>::transform(const RigidTransform<Real<T>>& transform)
{
  const int space = this->getSpace();
  const SquareMatrix<Real<T>>& rotation = transform.rotation;
  if (rotation.getSize1() != space || transform.translation.getSize() != space)
    throw SizeError("void Shape<T>::transform(const RigidTransform<T>&)", "Vertex and transform dimensions differ");
  Vector<Real<T>> moved(space);
  changeEachVertex(
      [&](T* coordinates)
      {
        for (int a = 0; a < space; ++a)
        {
          moved[a] = transform.translation[a];
          for (int b = 0; b < space; ++b) moved[a] += rotation(a, b) * static_cast<Real<T>>(coordinates[b]);
        }
        for (int a = 0; a < space; ++a) coordinates[a] = toCoordinate<T>(moved[a]);
      });
}

GEOMETRY_INSTANTIATE(Shape)
