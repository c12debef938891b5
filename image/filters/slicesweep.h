#pragma once

#include "image/filters/neighbourhoodfilter.h"
#include "numeric/progresssubject.h"

#include <algorithm>
#include <limits>
#include <omp.h>
#include <vector>

/// Least number of elements from `size` on that fills an odd number of cache lines, so that elements that far apart do
/// not compete for the same places in the cache.
template <class A> int spreadSize(int size)
{
  constexpr int lineSize = 64 / sizeof(A);
  return ((size + lineSize - 1) / lineSize | 1) * lineSize;
}

/// The slices around those that a sweep makes, prepared by the filter: intermediate values of type A.
template <class A> class PreparedSlices
{
public:
  PreparedSlices(int numSlices, int numLines, int width, int capacity)
    : _slices(numLines | 1, spreadSize<A>(width), capacity), _numSlices(numSlices)
  {
  }

  /// Line of a slice; slices beyond either end are the outermost ones.
  A* line(int slice, int line)
  {
    return _slices[std::clamp(slice, 0, _numSlices - 1) % _slices.getSize3()][line].data();
  }

private:
  VoxelMatrix<A> _slices; // slice s in plane s modulo their number
  int _numSlices;
};

constexpr int largestTileWidth = 512;

/// \throw SizeError  there is no room in an int for the neighbours beyond both ends of an axis
template <class T> void requireSmallSides(const SliceView<T>& image)
{
  constexpr int largestSize = std::numeric_limits<int>::max() - 2 * largestRadius - 2 * largestTileWidth;
  if (std::max({image.width(), image.numLines(), image.numSlices()}) > largestSize)
    throw SizeError("void requireSmallSides(const SliceView<T>&)", "The image is too long to be filtered");
}

/// Number of columns to work on at a time, so that as many lines of them stay in the cache.
template <class A> int tileWidthFor(long numLines)
{
  constexpr long cacheSize = 80'000, smallestTileWidth = 64;
  const long fitting = cacheSize / (static_cast<long>(sizeof(A)) * numLines);
  return static_cast<int>(
      std::clamp<long>(fitting / smallestTileWidth * smallestTileWidth, smallestTileWidth, largestTileWidth));
}

/// Replaces an image slice by slice, on all OpenMP threads, by values that depend on slices up to `radius` apart.
///
/// prepare(slice, thread, prepared) computes a slice's intermediate lines from the image; it may read no other slice
/// and write only prepared.line(slice, ...). combine(first, count, line, begin, end, thread, prepared) then computes
/// columns begin to end - 1 of this line of slices first to first + count - 1 of the image, from prepared slices only.
/// Slices are made in batches of up to `batch`; memory is taken for batch + 2 radius prepared ones. `thread` is below
/// omp_get_max_threads(). The functions must not throw.
template <class A, class T, class Prepare, class Combine>
void sweepSlices(const SliceView<T>& image, int radius, int batch, ProgressSubject& subject, const Prepare& prepare,
                 const Combine& combine)
{
  const int tileWidth = tileWidthFor<A>(2L * batch + 2L * radius);
  const int numSlices = image.numSlices(), numTiles = (image.width() + tileWidth - 1) / tileWidth;
  const auto capacity = static_cast<int>(std::min<long>(numSlices, batch + 2L * radius));
  PreparedSlices<A> prepared(numSlices, image.numLines(), image.width(), capacity);
  const ProgressStep step(subject, "Filtering", numSlices);
  int numPrepared = 0;
  for (int first = 0; first < numSlices && !subject.isCancelled(); first += batch)
  {
    const int count = std::min(batch, numSlices - first);
    const auto lastNeeded = static_cast<int>(std::min<long>(numSlices, static_cast<long>(first) + count + radius));
#pragma omp parallel
    {
      const int thread = omp_get_thread_num();
#pragma omp for schedule(dynamic)
      for (int slice = numPrepared; slice < lastNeeded; ++slice) prepare(slice, thread, prepared);
#pragma omp for schedule(dynamic, 4) collapse(2)
      for (int line = 0; line < image.numLines(); ++line)
        for (int tile = 0; tile < numTiles; ++tile)
          combine(first, count, line, tile * tileWidth, std::min(image.width(), (tile + 1) * tileWidth), thread,
                  prepared);
    }
    numPrepared = lastNeeded;
    subject.progress(first + count);
  }
}
