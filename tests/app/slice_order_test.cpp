// The order of slices is changed in the window, and the selection follows its slice.
#include "app/core/actions/nyxsliceinsertiondeletionaction.h"
#include "app/core/actions/nyxsliceorderaction.h"
#include "app/core/nyxactionstep.h"
#include "app/core/nyxeventbatch.h"
#include "app/core/nyxstack.h"
#include "app/core/nyxstackserver.h"
#include "app/nyxrootwindow.h"
#include "tests/support/stacks.h"
#include "window_test_support.h"

#include <gtest/gtest.h>

#include <QAction>
#include <QApplication>
#include <QLineEdit>
#include <QListWidget>

namespace
{
NYXStack& addStackOf(int numSlices)
{
  auto made = std::make_unique<NYXStack>();
  for (int i = 0; i < numSlices; ++i) addSlice(*made, 100, 80);
  made->setModified(false);
  return NYXStackServer::server().addStack(std::move(made));
}

struct SliceOrder : testing::Test
{
  SliceOrder() : stack(addStackOf(5)) {}

  static QListWidget& listOf(const NYXRootWindow& window) { return *window.findChild<QListWidget*>("sliceList"); }
  QListWidget& list() { return listOf(test.window()); }
  void trigger(const char* action) { test.window().findChild<QAction*>(action)->trigger(); }

  /// The last digits of the names, in the order of the stack, which the list must show, too.
  std::string order()
  {
    std::string digits, listed;
    for (int i = 0; i < stack.getNumSlices(); ++i) digits += stack.getSlice(i)->getName().back();
    for (int i = 0; i < list().count(); ++i) listed += list().item(i)->text().toStdString().back();
    EXPECT_EQ(listed, digits);
    return digits;
  }
  char selected(const QListWidget& in)
  {
    return in.currentItem() ? in.currentItem()->text().toStdString().back() : '-';
  }
  char selected() { return selected(list()); }

  /// As the view moves a row that was dropped before another one.
  void drag(int row, int before)
  {
    list().setCurrentRow(row);
    list().model()->moveRow({}, row, {}, before);
    QApplication::processEvents();
  }

