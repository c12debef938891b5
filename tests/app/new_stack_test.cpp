#include "app/core/nyxstack.h"
#include "app/core/nyxstackserver.h"
#include "app/nyxnewstackdialog.h"
#include "app/nyxrootwindow.h"
#include "app/nyxslicelistwidget.h"
#include "app/nyxstackio.h"
#include "model/stackslice.h"
#include "tests/support/temporaryfolder.h"
#include "tests/support/tifffiles.h"
#include "window_test_support.h"

#include <gtest/gtest.h>

#include <QAction>
#include <QDialogButtonBox>
#include <QDoubleSpinBox>
#include <QFileDialog>
#include <QFileInfo>
#include <QListWidget>
#include <QProgressDialog>
#include <QPushButton>
#include <QStatusBar>
#include <QTest>

#include <cmath>

namespace
{
QString image(const TemporaryFolder& folder, const char* name, int planes = 1)
{
  TiffRecipe{.planes = planes}.write(folder.file(name));
  return QString::fromStdString(folder.file(name));
}

QStringList slicesOf(const NYXStack& stack)
{
  QStringList names;
  for (int i = 0; i < stack.getNumSlices(); ++i) names.append(QString::fromStdString(stack.getSlice(i)->getName()));
  return names;
}

/// Chooses files in the file dialogs of this object name, accepts dialogs for a number with the given one, and accepts
/// all others.
std::function<void(QDialog&)> choosing(const QStringList& files, double number, QStringList& seen)
{
  return [=, &seen](QDialog& dialog)
  {
    seen.append(dialog.windowTitle());
    if (auto* fileDialog = qobject_cast<QFileDialog*>(&dialog))
      for (const QString& file : files) fileDialog->selectFile(file);
    if (auto* input = dialog.findChild<QDoubleSpinBox*>())
    {
      input->selectAll();
      QTest::keyClicks(input, QString::number(number));
    }
    if (auto* newStack = qobject_cast<NYXNewStackDialog*>(&dialog)) newStack->addFiles(files);
    QMetaObject::invokeMethod(&dialog, "accept", Qt::QueuedConnection);
  };
}
} // namespace

TEST(NewStackDialog, KeepsTheFilesInTheOrderThatTheUserWants)
{
  NYXNewStackDialog dialog;
  auto* const ok = dialog.findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Ok);
  auto* const list = dialog.findChild<QListWidget*>("imageFiles");
  EXPECT_FALSE(ok->isEnabled());
  dialog.addFiles({"/a/1.tif", "/a/2.tif", "/a/3.tif"});
  EXPECT_TRUE(ok->isEnabled());
  list->setCurrentRow(2);
  click(dialog, "Up");
  EXPECT_EQ(dialog.getFiles(), QStringList({"/a/1.tif", "/a/3.tif", "/a/2.tif"}));
  list->setCurrentRow(0);
  click(dialog, "Up"); // is first already
  click(dialog, "Remove");
  EXPECT_EQ(dialog.getFiles(), QStringList({"/a/3.tif", "/a/2.tif"}));
}

TEST(NewStack, IsMadeOfImagesAndAskedForItsSpacing)
{
  WindowTest test;
  const TemporaryFolder folder;
  const QStringList files = {image(folder, "b.tif"), image(folder, "a.tif")};
  QStringList seen;
  QLocale::setDefault(QLocale::German); // whose point stands between groups of digits
  inDialogs(choosing(files, 2.5, seen), [&] { test.action("New stack")->trigger(); });
  EXPECT_EQ(seen, QStringList({"New stack", "Slice spacing"}));
  QLocale::setDefault(QLocale::c());
  ASSERT_EQ(NYXStackServer::server().getNumStacks(), 1);
  NYXStack& stack = NYXStackServer::server().getStack(0);
  EXPECT_EQ(slicesOf(stack), QStringList({"b", "a"}));
  EXPECT_EQ(stack.getSlice(1)->getAbsolutePosition(), 2.5f);
  EXPECT_TRUE(stack.isModified() && stack.getFilename().isEmpty());
}

