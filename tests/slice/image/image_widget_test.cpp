// How the image widget answers mouse, pen and keys.

#include "counting_server.h"

#include "slice/image/nyxdoubleslider.h"
#include "slice/image/nyximageproxy.h"
#include "slice/image/nyximageserver.h"
#include "slice/image/nyximagewidget.h"
#include "slice/image/nyximagewidgetcanvas.h"
#include "slice/image/nyximagewidgetmediator.h"
#include "tests/support/errors.h"

#include <gtest/gtest.h>

#include <QAction>
#include <QApplication>
#include <QLabel>
#include <QMouseEvent>
#include <QScrollBar>
#include <QShortcut>
#include <QTabletEvent>
#include <QTest>

namespace
{
/// A widget with an image of 400 x 300 pixels on a canvas of 200 x 160, whose zoom is 1 and whose origin (50, 40).
class ImageWidget : public testing::Test
{
protected:
  ImageWidget()
  {
    widget.resize(300, 260);
    widget.show();
    QApplication::setActiveWindow(&widget);
    EXPECT_TRUE(QTest::qWaitForWindowExposed(&widget));
    widget.resize(widget.size() + QSize(200, 160) - canvas.size());
    QTest::qWait(1);
    EXPECT_EQ(canvas.size(), QSize(200, 160));
    canvas.setFocus();
    mediator.setImageSource(&source);
    EXPECT_TRUE(canvas.isBestFitMode());
    mediator.increaseZoomFactor();
    mediator.moveView({50, 40});
    QObject::connect(&widget, &NYXImageWidget::viewChanged, [this](const QRect& view) { notified = view; });
  }
  ~ImageWidget() override { EXPECT_EQ(QApplication::overrideCursor(), nullptr); }

  bool sendMouse(QEvent::Type type, const QPointF& position, Qt::MouseButton button, Qt::MouseButtons buttons)
  {
    QMouseEvent event(type, position, canvas.mapToGlobal(position.toPoint()), button, buttons, Qt::NoModifier);
    return QApplication::sendEvent(&canvas, &event);
  }
  void press(const QPointF& position, Qt::MouseButton button)
  {
    sendMouse(QEvent::MouseButtonPress, position, button, button);
  }
  void move(const QPointF& position, Qt::MouseButtons buttons)
  {
    sendMouse(QEvent::MouseMove, position, Qt::NoButton, buttons);
  }
  void release(const QPointF& position, Qt::MouseButton button)
  {
    sendMouse(QEvent::MouseButtonRelease, position, button, Qt::NoButton);
  }
  void sendPen(QEvent::Type type, const QPointF& position, Qt::MouseButtons buttons)
  {
    QTabletEvent event(type, position, canvas.mapToGlobal(position.toPoint()), QTabletEvent::Stylus, QTabletEvent::Pen,
                       1, 0, 0, 0, 0, 0, Qt::NoModifier, 1, Qt::LeftButton, buttons);
    QApplication::sendEvent(&canvas, &event);
  }
  void sendSpace(QEvent::Type type, bool isRepeated = false)
  {
    QKeyEvent event(type, Qt::Key_Space, Qt::NoModifier, " ", isRepeated);
    QApplication::sendEvent(&canvas, &event);
  }
  void turnWheel(const QPoint& position, int angle)
  {
    QWheelEvent event(position, canvas.mapToGlobal(position), {}, {0, angle}, Qt::NoButton, Qt::NoModifier,
                      Qt::NoScrollPhase, false);
    QApplication::sendEvent(&canvas, &event);
  }
  QString field(const char* name) const { return widget.findChild<QLabel*>(name)->text(); }
  QAction& action(const char* name) const { return *mediator.findChild<QAction*>(name); }
  QPoint origin() const { return canvas.getViewOrigin(); }

  const ImageSourceVoxelMatrixPlane source = Planes(300, 400, 8)[7];
  NYXImageWidget widget;
  NYXImageWidgetCanvas& canvas = widget.canvas();
  NYXImageWidgetMediator& mediator = widget.mediator();
  QRect notified; // the view told of last
};
} // namespace

