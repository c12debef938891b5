#include "window_test_support.h"

#include "app/core/nyxpreferences.h"
#include "app/core/nyxstack.h"
#include "app/core/nyxstackserver.h"
#include "app/nyxrootmediator.h"
#include "app/nyxrootstatusbar.h"
#include "app/nyxrootwindow.h"
#include "app/nyxstackio.h"
#include "image/imagesourcefile.h"
#include "model/model.h"
#include "model/stackslice.h"
#include "slice/nyxsliceeditwidget.h"
#include "slice/nyxsliceeditwidgetcanvas.h"
#include "slice/nyxsliceeditwidgetmediator.h"
#include "slice/nyxsliceeditwidgetmediatorcreationdelegate.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

namespace
{
int numStacks()
{
  return NYXStackServer::server().getNumStacks();
}

TEST(StackClosing, AsksAboutUnsavedChanges)
{
  const QString question = "Closing stack...|Stack \"cells\" has been modified.";
  const struct
  {
    const char* name;
    bool isModified;
    QList<QMessageBox::StandardButton> answers;
    QStringList boxes;
    bool isClosed;
    bool isSaved;
  } cases[] = {
      {"not modified", false, {}, {}, true, false},
      {"cancel", true, {QMessageBox::Cancel}, {question}, false, false},
      {"ignore", true, {QMessageBox::Ignore}, {question}, true, false},
      {"save", true, {QMessageBox::Save}, {question}, true, true},
  };
  for (const auto& c : cases)
  {
    SCOPED_TRACE(c.name);
    WindowTest test;
    const QTemporaryDir folder;
    NYXStack& stack = addStack("cells", folder.filePath("cells.sdf"), c.isModified);
    bool isClosed = false;
    EXPECT_EQ(answering(c.answers, [&] { isClosed = NYXStackIO(&test.window()).closeStack(stack); }), c.boxes);
    EXPECT_EQ(isClosed, c.isClosed);
    EXPECT_EQ(numStacks(), c.isClosed ? 0 : 1);
    EXPECT_EQ(QFile::exists(folder.filePath("cells.sdf")), c.isSaved);
  }
}

TEST(StackClosing, AFailedSaveCanBeRetriedDiscardedOrCancelled)
{
  const QString nowhere = "/nonexistent-folder/cells.sdf";
  const QString question = "Closing stack...|Stack \"cells\" has been modified.";
  const QString failure = "Write error|Stack cells:\nCould not write file " + nowhere;
  const struct
  {
    QList<QMessageBox::StandardButton> answers;
    QStringList boxes;
    bool isClosed;
  } cases[] = {
      {{QMessageBox::Save, QMessageBox::Discard}, {question, failure}, true},
      {{QMessageBox::Save, QMessageBox::Cancel}, {question, failure}, false},
      {{QMessageBox::Save, QMessageBox::Retry, QMessageBox::Discard}, {question, failure, failure}, true},
  };
  for (const auto& c : cases)
  {
    WindowTest test;
    NYXStack& stack = addStack("cells", nowhere, true);
    bool isClosed = false;
    EXPECT_EQ(answering(c.answers, [&] { isClosed = NYXStackIO(&test.window()).closeStack(stack); }), c.boxes);
    EXPECT_EQ(isClosed, c.isClosed);
    EXPECT_EQ(numStacks(), c.isClosed ? 0 : 1);
  }
}

TEST(StackClosing, CloseAllStopsAtTheFirstCancel)
{
  WindowTest test;
  EXPECT_TRUE(NYXStackIO(&test.window()).closeAll());
  addStack("first", "/a.sdf", false);
  addStack("second", "/b.sdf", true);
  addStack("third", "/c.sdf", false);
  bool areClosed = true;
  answering({QMessageBox::Cancel}, [&] { areClosed = NYXStackIO(&test.window()).closeAll(); });
  EXPECT_FALSE(areClosed);
  EXPECT_EQ(numStacks(), 2); // the third was closed before the second was asked about
}

TEST(StackClosing, ClosingTheOnlyWindowCanBeCancelled)
{
  WindowTest test;
  addStack("cells", "/a.sdf", true);
  answering({QMessageBox::Cancel}, [&] { test.window().close(); });
  EXPECT_TRUE(test.window().isVisible());
  EXPECT_EQ(numStacks(), 1);
  EXPECT_EQ(test.window().findChild<NYXRootStatusBar*>()->currentMessage(), "Exit canceled");
}

TEST(StackClosing, ADrawingThatIsNotFinishedIsAskedAboutToo)
{
  WindowTest test;
  NYXStack& stack = addStack("cells", "/a.sdf", false);
  ImageSourceFile source("missing.tif");
  source.setFallbackSize(200, 300);
  auto slice = std::make_unique<StackSlice>();
  slice->setImageSource(source);
  stack.addSlice(std::move(slice));
  stack.addModel(std::make_unique<Model>("nuclei"));
  test.window().mediator().showCurrentStack();
  auto& canvas = *test.window().findChild<NYXSliceEditWidgetCanvas*>();
  auto& editor = test.window().findChild<NYXSliceEditWidget*>()->editMediator();
  ASSERT_TRUE(canvas.hasSlice());
  editor.creation().activate("nuclei");
  for (const QPoint& point : {QPoint(20, 20), QPoint(60, 20), QPoint(60, 60)})
    QTest::mouseClick(&canvas, Qt::LeftButton, {}, point);
  EXPECT_EQ(answering({QMessageBox::Cancel}, [&] { test.window().close(); }).size(), 1);
  ASSERT_EQ(numStacks(), 1);
  EXPECT_EQ(stack.getSlice(0)->getNumItems(), 1);
}

TEST(StackClosing, TheLastOfTwoWindowsClosedAtOnceAsks)
{
  WindowTest test;
  auto* second = new NYXRootWindow;
  addStack("cells", "/a.sdf", true);
  const QStringList boxes =
      answering({QMessageBox::Cancel},
                [&]
                {
                  second->close();
                  test.window().close(); // the second one is deleted only when the event loop runs again
                });
  EXPECT_EQ(boxes.size(), 1);
  EXPECT_TRUE(test.window().isVisible());
  EXPECT_EQ(numStacks(), 1);
}

TEST(StackSaving, AFailureIsSaidAndLeavesTheStackModified)
{
  WindowTest test;
  NYXStack& stack = addStack("cells", "/nonexistent-folder/cells.sdf", true);
  bool isSaved = true;
  const QStringList boxes =
      answering({QMessageBox::Ok}, [&] { isSaved = NYXStackIO(&test.window()).saveStack(stack); });
  EXPECT_EQ(boxes, QStringList("Error|Error: cannot write to /nonexistent-folder/cells.sdf"));
  EXPECT_FALSE(isSaved);
  EXPECT_TRUE(stack.isModified());
}

TEST(StackSaving, KeepsTheFormerFileAsABackup)
{
  WindowTest test;
  const QTemporaryDir folder;
  const QString file = folder.filePath("cells.sdf");
  NYXPreferences::setMaxNumBackups(3);
  NYXStack& stack = addStack("before", file, true);
  ASSERT_TRUE(NYXStackIO(&test.window()).saveStack(stack));
  EXPECT_FALSE(stack.isModified());
  EXPECT_FALSE(QFile::exists(file + "~1"));
  stack.setName("after");
  ASSERT_TRUE(NYXStackIO(&test.window()).saveStack(stack));
  QFile backup(file + "~1");
  ASSERT_TRUE(backup.open(QIODevice::ReadOnly));
  EXPECT_TRUE(backup.readAll().contains("STACK \"before\";"));
}

TEST(StackSaving, AFailureCostsNoBackup)
{
  WindowTest test;
  const QTemporaryDir folder;
  const QString file = folder.filePath("cells.sdf");
  NYXPreferences::setMaxNumBackups(2);
  NYXStack& stack = addStack("cells", file, true);
  for (const char* name : {"one", "two", "three"})
  {
    stack.setName(name);
    ASSERT_TRUE(NYXStackIO(&test.window()).saveStack(stack));
  }
  const auto firstLine = [&](const QString& name)
  {
    QFile device(name);
    EXPECT_TRUE(device.open(QIODevice::ReadOnly));
    device.readLine();
    return device.readLine().trimmed().toStdString();
  };
  // A path that cannot be stored makes the writer fail when the file is half written.
  auto slice = std::make_unique<StackSlice>();
  slice->setImageSource(ImageSourceFile("bad\nname.tif"));
  stack.addSlice(std::move(slice));
  answering({QMessageBox::Ok}, [&] { EXPECT_FALSE(NYXStackIO(&test.window()).saveStack(stack)); });
  EXPECT_EQ(firstLine(file), "STACK \"three\";");
  EXPECT_EQ(firstLine(file + "~1"), "STACK \"two\";");
  EXPECT_EQ(firstLine(file + "~2"), "STACK \"one\";");
}
} // namespace
