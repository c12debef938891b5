// The panorama of a stack: what is loaded when, and what mouse, keys and news do.
#include "app/core/actions/nyxsliceinsertiondeletionaction.h"
#include "app/core/nyxpreferences.h"
#include "app/core/nyxstack.h"
#include "app/core/nyxstackserver.h"
#include "image/imagesourcefile.h"
#include "slice/image/nyxpanorama.h"
#include "slice/image/nyxslicepixmapcache.h"
#include "tests/slice/image/counting_server.h"
#include "tests/support/stacks.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QHelpEvent>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTest>
#include <QToolTip>

#include <algorithm>

namespace
{
constexpr int numSlices = 60;

/// A panorama of a stack whose images are planes of one volume.
struct Panorama : testing::Test
{
  Panorama()
  {
    auto made = std::make_unique<NYXStack>();
    const Planes planes(40, 80, numSlices);
    for (int i = 0; i < numSlices; ++i)
    {
      auto slice = std::make_unique<StackSlice>();
      slice->setName("slice " + std::to_string(i));
      slice->setImageSource(planes[i]);
      made->addSlice(std::move(slice));
    }
    auto counting = std::make_unique<CountingServer>();
    server = counting.get();
    made->setPanoramaImageServer(std::move(counting));
    stack = &NYXStackServer::server().addStack(std::move(made));
    panorama.setStack(stack);
    QObject::connect(&panorama, &NYXPanorama::sliceSelected, &panorama, &NYXPanorama::setCurrentSlice);
    panorama.resize(600, 400);
  }
  ~Panorama() override
  {
    NYXPreferences::setPanoramaLabelEnabled(true);
    while (NYXStackServer::server().getNumStacks() > 0)
      NYXStackServer::server().removeStack(NYXStackServer::server().getStack(0));
  }

  std::vector<int> visible() const
  {
    std::vector<int> slices;
    for (int i = 0; i < stack->getNumSlices(); ++i)
      if (panorama.thumbnailRect(i).intersects(panorama.viewport()->rect())) slices.push_back(i);
    return slices;
  }
  void showAll()
  {
    panorama.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&panorama));
    ASSERT_TRUE(waitUntil([&] { return isLoaded(visible()); }));
  }
  bool isLoaded(const std::vector<int>& slices) const
  {
    auto* const cache = dynamic_cast<NYXSlicePixmapCache*>(stack->getSlicePixmapCache());
    return std::ranges::all_of(slices, [&](int i) { return cache->find(stack->getSlice(i)) != nullptr; });
  }
  QString toolTipAt(int slice)
  {
    const QPoint place = panorama.thumbnailRect(slice).center();
    QHelpEvent help(QEvent::ToolTip, place, panorama.viewport()->mapToGlobal(place));
    QApplication::sendEvent(panorama.viewport(), &help);
    return QToolTip::text();
  }
  void click(int slice)
  {
    QTest::mouseClick(panorama.viewport(), Qt::LeftButton, {}, panorama.thumbnailRect(slice).center());
  }

  NYXStack* stack;
  CountingServer* server;
  NYXPanorama panorama;
};

QColor colorAt(const QImage& picture, const QPoint& place)
{
  return picture.pixelColor(place * picture.devicePixelRatio());
}

TEST_F(Panorama, LoadsWhatIsVisibleAndNothingElse)
{
  ASSERT_NO_FATAL_FAILURE(showAll());
  const std::vector<int> first = visible();
  ASSERT_LT(first.size(), 30U);
  EXPECT_EQ(server->log.getBegun(), first);
  EXPECT_EQ(server->getNumLoaded(), 0); // only the small pictures are kept

  panorama.verticalScrollBar()->setValue(panorama.verticalScrollBar()->maximum());
  ASSERT_TRUE(waitUntil([&] { return isLoaded(visible()); }));
  const std::size_t numRead = server->log.getBegun().size();
  EXPECT_EQ(numRead, first.size() + visible().size());
  panorama.verticalScrollBar()->setValue(0);
  QTest::qWait(150);
  EXPECT_EQ(server->log.getBegun().size(), numRead); // what was seen before is still there
}

