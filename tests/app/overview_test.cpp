// The overview: what its frame shows, and what the mouse does with it.
#include "model/stack.h"
#include "model/stackslice.h"
#include "slice/image/nyximageproxy.h"
#include "slice/image/nyxoverview.h"
#include "slice/image/nyxslicewidget.h"
#include "slice/image/nyxslicewidgetcanvas.h"
#include "slice/image/nyxslicewidgetmediator.h"
#include "tests/slice/image/counting_server.h"

#include <gtest/gtest.h>

#include <QTest>

namespace
{
/// A slice of 400 x 200 pixels whose canvas shows a part of it, and an overview of 200 x 200.
struct Overview : testing::Test
{
  Overview()
  {
    slice.setImageSource(planes[90]);
    widget.mediator().setImageServer(server);
    widget.resize(300, 250);
    widget.show();
    overview.resize(200, 200);
    overview.show();
    overview.resize(200, 200); // whatever is stored
  }
  ~Overview() override { widget.setSlice(nullptr); }

  void show(double aspectRatio)
  {
    PixelCalibration calibration;
    calibration.setAspectRatio(aspectRatio);
    slice.setPixelCalibration(calibration);
    widget.setSlice(&slice);
    ASSERT_TRUE(waitUntil([&] { return widget.canvas().getImageProxy().hasImage(); }));
  }
  void zoomTo(float zoom)
  {
    while (widget.canvas().getZoomFactor() < zoom) widget.mediator().increaseZoomFactor();
    widget.mediator().moveView(QPoint(100, 50));
  }

  CountingServer server;
  Planes planes{200, 400, 100};
  StackSlice slice;
  NYXSliceWidget widget;
  NYXOverview overview{widget, &widget};
};

TEST_F(Overview, FrameShowsTheView)
{
  const struct
  {
    double aspectRatio;
    double scaleX, scaleY; // overview pixels per image pixel
    double left, top;      // of the image in the overview
  } cases[] = {
      {1, 0.5, 0.5, 0, 50}, // 200 x 100, in the middle
      {2, 0.5, 1, 0, 0},    // 400 x 200 pixels twice as high as wide: a square
      {0.5, 0.5, 0.25, 0, 75},
  };
  for (const auto& c : cases)
  {
    SCOPED_TRACE(c.aspectRatio);
    ASSERT_NO_FATAL_FAILURE(show(c.aspectRatio));
    widget.mediator().bestFitZoomFactor();
    EXPECT_EQ(overview.frame(), QRectF(c.left, c.top, 400 * c.scaleX, 200 * c.scaleY)); // all of it
    zoomTo(3);
    const QRect view = widget.canvas().currentView();
    ASSERT_LT(view.width(), 400);
    EXPECT_EQ(overview.frame(), QRectF(c.left + view.left() * c.scaleX, c.top + view.top() * c.scaleY,
                                       view.width() * c.scaleX, view.height() * c.scaleY));
  }
}

TEST_F(Overview, ShowsTheImage)
{
  ASSERT_NO_FATAL_FAILURE(show(1));
  QTest::qWait(20);
  const QImage picture = overview.grab().toImage();
  EXPECT_EQ(picture.pixelColor(100, 100), QColor(90, 90, 90));
  EXPECT_NE(picture.pixelColor(100, 20), QColor(90, 90, 90));
  widget.setSlice(nullptr);
  EXPECT_TRUE(overview.frame().isEmpty());
  QTest::qWait(150);
  EXPECT_EQ(overview.grab().toImage().pixelColor(100, 100), overview.grab().toImage().pixelColor(100, 20));
}

TEST_F(Overview, TheFrameIsDraggedAndAClickCentresTheView)
{
  ASSERT_NO_FATAL_FAILURE(show(1));
  zoomTo(3);
  const QSize view = widget.canvas().computeMaxViewSize();
  const QPoint grip = overview.frame().center().toPoint();
  QTest::mousePress(&overview, Qt::LeftButton, {}, grip);
  EXPECT_EQ(widget.canvas().getViewOrigin(), QPoint(100, 50)); // a press on the frame moves nothing
  QTest::mouseMove(&overview, grip + QPoint(15, -10));
  EXPECT_EQ(widget.canvas().getViewOrigin(), QPoint(130, 30)); // two image pixels each
  QTest::mouseRelease(&overview, Qt::LeftButton, {}, grip + QPoint(15, -10));
  QTest::mouseMove(&overview, grip);
  EXPECT_EQ(widget.canvas().getViewOrigin(), QPoint(130, 30));

  const QPoint away(60, 80); // image position 120, 60
  ASSERT_FALSE(overview.frame().contains(away));
  QTest::mouseClick(&overview, Qt::LeftButton, {}, away);
  EXPECT_EQ(widget.canvas().getViewOrigin(),
            QPoint(qRound(120 - view.width() / 2.0), qRound(60 - view.height() / 2.0)));
  QTest::mouseClick(&overview, Qt::LeftButton, {}, QPoint(199, 199));
  EXPECT_EQ(widget.canvas().getViewOrigin(), widget.canvas().computeMaxViewOrigin()); // no further than the image
}
} // namespace
