#pragma once

#include "app/core/nyxpreferences.h"
#include "app/core/nyxstack.h"
#include "image/image.h"
#include "slice/image/nyximageproxy.h"
#include "slice/image/nyxsliceimageserver.h"
#include "slice/nyxsliceeditwidget.h"
#include "slice/nyxsliceeditwidgetcanvas.h"
#include "slice/nyxsliceeditwidgetmediator.h"
#include "slice/nyxsliceeditwidgetmediatorcreationdelegate.h"
#include "slice/nyxsliceeditwidgetmediatoreditiondelegate.h"
#include "slice/nyxsliceeditwidgetmediatorselectiondelegate.h"
#include "tests/support/stackfiles.h"
#include "tests/support/stacks.h"

#include <gtest/gtest.h>

#include <QAction>
#include <QApplication>
#include <QInputDialog>
#include <QLabel>
#include <QMenu>
#include <QMessageBox>
#include <QTabletEvent>
#include <QTest>
#include <QTimer>

#include <cmath>

using Points = std::vector<std::vector<int>>;

/// Answers the boxes that appear while `work` runs and lists them: message boxes as "title|text", questions for a
/// number, which get the answers in turn, as "label|least..greatest by step from start". A question without an answer
/// is cancelled.
inline QStringList answering(QList<int> answers, const std::function<void()>& work)
{
  QStringList seen;
  QTimer timer;
  const auto answer = [&](QInputDialog& question)
  {
    seen << QString("%1|%2..%3 by %4 from %5")
                .arg(question.labelText())
                .arg(question.intMinimum())
                .arg(question.intMaximum())
                .arg(question.intStep())
                .arg(question.intValue());
    if (answers.isEmpty()) return question.reject();
    question.setIntValue(answers.takeFirst());
    question.accept();
  };
  QObject::connect(&timer, &QTimer::timeout,
                   [&]
                   {
                     QWidget* const modal = QApplication::activeModalWidget();
                     if (auto* const question = qobject_cast<QInputDialog*>(modal)) answer(*question);
                     auto* const box = qobject_cast<QMessageBox*>(modal);
                     if (box == nullptr) return;
                     seen << box->windowTitle() + "|" + box->text();
                     box->accept();
                   });
  timer.start(2);
  work();
  return seen;
}

/// The editor on the first of two slices of 400 by 300 pixels, at zoom 1, so that a pixel of the image is one of the
/// canvas: a bright disc of radius 40 around (200, 150) on dark ground.
class EditTest : public testing::Test
{
protected:
  EditTest()
  {
    NYXPreferences::setClickTolerance(3);
    NYXPreferences::setRegionBrushSize(5);
    NYXPreferences::enableAutoDecimation(false);
    for (int k = 0; k < 2; ++k) addSlice(stack, 0, 0).setImageSource(ImageSourceFile(writeDisc()));
    for (const auto& [name, geometry] : geometries) addModel(stack, name, geometry);
    QObject::connect(&_watch, &QTimer::timeout, [this] { closeUnexpectedBox(); });
    _watch.start(1000);
    widget.resize(900, 480);
    widget.show();
    QApplication::setActiveWindow(&widget);
    EXPECT_TRUE(QTest::qWaitForWindowExposed(&widget));
    widget.editMediator().setImageServer(server);
    show(0);
    EXPECT_TRUE(QTest::qWaitFor([this] { return canvas().getImageProxy().hasImage(); }));
  }
  ~EditTest() override
  {
    widget.setSlice(nullptr);
    widget.editMediator().removeImageServer();
  }

  void show(int slice)
  {
    widget.setSlice(stack.getSlice(slice));
    setZoom(1);
  }
  void setZoom(float zoom)
  {
    canvas().setBestFitMode(false, true);
    canvas().setZoomFactor(zoom);
    canvas().setViewOrigin(QPoint(0, 0));
  }

  NYXSliceEditWidgetCanvas& canvas() const { return widget.editCanvas(); }
  NYXSliceEditWidgetMediator& mediator() const { return widget.editMediator(); }
  StackSlice& slice(int i = 0) const { return *stack.getSlice(i); }
  Model& model(const std::string& name) const { return *stack.getModel(stack.findModel(name)); }
  ModelItem& item(int i = 0) const { return *slice().getItem(i); }
  Points points(int i = 0) const { return pointsOf(item(i).getVertices()); }
  NYXActionHistory& history() { return stack.sliceHistory(slice()); }
  QString mode() const { return widget.findChild<QLabel*>("editModeField")->text(); }
  QAction& action(const char* name) const { return *widget.findChild<QAction*>(name); }
  std::string file() const { return textOf(stack, folder); }

