#pragma once

#include "image/pixelmatrixprocessing.h"
#include "image/voxelmatrixprocessing.h"

/// Replaces the elements that are not 0 by the number of their connected component, see ConnectedComponents: pixels
/// connect through common sides, voxels through common faces.
///
/// The labels are the final ones from the start: provisional ones live outside the matrix, which could not always hold
/// them. Cancelled before the numbers are known, the matrix therefore stays as it is; later, it is labelled as far as
/// the step came.
template <class T> class ComponentLabelling : public PixelMatrixProcessing<T>, public VoxelMatrixProcessing<T>
{
public:
  /// \throw RangeError  T cannot hold the number of components; the matrix stays
  void apply(PixelMatrix<T>& matrix) override;
  void apply(VoxelMatrix<T>& matrix) override;

  /// Number of components that the last apply() found; 0 when it was cancelled before it knew or failed.
  long getNumLabels() const { return _numLabels; }

private:
  template <class Matrix> void label(Matrix& matrix);

  long _numLabels = 0;
};

IMAGE_EXTERN_TEMPLATE(ComponentLabelling)
