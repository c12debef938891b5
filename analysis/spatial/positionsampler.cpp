#include "analysis/spatial/positionsampler.h"

#include "numeric/exception.h"
#include "numeric/randomgenerator.h"

template <class T> void PositionSampler<T>::setPixels(std::vector<std::size_t> pixels, std::size_t numColumns)
{
  _pixels = std::move(pixels);
  _numColumns = numColumns;
}

template <class T> void PositionSampler<T>::setPixelSize(T width, T height)
{
  _pixelWidth = width;
  _pixelHeight = height;
}

template <class T> BoundingBox<T> PositionSampler<T>::getBoundingBox() const
{
  if (_boundary) return _boundary->getBoundingBox();
  BoundingBox<T> box(2);
  for (const std::size_t pixel : _pixels)
    for (const std::size_t corner : {0, 1})
      box.add(Vector<T>{static_cast<T>(pixel % _numColumns + corner) * _pixelWidth,
                        static_cast<T>(pixel / _numColumns + corner) * _pixelHeight});
  return box;
}

template <class T> void PositionSampler<T>::requireDomain(const char* where) const
{
  if (!_boundary && _pixels.empty())
    throw UsageError(where, "There is no domain: neither a boundary nor a mask with an admissible pixel");
}

template <class T>
void PositionSampler<T>::draw(RandomGenerator& generator, T* position, const ProgressSubject& subject) const
{
  const char* const where = "void PositionSampler<T>::draw(RandomGenerator&, T*, const ProgressSubject&) const";
  constexpr long maxDraws = 10000000, drawsBetweenLooks = 1024;
  if (!_boundary) return drawInPixel(generator, position);
  const Vector<T>&low = _boundary->getBoundingBox().getMinimum(), &high = _boundary->getBoundingBox().getMaximum();
  for (long i = 1; i <= maxDraws; ++i)
  {
    for (int k = 0; k < low.getSize(); ++k)
      position[k] = low[k] + (high[k] - low[k]) * static_cast<T>(generator.uniformLF());
    if (_boundary->contains(position)) return;
    if (i % drawsBetweenLooks == 0) subject.throwIfCancelled(where);
  }
  throw UsageError(where, "No position was found inside the boundary");
}

template <class T> void PositionSampler<T>::drawInPixel(RandomGenerator& generator, T* position) const
{
  const std::size_t pixel = _pixels[generator.uniformL(_pixels.size())];
  position[0] = (static_cast<T>(pixel % _numColumns) + static_cast<T>(generator.uniformLF())) * _pixelWidth;
  position[1] = (static_cast<T>(pixel / _numColumns) + static_cast<T>(generator.uniformLF())) * _pixelHeight;
}

GEOMETRY_INSTANTIATE_REAL(PositionSampler)
