#pragma once

#include "analysis/spatial/spatialboundary.h"
#include "numeric/progresssubject.h"

#include <cstddef>
#include <memory>
#include <vector>

class RandomGenerator;

/// Draws positions that are uniformly distributed in a domain: inside a boundary or, without one, in the pixels of a
/// mask.
template <class T> class PositionSampler
{
public:
  void setBoundary(std::shared_ptr<const SpatialBoundary<T>> boundary) { _boundary = std::move(boundary); }
  const SpatialBoundary<T>* getBoundary() const { return _boundary.get(); }
  /// Pixels by their numbers, row after row, in a mask of so many columns.
  void setPixels(std::vector<std::size_t> pixels, std::size_t numColumns);
  bool hasPixels() const { return !_pixels.empty(); }
  void setPixelSize(T width, T height);

  /// 2 or 3.
  int getSpace() const { return _boundary ? _boundary->getSpace() : 2; }
  /// The box around the domain; empty when there is none.
  BoundingBox<T> getBoundingBox() const;
  /// \throw UsageError  there is neither a boundary nor a pixel
  void requireDomain(const char* where) const;

  /// Inside a boundary: uniform in its bounding box, x first, and drawn anew until the boundary contains it. Else
  /// uniform in a pixel: that of row i and column j reaches from (j, i) to (j + 1, i + 1) times the pixel size.
  /// \throw UsageError  none of ten million positions was inside   \throw Cancelled  the subject was
  void draw(RandomGenerator& generator, T* position, const ProgressSubject& subject) const;

private:
  void drawInPixel(RandomGenerator& generator, T* position) const;

  std::shared_ptr<const SpatialBoundary<T>> _boundary;
  std::vector<std::size_t> _pixels;
  std::size_t _numColumns = 1;
  T _pixelWidth = 1;
  T _pixelHeight = 1;
};

GEOMETRY_EXTERN_TEMPLATE_REAL(PositionSampler)
