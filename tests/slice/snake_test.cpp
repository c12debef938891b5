// The snake of the slice editor, by keys and buttons, on discs that move from slice to slice.

#include "app/core/nyxstack.h"
#include "image/imagesourcevoxelmatrixplane.h"
#include "slice/image/nyximageproxy.h"
#include "slice/image/nyxsliceimageserver.h"
#include "slice/nyxsliceeditwidget.h"
#include "slice/nyxsliceeditwidgetcanvas.h"
#include "slice/nyxsliceeditwidgetmediator.h"
#include "slice/nyxsliceeditwidgetstatusbar.h"
#include "tests/support/stacks.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QDoubleSpinBox>
#include <QLabel>
#include <QMessageBox>
#include <QProgressDialog>
#include <QPushButton>
#include <QTest>
#include <QTimer>

#include <cmath>
#include <functional>

namespace
{
constexpr int side = 160;
constexpr int radius = 30;

int centerOn(int slice)
{
  return 75 + 4 * slice;
}

std::shared_ptr<const VoxelMatrix<unsigned char>> discs(int numSlices)
{
  auto matrix = std::make_shared<VoxelMatrix<unsigned char>>(side, side, numSlices);
  for (int k = 0; k < numSlices; ++k)
    for (int i = 0; i < side; ++i)
      for (int j = 0; j < side; ++j) (*matrix)(i, j, k) = std::hypot(i - 80, j - centerOn(k)) < radius ? 180 : 90;
  return matrix;
}

/// Tries every few milliseconds to act on what has appeared, until it is done.
class Repeatedly
{
public:
  explicit Repeatedly(const std::function<bool()>& act)
  {
    QObject::connect(&_timer, &QTimer::timeout,
                     [this, act]
                     {
                       if (!_isDone) _isDone = act();
                     });
    _timer.start(5);
  }
  bool isDone() const { return _isDone; }

private:
  QTimer _timer;
  bool _isDone = false;
};

/// Three slices with a disc each, the first one shown with a square around its disc.
class Snake : public testing::Test
{
protected:
  Snake()
  {
    const auto matrix = discs(3);
    for (int k = 0; k < 3; ++k) addSlice(stack, side, side).setImageSource(ImageSourceVoxelMatrixPlane(matrix, k));
    addItem(cells, *stack.getSlice(0), square);
    widget.resize(500, 400);
    widget.show();
    QApplication::setActiveWindow(&widget);
    EXPECT_TRUE(QTest::qWaitForWindowExposed(&widget));
    widget.editMediator().setImageServer(server);
    widget.setSlice(stack.getSlice(0));
    EXPECT_TRUE(QTest::qWaitFor([this] { return widget.editCanvas().getImageProxy().hasImage(); }));
    widget.editCanvas().setFocus();
    stack.setModified(false);
  }
  ~Snake() override
  {
    widget.setSlice(nullptr);
    widget.editMediator().removeImageServer();
  }

  ModelItem& item() { return *stack.getSlice(0)->getItems().front(); }
  QString mode() const { return widget.findChild<QLabel*>("editModeField")->text(); }
  QDialog* dialog() const { return widget.findChild<QDialog*>("snakeDialog"); }

  /// Without a window manager, nobody makes the window active again when a dialog has gone.
  void pressKey(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
  {
    QCoreApplication::processEvents();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete); // an earlier dialog
    QApplication::setActiveWindow(&widget);
    widget.editCanvas().setFocus();
    QTest::keyClick(&widget.editCanvas(), key, modifiers);
  }
  void start() { pressKey(Qt::Key_S); }
  void selectAndStart()
  {
    pressKey(Qt::Key_A, Qt::ControlModifier);
    start();
  }
  void set(const char* name, double value) { dialog()->findChild<QDoubleSpinBox*>(name)->setValue(value); }
  void setCount(const char* name, int value) { dialog()->findChild<QSpinBox*>(name)->setValue(value); }
  void press(const char* button) { dialog()->findChild<QPushButton*>(button)->click(); }

  /// The texts of the message box that appears, if one does, while "OK" is at work.
  QString runAndRead()
  {
    QString text;
    const Repeatedly reader(
        [&text]
        {
          auto* const box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
          if (box == nullptr) return false;
          text = box->text();
          box->accept();
          return true;
        });
    press("ok");
    EXPECT_TRUE(QTest::qWaitFor([this] { return mode() == "READY"; }));
    return text;
  }

  void expectOnDisc(const ModelItem& contour, int slice)
  {
    double sum = 0;
    for (int i = 0; i < contour.getSize(); ++i)
      sum += std::abs(std::hypot(contour.getVertices()[i][0] - centerOn(slice), contour.getVertices()[i][1] - 80) -
                      radius);
    EXPECT_LT(sum / contour.getSize(), 1) << "slice " << slice;
    EXPECT_GT(contour.getSize(), 60);
  }
  void expectAsBefore()
  {
    EXPECT_TRUE(std::equal(item().getVertices().data(), item().getVertices().data() + 2 * item().getSize(),
                           drawn.data(), drawn.data() + drawn.size()));
    EXPECT_EQ(stack.getSlice(1)->getNumItems() + stack.getSlice(2)->getNumItems(), 0);
    EXPECT_FALSE(stack.isModified());
    EXPECT_FALSE(stack.sliceHistory(*stack.getSlice(0)).isUndoable() || stack.history().isUndoable());
    expectIdle();
  }
  void expectIdle()
  {
    EXPECT_EQ(mode(), "READY");
    EXPECT_EQ(widget.editCanvas().getExtraItem(), nullptr);
    EXPECT_TRUE(stack.getLockedSlices().empty());
    EXPECT_EQ(widget.editMediator().activeTool(), nullptr);
  }

