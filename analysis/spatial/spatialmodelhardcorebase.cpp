#include "analysis/spatial/spatialmodelhardcorebase.h"

#include "geometry/coordinates.h"
#include "numeric/exception.h"

#include <cmath>

template <class CoordType, class PixelType>
void SpatialModelHardcoreBase<CoordType, PixelType>::setHardcoreDistances(const Vector<CoordType>& distances)
{
  for (const CoordType distance : distances)
    if (!(distance >= 0) || !std::isfinite(distance))
      throw ValueError(
          "void SpatialModelHardcoreBase<CoordType, PixelType>::setHardcoreDistances(const Vector<CoordType>&)",
          "A hardcore distance is negative or not finite");
  _hardcoreDistances = distances;
}

template <class CoordType, class PixelType>
bool SpatialModelHardcoreBase<CoordType, PixelType>::valid(const Vertices<CoordType>& pattern) const
{
  return validInterObjectDistances(pattern) && validObjectToBorderDistances(pattern);
}

template <class CoordType, class PixelType>
bool SpatialModelHardcoreBase<CoordType, PixelType>::validInterObjectDistances(const Vertices<CoordType>& pattern) const
{
  requireDistanceForEach(pattern.getSize(),
                         "bool SpatialModelHardcoreBase<CoordType, PixelType>::validInterObjectDistances(const "
                         "Vertices<CoordType>&) const");
  for (int i = 0; i < pattern.getSize(); ++i)
    for (int j = 0; j < i; ++j)
    {
      const CoordType apart = distance(pattern.data(i), pattern.data(j), pattern.getSpace());
      if (!(apart >= _hardcoreDistances[i] + _hardcoreDistances[j])) return false;
    }
  return true;
}

template <class CoordType, class PixelType> bool
SpatialModelHardcoreBase<CoordType, PixelType>::validObjectToBorderDistances(const Vertices<CoordType>& pattern) const
{
  const char* const where = "bool SpatialModelHardcoreBase<CoordType, PixelType>::validObjectToBorderDistances(const "
                            "Vertices<CoordType>&) const";
  requireDistanceForEach(pattern.getSize(), where);
  const SpatialBoundary<CoordType>* const boundary = this->getDomain().get();
  if (!boundary) return true;
  if (pattern.getSpace() != boundary->getSpace())
    throw SizeError(where, "The pattern has another dimension than the boundary");
  for (int i = 0; i < pattern.getSize(); ++i)
    if (!boundary->contains(pattern.data(i)) || !(boundary->distance(pattern.data(i)) >= _hardcoreDistances[i]))
      return false;
  return true;
}

template <class CoordType, class PixelType>
void SpatialModelHardcoreBase<CoordType, PixelType>::requireDistanceForEach(int numObjects, const char* where) const
{
  if (numObjects != _hardcoreDistances.getSize())
    throw ProgramError(where, "The number of objects differs from the number of hardcore distances");
}

SPATIAL_INSTANTIATE(SpatialModelHardcoreBase)
