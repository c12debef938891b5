#pragma once

#include "analysis/spatial/positionsampler.h"
#include "analysis/spatial/spatialtypes.h"
#include "geometry/shapeset.h"
#include "image/pixelmatrix.h"
#include "numeric/progresssubject.h"

class RandomGenerator;

/// A random model of where objects lie in a domain: inside a boundary or, without one, in the admissible pixels of a
/// mask. Drawing can be cancelled from another thread.
template <class CoordType, class PixelType> class SpatialModel : public virtual ProgressSubject
{
public:
  /// The generator is borrowed.
  void setRandomGenerator(RandomGenerator& generator) { _generator = &generator; }
  /// \throw UsageError  there is none
  RandomGenerator& getRandomGenerator() const;

  /// Width and height of a pixel of the mask; (1, 1) at first. \throw ValueError  these are not two positive numbers
  void setPixelSize(const Vector<CoordType>& pixelSize);
  const Vector<CoordType>& getPixelSize() const { return _pixelSize; }
  /// Positions are admissible in the pixels that are not 0. The mask is not kept.
  void setMask(const PixelMatrix<PixelType>& mask);
  bool hasMask() const { return _hasMask; }

  /// Makes the inside of a closed mesh the domain, in place of any other boundary. \throw UsageError  as makeBoundary()
  void setTriMesh(const TriMesh<CoordType>& mesh) { setDomain(makeBoundary(mesh)); }
  /// The boundary in use, of whatever kind, with its index; nullptr when there is none.
  const std::shared_ptr<const SpatialBoundary<CoordType>>& getDomain() const { return _domain; }
  /// The box around the domain; empty when there is none.
  BoundingBox<CoordType> getBoundingBox() const { return _sampler.getBoundingBox(); }

  /// A random pattern of so many objects. \throw UsageError  there is no domain or no generator
  /// \throw Cancelled  this model, or the step of which it is a part, was cancelled
  virtual Vertices<CoordType> drawSample(int numObjects);
  /// The same from another generator. Several threads may call it at once, each with a generator of its own.
  virtual Vertices<CoordType> drawSample(int numObjects, RandomGenerator& generator) const = 0;
  /// So many patterns: sample i is drawn from RandomGenerator(seed + i), the seed being one number of this model's
  /// generator.
  ShapeSet<CoordType> drawSamples(int numSamples, int numObjects);

protected:
  void setDomain(std::shared_ptr<const SpatialBoundary<CoordType>> domain);
  const PositionSampler<CoordType>& getSampler() const { return _sampler; }

private:
  RandomGenerator* _generator = nullptr;
  Vector<CoordType> _pixelSize = {1, 1};
  bool _hasMask = false;
  std::shared_ptr<const SpatialBoundary<CoordType>> _domain;
  PositionSampler<CoordType> _sampler;
};

/// The seed of a set of samples: 64 bits of a generator.
unsigned long drawSeed(RandomGenerator& generator);

SPATIAL_EXTERN_TEMPLATE(SpatialModel)
