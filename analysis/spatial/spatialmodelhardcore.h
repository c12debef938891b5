#pragma once

#include "analysis/spatial/spatialmodelhardcorebase.h"

/// Objects placed at random one after the other, each clear of obstacles, of the objects placed before and of the
/// border.
template <class CoordType, class PixelType> class SpatialModelHardcore
  : public SpatialModelHardcoreBase<CoordType, PixelType>
{
public:
  /// Where the obstacles are, and the distance that objects keep from each besides their own hardcore distance.
  /// \throw ValueError  a size is negative or not finite
  /// @{
  void setObstaclesPositions(const Vertices<CoordType>& positions) { _obstaclesPositions = positions; }
  void setObstaclesSizes(const Vector<CoordType>& sizes);
  /// @}
  const Vertices<CoordType>& getObstaclesPositions() const { return _obstaclesPositions; }
  const Vector<CoordType>& getObstaclesSizes() const { return _obstaclesSizes; }

  /// After so many attempts to place all objects, drawing fails; 200 at first. \throw ValueError  less than 1
  void setMaxNumAttempts(int numAttempts);
  int getMaxNumAttempts() const { return _maxNumAttempts; }

  using SpatialModelHardcoreBase<CoordType, PixelType>::drawSample;
  /// Vertex i of the pattern is the object of hardcore distance i.
  /// \throw ProgramError  "The number of objects differs from the number of hardcore distances"
  /// \throw UsageError  "Too many unsuccessful attemps to generate a vertex", or obstacles without size or position
  Vertices<CoordType> drawSample(int numObjects, RandomGenerator& generator) const override;

private:
  Vertices<CoordType> _obstaclesPositions;
  Vector<CoordType> _obstaclesSizes;
  int _maxNumAttempts = 200;
};

SPATIAL_EXTERN_TEMPLATE(SpatialModelHardcore)
