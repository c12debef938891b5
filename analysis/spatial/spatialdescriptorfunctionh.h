#pragma once

#include "analysis/spatial/spatialdescriptor.h"

/// Function H: every distance between two objects, each pair once.
template <class T> class SpatialDescriptorFunctionH : public SpatialDescriptor<T>
{
public:
  /// Counts the distances as they arise, without keeping them.
  void count(const Vertices<T>& pattern, DistanceCounts<T>& counts) const override;

protected:
  void distances(const Vertices<T>& pattern, Vector<T>& values) const override;
};

GEOMETRY_EXTERN_TEMPLATE_REAL(SpatialDescriptorFunctionH)
