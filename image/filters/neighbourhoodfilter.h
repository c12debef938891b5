#pragma once

#include "image/filters/sliceview.h"
#include "image/pixelmatrixprocessing.h"
#include "image/voxelmatrixprocessing.h"

#include <algorithm>

/// A step that replaces every element by what a filter makes of its neighbourhood before the step. Beyond the border
/// the image goes on with its outermost elements.
///
/// The result comes in place: a filter goes through the slices with sweepSlices(), which keeps those it still needs,
/// not a second image. A cancelled filter leaves the slices filtered as far as it came.
template <class T> class NeighbourhoodFilter : public PixelMatrixProcessing<T>, public VoxelMatrixProcessing<T>
{
public:
  void apply(PixelMatrix<T>& matrix) override
  {
    if (matrix.getNumElements() > 0) filter(SliceView<T>(matrix));
  }
  void apply(VoxelMatrix<T>& matrix) override
  {
    if (matrix.getNumVoxels() > 0) filter(SliceView<T>(matrix));
  }

  /// Bytes that apply() will take beside the volume, but for a few slices per thread.
  double workingMemory(VoxelMatrix<T>& matrix) const
  {
    const SliceView<T> image(matrix);
    const double sliceSize = static_cast<double>(image.width()) * image.numLines();
    return sliceSize * bytesPerPixelKept() * std::min(numSlicesKept(image), image.numSlices());
  }

protected:
  /// The largest number of slices that are kept at a time when there are enough of them.
  virtual int numSlicesKept(const SliceView<T>& image) const = 0;
  /// Size of an element that is kept.
  virtual int bytesPerPixelKept() const = 0;
  /// Filters an image that is not empty.
  virtual void filter(const SliceView<T>& image) = 0;
};

/// The largest distance of a neighbour that filters take; the lists of a neighbourhood's lines grow with it.
constexpr int largestRadius = 100'000;