TEST_F(ImageWidget, ZoomsAboutTheCursorByTheWheel)
{
  for (const QPoint& cursor : {QPoint(100, 80), QPoint(0, 0), QPoint(199, 159), QPoint(31, 117)})
  {
    const QPoint pixel = canvas.convertToImagePosition(cursor);
    for (const float zoom : {2.F, 3.F, 4.F})
    {
      turnWheel(cursor, 120);
      EXPECT_EQ(canvas.getZoomFactor(), zoom);
      EXPECT_EQ(canvas.convertToImagePosition(cursor), pixel);
    }
    for (const float zoom : {3.F, 2.F, 1.F})
    {
      turnWheel(cursor, -120);
      EXPECT_EQ(canvas.getZoomFactor(), zoom);
      EXPECT_EQ(canvas.convertToImagePosition(cursor), pixel);
    }
  }
  turnWheel({100, 80}, 60); // half a notch
  EXPECT_EQ(canvas.getZoomFactor(), 1);
  turnWheel({100, 80}, 60);
  EXPECT_EQ(canvas.getZoomFactor(), 2);
  EXPECT_EQ(notified, canvas.currentView());
  turnWheel({100, 80}, -240);
  EXPECT_EQ(canvas.getZoomFactor(), 0.5F);
  EXPECT_EQ(origin(), QPoint(0, 0)); // all of it is seen
  EXPECT_EQ(field("zoomField"), " 50%");
}

TEST_F(ImageWidget, KeepsTheCentreWithOtherZooms)
{
  const QPoint centre = canvas.viewCenter();
  QTest::keyClick(&canvas, '+');
  EXPECT_EQ(canvas.getZoomFactor(), 2);
  EXPECT_EQ(canvas.viewCenter(), centre);
  QTest::keyClick(&canvas, '-');
  EXPECT_EQ(canvas.getZoomFactor(), 1);
  EXPECT_EQ(canvas.viewCenter(), centre);
  EXPECT_TRUE(widget.horizontalScrollBar().isVisible() && widget.verticalScrollBar().isVisible());
  QTest::keyClick(&canvas, '=');
  EXPECT_TRUE(canvas.isBestFitMode());
  EXPECT_EQ(canvas.getZoomFactor(), 0.5F);
  EXPECT_EQ(notified, QRect(0, 0, 400, 300));
  EXPECT_FALSE(widget.horizontalScrollBar().isVisible() || widget.verticalScrollBar().isVisible());
  QTest::keyClick(&canvas, '-'); // a half is full already
  EXPECT_EQ(canvas.getZoomFactor(), 0.5F);
  EXPECT_FALSE(canvas.isBestFitMode());
}

TEST_F(ImageWidget, KeepsTheCentreWhenItsSizeChanges)
{
  const QPoint centre = canvas.viewCenter();
  for (const QSize& change : {QSize(41, 20), QSize(-60, -33), QSize(19, 13)})
  {
    widget.resize(widget.size() + change);
    QTest::qWait(1);
    EXPECT_EQ(canvas.viewCenter(), centre);
    EXPECT_EQ(notified, canvas.currentView());
  }
  EXPECT_EQ(origin(), QPoint(50, 40));
}

TEST_F(ImageWidget, IsDraggedByTheMiddleButton)
{
  mediator.increaseZoomFactor();
  const QPoint start(100, 100);
  const QPoint pixel = canvas.convertToImagePosition(start);
  press(start, Qt::MiddleButton);
  for (const QPoint& position : {QPoint(104, 98), QPoint(90, 70), QPoint(60, 110)})
  {
    move(position, Qt::MiddleButton);
    EXPECT_EQ(canvas.convertToImagePosition(position), pixel);
    EXPECT_EQ(notified, canvas.currentView());
  }
  release({60, 110}, Qt::MiddleButton);
  const QPoint dragged = origin();
  move({10, 10}, Qt::NoButton);
  EXPECT_EQ(origin(), dragged);
  sendMouse(QEvent::MouseButtonDblClick, {10, 10}, Qt::MiddleButton, Qt::MiddleButton); // pressed again at once
  move({30, 20}, Qt::MiddleButton);
  EXPECT_EQ(origin(), dragged - QPoint(10, 5));
  release({30, 20}, Qt::MiddleButton);
}

