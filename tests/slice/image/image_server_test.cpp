// How images are loaded: once per source, in order, and no longer than somebody waits for them.

#include "counting_server.h"

#include "app/core/nyxeventserver.h"
#include "app/core/nyxstack.h"
#include "image/image.h"
#include "image/imagesourcefile.h"
#include "model/stackslice.h"
#include "tests/support/errors.h"
#include "tests/support/temporaryfolder.h"

#include <gmock/gmock.h>

namespace
{
using testing::ElementsAre;

std::vector<std::pair<int, int>> sizesOf(const NYXImageProxy& proxy)
{
  std::vector<std::pair<int, int>> sizes;
  for (int i = 0; i < proxy.getNumImages(); ++i)
    sizes.emplace_back(proxy.getImage(i).getWidth(), proxy.getImage(i).getHeight());
  return sizes;
}
} // namespace

TEST(ImageServer, ReadsASourceOnceForAllProxies)
{
  const Planes planes(100, 130, 2);
  CountingServer server;
  PlaneProxy a(planes[1]), b(planes[1]), other(planes[0]), late(planes[1]);
  EXPECT_EQ(a.key(), b.key());
  EXPECT_NE(a.key(), other.key());
  EXPECT_EQ(a.getOriginalImageSize(), QSize(130, 100));
  int numChanges = 0;
  QObject::connect(&a, &NYXImageProxy::imageChanged, [&numChanges] { ++numChanges; });
  server.attachProxy(a);
  server.attachProxy(b);
  ASSERT_TRUE(waitUntil([&] { return isIdle(server); }));
  EXPECT_THAT(server.log.getBegun(), ElementsAre(1));
  EXPECT_THAT(sizesOf(a), ElementsAre(std::pair(130, 100), std::pair(65, 50)));
  EXPECT_EQ(numChanges, 2);
  server.attachProxy(late); // gets all at once
  for (int level = 0; level < 2; ++level)
  {
    EXPECT_EQ(&a.getImage(level), &b.getImage(level));
    EXPECT_EQ(&a.getImage(level), &late.getImage(level));
    EXPECT_EQ(a.getImage(level).getLine(49)[64], 1);
  }
  server.detachProxy(a);
  EXPECT_EQ(a.getNumImages(), 0);
  EXPECT_EQ(server.getNumLoaded(), 1);
  EXPECT_EQ(late.getNumImages(), 2);
}

TEST(ImageServer, ReducesWhatIsNotSmallerThan64Pixels)
{
  const struct
  {
    int width, height;
    QSize baseSize;
    std::vector<std::pair<int, int>> sizes;
  } cases[] = {{63, 200, {0, 0}, {{63, 200}}},
               {200, 63, {0, 0}, {{200, 63}}},
               {64, 65, {0, 0}, {{64, 65}, {32, 32}}},
               {129, 260, {0, 0}, {{129, 260}, {64, 130}, {32, 65}}},
               {130, 100, {50, 50}, {{130, 100}, {50, 38}}},
               {3, 900, {50, 50}, {{3, 900}, {1, 50}}}};
  for (const auto& c : cases)
  {
    CountingServer server;
    server.setBaseSize(c.baseSize);
    PlaneProxy proxy(Planes(c.height, c.width, 1)[0]);
    server.attachProxy(proxy);
    ASSERT_TRUE(waitUntil([&] { return isIdle(server); }));
    EXPECT_EQ(sizesOf(proxy), c.sizes);
  }
}

TEST(ImageServer, PicksTheLevelBeforeTheFirstThatIsSmallEnough)
{
  const Planes planes(256, 256, 1); // levels of 256, 128, 64, 32
  CountingServer server;
  PlaneProxy proxy(planes[0]);
  server.attachProxy(proxy);
  ASSERT_TRUE(waitUntil([&] { return isIdle(server); }));
  const std::pair<float, int> cases[] = {{4, 0},     {1, 0},    {0.5F, 0},   {0.499F, 0}, {0.49F, 1},
                                         {0.25F, 1}, {0.2F, 2}, {0.125F, 2}, {0.12F, 3},  {0.001F, 3}};
  for (const auto& [zoom, level] : cases) EXPECT_EQ(proxy.levelForZoom(zoom), level) << zoom;
  EXPECT_EQ(proxy.getImageForZoom(0.2F).getWidth(), 64);
}

