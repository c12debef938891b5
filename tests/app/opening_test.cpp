#include "app/core/nyxstack.h"
#include "app/core/nyxstackserver.h"
#include "app/nyxnewstackdialog.h"
#include "app/nyxrootmediator.h"
#include "app/nyxrootwindow.h"
#include "tests/support/temporaryfolder.h"
#include "tests/support/tifffiles.h"
#include "window_test_support.h"

#include <gtest/gtest.h>

#include <QAction>
#include <QApplication>
#include <QDropEvent>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QMimeData>
#include <QPushButton>
#include <QScreen>
#include <QStatusBar>
#include <QToolButton>
#include <QUrl>

namespace
{
QString stackFile(const TemporaryFolder& folder, const char* name)
{
  return QString::fromStdString(folder.write(name, "STACK \"cells\";\nSLICE \"0\" \"a.tif\";\n"));
}

void drop(NYXRootWindow& window, const QStringList& files)
{
  QMimeData data;
  QList<QUrl> urls;
  for (const QString& file : files) urls.append(QUrl::fromLocalFile(file));
  data.setUrls(urls);
  QDragEnterEvent enter(QPoint(10, 10), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
  QApplication::sendEvent(&window, &enter);
  QDropEvent event(QPointF(10, 10), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
  QApplication::sendEvent(&window, &event);
}

TEST(OpenStack, SelectsTheStackOfAFileThatIsOpenAlready)
{
  WindowTest test;
  const TemporaryFolder folder;
  const QString a = stackFile(folder, "a.sdf"), b = stackFile(folder, "b.sdf");
  const QString link = QString::fromStdString(folder.file("link.sdf"));
  ASSERT_TRUE(QFile::link(a, link));
  test.window().startupOpenStack(link);
  const NYXStackServer& server = NYXStackServer::server();
  const QString withoutSuffix = a.chopped(4), roundabout = QString(a).replace("/a.sdf", "/./a.sdf");
  for (const QString& name : {a, link, withoutSuffix, roundabout})
    for (const bool isDropped : {false, true})
    {
      SCOPED_TRACE(name.toStdString());
      test.window().startupOpenStack(b);
      ASSERT_EQ(server.getNumStacks(), 2);
      EXPECT_EQ(test.window().mediator().currentStack(), &server.getStack(1));
      isDropped ? drop(test.window(), {name}) : test.window().startupOpenStack(name);
      QCoreApplication::processEvents(); // dropped files are opened when the drop is over
      EXPECT_EQ(server.getNumStacks(), 2);
      EXPECT_EQ(test.window().mediator().currentStack(), &server.getStack(0));
      EXPECT_TRUE(test.window().findChild<QStatusBar*>()->currentMessage().endsWith(" is open already"));
    }
}

TEST(Drop, OfImagesOffersAStackOfThem)
{
  WindowTest test;
  const TemporaryFolder folder;
  QStringList images;
  for (const char* name : {"10.tif", "9.TIFF"})
  {
    TiffRecipe{}.write(folder.file(name));
    images.append(QString::fromStdString(folder.file(name)));
  }
  QStringList listed;
  inDialogs(
      [&](QDialog& dialog)
      {
        if (const auto* newStack = qobject_cast<NYXNewStackDialog*>(&dialog)) listed = newStack->getFiles();
        dialog.reject();
      },
      [&]
      {
        drop(test.window(), images + QStringList(stackFile(folder, "a.sdf")));
        QApplication::processEvents();
      });
  EXPECT_EQ(listed, QStringList({images[1], images[0]}));
  EXPECT_EQ(NYXStackServer::server().getNumStacks(), 1);
}

TEST(RootWindow, SaysWhyThereIsNoSlice)
{
  WindowTest test;
  addStack("empty", {}, false);
  const auto& text = *test.window().findChild<QLabel*>("noSlice");
  const auto& insertion = *test.window().findChild<QToolButton*>("insertSliceButton");
  EXPECT_TRUE(text.isVisible() && insertion.isVisible() && insertion.isEnabled());
  EXPECT_EQ(text.text(), "This stack has no slices yet.");
  test.window().startupOpenStack(MIRELO_EXAMPLE);
  EXPECT_FALSE(text.isVisible());
  test.window().findChild<QLineEdit*>("sliceFilter")->setText("no such slice");
  EXPECT_TRUE(text.isVisible());
  EXPECT_FALSE(insertion.isVisible());
}

TEST(NewWindow, LiesBesideTheOneBeforeAndOnTheScreen)
{
  WindowTest test;
  const QRect screen = QGuiApplication::primaryScreen()->availableGeometry();
  test.window().resize(500, 400);
  test.window().move(20, 30);
  QApplication::processEvents();
  QList<QWidget*> windows = {&test.window()};
  for (int i = 0; i < 40; ++i)
  {
    const QWidgetList before = QApplication::topLevelWidgets();
    test.action("New window")->trigger();
    QApplication::processEvents();
    for (QWidget* window : QApplication::topLevelWidgets())
      if (qobject_cast<NYXRootWindow*>(window) && !before.contains(window)) windows.append(window);
    ASSERT_EQ(windows.size(), i + 2);
    EXPECT_NE(windows[i + 1]->pos(), windows[i]->pos());
    EXPECT_TRUE(screen.contains(windows[i + 1]->geometry())) << i;
  }
  for (int i = 1; i < windows.size(); ++i) delete windows[i];
}
} // namespace