TEST_F(ImageWidget, SlidesAgainstTheHandWhileSpaceIsHeld)
{
  mediator.increaseZoomFactor(); // does not count
  mediator.moveView({50, 40});
  move({100, 100}, Qt::LeftButton);
  EXPECT_EQ(origin(), QPoint(50, 40));
  sendSpace(QEvent::KeyPress);
  ASSERT_NE(QApplication::overrideCursor(), nullptr);
  EXPECT_EQ(QApplication::overrideCursor()->shape(), Qt::OpenHandCursor);
  sendSpace(QEvent::KeyRelease, true);
  sendSpace(QEvent::KeyPress, true);
  press({100.4, 100.6}, Qt::LeftButton); // (100, 101)
  move({107, 98}, Qt::LeftButton);
  EXPECT_EQ(origin(), QPoint(57, 37));
  move({117.6, 99.4}, Qt::LeftButton);
  EXPECT_EQ(origin(), QPoint(68, 38));
  EXPECT_EQ(widget.horizontalScrollBar().value(), 68);
  EXPECT_EQ(widget.verticalScrollBar().value(), 38);
  EXPECT_EQ(notified, canvas.currentView());
  release({117, 99}, Qt::LeftButton);
  move({10, 10}, Qt::NoButton);
  sendMouse(QEvent::MouseButtonDblClick, {10, 10}, Qt::LeftButton, Qt::LeftButton); // pressed again at once
  move({11, 12}, Qt::LeftButton);
  EXPECT_EQ(origin(), QPoint(69, 40));
  sendSpace(QEvent::KeyRelease);
  EXPECT_EQ(QApplication::overrideCursor(), nullptr);
  move({50, 50}, Qt::LeftButton);
  EXPECT_EQ(origin(), QPoint(69, 40));
}

TEST_F(ImageWidget, SlidesUnderThePenLikeUnderTheMouse)
{
  sendPen(QEvent::TabletPress, {20, 20}, Qt::LeftButton);
  sendPen(QEvent::TabletMove, {30, 20}, Qt::LeftButton);
  EXPECT_EQ(origin(), QPoint(50, 40));
  sendSpace(QEvent::KeyPress);
  sendPen(QEvent::TabletPress, {20, 20}, Qt::LeftButton);
  sendPen(QEvent::TabletMove, {30.4, 15.2}, Qt::LeftButton);
  EXPECT_EQ(origin(), QPoint(60, 35));
  sendPen(QEvent::TabletRelease, {30, 15}, Qt::NoButton);
  sendPen(QEvent::TabletMove, {80, 80}, Qt::NoButton);
  EXPECT_EQ(origin(), QPoint(60, 35));
  sendSpace(QEvent::KeyRelease);
}

TEST_F(ImageWidget, LetsSpaceGoInBestFitAndWithTheFocus)
{
  sendSpace(QEvent::KeyPress);
  widget.slider().setFocus();
  EXPECT_EQ(QApplication::overrideCursor(), nullptr);
  canvas.setFocus();
  mediator.bestFitZoomFactor();
  sendSpace(QEvent::KeyPress);
  EXPECT_EQ(QApplication::overrideCursor(), nullptr);
  press({10, 10}, Qt::LeftButton);
  move({60, 60}, Qt::LeftButton);
  EXPECT_EQ(origin(), QPoint(0, 0));
}

TEST_F(ImageWidget, LeavesArrowKeysToTheSliderThatHasTheFocus)
{
  NYXDoubleSlider& slider = widget.slider();
  slider.setFocus();
  QTest::keyClick(&slider, Qt::Key_Down);
  QTest::keyClick(&slider, Qt::Key_Left); // the other handle
  QTest::keyClick(&slider, Qt::Key_Up);
  EXPECT_FLOAT_EQ(slider.upperValue(), 0.99F);
  EXPECT_FLOAT_EQ(slider.lowerValue(), 0.01F);
  EXPECT_EQ(origin(), QPoint(50, 40));
}