  WindowTest test;
  NYXStack& stack;
};

TEST_F(SliceOrder, IsChangedByActionsInOneStep)
{
  const struct
  {
    const char* action;
    int row;
    const char* order; // nullptr: there is no such place
  } cases[] = {
      {"Move slice up", 3, "01324"},   {"Move slice up", 1, "10234"},   {"Move slice up", 0, nullptr},
      {"Move slice down", 0, "10234"}, {"Move slice down", 3, "01243"}, {"Move slice down", 4, nullptr},
  };
  for (const auto& c : cases)
  {
    SCOPED_TRACE(std::string(c.action) + " " + std::to_string(c.row));
    list().setCurrentRow(c.row);
    const char moved = selected();
    EXPECT_EQ(test.window().findChild<QAction*>(c.action)->isEnabled(), c.order != nullptr);
    if (!c.order) continue;
    trigger(c.action);
    EXPECT_EQ(order(), c.order);
    EXPECT_EQ(selected(), moved);
    EXPECT_EQ(stack.history().getUndoListSize(), 1);
    list().setCurrentRow(2);
    trigger("Undo");
    EXPECT_EQ(order(), "01234");
    EXPECT_EQ(selected(), moved);
  }
}

TEST_F(SliceOrder, IsChangedByDragging)
{
  EXPECT_EQ(list().dragDropMode(), QAbstractItemView::InternalMove);
  const struct
  {
    int row, before;
    const char* order;
  } cases[] = {{0, 2, "10234"}, {0, 5, "12340"}, {4, 0, "40123"}, {3, 1, "03124"}};
  for (const auto& c : cases)
  {
    SCOPED_TRACE(c.order);
    drag(c.row, c.before);
    EXPECT_EQ(order(), c.order);
    EXPECT_EQ(selected(), '0' + c.row);
    EXPECT_EQ(stack.history().getUndoListSize(), 1);
    trigger("Undo");
    EXPECT_EQ(order(), "01234");
  }
}

TEST_F(SliceOrder, CannotBeDraggedWhileTheListIsFiltered)
{
  auto& filter = *test.window().findChild<QLineEdit*>("sliceFilter");
  filter.setText("slice");
  EXPECT_EQ(list().dragDropMode(), QAbstractItemView::NoDragDrop);
  EXPECT_TRUE(list().item(0)->toolTip().contains("Clear the filter to change the order"));
  filter.clear();
  EXPECT_EQ(list().dragDropMode(), QAbstractItemView::InternalMove);
  EXPECT_FALSE(list().item(0)->toolTip().contains("Clear the filter"));
}

TEST_F(SliceOrder, TheSelectionFollowsItsSlice)
{
  list().setCurrentRow(3);
  const auto& history = stack.history();
  stack.history().pushStep(std::make_unique<NYXSliceOrderAction>(*stack.getSlice(0), 4)); // by someone else
  EXPECT_EQ(order(), "12340");
  EXPECT_EQ(selected(), '3');
  stack.history().pushStep(std::make_unique<NYXSliceInsertionDeletionAction>(*stack.getSlice(0)));
  EXPECT_EQ(selected(), '3');
  stack.history().undo();
  stack.history().undo();
  EXPECT_EQ(order(), "01234");
  EXPECT_EQ(selected(), '3');
  EXPECT_EQ(history.getUndoListSize(), 0);
}

TEST_F(SliceOrder, TheListStaysWhereItWasScrolledTo)
{
  addStackOf(200);
  QApplication::processEvents();
  list().setCurrentRow(120);
  list().scrollToItem(list().item(120), QAbstractItemView::PositionAtTop);
  const int top = list().visualItemRect(list().item(120)).top();
  EXPECT_EQ(top, 0);
  trigger("Move slice down");
  EXPECT_EQ(list().currentRow(), 121);
  EXPECT_EQ(list().visualItemRect(list().item(120)).top(), top);
}

TEST_F(SliceOrder, ASliceThatComesBackIsSelectedWhereItWasAskedFor)
{
  const NYXRootWindow second;
  list().setCurrentRow(1);
  listOf(second).setCurrentRow(3);
  trigger("Delete slice");
  EXPECT_EQ(order(), "0234");
  EXPECT_EQ(selected(), '2') << "the next one";
  EXPECT_EQ(selected(listOf(second)), '3');
  list().setCurrentRow(3);
  trigger("Undo");
  EXPECT_EQ(selected(), '1');
  EXPECT_EQ(selected(listOf(second)), '3');
  list().setCurrentRow(4);
  trigger("Redo");
  EXPECT_EQ(order(), "0234");
  EXPECT_EQ(selected(), '4');
}

TEST_F(SliceOrder, OfSeveralSlicesThatComeTheFirstIsSelected)
{
  {
    const NYXEventBatch batch;
    NYXActionStep step(stack.history());
    for (const char* name : {"slice 5", "slice 6"})
    {
      auto slice = std::make_unique<StackSlice>();
      slice->setName(name);
      slice->setImageSource(ImageSourceFile("missing.tif"));
      step.push(std::make_unique<NYXSliceInsertionDeletionAction>(stack, std::move(slice), name[6] - '4'));
    }
  }
  EXPECT_EQ(order(), "0561234");
  EXPECT_EQ(selected(), '0');
  trigger("Undo");
  EXPECT_EQ(selected(), '0');
  trigger("Redo");
  EXPECT_EQ(order(), "0561234");
  EXPECT_EQ(selected(), '5');
}

TEST_F(SliceOrder, EachWindowComesBackToTheSliceThatItShowed)
{
  const NYXRootWindow second;
  addStackOf(4);
  const auto show = [](const NYXRootWindow& window, int stackRow) -> QListWidget&
  {
    window.findChild<QListWidget*>("stackList")->setCurrentRow(stackRow);
    return listOf(window);
  };
  show(test.window(), 0).setCurrentRow(3);
  show(second, 0).setCurrentRow(1);
  EXPECT_EQ(selected(show(test.window(), 1)), '0');
  show(test.window(), 1).setCurrentRow(2);
  show(second, 1);
  stack.history().pushStep(std::make_unique<NYXSliceOrderAction>(*stack.getSlice(3), 0)); // while others are shown
  EXPECT_EQ(selected(show(test.window(), 0)), '3');
  EXPECT_EQ(selected(show(second, 0)), '1');
  EXPECT_EQ(selected(show(test.window(), 1)), '2');
}
} // namespace