  /// @{ The mouse, through the window as a user's; positions are those of the image at zoom 1.
  void press(int x, int y, Qt::MouseButton button = Qt::LeftButton, Qt::KeyboardModifiers modifiers = {})
  {
    QTest::mousePress(widget.windowHandle(), button, modifiers, inWindow(x, y));
  }
  void move(int x, int y) { QTest::mouseMove(widget.windowHandle(), inWindow(x, y)); }
  void release(int x, int y, Qt::MouseButton button = Qt::LeftButton)
  {
    QTest::mouseRelease(widget.windowHandle(), button, {}, inWindow(x, y));
  }
  void click(int x, int y, Qt::KeyboardModifiers modifiers = {})
  {
    press(x, y, Qt::LeftButton, modifiers);
    release(x, y);
  }
  void doubleClick(int x, int y) { QTest::mouseDClick(widget.windowHandle(), Qt::LeftButton, {}, inWindow(x, y)); }
  void drag(const Points& way)
  {
    press(way[0][0], way[0][1]);
    for (std::size_t i = 1; i < way.size(); ++i) move(way[i][0], way[i][1]);
    release(way.back()[0], way.back()[1]);
  }
  /// @}
  void tablet(QEvent::Type type, int x, int y)
  {
    const QPointF position(x, y);
    const bool isDown = type != QEvent::TabletRelease;
    QTabletEvent event(type, position, canvas().mapToGlobal(position.toPoint()), QTabletEvent::Stylus,
                       QTabletEvent::Pen, isDown ? 0.5 : 0, 0, 0, 0, 0, 0, Qt::NoModifier, 1,
                       type == QEvent::TabletMove ? Qt::NoButton : Qt::LeftButton,
                       isDown ? Qt::LeftButton : Qt::NoButton);
    QApplication::sendEvent(&canvas(), &event);
    EXPECT_TRUE(event.isAccepted()) << "the mouse would do the same once more";
  }
  /// Without a window manager, nobody makes the window active again when a dialog has gone.
  void key(Qt::Key key, Qt::KeyboardModifiers modifiers = {})
  {
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete); // an earlier dialog
    QApplication::setActiveWindow(&widget);
    canvas().setFocus();
    QTest::keyClick(&canvas(), key, modifiers);
  }
  /// Chooses an entry of a menu that is filled when it is shown.
  void choose(QMenu& menu, const QString& entry)
  {
    emit menu.aboutToShow();
    for (QAction* offered : menu.actions())
      if (offered->text() == entry) return offered->trigger();
    ADD_FAILURE() << "no " << entry.toStdString();
  }
  void draw(const char* name, const Points& clicks)
  {
    choose(mediator().manualMenu(), name);
    for (const auto& point : clicks) click(point[0], point[1]);
    key(Qt::Key_Return);
  }
  void addSelected(const char* name, const Points& vertices)
  {
    addItem(model(name), slice(), vertices).getSelection().set(true);
    mediator().updateEditActions();
  }

  /// The work makes one step, and undo and redo bring back the very same files.
  void expectStep(const std::function<void()>& work)
  {
    const std::string before = file();
    const int numSteps = history().getUndoListSize();
    work();
    const std::string after = file();
    EXPECT_NE(after, before);
    ASSERT_EQ(history().getUndoListSize(), numSteps + 1);
    history().undo();
    EXPECT_EQ(file(), before);
    history().redo();
    EXPECT_EQ(file(), after);
  }
  void expectNoStep(const std::function<void()>& work)
  {
    const std::string before = file();
    const int numSteps = history().getUndoListSize();
    work();
    EXPECT_EQ(file(), before);
    EXPECT_EQ(history().getUndoListSize(), numSteps);
    EXPECT_FALSE(history().isStepOpen());
  }
  void expectIdle()
  {
    EXPECT_EQ(mode(), "READY");
    EXPECT_EQ(canvas().getExtraItem(), nullptr);
    EXPECT_EQ(mediator().activeTool(), nullptr);
    EXPECT_FALSE(history().isStepOpen());
    EXPECT_EQ(canvas().cursor().shape(), Qt::ArrowCursor);
  }

  const std::vector<std::pair<const char*, MPrimitive>> geometries{{"cells", MPrimitive::Polygon},
                                                                   {"fibres", MPrimitive::Polyline},
                                                                   {"spots", MPrimitive::Polypoint},
                                                                   {"tissue", MPrimitive::Region}};
  const Points square{{50, 50}, {150, 50}, {150, 150}, {50, 150}}; // counter-clockwise
  TemporaryFolder folder;
  NYXStack stack;
  NYXSliceImageServer server;
  NYXSliceEditWidget widget;

private:
  std::string writeDisc() const
  {
    Image image(400, 300, 8);
    for (int y = 0; y < 300; ++y)
      for (int x = 0; x < 400; ++x) image.getLine(y)[x] = std::hypot(x - 200, y - 150) <= 40 ? 200 : 50;
    image.writeFile(folder.file("disc.tif"), true);
    return folder.file("disc.tif");
  }
  QPoint inWindow(int x, int y) const { return canvas().mapTo(&widget, QPoint(x, y)); }
  /// A box that nobody expects would stay for ever.
  void closeUnexpectedBox()
  {
    QWidget* const modal = QApplication::activeModalWidget();
    if (modal != nullptr && modal == _modal)
    {
      const auto* const box = qobject_cast<QMessageBox*>(modal);
      ADD_FAILURE() << "unexpected: " << (box ? box->text() : modal->windowTitle()).toStdString();
      modal->close();
    }
    _modal = QApplication::activeModalWidget();
  }

  QTimer _watch;
  QWidget* _modal = nullptr; // at the last look
};
