#include "analysis/spatial/spatialmodelcompleterandomness.h"

#include "numeric/exception.h"

template <class CoordType, class PixelType> Vertices<CoordType>
SpatialModelCompleteRandomness<CoordType, PixelType>::drawSample(int numObjects, RandomGenerator& generator) const
{
  const char* const where =
      "Vertices<CoordType> SpatialModelCompleteRandomness<CoordType, PixelType>::drawSample(int, RandomGenerator&)";
  if (numObjects < 0) throw ValueError(where, "The number of objects is negative");
  const PositionSampler<CoordType>& sampler = this->getSampler();
  sampler.requireDomain(where);
  constexpr int objectsBetweenLooks = 1024;
  const int space = sampler.getSpace();
  Vertices<CoordType> pattern(space, numObjects);
  CoordType* const points = pattern.data();
  for (std::ptrdiff_t i = 0; i < numObjects; ++i)
  {
    if (i % objectsBetweenLooks == 0) this->throwIfCancelled(where);
    sampler.draw(generator, points + i * space, *this);
  }
  return pattern;
}

SPATIAL_INSTANTIATE(SpatialModelCompleteRandomness)
