// What the window says of slices that computations have locked, and what it leaves alone.
#include "app/core/actions/nyxslicepropertiesaction.h"
#include "app/core/nyxstack.h"
#include "app/core/nyxstackserver.h"
#include "app/nyxrootstatusbar.h"
#include "app/nyxrootwindow.h"
#include "tests/support/stacks.h"
#include "tests/support/temporaryfolder.h"
#include "window_test_support.h"

#include <gtest/gtest.h>

#include <QAction>
#include <QApplication>
#include <QFileInfo>
#include <QLineEdit>
#include <QListWidget>

namespace
{
struct SliceLocks : testing::Test
{
  SliceLocks()
  {
    auto made = std::make_unique<NYXStack>();
    for (int i = 0; i < 3; ++i) addSlice(*made, 100, 80);
    made->setModified(false);
    stack = &NYXStackServer::server().addStack(std::move(made));
  }

  void lock(int slice, bool isLocked = true)
  {
    stack->notifyEvent(NYXSliceLockEvent(*stack->getSlice(slice), isLocked));
  }

  void rename(int slice, const std::string& name, bool isStackStep)
  {
    StackSlice& renamed = *stack->getSlice(slice);
    NYXSliceProperties properties(renamed);
    properties.name = name;
    NYXActionHistory& history = isStackStep ? stack->history() : stack->sliceHistory(renamed);
    history.pushStep(std::make_unique<NYXSlicePropertiesAction>(renamed, properties));
  }

  static QListWidget& listOf(const NYXRootWindow& window) { return *window.findChild<QListWidget*>("sliceList"); }
  static QAction& actionOf(const NYXRootWindow& window, const char* name) { return *window.findChild<QAction*>(name); }

  WindowTest test;
  NYXStack* stack;
};

const QString reason = "Slice slice 1 is locked: a computation works on it";

void expectLocked(const NYXRootWindow& window, const char* name, bool isLocked)
{
  const QAction& action = *window.findChild<QAction*>(name);
  EXPECT_EQ(action.isEnabled(), !isLocked) << name;
  EXPECT_EQ(action.toolTip() == reason, isLocked) << name << ": " << action.toolTip().toStdString();
}

TEST_F(SliceLocks, DisableWhatWouldChangeThemInEveryWindow)
{
  lock(1);
  const NYXRootWindow second; // opened later
  for (const NYXRootWindow* window : {&std::as_const(test.window()), &second})
    for (const int shown : {1, 0, 2})
    {
      listOf(*window).setCurrentRow(shown);
      for (const char* ofAll : {"Edit models...", "Insert slice...", "Delete slice", "Stack properties...",
                                "Transfer models...", "Filter models..."})
        expectLocked(*window, ofAll, true);
      for (const char* ofShown : {"Slice properties...", "Annotate slice..."})
        expectLocked(*window, ofShown, shown == 1);
      for (const char* free : {"Save stack", "Annotate stack...", "Select first slice"})
        expectLocked(*window, free, false);
    }
  lock(1, false);
  for (const char* name : {"Edit models...", "Delete slice", "Slice properties...", "Filter models..."})
  {
    expectLocked(test.window(), name, false);
    expectLocked(second, name, false);
  }
}

TEST_F(SliceLocks, AreTheReasonWhyAStepCannotBeUndone)
{
  rename(0, "first", true);
  lock(1);
  EXPECT_TRUE(actionOf(test.window(), "Undo").isEnabled()) << "of another slice";
  lock(1, false);
  NYXSliceProperties properties(*stack->getSlice(1));
  properties.annotation = "torn";
  stack->history().pushStep(std::make_unique<NYXSlicePropertiesAction>(*stack->getSlice(1), properties));
  lock(1);
  expectLocked(test.window(), "Undo", true);
  lock(1, false);
  actionOf(test.window(), "Undo").trigger();
  lock(1);
  expectLocked(test.window(), "Redo", true);
}

TEST_F(SliceLocks, AnObstacleIsNamedInTheToolTip)
{
  rename(0, "first", true);
  rename(2, "last", false);
  EXPECT_FALSE(actionOf(test.window(), "Undo").isEnabled());
  EXPECT_EQ(actionOf(test.window(), "Undo").toolTip(), "A step on slice last comes first: go there");
  listOf(test.window()).setCurrentRow(2);
  EXPECT_TRUE(actionOf(test.window(), "Undo").isEnabled());
  EXPECT_TRUE(actionOf(test.window(), "Undo").toolTip().startsWith("Take the last change back"));
}

TEST_F(SliceLocks, AreShownInTheirRowsWhileTheFilterStays)
{
  QListWidget& list = listOf(test.window());
  test.window().findChild<QLineEdit*>("sliceFilter")->setText("1");
  QApplication::processEvents();
  const QRect row = list.visualItemRect(list.item(1));
  const auto picture = [&] { return list.viewport()->grab(row).toImage(); };
  const QImage unlocked = picture();
  lock(1);
  EXPECT_NE(picture(), unlocked);
  EXPECT_TRUE(list.item(1)->toolTip().contains("Locked: a computation works on it"));
  EXPECT_FALSE(list.item(0)->toolTip().contains("Locked"));
  EXPECT_TRUE(list.isRowHidden(0));
  rename(0, "first", true); // lists all anew
  EXPECT_NE(picture(), unlocked);
  const NYXRootWindow second;
  EXPECT_TRUE(listOf(second).item(1)->toolTip().contains("Locked"));
  lock(1, false);
  EXPECT_EQ(picture(), unlocked);
  EXPECT_FALSE(listOf(second).item(1)->toolTip().contains("Locked"));
}

TEST_F(SliceLocks, DoNotLetTheUnitBeChangedForAFile)
{
  const TemporaryFolder folder;
  stack->setFilename(QString::fromStdString(folder.file("fine.sdf")));
  stack->setDefaultRelativePosition(0.0645f); // micrometer
  lock(1);
  QStringList messages;
  const auto answer = [&](QDialog& dialog)
  {
    messages.append(static_cast<QMessageBox&>(dialog).informativeText());
    if (messages.size() == 1) click(dialog, "Convert to nanometer");
    dialog.reject();
  };
  inDialogs(answer, [&] { actionOf(test.window(), "Save stack").trigger(); });
  ASSERT_EQ(messages.size(), 2);
  EXPECT_EQ(messages[1], reason + ".");
  EXPECT_EQ(stack->getLengthUnit().getScale(), -6);
  EXPECT_FALSE(QFileInfo::exists(stack->getFilename()));
}

TEST_F(SliceLocks, RefuseToLetASliceBeDragged)
{
  lock(1);
  QListWidget& list = listOf(test.window());
  list.model()->moveRow({}, 0, {}, 3);
  QApplication::processEvents();
  EXPECT_EQ(list.item(0)->text(), "slice 0");
  EXPECT_EQ(stack->getSlice(0)->getName(), "slice 0");
  EXPECT_EQ(test.window().findChild<NYXRootStatusBar*>()->currentMessage(),
            "Slice slice 1 is locked: a computation works on it.");
}
} // namespace
