#pragma once

#include "image/image.h"
#include "slice/image/nyxslicecache.h"

/// The images of the slices that were used last.
class NYXSliceImageCache : public NYXSliceCache<Image>
{
public:
  explicit NYXSliceImageCache(int capacity = 100) : NYXSliceCache(capacity) {}
};
