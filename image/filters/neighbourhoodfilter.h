#pragma once

#include "image/filters/sliceview.h"
#include "image/pixelmatrixprocessing.h"
#include "image/voxelmatrixprocessing.h"

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

protected:
  /// Filters an image that is not empty.
  virtual void filter(const SliceView<T>& image) = 0;
};

/// The largest distance of a neighbour that filters take; the lists of a neighbourhood's lines grow with it.
constexpr int largestRadius = 100'000;