TEST(ImageServer, LoadsWhatIsShownFirstThenTheNewest)
{
  const Planes planes(70, 70, 6);
  CountingServer server;
  server.log.isHeld = true;
  std::vector<std::unique_ptr<PlaneProxy>> proxies;
  for (int k = 0; k < 6; ++k)
  {
    proxies.push_back(std::make_unique<PlaneProxy>(planes[k]));
    server.attachProxy(*proxies.back());
  }
  for (const int k : {1, 2, 4}) server.detachProxy(*proxies[static_cast<std::size_t>(k)]);
  EXPECT_EQ(server.getNumPending(), 4); // the oldest that nobody shows was dropped
  server.log.isHeld = false;
  ASSERT_TRUE(waitUntil([&] { return isIdle(server); }));
  EXPECT_THAT(server.log.getEnded(), ElementsAre(0, 3, 5, 4, 2));
}

TEST(ImageServer, CancelsWhatRunsForNobody)
{
  const Planes planes(70, 70, 3);
  CountingServer server;
  server.log.isHeld = true;
  PlaneProxy a(planes[0]), b(planes[1]);
  server.attachProxy(a);
  ASSERT_TRUE(waitUntil([&] { return server.log.getBegun().size() == 1; }));
  server.detachProxy(a);
  EXPECT_EQ(server.getNumRunning(), 1); // nobody needs the thread
  server.attachProxy(b);
  ASSERT_TRUE(waitUntil([&] { return server.log.getBegun().size() == 2; }));
  EXPECT_THAT(server.log.getEnded(), ElementsAre());
  server.attachProxy(a);
  server.log.isHeld = false;
  ASSERT_TRUE(waitUntil([&] { return isIdle(server); }));
  EXPECT_THAT(server.log.getBegun(), ElementsAre(0, 1, 0));
  EXPECT_TRUE(a.hasImage() && b.hasImage());
}

TEST(ImageServer, DropsWhatIsNotShownWhenToldTo)
{
  const Planes planes(70, 70, 2);
  CountingServer server;
  server.setAutoDelete(true);
  PlaneProxy a(planes[0]), b(planes[1]);
  server.attachProxy(a);
  ASSERT_TRUE(waitUntil([&] { return isIdle(server); }));
  server.detachProxy(a);
  EXPECT_EQ(server.getNumLoaded(), 0);
  server.log.isHeld = true;
  server.attachProxy(a);
  server.attachProxy(b);
  server.detachProxy(b);
  EXPECT_EQ(server.getNumPending(), 0);
  server.detachProxy(a);
  EXPECT_EQ(server.getNumRunning(), 0);
}

TEST(ImageServer, TellsWhyAnImageCannotBeShownAndTriesAgain)
{
  const TemporaryFolder folder;
  const ImageSourceFile source(folder.file("a.tif"));
  CountingServer server;
  PlaneProxy a(source), b(source);
  EXPECT_TRUE(a.problem().contains("a.tif") && a.problem().contains("Cannot open file")) << qPrintable(a.problem());
  EXPECT_FALSE(a.getOriginalImageSize().isValid());
  server.attachProxy(a);
  server.attachProxy(b);
  ASSERT_TRUE(waitUntil([&] { return isIdle(server); }));
  EXPECT_EQ(server.getNumLoaded(), 0);
  for (const PlaneProxy* proxy : {&a, &b})
  {
    EXPECT_TRUE(proxy->problem().contains("a.tif")) << qPrintable(proxy->problem());
    expectError<ProgramError>("This proxy has no image server", [&] { proxy->getImageServer(); });
    expectError<ProgramError>("This proxy has no image", [&] { proxy->getImage(); });
    expectError<ProgramError>("This proxy has no image", [&] { proxy->getImage(0); });
    expectError<ProgramError>("This proxy has no image", [&] { proxy->getImageForZoom(1); });
  }
  Image image(70, 80, 8);
  image.reset();
  image.writeFile(source.getFilename(), false);
  server.attachProxy(a);
  ASSERT_TRUE(waitUntil([&] { return isIdle(server); }));
  EXPECT_TRUE(a.hasImage() && a.problem().isEmpty());
}