TEST_F(Panorama, GivesUpWhatScrollsOutOfView)
{
  server->log.isHeld = true;
  panorama.show();
  ASSERT_TRUE(waitUntil([&] { return server->getNumRunning() == 1; }));
  panorama.verticalScrollBar()->setValue(panorama.verticalScrollBar()->maximum());
  QTest::qWait(150);
  server->log.isHeld = false;
  ASSERT_TRUE(waitUntil([&] { return isLoaded(visible()); }));
  EXPECT_EQ(server->log.getEnded(), visible());
  server->log.isHeld = true;
  panorama.verticalScrollBar()->setValue(0);
  ASSERT_TRUE(waitUntil([&] { return server->getNumRunning() == 1; }));
  panorama.hide();
  EXPECT_TRUE(isIdle(*server));
}

TEST_F(Panorama, ShowsImagesWithSquarePixels)
{
  PixelCalibration calibration;
  calibration.setAspectRatio(2); // 80 x 40 pixels twice as high as wide: a square
  stack->getSlice(2)->setPixelCalibration(calibration);
  panorama.setCurrentSlice(0);
  ASSERT_NO_FATAL_FAILURE(showAll());
  QTest::qWait(50);
  const QImage picture = panorama.viewport()->grab().toImage();
  const auto isImageAt = [&](int slice, double y)
  {
    const QRect cell = panorama.thumbnailRect(slice);
    const QPoint place(cell.center().x(), cell.top() + qRound(y * cell.width()));
    return colorAt(picture, place) == QColor(slice, slice, slice); // every plane has its own grey level
  };
  EXPECT_TRUE(isImageAt(1, 0.5));
  EXPECT_FALSE(isImageAt(1, 0.2)); // lies above an image twice as wide as high
  EXPECT_TRUE(isImageAt(2, 0.5));
  EXPECT_TRUE(isImageAt(2, 0.2));
}

TEST_F(Panorama, MouseAndKeysChooseSlices)
{
  ASSERT_NO_FATAL_FAILURE(showAll());
  QSignalSpy opened(&panorama, &NYXPanorama::sliceOpened);
  click(4);
  EXPECT_EQ(panorama.getCurrentSlice(), 4);
  EXPECT_NE(colorAt(panorama.viewport()->grab().toImage(), panorama.thumbnailRect(4).topLeft() + QPoint(30, 1)),
            colorAt(panorama.viewport()->grab().toImage(), panorama.thumbnailRect(5).topLeft() + QPoint(30, 1)));
  QTest::mouseClick(panorama.viewport(), Qt::LeftButton, {}, QPoint(1, 1)); // on none
  EXPECT_EQ(panorama.getCurrentSlice(), 4);
  const struct
  {
    Qt::Key key;
    int slice;
  } steps[] = {{Qt::Key_Right, 5}, {Qt::Key_Left, 4}, {Qt::Key_End, numSlices - 1}, {Qt::Key_Home, 0}};
  for (const auto& step : steps)
  {
    QTest::keyClick(&panorama, step.key);
    EXPECT_EQ(panorama.getCurrentSlice(), step.slice) << step.key;
    EXPECT_TRUE(panorama.viewport()->rect().contains(panorama.thumbnailRect(step.slice))) << step.key;
  }
  EXPECT_EQ(opened.count(), 0);
  QTest::keyClick(&panorama, Qt::Key_Return);
  EXPECT_EQ(opened.count(), 1);
  QTest::mouseDClick(panorama.viewport(), Qt::LeftButton, {}, panorama.thumbnailRect(0).center());
  EXPECT_EQ(opened.count(), 2);
}

TEST_F(Panorama, ShowsTheSliceThatWasChosenWhileItWasHidden)
{
  panorama.resize(100, 30); // as a page of a stack that is not shown yet
  for (const int slice : {12, 59, 30})
  {
    panorama.setCurrentSlice(slice);
    panorama.resize(600, 400);
    panorama.show();
    EXPECT_TRUE(panorama.viewport()->rect().contains(panorama.thumbnailRect(slice))) << slice;
    panorama.hide();
  }
}

