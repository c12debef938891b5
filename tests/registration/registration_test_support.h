#pragma once

#include "app/core/nyxstack.h"
#include "app/core/nyxstackserver.h"
#include "registration/nyxautomaticregistrationpanel.h"
#include "registration/nyxregistrationcanvas.h"
#include "registration/nyxregistrationmediator.h"
#include "registration/nyxregistrationpanel.h"
#include "registration/nyxregistrationstatusbar.h"
#include "registration/nyxregistrationtoolbar.h"
#include "registration/nyxregistrationview.h"
#include "registration/nyxregistrationwindow.h"
#include "slice/image/nyximagewidgetmediator.h"
#include "slice/image/nyxslicewidgetmediator.h"
#include "tests/support/specimens.h"

#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QDialog>
#include <QLabel>
#include <QMessageBox>
#include <QSettings>
#include <QSignalSpy>
#include <QtTest>

#include <gtest/gtest.h>

/// A registration window, in settings without content, on a stack that closes with it.
class RegistrationTest : public testing::Test
{
protected:
  RegistrationTest()
  {
    QSettings().clear();
    stack = &NYXStackServer::server().addStack(std::make_unique<NYXStack>());
    window = std::make_unique<NYXRegistrationWindow>();
    window->resize(900, 600);
  }

  ~RegistrationTest() override
  {
    window.reset();
    NYXStackServer& server = NYXStackServer::server();
    while (server.getNumStacks() > 0) server.removeStack(server.getStack(0));
  }

  /// Slices on which the specimen turns by 30 degrees and moves; then shows the window.
  void open(int numSlices)
  {
    for (int k = 0; k < numSlices; ++k)
      addSpecimenSlice(*stack, {200, 200, 1, 1, 2}, {100.0 + 7 * k % 20, 100.0 - 5 * k % 15, 30.0 * k});
    show();
  }

  void show()
  {
    window->setStack(stack);
    window->show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(window.get()));
    const auto isShown = [&]
    {
      return mediator().getSlice() == nullptr ||
             (canvas().getImageProxy().hasImage() && canvas().getPreviousProxy().hasImage());
    };
    ASSERT_TRUE(QTest::qWaitFor(isShown));
  }

  NYXRegistrationMediator& mediator() const { return window->mediator(); }
  NYXRegistrationCanvas& canvas() const { return window->view().registrationCanvas(); }
  template <class Widget> Widget& part(const QString& name) const
  {
    auto* const found = window->findChild<Widget*>(name);
    if (found == nullptr) throw std::runtime_error(name.toStdString());
    return *found;
  }
  QAction& action(const QString& name) const { return part<QAction>(name); }

  /// Presses a button of the canvas, moves through positions and lets the button go.
  void drag(Qt::MouseButton button, const std::vector<QPoint>& positions) const
  {
    QTest::mousePress(&canvas(), button, {}, positions.front());
    for (const QPoint& position : positions)
    {
      QMouseEvent move(QEvent::MouseMove, position, Qt::NoButton, button, {});
      QApplication::sendEvent(&canvas(), &move);
    }
    QTest::mouseRelease(&canvas(), button, {}, positions.back());
  }

  /// Clicks the button in the message boxes that appear meanwhile. \return their texts
  static QStringList answering(QMessageBox::StandardButton answer, const std::function<void()>& work)
  {
    QStringList texts;
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout,
                     [&]
                     {
                       auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
                       if (box == nullptr) return;
                       texts << box->text();
                       QAbstractButton* button = box->button(answer);
                       button != nullptr ? button->click() : box->reject();
                     });
    timer.start(5);
    work();
    return texts;
  }

  NYXStack* stack;
  std::unique_ptr<NYXRegistrationWindow> window;
};
