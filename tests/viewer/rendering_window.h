#pragma once

#include "app/core/nyxstack.h"
#include "app/core/nyxstackserver.h"
#include "tests/support/stacks.h"
#include "viewer/nyxrenderingwindow.h"
#include "viewer/nyxscenemodels.h"
#include "viewer/viewercanvasgl.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QSettings>
#include <QTest>

/// The 3D window of a stack of five slices with two tubes of square contours, beside each other.
class RenderingWindow : public testing::Test
{
protected:
  RenderingWindow() : stack(makeStack())
  {
    QSettings().clear();
    open();
  }
  ~RenderingWindow() override
  {
    NYXStackServer& server = NYXStackServer::server();
    while (server.getNumStacks() > 0) server.removeStack(server.getStack(0));
  }

  void open()
  {
    window = &NYXRenderingWindow::showFor(stack, 0);
    EXPECT_TRUE(QTest::qWaitForWindowExposed(window));
    QApplication::setActiveWindow(window);
    window->canvas().setFocus();
    waitUntilBuilt();
  }
  void waitUntilBuilt()
  {
    EXPECT_TRUE(QTest::qWaitFor([this] { return !window->models().isStale() && !window->models().isRunning(); }));
  }
  PainterGL<float>* painterOf(const char* name) const
  {
    for (PainterGL<float>* painter : window->canvas().getPainters())
      if (painter->getName() == name) return painter;
    return nullptr;
  }
  Model& model(int i) { return *stack.getModel(i); }
  ModelItem& item(int slice, int i) { return *stack.getSlice(slice)->getItems()[static_cast<std::size_t>(i)]; }

  NYXStack& stack;
  NYXRenderingWindow* window = nullptr;

private:
  static NYXStack& makeStack()
  {
    auto stack = std::make_unique<NYXStack>();
    stack->setName("tubes");
    stack->setDefaultRelativePosition(10);
    Model& left = addModel(*stack, "left", MPrimitive::Polygon);
    Model& right = addModel(*stack, "right", MPrimitive::Polygon);
    for (int k = 0; k < 5; ++k)
    {
      StackSlice& slice = addSlice(*stack, 100, 100);
      addItem(left, slice, {{10, 40}, {30, 40}, {30, 60}, {10, 60}});
      addItem(right, slice, {{70, 40}, {90, 40}, {90, 60}, {70, 60}});
    }
    return NYXStackServer::server().addStack(std::move(stack));
  }
};