TEST_F(ImageWidget, ScrollsByKeys)
{
  const struct
  {
    int key;
    Qt::KeyboardModifier modifier;
    QPoint moved;
  } cases[] = {{Qt::Key_Up, Qt::NoModifier, {0, -1}},         {Qt::Key_Down, Qt::NoModifier, {0, 1}},
               {Qt::Key_Right, Qt::NoModifier, {1, 0}},       {Qt::Key_Left, Qt::NoModifier, {-1, 0}},
               {Qt::Key_Up, Qt::ControlModifier, {0, -26}},   {Qt::Key_Down, Qt::ControlModifier, {0, 26}},
               {Qt::Key_Right, Qt::ControlModifier, {33, 0}}, {Qt::Key_Left, Qt::ControlModifier, {-33, 0}}};
  mediator.increaseZoomFactor(); // 100 x 80 pixels
  for (const auto& c : cases)
  {
    mediator.moveView({50, 40});
    QTest::keyClick(&canvas, static_cast<Qt::Key>(c.key), c.modifier);
    EXPECT_EQ(origin(), QPoint(50, 40) + c.moved);
    EXPECT_EQ(QPoint(widget.horizontalScrollBar().value(), widget.verticalScrollBar().value()), origin());
  }
  QTest::keyClick(&canvas, Qt::Key_C);
  EXPECT_EQ(canvas.viewCenter(), QPoint(200, 150));
  mediator.setViewOrigin({-1, 1000});
  EXPECT_EQ(origin(), QPoint(0, 220));
}

TEST_F(ImageWidget, FollowsItsScrollBars)
{
  EXPECT_EQ(widget.horizontalScrollBar().maximum(), 200);
  EXPECT_EQ(widget.verticalScrollBar().maximum(), 140);
  EXPECT_EQ(widget.horizontalScrollBar().pageStep(), 200);
  widget.horizontalScrollBar().setValue(123);
  EXPECT_EQ(origin(), QPoint(123, 40));
  widget.verticalScrollBar().triggerAction(QAbstractSlider::SliderToMaximum);
  EXPECT_EQ(origin(), QPoint(123, 140));
  EXPECT_EQ(notified, QRect(123, 140, 200, 160));
}

TEST_F(ImageWidget, SwitchesItsActionsByWhatCanBeDone)
{
  const char* const always[] = {"zoomIn", "zoomOut", "ruler"};
  const char* const outsideOfBestFit[] = {"bestFit", "stepUp", "scrollLeft", "center"};
  for (const char* name : always) EXPECT_TRUE(action(name).isEnabled()) << name;
  for (const char* name : outsideOfBestFit) EXPECT_TRUE(action(name).isEnabled()) << name;
  mediator.setActionsEnabled(false);
  for (const char* name : always) EXPECT_FALSE(action(name).isEnabled()) << name;
  QTest::keyClick(&canvas, '+');
  EXPECT_EQ(canvas.getZoomFactor(), 1);
  mediator.setActionsEnabled(true);
  mediator.bestFitZoomFactor();
  for (const char* name : always) EXPECT_TRUE(action(name).isEnabled()) << name;
  for (const char* name : outsideOfBestFit) EXPECT_FALSE(action(name).isEnabled()) << name;
  mediator.clear();
  for (const char* name : always) EXPECT_FALSE(action(name).isEnabled()) << name;
  EXPECT_EQ(field("imageSizeField"), "");
  turnWheel({10, 10}, 120); // there is nothing to zoom
  canvas.grabFramebuffer();
}

TEST_F(ImageWidget, TellsThePixelUnderTheCursor)
{
  NYXImageServer server;
  mediator.setImageServer(server);
  EXPECT_TRUE(QTest::qWaitFor([&] { return canvas.getImageProxy().hasImage(); }));
  EXPECT_EQ(&mediator.getImageServer(), &server);
  EXPECT_EQ(field("imageSizeField"), "400x300 [117 Kb]");
  move({7, 9}, Qt::NoButton);
  EXPECT_EQ(field("pixelField"), "X=57, Y=49, G=7");
  sendSpace(QEvent::KeyPress);
  press({7, 9}, Qt::LeftButton);
  move({17, 9}, Qt::LeftButton);
  sendSpace(QEvent::KeyRelease);
  EXPECT_EQ(field("pixelField"), "X=77, Y=49, G=7"); // of the view that has moved
  QTest::keyClick(&canvas, Qt::Key_Left);
  EXPECT_EQ(field("pixelField"), "X=76, Y=49, G=7");
  QEvent leave(QEvent::Leave);
  QApplication::sendEvent(&canvas, &leave);
  QTest::keyClick(&canvas, Qt::Key_Left);
  EXPECT_EQ(field("pixelField"), "");
  mediator.bestFitZoomFactor();
  move({199, 155}, Qt::NoButton); // below the image
  EXPECT_EQ(field("pixelField"), "");
  mediator.removeImageServer();
  EXPECT_FALSE(canvas.getImageProxy().hasImage());
  expectError<ProgramError>("This mediator has no image server", [&] { mediator.getImageServer(); });
}