TEST(NewStack, OfOneFileHasItsPlanes)
{
  WindowTest test;
  const TemporaryFolder folder;
  const QString file = image(folder, "stack.tif", 3);
  QStringList seen;
  inDialogs(choosing({file}, 4, seen), [&] { test.action("New stack from file")->trigger(); });
  EXPECT_EQ(seen, QStringList({"Open image stack", "Slice spacing"}));
  ASSERT_EQ(NYXStackServer::server().getNumStacks(), 1);
  EXPECT_EQ(slicesOf(NYXStackServer::server().getStack(0)), QStringList({"000", "001", "002"}));
  EXPECT_EQ(test.window().windowTitle(), "Mirelo - stack");

  const QString text = QString::fromStdString(folder.write("text.tif", "no image"));
  EXPECT_EQ(answering({QMessageBox::Ok}, [&] { NYXStackIO(&test.window()).newStackFromFile(text); }),
            QStringList("File format error|" + text + " cannot be read."));
  inDialogs([](QDialog& dialog) { dialog.reject(); }, [&] { NYXStackIO(&test.window()).newStackFromFile(file); });
  EXPECT_EQ(NYXStackServer::server().getNumStacks(), 1);
}

TEST(NewStack, AndNewSlicesAreNotMadeWhenCancelIsPressedAtTheVeryEnd)
{
  WindowTest test;
  const TemporaryFolder folder;
  const QStringList files = {image(folder, "a.tif")};
  auto& statusBar = *test.window().findChild<QStatusBar*>();
  statusBar.clearMessage();
  int numCancelled = 0;
  const auto cancelAtTheEnd = [&](const QString& message)
  {
    if (!message.isEmpty()) return;
    for (QProgressDialog* dialog : test.window().findChildren<QProgressDialog*>())
    {
      ++numCancelled;
      emit dialog->canceled();
    }
  };
  const auto connection = QObject::connect(&statusBar, &QStatusBar::messageChanged, cancelAtTheEnd);
  QStringList seen;
  inDialogs(choosing(files, 1, seen), [&] { test.action("New stack")->trigger(); });
  EXPECT_EQ(NYXStackServer::server().getNumStacks(), 0);
  NYXStack& stack = addStack("empty", {}, false);
  statusBar.clearMessage();
  inDialogs(choosing(files, 1, seen), [&] { test.action("Insert slice...")->trigger(); });
  EXPECT_EQ(stack.getNumSlices(), 0);
  EXPECT_EQ(numCancelled, 2);
  QObject::disconnect(connection);
}

TEST(Slices, AreInsertedAndDeletedInTheWindowAndThatIsUndone)
{
  WindowTest test;
  const TemporaryFolder folder;
  QStringList seen;
  const QString planes = image(folder, "stack.tif", 3);
  inDialogs(choosing({planes}, 4, seen), [&] { NYXStackIO(&test.window()).newStackFromFile(planes); });
  NYXStack& stack = NYXStackServer::server().getStack(0);
  auto* const list = test.window().findChild<QListWidget*>("sliceList");
  list->setCurrentRow(1);
  seen.clear();
  inDialogs(choosing({image(folder, "new.tif")}, 0, seen), [&] { test.action("Insert slice...")->trigger(); });
  EXPECT_EQ(seen, QStringList("Select image files"));
  const QStringList inserted = {"000", "new", "001", "002"};
  EXPECT_EQ(slicesOf(stack), inserted);
  ASSERT_EQ(list->count(), 4);
  EXPECT_EQ(list->item(1)->text(), "new");

  list->setCurrentRow(3);
  test.action("Delete slice")->trigger();
  EXPECT_EQ(slicesOf(stack), QStringList({"000", "new", "001"}));
  EXPECT_EQ(list->count(), 3);
  auto* const undo = test.window().findChild<QAction*>("Undo");
  auto* const redo = test.window().findChild<QAction*>("Redo");
  EXPECT_TRUE(undo->text().startsWith("Undo: Delete slice")) << undo->text().toStdString();
  undo->trigger();
  EXPECT_EQ(slicesOf(stack), inserted);
  undo->trigger();
  EXPECT_EQ(slicesOf(stack), QStringList({"000", "001", "002"}));
  EXPECT_FALSE(undo->isEnabled());
  redo->trigger();
  redo->trigger();
  EXPECT_EQ(slicesOf(stack), QStringList({"000", "new", "001"}));
  EXPECT_FALSE(redo->isEnabled());
}

