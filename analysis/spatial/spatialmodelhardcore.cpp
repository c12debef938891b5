#include "analysis/spatial/spatialmodelhardcore.h"

#include "analysis/spatial/hardcoreplacement.h"
#include "numeric/exception.h"

#include <cmath>
#include <iostream>

template <class CoordType, class PixelType>
void SpatialModelHardcore<CoordType, PixelType>::setObstaclesSizes(const Vector<CoordType>& sizes)
{
  for (const CoordType size : sizes)
    if (!(size >= 0) || !std::isfinite(size))
      throw ValueError("void SpatialModelHardcore<CoordType, PixelType>::setObstaclesSizes(const Vector<CoordType>&)",
                       "The size of an obstacle is negative or not finite");
  _obstaclesSizes = sizes;
}

template <class CoordType, class PixelType>
void SpatialModelHardcore<CoordType, PixelType>::setMaxNumAttempts(int numAttempts)
{
  if (numAttempts < 1)
    throw ValueError("void SpatialModelHardcore<CoordType, PixelType>::setMaxNumAttempts(int)",
                     "There must be an attempt");
  _maxNumAttempts = numAttempts;
}

template <class CoordType, class PixelType> Vertices<CoordType>
SpatialModelHardcore<CoordType, PixelType>::drawSample(int numObjects, RandomGenerator& generator) const
{
  const char* const where =
      "Vertices<CoordType> SpatialModelHardcore<CoordType, PixelType>::drawSample(int, RandomGenerator&) const";
  this->requireDistanceForEach(numObjects, where);
  const PositionSampler<CoordType>& sampler = this->getSampler();
  sampler.requireDomain(where);
  const int numObstacles = _obstaclesPositions.getSize();
  if (numObstacles != _obstaclesSizes.getSize())
    throw UsageError(where, "The number of obstacles differs from the number of their sizes");
  if (numObstacles > 0 && _obstaclesPositions.getSpace() != sampler.getSpace())
    throw UsageError(where, "The obstacles have another dimension than the domain");
  HardcorePlacement<CoordType> placement(sampler, this->getHardcoreDistances(), _obstaclesPositions, _obstaclesSizes);
  const int numAttempts = placement.cannotFit() ? 0 : _maxNumAttempts;
  for (int i = 0; i < numAttempts; ++i)
    if (const auto pattern = placement.attempt(generator, *this)) return *pattern;
  std::cerr << "!!!!!!!!!!! ERROR !!!!!!!!!!\n";
  throw UsageError(where, "Too many unsuccessful attemps to generate a vertex");
}

SPATIAL_INSTANTIATE(SpatialModelHardcore)
