// Images stay in memory as long as the share allows.

#include "counting_server.h"

#include "image/image.h"
#include "model/stack.h"
#include "model/stackslice.h"

#include <gmock/gmock.h>

namespace
{
using testing::ElementsAre;

constexpr std::int64_t mebibyte = 1 << 20;

/// Shows one plane after another, each until it is loaded; false when the share is exceeded on the way.
bool browse(CountingServer& server, const Planes& planes, int first, int last)
{
  bool isBelow = true;
  for (int k = first; k <= last; ++k)
  {
    PlaneProxy proxy(planes[k]);
    server.attachProxy(proxy);
    const auto isLoaded = [&]
    {
      isBelow &= server.numHeldBytes() <= server.memory / 100 * NYXPreferences::getPercentMemoryUsage();
      return isIdle(server);
    };
    if (!waitUntil(isLoaded)) return false;
  }
  return isBelow;
}
} // namespace

TEST(ImageServerMemory, NeverHoldsMoreThanTheShare)
{
  const struct
  {
    const char* name;
    int size;
    std::int64_t memory;
    int percent;
    int numLoaded; // in the end: images with pyramids that fit
  } cases[] = {{"images of one MiB, 5 MiB", 1024, 10 * mebibyte, 50, 3},
               {"everything fits", 1024, 64 * mebibyte, 50, 12},
               {"images far below a MiB", 128, 128 * 128 * 10, 50, 3},
               {"all memory", 1024, 4 * mebibyte, 100, 3}};
  for (const auto& c : cases)
  {
    SCOPED_TRACE(c.name);
    const Planes planes(c.size, c.size, 12);
    const MemoryShare share(c.percent);
    CountingServer server;
    server.memory = c.memory;
    EXPECT_TRUE(browse(server, planes, 0, 11));
    EXPECT_EQ(server.getNumLoaded(), c.numLoaded);
  }
}

TEST(ImageServerMemory, DeletesTheOldestThatAreNotShown)
{
  const Planes planes(1024, 1024, 5);
  const MemoryShare share(50);
  CountingServer server;
  server.memory = 12 * mebibyte; // four images with pyramids
  PlaneProxy shown(planes[0]);
  server.attachProxy(shown);
  EXPECT_TRUE(browse(server, planes, 1, 4));
  EXPECT_TRUE(shown.hasImage());
  EXPECT_TRUE(browse(server, planes, 2, 4)); // still there
  EXPECT_THAT(server.log.getBegun(), ElementsAre(0, 1, 2, 3, 4));
  EXPECT_TRUE(browse(server, planes, 1, 1));
  EXPECT_THAT(server.log.getBegun(), ElementsAre(0, 1, 2, 3, 4, 1));
}

TEST(ImageServerMemory, ShowsWhatIsAskedForAlsoBeyondTheShare)
{
  const Planes planes(1024, 1024, 2);
  const MemoryShare share(50);
  CountingServer server;
  server.memory = mebibyte;
  PlaneProxy a(planes[0]), b(planes[1]);
  server.attachProxy(a);
  server.attachProxy(b);
  ASSERT_TRUE(waitUntil([&] { return isIdle(server); }));
  EXPECT_TRUE(a.hasImage() && b.hasImage());
}

TEST(ImageServerMemory, PrefetchesWhereThereIsRoom)
{
  const Planes planes(1024, 1024, 4);
  Stack stack;
  for (int k = 0; k < 4; ++k)
  {
    auto slice = std::make_unique<StackSlice>();
    slice->setImageSource(planes[k]);
    stack.addSlice(std::move(slice));
  }
  const MemoryShare share(50);
  CountingServer server;
  server.memory = 8 * mebibyte; // three images
  NYXSliceImageProxy shown(stack.getSlice(0));
  server.attachProxy(shown);
  server.prefetch(stack.getSlice(1));
  server.prefetch(stack.getSlice(2));
  server.prefetch(nullptr);
  ASSERT_TRUE(waitUntil([&] { return isIdle(server); }));
  EXPECT_THAT(server.log.getEnded(), ElementsAre(0, 2, 1));
  server.prefetch(stack.getSlice(3)); // another one would have to go
  EXPECT_TRUE(isIdle(server));
  EXPECT_EQ(server.getNumLoaded(), 3);
  NYXSliceImageProxy next(stack.getSlice(1));
  server.attachProxy(next);
  EXPECT_TRUE(next.hasImage());
}
