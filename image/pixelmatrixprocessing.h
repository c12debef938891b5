#pragma once

#include "image/pixelmatrix.h"
#include "numeric/progresssubject.h"

/// A step that changes a plane in place, reports its progress and can be cancelled.
/// A cancelled step returns early and leaves the plane as far as it came, unless it says otherwise.
template <class T> class PixelMatrixProcessing : public virtual ProgressSubject
{
public:
  virtual void apply(PixelMatrix<T>& matrix) = 0;
};
