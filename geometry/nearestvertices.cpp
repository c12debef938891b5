#include "geometry/nearestvertices.h"

#include <cmath>
#include <cstddef>
#include <nanoflann.hpp>
#include <vector>

namespace
{
/// The coordinates of all vertices, as they are searched.
template <class T> std::vector<Real<T>> coordinatesOf(const Shape<T>& shape)
{
  std::vector<Real<T>> coordinates;
  for (int b = 0; b < shape.getNumBlocks(); ++b)
  {
    const VertexServer<T>& block = shape.getBlock(b);
    coordinates.insert(coordinates.end(), block.data(), block.data(block.getSize()));
  }
  const char* const where = "NearestVertices<T>::NearestVertices(const Shape<T>&)";
  if (coordinates.empty()) throw SizeError(where, "There are no vertices");
  for (const Real<T> coordinate : coordinates)
    if (!std::isfinite(coordinate)) throw MathError(where, "A coordinate is not finite");
  return coordinates;
}
} // namespace

template <class T> class NearestVertices<T>::Tree
{
  using R = Real<T>;

public:
  explicit Tree(const Shape<T>& shape)
    : _space(shape.getSpace()), _coordinates(coordinatesOf(shape)), _index(_space, *this)
  {
  }
  Tree(const Tree&) = delete;
  Tree& operator=(const Tree&) = delete;

  int find(const R* point) const
  {
    std::size_t nearest = 0;
    R squaredDistance = 0;
    nanoflann::KNNResultSet<R> result(1);
    result.init(&nearest, &squaredDistance);
    _index.findNeighbors(result, point, nanoflann::SearchParams());
    return static_cast<int>(nearest);
  }
  const R* getVertex(std::size_t i) const { return _coordinates.data() + i * static_cast<std::size_t>(_space); }

  // What the index asks for.
  std::size_t kdtree_get_point_count() const { return _coordinates.size() / static_cast<std::size_t>(_space); }
  R kdtree_get_pt(std::size_t i, std::size_t axis) const { return getVertex(i)[axis]; }
  template <class Box> bool kdtree_get_bbox(Box&) const { return false; }

private:
  using Index =
      nanoflann::KDTreeSingleIndexAdaptor<nanoflann::L2_Simple_Adaptor<R, Tree, R, std::size_t>, Tree, -1, std::size_t>;
  int _space;
  std::vector<R> _coordinates;
  Index _index;
};

template <class T> NearestVertices<T>::NearestVertices(const Shape<T>& shape) : _tree(std::make_unique<Tree>(shape)) {}

template <class T> NearestVertices<T>::~NearestVertices() = default;

template <class T> int NearestVertices<T>::find(const Real<T>* point) const
{
  return _tree->find(point);
}

template <class T> const Real<T>* NearestVertices<T>::getVertex(int i) const
{
  return _tree->getVertex(static_cast<std::size_t>(i));
}

GEOMETRY_INSTANTIATE(NearestVertices)