TEST_F(Panorama, LabelsFollowThePreferences)
{
  ASSERT_NO_FATAL_FAILURE(showAll());
  const int labelled = panorama.thumbnailRect(0).height();
  EXPECT_GE(labelled, panorama.thumbnailRect(0).width() + panorama.fontMetrics().height());
  NYXPreferences::setPanoramaLabelEnabled(false);
  stack->notifyEvent(NYXPreferencesEvent());
  EXPECT_EQ(panorama.thumbnailRect(0).height(), panorama.thumbnailRect(0).width());
  NYXPreferences::setPanoramaLabelEnabled(true);
  stack->notifyEvent(NYXPreferencesEvent());
  EXPECT_EQ(panorama.thumbnailRect(0).height(), labelled);
}

TEST_F(Panorama, TellsWhyAnImageIsNotThereAndWhatIsLocked)
{
  stack->getSlice(1)->setImageSource(ImageSourceFile("/nowhere/missing.tif"));
  panorama.show();
  ASSERT_TRUE(QTest::qWaitForWindowExposed(&panorama));
  QTest::qWait(100);
  EXPECT_TRUE(toolTipAt(1).contains("/nowhere/missing.tif")) << toolTipAt(1).toStdString();
  EXPECT_FALSE(toolTipAt(0).contains("cannot be shown"));
  ASSERT_TRUE(waitUntil([&] { return isLoaded({2}); }));
  const auto corner = [&] // of the thumbnail of slice 2
  { return panorama.viewport()->grab(panorama.thumbnailRect(2).adjusted(100, 0, 0, -100)).toImage(); };
  const QImage unlocked = corner();
  stack->notifyEvent(NYXSliceLockEvent(*stack->getSlice(2), true));
  EXPECT_TRUE(toolTipAt(2).contains("Locked"));
  EXPECT_NE(corner(), unlocked);
  stack->notifyEvent(NYXSliceLockEvent(*stack->getSlice(2), false));
}

TEST_F(Panorama, ShowsTheItemsOfASliceWhoseImageIsMissing)
{
  StackSlice& slice = *stack->getSlice(1);
  slice.setImageSource(ImageSourceFile("/nowhere/missing.tif"));
  panorama.show();
  ASSERT_TRUE(QTest::qWaitForWindowExposed(&panorama));
  QTest::qWait(100);
  const auto picture = [&] { return panorama.viewport()->grab(panorama.thumbnailRect(1)).toImage(); };
  const QImage before = picture();
  ModelItem& item = addItem(addModel(*stack, "m", MPrimitive::Polygon), slice, {{10, 10}, {70, 10}, {70, 70}});
  stack->notifyEvent(NYXModelItemCreateEvent(item));
  EXPECT_TRUE(waitUntil([&] { return picture() != before; }));
}

TEST_F(Panorama, FollowsSlicesThatGoAndComeBack)
{
  ASSERT_NO_FATAL_FAILURE(showAll());
  StackSlice& gone = *stack->getSlice(0);
  stack->history().pushStep(std::make_unique<NYXSliceInsertionDeletionAction>(gone));
  auto* const cache = dynamic_cast<NYXSlicePixmapCache*>(stack->getSlicePixmapCache());
  EXPECT_EQ(cache->find(&gone), nullptr); // another slice may come to lie there
  EXPECT_TRUE(toolTipAt(0).startsWith("slice 1 (1 / 59)"));
  stack->histories().undo(nullptr);
  EXPECT_TRUE(toolTipAt(0).startsWith("slice 0 (1 / 60)"));
  EXPECT_TRUE(waitUntil([&] { return isLoaded({0}); }));
  NYXStackServer::server().removeStack(*stack);
  QTest::keyClick(&panorama, Qt::Key_Home); // nothing is left to go to
  EXPECT_EQ(panorama.getCurrentSlice(), -1);
  panorama.grab();
}
} // namespace
