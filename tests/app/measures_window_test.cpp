// "Measures" opens the analysis window on the current stack; its rows lead to the editor.
#include "window_test_support.h"

#include "analysis/nyxanalysiswindow.h"
#include "analysis/nyxanalysiswindowmediator.h"
#include "analysis/nyxmeasures.h"
#include "app/core/nyxstack.h"
#include "app/core/nyxstackserver.h"
#include "app/nyxrootwindow.h"
#include "app/nyxslicelistwidget.h"
#include "app/nyxstacklistwidget.h"
#include "model/stackslice.h"
#include "tests/support/stacks.h"

#include <QAction>

#include <gtest/gtest.h>

TEST(MeasuresWindow, FollowsTheCurrentStackAndLeadsToTheEditor)
{
  WindowTest test;
  EXPECT_FALSE(test.action("Measures")->isEnabled());
  NYXStack& first = addStack("first", "", false);
  NYXStack& second = addStack("second", "", false);
  Model& model = addModel(first, "model", MPrimitive::Polygon);
  for (int k = 0; k < 3; ++k) addSlice(first, 100, 100);
  addItem(model, *first.getSlice(2), {{1, 1}, {9, 1}, {9, 9}});
  ModelItem& item = addItem(model, *first.getSlice(2), {{11, 11}, {19, 11}, {19, 19}});
  auto& list = *test.window().findChild<NYXStackListWidget*>();
  list.selectStack(first);
  test.action("Measures")->trigger();
  auto* const window = test.window().findChild<NYXAnalysisWindow*>();
  ASSERT_NE(window, nullptr);
  EXPECT_TRUE(window->isVisible());
  EXPECT_EQ(window->mediator().measures().getStack(), &first);
  emit window->mediator().itemOpened(item);
  EXPECT_EQ(test.window().findChild<NYXSliceListWidget*>()->currentSlice(), 2);
  EXPECT_EQ(first.getSlice(2)->getSelectedItems(), std::vector<ModelItem*>{&item});
  emit window->mediator().sliceOpened(1);
  EXPECT_EQ(test.window().findChild<NYXSliceListWidget*>()->currentSlice(), 1);
  list.selectStack(second);
  EXPECT_EQ(window->mediator().measures().getStack(), &second);
  window->close();
  EXPECT_EQ(window->mediator().measures().getStack(), nullptr) << "nothing is measured while nobody looks";
  test.action("Measures")->trigger();
  EXPECT_EQ(window->mediator().measures().getStack(), &second);
}
