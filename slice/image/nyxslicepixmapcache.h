#pragma once

#include "slice/image/nyxslicecache.h"

#include <QPixmap>

/// The pictures of the slices that were used last.
class NYXSlicePixmapCache : public NYXSliceCache<QPixmap>
{
public:
  explicit NYXSlicePixmapCache(int capacity = 100) : NYXSliceCache(capacity) {}
};