TEST(Slices, ThatAreTheFirstOnesGiveTheStackTheirUnitAndAreAskedForASpacing)
{
  WindowTest test;
  const TemporaryFolder folder;
  TiffRecipe{.resolutionUnit = RESUNIT_CENTIMETER, .xResolution = 20000.f, .yResolution = 20000.f}.write(
      folder.file("half-micron.tif"));
  const QString file = QString::fromStdString(folder.file("half-micron.tif"));
  NYXStack& stack = addStack("emptied", {}, false);
  stack.convertLengthUnit(-9);
  QStringList seen;
  for (int i = 0; i < 2; ++i)
    inDialogs(choosing({file}, 2.5, seen), [&] { test.action("Insert slice...")->trigger(); });
  EXPECT_EQ(seen, QStringList({"Select image files", "Select image files", "Slice spacing"}));
  ASSERT_EQ(stack.getNumSlices(), 2);
  const LengthUnit& unit = stack.getLengthUnit();
  for (int i = 0; i < 2; ++i)
  {
    EXPECT_EQ(stack.getSlice(i)->getPixelCalibration().getLengthUnit(), unit);
    EXPECT_NEAR(stack.getSlice(i)->getPixelCalibration().getPixelWidth() * std::pow(10., unit.getScale()), 5e-7, 1e-12);
  }
  EXPECT_EQ(stack.getSlice(1)->getAbsolutePosition(), 2.5f);
  auto* const undo = test.window().findChild<QAction*>("Undo");
  EXPECT_EQ(undo->text(), "Undo: Insert slice");
  for (int i = 0; i < 2; ++i) undo->trigger();
  EXPECT_EQ(stack.getNumSlices(), 0);
  EXPECT_EQ(stack.getLengthUnit().getScale(), -9);
  EXPECT_EQ(stack.getDefaultSliceSpacing(), 0);
}

TEST(StackSaving, AsksBeforeDigitsOfLengthsAreLost)
{
  const struct
  {
    const char* button;
    bool isSaved;
    int scale;
  } cases[] = {{"Cancel", false, -6}, {"Convert to nanometer", true, -9}, {"Keep micrometer, lose digits", true, -6}};
  for (const auto& [button, isSaved, scale] : cases)
  {
    SCOPED_TRACE(button);
    WindowTest test;
    const TemporaryFolder folder;
    NYXStack& stack = addStack("fine", QString::fromStdString(folder.file("fine.sdf")), true);
    PixelCalibration calibration = stack.getDefaultPixelCalibration();
    calibration.clearFlags();
    calibration.setPixelWidth(0.0645f);
    calibration.setAspectRatio(1);
    calibration.compute();
    stack.setDefaultPixelCalibration(calibration);
    int numQuestions = 0;
    const auto save = [&]
    {
      inDialogs(
          [&](QDialog& dialog)
          {
            ++numQuestions;
            click(dialog, button);
          },
          [&] { NYXStackIO(&test.window()).saveStack(stack); });
    };
    save();
    EXPECT_EQ(numQuestions, 1);
    EXPECT_EQ(QFileInfo::exists(stack.getFilename()), isSaved);
    EXPECT_EQ(stack.getLengthUnit().getScale(), scale);
    EXPECT_FLOAT_EQ(stack.getDefaultPixelCalibration().getPixelWidth(), scale == -9 ? 64.5f : 0.0645f);
    if (!isSaved) continue;
    save();
    EXPECT_EQ(numQuestions, 1);
    if (scale == -9) test.window().findChild<QAction*>("Undo")->trigger();
    EXPECT_EQ(stack.getDefaultPixelCalibration(), calibration);
  }
}

TEST(StackSaving, AsksBeforeItReplacesWhatIsNotInTheStack)
{
  const TemporaryFolder folder;
  const QString file = QString::fromStdString(folder.write("a.sdf", "STACK \"a\";\nSLICE \"0\" \"a.tif\";\n"));
  const QString partly = QString::fromStdString(folder.write("b.sdf", "STACK \"b\";\nNOSUCHTHING 3;\n"));
  WindowTest test;
  NYXStackIO io(&test.window());
  io.openStack(file);
  inDialogs([](QDialog& dialog) { dialog.accept(); }, [&] { io.openStack(partly); }); // the reading log
  ASSERT_EQ(NYXStackServer::server().getNumStacks(), 2);
  NYXStack &whole = NYXStackServer::server().getStack(0), &rest = NYXStackServer::server().getStack(1);
  EXPECT_EQ(answering({}, [&] { EXPECT_TRUE(io.saveStack(whole)); }), QStringList());
  folder.write("a.sdf", "STACK \"written by another program\";\n");
  EXPECT_EQ(answering({QMessageBox::Cancel}, [&] { EXPECT_FALSE(io.saveStack(whole)); }),
            QStringList("Saving stack|" + file + " has changed on disk since it was read or saved here."));
  EXPECT_EQ(contentOf(folder.file("a.sdf")), "STACK \"written by another program\";\n");
  EXPECT_EQ(answering({QMessageBox::Save}, [&] { EXPECT_TRUE(io.saveStack(rest)); }),
            QStringList("Saving stack|Not all of " + partly + " could be read."));
  EXPECT_EQ(answering({}, [&] { EXPECT_TRUE(io.saveStack(rest)); }), QStringList());
}
