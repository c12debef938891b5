#include "window_test_support.h"

#include "app/core/nyxsettings.h"
#include "app/core/nyxstack.h"
#include "app/core/nyxstackserver.h"
#include "app/nyxrootmediator.h"
#include "app/nyxrootsliceeditwidget.h"
#include "app/nyxrootstatusbar.h"
#include "app/nyxrootwindow.h"
#include "app/nyxslicelistwidget.h"
#include "app/nyxstackerrordialog.h"
#include "slice/image/nyximageproxy.h"
#include "slice/image/nyximagewidgetcanvas.h"
#include "slice/nyxsliceeditwidget.h"

#include <gtest/gtest.h>

#include <QAction>
#include <QApplication>
#include <QDropEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMenuBar>
#include <QMimeData>
#include <QPlainTextEdit>
#include <QScreen>
#include <QSettings>
#include <QSplitter>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <QToolBar>
#include <QUrl>

namespace
{
QStringList entriesOf(const QMenu& menu)
{
  QStringList texts;
  for (const QAction* action : menu.actions())
  {
    if (!action->isSeparator()) texts.append(action->text() + (action->isEnabled() ? "" : " (off)"));
  }
  return texts;
}

QMenu* menuOf(const NYXRootWindow& window, const QString& title)
{
  for (QAction* action : window.findChild<QMenuBar*>()->actions())
  {
    if (action->text() == title) return action->menu();
  }
  return nullptr;
}

TEST(RootWindow, FirstStartFillsTwoThirdsOfTheDesktop)
{
  WindowTest test;
  const QSize desktop = QGuiApplication::primaryScreen()->size();
  EXPECT_EQ(test.window().width(), qRound(desktop.width() * 2 / 3.0));
  EXPECT_EQ(test.window().height(), qRound(desktop.height() * 2 / 3.0));
  EXPECT_EQ(test.window().windowTitle(), "Mirelo");
  EXPECT_EQ(test.window().findChild<NYXRootStatusBar*>()->currentMessage(), "Ready.");
  EXPECT_TRUE(test.window().acceptDrops());
  for (const char* part : {"rootToolBar", "rootBrowser", "rootStatusBar", "startPage"})
    EXPECT_TRUE(test.window().findChild<QWidget*>(part)->isVisible()) << part;
}

TEST(RootWindow, MenusHaveTheirEntries)
{
  WindowTest test;
  QStringList titles;
  for (const QAction* action : test.window().findChild<QMenuBar*>()->actions()) titles.append(action->text());
  EXPECT_EQ(titles, QStringList({"File", "Edit", "Process", "Analyze", "Plugins", "Show", "Help"}));

  const struct
  {
    const char* menu;
    QStringList entries;
  } cases[] = {
      {"File",
       {"New window", "Close window", "New stack", "New stack from file", "Open stack", "Recent stacks...",
        "Save stack (off)", "Save stack as... (off)", "Close stack (off)", "Close all (off)", "Quit"}},
      {"Edit",
       {"Undo (off)", "Redo (off)", "Display stack panorama (off)", "Display single slice (off)",
        "Display overview (off)", "Select first slice (off)", "Select last slice (off)", "Select next slice (off)",
        "Select previous slice (off)", "Edit models... (off)", "Insert slice... (off)", "Delete slice (off)",
        "Move slice up (off)", "Move slice down (off)", "Stack properties... (off)", "Slice properties... (off)",
        "Annotate stack... (off)", "Annotate slice... (off)", "Preferences..."}},
      {"Process",
       {"Register (off)", "Reconstruct (off)", "Image processing (off)", "Find spots (off)", "Normalize (off)",
        "Transfer models... (off)", "Filter models... (off)"}},
      {"Analyze", {"Measures (off)", "Spatial analysis"}},
      {"Plugins", {"Refresh"}},
      {"Show", {"Tool bar", "Browser", "Status bar"}},
      {"Help",
       {"Mirelo Homepage [web] (off)", "Mirelo Manual [web] (off)", "Subscribe mailing list [web] (off)",
        "About Mirelo"}},
  };
  for (const auto& c : cases) EXPECT_EQ(entriesOf(*menuOf(test.window(), c.menu)), c.entries) << c.menu;
}

TEST(RootWindow, ActionsFollowTheCurrentStack)
{
  WindowTest test;
  for (const char* text : {"Save stack", "Save stack as...", "Close stack", "Close all", "Select next slice"})
  {
    EXPECT_FALSE(test.action(text)->isEnabled()) << text;
    EXPECT_EQ(test.action(text)->toolTip(), "Open a stack first") << text;
  }
  NYXStack& stack = addStack("cells", "/a.sdf", false);
  for (const char* text : {"Save stack", "Save stack as...", "Close stack", "Close all", "Select next slice"})
    EXPECT_TRUE(test.action(text)->isEnabled()) << text;
  EXPECT_EQ(test.action("Save stack")->toolTip(), "Save the current stack to its file (Ctrl+S)");
  EXPECT_EQ(test.window().windowTitle(), "Mirelo - cells");
  stack.setModified(true);
  EXPECT_EQ(test.window().findChild<QListWidget*>("stackList")->item(0)->text(), "cells*");
  EXPECT_EQ(test.window().findChild<QLabel*>("stackField")->text(), "cells*");

  addStack("others", "/b.sdf", false);
  EXPECT_EQ(test.window().windowTitle(), "Mirelo - others");
  NYXStackServer::server().removeStack(NYXStackServer::server().getStack(1));
  EXPECT_EQ(test.window().windowTitle(), "Mirelo - cells");
  stack.setModified(false);
  test.action("Close stack")->trigger();
  EXPECT_EQ(test.window().windowTitle(), "Mirelo");
  EXPECT_FALSE(test.action("Save stack")->isEnabled());
  EXPECT_TRUE(test.window().findChild<QWidget*>("startPage")->isVisible());
}

TEST(RootWindow, PartsAreToggledAndRemembered)
{
  const struct
  {
    const char* entry;
    const char* part;
    const char* key;
  } cases[] = {
      {"Tool bar", "rootToolBar", "rootWindow/toolBarVisible"},
      {"Browser", "rootBrowser", "rootWindow/browserVisible"},
      {"Status bar", "rootStatusBar", "rootWindow/statusBarVisible"},
  };
  for (const auto& c : cases)
  {
    SCOPED_TRACE(c.entry);
    WindowTest test;
    test.action(c.entry)->trigger();
    EXPECT_FALSE(test.window().findChild<QWidget*>(c.part)->isVisible());
    EXPECT_FALSE(QSettings().value(c.key).toBool());
    NYXRootWindow second; // a window made now starts as the settings say
    EXPECT_FALSE(second.findChild<QWidget*>(c.part)->isVisible());
    test.action(c.entry)->trigger();
    EXPECT_TRUE(test.window().findChild<QWidget*>(c.part)->isVisible());
    EXPECT_TRUE(QSettings().value(c.key).toBool());
  }
}

TEST(RootWindow, KeepsItsPlace)
{
  WindowTest test;
  test.window().resize(700, 500);
  test.window().move(40, 60);
  test.window().findChild<QSplitter*>("rootWindowSplitter")->setSizes({300, 400});
  emit test.window().findChild<QSplitter*>("rootWindowSplitter")->splitterMoved(300, 1);
  QApplication::processEvents();
  NYXRootWindow second;
  EXPECT_EQ(second.size(), QSize(700, 500));
  EXPECT_EQ(second.pos(), test.window().pos());
  QApplication::processEvents();
  EXPECT_EQ(second.findChild<QSplitter*>("rootWindowSplitter")->sizes(),
            test.window().findChild<QSplitter*>("rootWindowSplitter")->sizes());
}

TEST(RootWindow, OpensStackFilesAndShowsTheirSlices)
{
  WindowTest test;
  test.window().startupOpenStack(MIRELO_EXAMPLE);
  ASSERT_EQ(NYXStackServer::server().getNumStacks(), 1);
  const Stack& stack = NYXStackServer::server().getStack(0);
  auto& slices = *test.window().findChild<NYXSliceListWidget*>();
  auto& canvas = test.window().findChild<NYXRootSliceEditWidget*>()->sliceWidget().canvas();
  EXPECT_EQ(slices.numSlices(), stack.getNumSlices());
  EXPECT_EQ(slices.currentSlice(), 0);
  EXPECT_EQ(canvas.viewport().getImageSize(), QSize(256, 256));
  EXPECT_TRUE(QTest::qWaitFor([&] { return canvas.getImageProxy().hasImage(); }));
  EXPECT_EQ(NYXSettings::settings().getRecentFilesList().first(), QString(MIRELO_EXAMPLE));

  test.action("Select next slice")->trigger();
  EXPECT_EQ(slices.currentSlice(), 1);
  test.action("Select last slice")->trigger();
  EXPECT_EQ(slices.currentSlice(), stack.getNumSlices() - 1);
  test.action("Select next slice")->trigger();
  EXPECT_EQ(slices.currentSlice(), stack.getNumSlices() - 1);
  test.action("Select first slice")->trigger();
  test.action("Select previous slice")->trigger();
  EXPECT_EQ(slices.currentSlice(), 0);
}

TEST(RootWindow, NavigationKeepsToTheSlicesThatTheFilterShows)
{
  WindowTest test;
  test.window().startupOpenStack(MIRELO_EXAMPLE);
  auto& slices = *test.window().findChild<NYXSliceListWidget*>();
  test.window().findChild<QLineEdit*>("sliceFilter")->setText("5"); // 005, 015 and 025
  EXPECT_EQ(slices.currentSlice(), 5);                              // what is not seen is not worked on
  const struct
  {
    const char* action;
    int slice;
  } steps[] = {{"Select next slice", 15},
               {"Select last slice", 25},
               {"Select next slice", 25},
               {"Select first slice", 5},
               {"Select previous slice", 5}};
  for (const auto& step : steps)
  {
    test.action(step.action)->trigger();
    EXPECT_EQ(slices.currentSlice(), step.slice) << step.action;
  }
  test.window().findChild<QLineEdit*>("sliceFilter")->setText("no such slice");
  EXPECT_EQ(slices.currentSlice(), -1);
  EXPECT_FALSE(test.action("Delete slice")->isEnabled());
}

TEST(RootWindow, DroppedFilesAreOpenedInOrder)
{
  WindowTest test;
  const QTemporaryDir folder;
  QMimeData files;
  const QString copy = folder.filePath("copy.sdf");
  ASSERT_TRUE(QFile::copy(MIRELO_EXAMPLE, copy));
  files.setUrls({QUrl::fromLocalFile(MIRELO_EXAMPLE), QUrl::fromLocalFile(copy)});
  QDragEnterEvent enter(QPoint(10, 10), Qt::CopyAction, &files, Qt::LeftButton, Qt::NoModifier);
  QApplication::sendEvent(&test.window(), &enter);
  EXPECT_TRUE(enter.isAccepted());
  QDropEvent drop(QPointF(10, 10), Qt::CopyAction, &files, Qt::LeftButton, Qt::NoModifier);
  QApplication::sendEvent(&test.window(), &drop);
  EXPECT_EQ(NYXStackServer::server().getNumStacks(), 0); // who drops the files does not wait
  ASSERT_TRUE(QTest::qWaitFor([] { return NYXStackServer::server().getNumStacks() == 2; }));
  EXPECT_EQ(NYXStackServer::server().getStack(1).getFilename(), copy);
  // The copy lies apart from its images: the slice says so in place of its image.
  auto& canvas = test.window().findChild<NYXRootSliceEditWidget*>()->sliceWidget().canvas();
  EXPECT_TRUE(QTest::qWaitFor([&] { return canvas.getImageProxy().problem().contains("slice-00"); }));
}

TEST(RootWindow, BadFilesOpenNothingAndAreNamed)
{
  const QTemporaryDir folder;
  const auto file = [&](const char* name, const QByteArray& text)
  {
    QFile device(folder.filePath(name));
    EXPECT_TRUE(device.open(QIODevice::WriteOnly));
    device.write(text);
    return device.fileName();
  };
  const struct
  {
    const char* name;
    QString file;
    bool opens;
    QString said; // part of what the dialog says beside the file's name
  } cases[] = {
      {"missing", folder.filePath("missing.sdf"), false, "missing.sdf"},
      {"empty", file("empty.sdf", ""), false, "not a stack file"},
      {"garbage", file("garbage.sdf", QByteArray(3000, '\xb7')), false, "not a stack file"},
      {"an image", file("image.tif", "II"), false, "not a stack file"},
      {"a bad statement", file("bad.sdf", "STACK \"a\"; NONSENSE 1;"), true,
       "Error on NONSENSE: unknown keyword (ignored)."},
  };
  for (const auto& c : cases)
  {
    SCOPED_TRACE(c.name);
    WindowTest test;
    QString said;
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout,
                     [&]
                     {
                       auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
                       if (dialog == nullptr) return;
                       if (auto* box = qobject_cast<QMessageBox*>(dialog)) said = box->text();
                       if (auto* log = dialog->findChild<QPlainTextEdit*>("log"))
                         said = dialog->findChild<QLabel*>("banner")->text() + log->toPlainText();
                       dialog->reject();
                     });
    timer.start(5);
    test.window().startupOpenStack(c.file);
    EXPECT_EQ(NYXStackServer::server().getNumStacks(), c.opens ? 1 : 0);
    EXPECT_EQ(NYXSettings::settings().getRecentFilesList().contains(c.file), c.opens);
    EXPECT_TRUE(said.contains(c.file)) << said.toStdString();
    EXPECT_TRUE(said.contains(c.said)) << said.toStdString();
  }
}
} // namespace
