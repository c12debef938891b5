#pragma once

#include "image/image.h"
#include "numeric/progresssubject.h"

/// A step that changes an image in place, reports its progress and can be cancelled.
class ImageProcessing : public virtual ProgressSubject
{
public:
  virtual void apply(Image& image) = 0;
  /// The same into a second image. When the step throws, the target stays.
  virtual void apply(Image& target, const Image& source)
  {
    Image changed(source);
    apply(changed);
    target.swap(changed);
  }
};