TEST_F(ImageWidget, DrawsTheRulerFromPressToRelease)
{
  const QImage without = canvas.grabFramebuffer();
  action("ruler").trigger();
  EXPECT_TRUE(action("ruler").isChecked());
  press({20, 20}, Qt::LeftButton);
  move({100, 80}, Qt::LeftButton);
  release({100, 80}, Qt::LeftButton);
  const QImage with = canvas.grabFramebuffer();
  EXPECT_NE(with.pixel(60, 50), without.pixel(60, 50)); // half way
  EXPECT_EQ(with.pixel(60, 20), without.pixel(60, 20));
  move({100, 20}, Qt::NoButton);
  EXPECT_EQ(canvas.grabFramebuffer(), with);
  sendMouse(QEvent::MouseButtonDblClick, {20, 120}, Qt::LeftButton, Qt::LeftButton); // pressed again at once
  move({60, 120}, Qt::LeftButton);
  EXPECT_NE(canvas.grabFramebuffer().pixel(40, 120), without.pixel(40, 120));
  const QShortcut escape(Qt::Key_Escape, &widget);
  bool wasCalled = false;
  QObject::connect(&escape, &QShortcut::activated, [&wasCalled] { wasCalled = true; });
  QTest::keyClick(&canvas, Qt::Key_Escape);
  EXPECT_FALSE(action("ruler").isChecked());
  EXPECT_FALSE(wasCalled);
  EXPECT_EQ(canvas.grabFramebuffer(), without);
}

TEST_F(ImageWidget, SetsBlackAndWhiteByTheSlider)
{
  NYXDoubleSlider& slider = widget.slider();
  std::vector<std::pair<float, float>> told;
  QObject::connect(&slider, &NYXDoubleSlider::valuesChanged,
                   [&told](float black, float white) { told.emplace_back(black, white); });
  const int length = slider.height() - 16; // without the two handles
  const auto placeOf = [&](double value) { return QPoint(10, 8 + qRound((1 - value) * length)); };
  QTest::mousePress(&slider, Qt::LeftButton, {}, placeOf(0.25));
  QTest::mouseRelease(&slider, Qt::LeftButton, {}, placeOf(0.25));
  EXPECT_NEAR(slider.lowerValue(), 0.25, 1.0 / length);
  QTest::mousePress(&slider, Qt::LeftButton, {}, placeOf(0.75));
  EXPECT_NEAR(slider.upperValue(), 0.75, 1.0 / length);
  QMouseEvent below(QEvent::MouseMove, placeOf(0.1), Qt::NoButton, Qt::LeftButton, Qt::NoModifier);
  QApplication::sendEvent(&slider, &below);
  EXPECT_EQ(slider.upperValue(), slider.lowerValue()); // the values do not pass each other
  EXPECT_EQ(told.back(), std::pair(slider.lowerValue(), slider.upperValue()));
  QTest::mouseDClick(&slider, Qt::LeftButton, {}, placeOf(0.4));
  QApplication::sendEvent(&slider, &below); // the mouse trembles
  EXPECT_EQ(std::pair(slider.lowerValue(), slider.upperValue()), std::pair(0.F, 1.F));
  slider.setValues(2, -1);
  EXPECT_EQ(std::pair(slider.lowerValue(), slider.upperValue()), std::pair(1.F, 1.F));
  EXPECT_FALSE(slider.grab().isNull());
}
