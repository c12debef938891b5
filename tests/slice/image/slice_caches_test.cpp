// What was used last stays in the caches of a stack.

#include "model/stackslice.h"
#include "slice/image/nyxrawimagecache.h"
#include "slice/image/nyxsliceimagecache.h"
#include "slice/image/nyxslicepixmapcache.h"

#include <gtest/gtest.h>

namespace
{
/// Inserts an object for each of the slices, using the first one again and again; gives how many are still there.
template <class Cache, class Make>
int numKept(Cache& cache, const std::vector<std::unique_ptr<StackSlice>>& slices, const Make& make)
{
  for (const auto& slice : slices)
  {
    cache.insert(slice.get(), make());
    cache.find(slices.front().get());
  }
  int count = 0;
  for (const auto& slice : slices) count += cache.find(slice.get()) ? 1 : 0;
  return count;
}
} // namespace

TEST(SliceCaches, KeepWhatWasUsedLast)
{
  std::vector<std::unique_ptr<StackSlice>> slices;
  for (int i = 0; i < 130; ++i) slices.push_back(std::make_unique<StackSlice>());
  const auto makeImage = [] { return std::make_unique<Image>(2, 2, 8); };
  NYXSlicePixmapCache pixmaps;
  NYXSliceImageCache images, none(0);
  NYXRawImageCache raw;
  EXPECT_EQ(numKept(pixmaps, slices, [] { return std::make_unique<QPixmap>(2, 2); }), 100);
  EXPECT_EQ(numKept(images, slices, makeImage), 100);
  EXPECT_EQ(numKept(raw, slices, makeImage), 1);
  EXPECT_EQ(numKept(none, slices, makeImage), 0);
  EXPECT_TRUE(images.find(slices.front().get())); // used again and again
  EXPECT_FALSE(images.find(slices[1].get()));     // the one used longest ago
  EXPECT_TRUE(raw.find(slices.back().get()));
  images.insert(slices.front().get(), std::make_unique<Image>(5, 5, 8));
  EXPECT_EQ(images.find(slices.front().get())->getWidth(), 5);
  EXPECT_TRUE(images.find(slices[31].get())); // nobody had to go
  images.remove(slices.front().get());
  EXPECT_FALSE(images.find(slices.front().get()));
}
