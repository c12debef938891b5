// What a canvas shows while an image is being loaded.
#include "image/imagesourcefile.h"
#include "model/stackslice.h"
#include "slice/image/nyximageproxy.h"
#include "slice/image/nyxloadingnotice.h"
#include "slice/image/nyxslicewidget.h"
#include "slice/image/nyxslicewidgetcanvas.h"
#include "slice/image/nyxslicewidgetmediator.h"
#include "tests/slice/image/counting_server.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFileInfo>
#include <QTest>

namespace
{
struct LoadingNotice : testing::Test
{
  LoadingNotice()
  {
    for (int k = 0; k < 3; ++k) slices[k].setImageSource(planes[k]);
    widget.mediator().setImageServer(server);
    widget.resize(300, 250);
    widget.show();
  }
  ~LoadingNotice() override { widget.setSlice(nullptr); }

  bool hasImage() { return widget.canvas().getImageProxy().hasImage(); }
  QImage picture() { return widget.canvas().grabFramebuffer(); }
  QString text() { return widget.findChild<NYXLoadingNotice*>()->text(); }

  CountingServer server;
  Planes planes{60, 60, 3};
  StackSlice slices[3];
  NYXSliceWidget widget;
};

TEST_F(LoadingNotice, AppearsAfterHalfASecondAndGoesWithTheImage)
{
  server.log.isHeld = true;
  QElapsedTimer time;
  time.start();
  widget.setSlice(&slices[0]);
  ASSERT_TRUE(waitUntil([&] { return !text().isEmpty(); }));
  EXPECT_GE(time.elapsed(), 450); // timers are that exact
  EXPECT_EQ(text(), "Reading the image...\n0%");
  widget.setSlice(&slices[1]);
  EXPECT_EQ(text(), ""); // of another image, not yet
  ASSERT_TRUE(waitUntil([&] { return !text().isEmpty(); }));
  server.log.isHeld = false;
  ASSERT_TRUE(waitUntil([&] { return hasImage(); }));
  EXPECT_EQ(text(), "");
}

TEST_F(LoadingNotice, FilesAreNamed)
{
  server.log.isHeld = true;
  slices[2].setImageSource(ImageSourceFile(QFileInfo(MIRELO_EXAMPLE).dir().filePath("slice-000.tif").toStdString()));
  widget.setSlice(&slices[2]);
  ASSERT_TRUE(waitUntil([&] { return !text().isEmpty(); }));
  EXPECT_EQ(text(), "Reading slice-000.tif...\n0%");
  server.log.isHeld = false;
}

TEST_F(LoadingNotice, TheImageBeforeStaysForAMomentOnly)
{
  ASSERT_TRUE(QTest::qWaitForWindowExposed(&widget));
  widget.setSlice(&slices[0]);
  ASSERT_TRUE(waitUntil([&] { return hasImage(); }));
  QTest::qWait(50); // it is painted
  const QImage before = picture();
  widget.setSlice(&slices[1]);
  EXPECT_EQ(picture(), before);
  EXPECT_TRUE(widget.canvas().updatesEnabled()); // what lies behind would shine through
  ASSERT_TRUE(waitUntil([&] { return hasImage(); }));
  EXPECT_NE(picture(), before);
  QTest::qWait(50);
  server.log.isHeld = true;
  QElapsedTimer time;
  time.start();
  widget.setSlice(&slices[2]);
  ASSERT_TRUE(waitUntil([&] { return !widget.canvas().isPictureHeld(); }));
  EXPECT_GE(time.elapsed(), 90);
  EXPECT_FALSE(hasImage());
  server.log.isHeld = false;
}
} // namespace