TEST(ImageServer, ReadsAFileAgainThatWasWrittenAnew)
{
  const TemporaryFolder folder;
  const ImageSourceFile source(folder.file("a.tif"));
  CountingServer server;
  PlaneProxy proxy(source);
  for (const int width : {70, 90, 90})
  {
    Image image(width, 80, 8);
    image.reset();
    if (width != proxy.getOriginalImageSize().width()) image.writeFile(source.getFilename(), true);
    proxy.setImageSource(&source);
    server.attachProxy(proxy);
    ASSERT_TRUE(waitUntil([&] { return isIdle(server); }));
    EXPECT_EQ(proxy.getImage().getWidth(), width);
    EXPECT_EQ(proxy.getOriginalImageSize().width(), width);
  }
  EXPECT_EQ(server.log.getEnded().size(), 2U); // not again while it stays the same
}

TEST(ImageServer, SurvivesProxiesThatAnswerChangesByComingAndGoing)
{
  const Planes planes(200, 200, 2);
  CountingServer server;
  PlaneProxy a(planes[0]), c(planes[1]);
  auto b = std::make_unique<PlaneProxy>(planes[0]);
  QObject::connect(&a, &NYXImageProxy::imageChanged,
                   [&]
                   {
                     b.reset();
                     server.attachProxy(c);
                     server.detachProxy(a);
                   });
  server.attachProxy(a);
  server.attachProxy(*b);
  ASSERT_TRUE(waitUntil([&] { return isIdle(server); }));
  EXPECT_FALSE(a.hasImage() || a.hasImageServer());
  EXPECT_EQ(c.getNumImages(), 3);
}

TEST(ImageServer, DropsTheImagesOfAClosedStack)
{
  const Planes planes(70, 70, 4);
  NYXStack closed, open;
  std::vector<StackSlice*> slices;
  for (int k = 0; k < 4; ++k)
  {
    auto slice = std::make_unique<StackSlice>();
    slice->setImageSource(planes[k]);
    slices.push_back(&(k < 3 ? closed : open).addSlice(std::move(slice)));
  }
  CountingServer server;
  NYXSliceImageProxy shown(slices[0]), loaded(slices[1]), running(slices[2]), other(slices[3]);
  server.attachProxy(shown);
  server.attachProxy(loaded);
  server.attachProxy(other);
  ASSERT_TRUE(waitUntil([&] { return isIdle(server); }));
  server.log.isHeld = true;
  server.attachProxy(running);
  for (NYXSliceImageProxy* proxy : {&loaded, &running, &other}) server.detachProxy(*proxy);
  NYXEventServer::deliver(NYXStackCloseEvent(closed));
  EXPECT_EQ(server.getNumRunning(), 0);
  EXPECT_EQ(server.getNumLoaded(), 2); // what is shown, and the other stack's
  EXPECT_TRUE(shown.hasImage());
  server.detachProxy(shown); // by a window that hears of it later
  EXPECT_TRUE(waitUntil([&] { return server.getNumLoaded() == 1; }));
}

TEST(ImageServer, IsSwitchedQuicklyThroughAThousandSlices)
{
  constexpr int numSlices = 1000;
  const Planes planes(128, 128, numSlices);
  CountingServer server;
  server.readMilliseconds = 3;
  PlaneProxy proxy(planes[0]);
  qint64 longest = 0;
  for (int k = 0; k < numSlices; ++k)
  {
    QElapsedTimer timer;
    timer.start();
    const ImageSourceVoxelMatrixPlane source = planes[k];
    proxy.setImageSource(&source);
    server.attachProxy(proxy);
    longest = std::max(longest, timer.elapsed());
    ASSERT_LE(server.getNumPending(), 2);
    ASSERT_LE(server.getNumRunning(), 1);
    if (k % 10 == 0) std::this_thread::sleep_for(std::chrono::milliseconds(4));
    processEvents();
  }
  ASSERT_TRUE(waitUntil([&] { return isIdle(server); }));
  EXPECT_EQ(proxy.getImage().getLine(0)[0], (numSlices - 1) % 256);
  EXPECT_EQ(proxy.getNumImages(), 3);
  EXPECT_LT(server.log.getEnded().size(), numSlices / 2);
  EXPECT_LT(longest, 1000) << "the windows stood still"; // on a busy machine
}
