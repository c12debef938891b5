// "Register" opens the registration window on the current stack, and it follows the stack that is chosen.
#include "window_test_support.h"

#include "app/core/nyxstack.h"
#include "app/core/nyxstackserver.h"
#include "app/nyxrootwindow.h"
#include "app/nyxstacklistwidget.h"
#include "registration/nyxregistrationmediator.h"
#include "registration/nyxregistrationwindow.h"

#include <QAction>

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
