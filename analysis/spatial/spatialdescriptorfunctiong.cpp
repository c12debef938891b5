#include "analysis/spatial/spatialdescriptorfunctiong.h"

#include "analysis/spatial/nearestdistances.h"

template <class T> void SpatialDescriptorFunctionG<T>::distances(const Vertices<T>& pattern, Vector<T>& values) const
{
  values.setSize(pattern.getSize() > 1 ? pattern.getSize() : 0);
  if (values.isEmpty()) return;
  NearestDistances<T>(pattern).toNearestOther(values.data());
}

GEOMETRY_INSTANTIATE_REAL(SpatialDescriptorFunctionG)
