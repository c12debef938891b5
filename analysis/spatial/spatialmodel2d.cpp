#include "analysis/spatial/spatialmodel2d.h"

#include "numeric/exception.h"

template <class CoordType, class PixelType>
void SpatialModel2D<CoordType, PixelType>::setBoundary(const Curve<CoordType>& curve)
{
  setBoundary(curve, makeBoundary(curve));
}

template <class CoordType, class PixelType>
void SpatialModel2D<CoordType, PixelType>::setBoundary(const Curve<CoordType>& curve,
                                                       std::shared_ptr<const SpatialBoundary<CoordType>> index)
{
  _curve = curve;
  this->setDomain(std::move(index));
}

template <class CoordType, class PixelType>
const Curve<CoordType>& SpatialModel2D<CoordType, PixelType>::getBoundary() const
{
  if (!hasBoundary())
    throw UsageError("const Curve<CoordType>& SpatialModel2D<CoordType, PixelType>::getBoundary() const",
                     "There is no boundary curve");
  return _curve;
}

SPATIAL_INSTANTIATE(SpatialModel2D)
