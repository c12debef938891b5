#pragma once

#include "analysis/spatial/spatialmodel2d.h"

/// Complete spatial randomness: the objects lie uniformly in the domain, independently of each other.
template <class CoordType, class PixelType> class SpatialModelCompleteRandomness
  : public SpatialModel2D<CoordType, PixelType>
{
public:
  using SpatialModel2D<CoordType, PixelType>::drawSample;
  /// \throw ValueError  the number is negative
  Vertices<CoordType> drawSample(int numObjects, RandomGenerator& generator) const override;
};

SPATIAL_EXTERN_TEMPLATE(SpatialModelCompleteRandomness)
