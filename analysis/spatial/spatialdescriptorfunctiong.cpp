#include "analysis/spatial/spatialdescriptorfunctiong.h"

#include "geometry/kdtree.h"

#include <cmath>

template <class T> void SpatialDescriptorFunctionG<T>::distances(const Vertices<T>& pattern, Vector<T>& values) const
{
  values.setSize(pattern.getSize() > 1 ? pattern.getSize() : 0);
  if (values.isEmpty()) return;
  const T* const points = pattern.data();
  const KdTree<T> tree(pattern.getSpace(), {points, points + std::ptrdiff_t(pattern.getSize()) * pattern.getSpace()});
  int i = 0;
  for (const Neighbour<T>& neighbour : tree.nearestOthers()) values[i++] = std::sqrt(neighbour.squaredDistance);
}

GEOMETRY_INSTANTIATE_REAL(SpatialDescriptorFunctionG)