  const std::vector<std::vector<int>> square{{45, 50}, {105, 50}, {105, 110}, {45, 110}};
  const std::vector<int> drawn{45, 50, 105, 50, 105, 110, 45, 110}; // the same
  NYXStack stack;
  Model& cells = addModel(stack, "cells", MPrimitive::Polygon);
  NYXSliceImageServer server;
  NYXSliceEditWidget widget;
};
} // namespace

TEST_F(Snake, ChangesTheContourInOneStepAndKeepsItsParameters)
{
  for (const int scale : {1, 2})
  {
    selectAndStart();
    ASSERT_NE(dialog(), nullptr);
    EXPECT_EQ(mode(), "SNAKE");
    set("smoothing", 1.5);
    setCount("scale", scale);
    EXPECT_EQ(runAndRead(), "");
    expectOnDisc(item(), 0);
    expectIdle();
    EXPECT_EQ(stack.sliceHistory(*stack.getSlice(0)).getUndoListSize(), 1);
    EXPECT_EQ(cells.getSnakeConfig().smoothing, 1.5);
    stack.sliceHistory(*stack.getSlice(0)).undo();
    expectAsBefore();
  }
  selectAndStart();
  EXPECT_EQ(dialog()->findChild<QDoubleSpinBox*>("smoothing")->value(), 1.5);
  QTest::keyClick(dialog(), Qt::Key_Escape);
  expectAsBefore();
}

TEST_F(Snake, GoesOnThroughTheStackInOneStepOfTheStack)
{
  selectAndStart();
  dialog()->findChild<QAbstractButton*>("propagates")->click();
  EXPECT_EQ(runAndRead(), "");
  const auto expectContours = [this]
  {
    for (int k = 0; k < 3; ++k)
    {
      ASSERT_EQ(stack.getSlice(k)->getNumItems(), 1);
      expectOnDisc(*stack.getSlice(k)->getItems().front(), k);
      EXPECT_EQ(stack.getSlice(k)->getItems().front()->getModel(), &cells);
    }
  };
  expectContours();
  expectIdle();
  EXPECT_EQ(stack.history().getUndoListSize(), 1);
  EXPECT_EQ(stack.getLastSegmentedSlice(), "slice 2");
  stack.history().undo();
  expectAsBefore();
  stack.history().redo();
  expectContours();
}

TEST_F(Snake, StopsBeforeALockedSlice)
{
  stack.notifyEvent(NYXSliceLockEvent(*stack.getSlice(2), true));
  selectAndStart();
  dialog()->findChild<QAbstractButton*>("propagates")->click();
  EXPECT_EQ(runAndRead(), "");
  EXPECT_EQ(stack.getSlice(1)->getNumItems(), 1);
  EXPECT_EQ(stack.getSlice(2)->getNumItems(), 0);
  EXPECT_EQ(stack.getLockedSlices().size(), 1u);
}

TEST_F(Snake, SuggestsWhatToChangeWhenItAborts)
{
  for (const double force : {-5.0, 5.0}) // it collapses, it leaves the image
  {
    selectAndStart();
    set("balloonForce", force);
    EXPECT_EQ(runAndRead(), "The snake has aborted. Suggestions:\n- change the original contour;\n"
                            "- change the snake parameters.");
    expectAsBefore();
  }
}

TEST_F(Snake, ShowsTheMovingCurveAndCanBeCancelled)
{
  selectAndStart();
  set("convergence", 0);
  set("reach", 0);
  setCount("iterations", 100000);
  int numShown = 0;
  bool isLocked = false;
  QString label;
  const Repeatedly canceller(
      [&]
      {
        auto* const progress = qobject_cast<QProgressDialog*>(QApplication::activeModalWidget());
        const ModelItem* const moving = widget.editCanvas().getExtraItem();
        if (progress == nullptr || moving == nullptr || moving->getSize() == 0) return false;
        numShown = moving->getSize();
        isLocked = stack.isLocked(*stack.getSlice(0));
        label = progress->labelText();
        QTest::keyClick(progress, Qt::Key_Escape);
        return true;
      });
  press("ok");
  EXPECT_TRUE(QTest::qWaitFor([this] { return mode() == "READY"; }));
  EXPECT_TRUE(canceller.isDone());
  EXPECT_GT(numShown, 60);
  EXPECT_TRUE(isLocked);
  EXPECT_EQ(label, "Running snake...");
  expectAsBefore();
}

TEST_F(Snake, NeedsASelectedClosedContour)
{
  start();
  EXPECT_EQ(dialog(), nullptr);
  const std::unique_ptr<ModelItem> contour(&item());
  contour->detach();
  Model& lines = addModel(stack, "lines", MPrimitive::Polyline);
  addItem(lines, *stack.getSlice(0), {{10, 10}, {30, 30}});
  selectAndStart();
  EXPECT_EQ(dialog(), nullptr);
  EXPECT_EQ(mode(), "READY");
}
