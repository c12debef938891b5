#pragma once

#include "analysis/spatial/spatialmodel2d.h"

/// Objects that keep their distance: each has a hardcore distance from the border, and any two keep the sum of theirs.
template <class CoordType, class PixelType> class SpatialModelHardcoreBase : public SpatialModel2D<CoordType, PixelType>
{
public:
  /// One distance per object. \throw ValueError  a distance is negative or not finite
  void setHardcoreDistances(const Vector<CoordType>& distances);
  const Vector<CoordType>& getHardcoreDistances() const { return _hardcoreDistances; }

  // Object i of a pattern has hardcore distance i. \throw ProgramError  the numbers differ
  /// Whether both that follow hold.
  bool valid(const Vertices<CoordType>& pattern) const;
  /// Whether any two objects are at least the sum of their hardcore distances apart.
  bool validInterObjectDistances(const Vertices<CoordType>& pattern) const;
  /// Whether each object lies inside the boundary, at least its hardcore distance from it. True without a boundary.
  /// \throw SizeError  the pattern has another dimension
  bool validObjectToBorderDistances(const Vertices<CoordType>& pattern) const;

protected:
  /// \throw ProgramError  "The number of objects differs from the number of hardcore distances"
  void requireDistanceForEach(int numObjects, const char* where) const;

private:
  Vector<CoordType> _hardcoreDistances;
};

SPATIAL_EXTERN_TEMPLATE(SpatialModelHardcoreBase)
