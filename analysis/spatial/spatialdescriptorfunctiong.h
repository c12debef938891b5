#pragma once

#include "analysis/spatial/spatialdescriptor.h"

/// Function G: for each object the distance to its nearest other object. A single object has none.
template <class T> class SpatialDescriptorFunctionG : public SpatialDescriptor<T>
{
protected:
  void distances(const Vertices<T>& pattern, Vector<T>& values) const override;
};

GEOMETRY_EXTERN_TEMPLATE_REAL(SpatialDescriptorFunctionG)
