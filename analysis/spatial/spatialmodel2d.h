#pragma once

#include "analysis/spatial/spatialmodel.h"

/// A spatial model whose domain can be the inside of a closed curve in the plane.
template <class CoordType, class PixelType> class SpatialModel2D : public SpatialModel<CoordType, PixelType>
{
public:
  /// Makes the inside of a closed curve, of which the first two coordinates count, the domain, in place of any other
  /// boundary. \throw UsageError  as makeBoundary()
  void setBoundary(const Curve<CoordType>& curve);
  /// The same with the index that has been made from the curve.
  void setBoundary(const Curve<CoordType>& curve, std::shared_ptr<const SpatialBoundary<CoordType>> index);
  bool hasBoundary() const { return this->getDomain() && this->getDomain()->getSpace() == 2; }
  /// \throw UsageError  there is no boundary curve
  const Curve<CoordType>& getBoundary() const;

private:
  Curve<CoordType> _curve;
};

SPATIAL_EXTERN_TEMPLATE(SpatialModel2D)
