// "Register" opens the registration window on the current stack, and it follows the stack that is chosen.
#include "window_test_support.h"

#include "app/core/nyxstack.h"
#include "app/core/nyxstackserver.h"
#include "app/nyxrootwindow.h"
#include "app/nyxstacklistwidget.h"
#include "model/stackslice.h"
#include "registration/nyxregistrationmediator.h"
#include "registration/nyxregistrationwindow.h"

#include <QAction>
#include <QMessageBox>
#include <QPointer>

#include <gtest/gtest.h>

TEST(RegistrationWindow, OpensOnTheCurrentStackAndFollowsIt)
{
  WindowTest test;
  EXPECT_FALSE(test.action("Register")->isEnabled());
  NYXStack& first = addStack("first", "", false);
  NYXStack& second = addStack("second", "", false);
  auto& list = *test.window().findChild<NYXStackListWidget*>();
  list.selectStack(first);
  ASSERT_TRUE(test.action("Register")->isEnabled());
  test.action("Register")->trigger();
  const auto* window = test.window().findChild<NYXRegistrationWindow*>();
  ASSERT_NE(window, nullptr);
  EXPECT_TRUE(window->isVisible());
  EXPECT_EQ(window->mediator().getStack(), &first);
  list.selectStack(second);
  EXPECT_EQ(window->mediator().getStack(), &second);
  NYXStackServer::server().removeStack(second);
  EXPECT_EQ(window->mediator().getStack(), &first);
}

TEST(RegistrationWindow, AsksForWhatIsNotAppliedBeforeTheStackCloses)
{
  WindowTest test;
  NYXStack& stack = addStack("stack", "", false);
  for (int k = 0; k < 2; ++k) stack.addSlice(std::make_unique<StackSlice>());
  test.window().findChild<NYXStackListWidget*>()->selectStack(stack);
  test.action("Register")->trigger();
  test.window().findChild<NYXRegistrationWindow*>()->mediator().setRegistration(Registration(1, 2, 3));
  // Applied, it is a change that may still be saved.
  const QStringList texts =
      answering({QMessageBox::Apply, QMessageBox::Cancel}, [&] { test.action("Close stack")->trigger(); });
  ASSERT_EQ(texts.size(), 2);
  EXPECT_TRUE(texts[1].contains("has been modified"));
  EXPECT_EQ(NYXStackServer::server().getNumStacks(), 1);
  EXPECT_TRUE(stack.getSlice(1)->getRegistration() == Registration(1, 2, 3));
}

TEST(RegistrationWindow, AsksForWhatIsNotAppliedBeforeItsRootWindowCloses)
{
  WindowTest test;
  NYXStack& stack = addStack("stack", "", false);
  for (int k = 0; k < 2; ++k) stack.addSlice(std::make_unique<StackSlice>());
  auto* const second = new NYXRootWindow;
  second->show();
  second->findChild<NYXStackListWidget*>()->selectStack(stack);
  second->findChild<QAction*>("Register")->trigger();
  second->findChild<NYXRegistrationWindow*>()->mediator().setRegistration(Registration(1, 2, 3));
  const QPointer<NYXRootWindow> window(second);
  EXPECT_EQ(answering({QMessageBox::Cancel}, [&] { second->close(); }).size(), 1);
  ASSERT_TRUE(window && window->isVisible());
  EXPECT_EQ(answering({QMessageBox::Apply}, [&] { second->close(); }).size(), 1);
  EXPECT_TRUE(stack.getSlice(1)->getRegistration() == Registration(1, 2, 3));
}
