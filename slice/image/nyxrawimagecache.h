#pragma once

#include "slice/image/nyxsliceimagecache.h"

/// The image of the slice that was used last, as it was read.
class NYXRawImageCache : public NYXSliceImageCache
{
public:
  NYXRawImageCache() : NYXSliceImageCache(1) {}
};
