#include "analysis/spatial/spatialdescriptorfunctionf.h"

#include "geometry/kdtree.h"
#include "numeric/exception.h"

#include <cmath>

template <class T> void SpatialDescriptorFunctionF<T>::setEvaluationPositions(const Vertices<T>& positions)
{
  _positions = positions;
  const T* const points = _positions.data();
  _coordinates.assign(points, points + std::ptrdiff_t(positions.getSize()) * positions.getSpace());
}

template <class T> void SpatialDescriptorFunctionF<T>::distances(const Vertices<T>& pattern, Vector<T>& values) const
{
  values.setSize(pattern.getSize() > 0 ? _positions.getSize() : 0);
  if (values.isEmpty()) return;
  if (pattern.getSpace() != _positions.getSpace())
    throw SizeError("void SpatialDescriptorFunctionF<T>::distances(const Vertices<T>&, Vector<T>&) const",
                    "The evaluation positions have another dimension than the pattern");
  const T* const points = pattern.data();
  const KdTree<T> tree(pattern.getSpace(), {points, points + std::ptrdiff_t(pattern.getSize()) * pattern.getSpace()});
  int i = 0;
  for (const Neighbour<T>& neighbour : tree.nearest(_coordinates)) values[i++] = std::sqrt(neighbour.squaredDistance);
}

GEOMETRY_INSTANTIATE_REAL(SpatialDescriptorFunctionF)
