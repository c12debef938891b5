#include "analysis/spatial/spatialmodel.h"

#include "numeric/randomgenerator.h"

#include <cmath>
#include <limits>

unsigned long drawSeed(RandomGenerator& generator)
{
  constexpr long long low = std::numeric_limits<long long>::min(), high = std::numeric_limits<long long>::max();
  return static_cast<unsigned long>(generator.uniformLL(low, high));
}

template <class CoordType, class PixelType>
RandomGenerator& SpatialModel<CoordType, PixelType>::getRandomGenerator() const
{
  if (!_generator)
    throw UsageError("RandomGenerator& SpatialModel<CoordType, PixelType>::getRandomGenerator() const",
                     "There is no random generator");
  return *_generator;
}

template <class CoordType, class PixelType>
void SpatialModel<CoordType, PixelType>::setPixelSize(const Vector<CoordType>& pixelSize)
{
  const auto isLength = [](CoordType x) { return x > 0 && std::isfinite(x); };
  if (pixelSize.getSize() != 2 || !isLength(pixelSize[0]) || !isLength(pixelSize[1]))
    throw ValueError("void SpatialModel<CoordType, PixelType>::setPixelSize(const Vector<CoordType>&)",
                     "The pixel size is not a positive width and height");
  _pixelSize = pixelSize;
  _sampler.setPixelSize(pixelSize[0], pixelSize[1]);
}

template <class CoordType, class PixelType>
void SpatialModel<CoordType, PixelType>::setMask(const PixelMatrix<PixelType>& mask)
{
  std::vector<std::size_t> pixels;
  const std::size_t numPixels = mask.getNumElements();
  for (std::size_t i = 0; i < numPixels; ++i)
    if (mask.data()[i] != PixelType(0)) pixels.push_back(i);
  _sampler.setPixels(std::move(pixels), static_cast<std::size_t>(mask.getSize2()));
  _hasMask = true;
}

template <class CoordType, class PixelType>
void SpatialModel<CoordType, PixelType>::setDomain(std::shared_ptr<const SpatialBoundary<CoordType>> domain)
{
  _domain = std::move(domain);
  _sampler.setBoundary(_domain);
}

template <class CoordType, class PixelType>
Vertices<CoordType> SpatialModel<CoordType, PixelType>::drawSample(int numObjects)
{
  const ProgressStep step(*this, "Drawing", 1);
  return drawSample(numObjects, getRandomGenerator());
}

template <class CoordType, class PixelType>
ShapeSet<CoordType> SpatialModel<CoordType, PixelType>::drawSamples(int numSamples, int numObjects)
{
  const unsigned long seed = drawSeed(getRandomGenerator());
  const ProgressStep step(*this, "Drawing", numSamples);
  ShapeSet<CoordType> samples;
  for (int i = 0; i < numSamples; ++i)
  {
    RandomGenerator generator(seed + static_cast<unsigned long>(i));
    samples.append(drawSample(numObjects, generator));
    this->progress(i + 1);
  }
  return samples;
}

SPATIAL_INSTANTIATE(SpatialModel)
