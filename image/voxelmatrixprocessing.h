#pragma once

#include "image/voxelmatrix.h"
#include "numeric/progresssubject.h"

/// A step that changes a volume in place, reports its progress and can be cancelled.
/// A cancelled step returns early and leaves the volume as far as it came, unless it says otherwise.
template <class T> class VoxelMatrixProcessing : public virtual ProgressSubject
{
public:
  virtual void apply(VoxelMatrix<T>& matrix) = 0;
};
