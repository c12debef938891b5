#include "app/core/nyxproposedfilename.h"
#include "app/core/nyxsettings.h"
#include "app/core/nyxstack.h"
#include "app/nyxrootwindow.h"
#include "app/nyxstackerrordialog.h"
#include "slice/image/nyxfiledialog.h"
#include "window_test_support.h"

#include <gtest/gtest.h>

#include <QAction>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QLineEdit>
#include <QTemporaryDir>
#include <QTest>

namespace
{
TEST(Dialogs, HaveTheSizeThatTheyHadWhenTheyWereClosed)
{
  WindowTest test;
  test.window().startupOpenStack(MIRELO_EXAMPLE);
  for (const char* text :
       {"New stack", "New stack from file", "Open stack", "Save stack as...", "Insert slice...", "Edit models...",
        "Stack properties...", "Slice properties...", "Annotate stack...", "Preferences...", "Transfer models..."})
  {
    QSize wanted, seen;
    const auto resize = [&](QDialog& dialog)
    {
      EXPECT_TRUE(QTest::qWaitForWindowExposed(&dialog)); // the screen's answers to its opening have come
      wanted = dialog.size() + QSize(21, 13);
      dialog.resize(wanted);
      dialog.reject();
    };
    const auto look = [&](QDialog& dialog)
    {
      EXPECT_TRUE(QTest::qWaitForWindowExposed(&dialog));
      seen = dialog.size();
      dialog.reject();
    };
    inDialogs(resize, [&] { test.action(text)->trigger(); });
    inDialogs(look, [&] { test.action(text)->trigger(); });
    EXPECT_EQ(seen, wanted) << text;
  }
  NYXStackErrorDialog first("a.sdf", {"Error"}, true, nullptr);
  first.resize(911, 433);
  first.reject();
  EXPECT_EQ(NYXStackErrorDialog("b.sdf", {}, false, nullptr).size(), QSize(911, 433));
}

TEST(FileDialogs, StartWhereTheLastOneEnded)
{
  WindowTest test;
  const QTemporaryDir folder;
  ASSERT_TRUE(QDir(folder.path()).mkdir("images"));
  const QString images = folder.filePath("images");
  ASSERT_TRUE(QFile::copy(MIRELO_EXAMPLE, images + "/copy.sdf"));
  test.window().startupOpenStack(MIRELO_EXAMPLE);
  NYXSettings::settings().setInputDirectory(folder.path());
  QString seen;
  const auto choose = [&](QDialog& dialog)
  {
    static_cast<QFileDialog&>(dialog).setDirectory(images);
    static_cast<QFileDialog&>(dialog).selectFile(images + "/copy.sdf");
    QMetaObject::invokeMethod(&dialog, "accept", Qt::QueuedConnection);
  };
  const auto look = [&](QDialog& dialog)
  {
    seen = static_cast<QFileDialog&>(dialog).directory().absolutePath();
    dialog.reject();
  };
  inDialogs(choose, [&] { test.action("Open stack")->trigger(); });
  for (const char* text : {"New stack from file", "Insert slice...", "Open stack"})
  {
    inDialogs(look, [&] { test.action(text)->trigger(); });
    EXPECT_EQ(seen, images) << text;
  }
}

TEST(ProposedFileName, IsOneThatFileSystemsTake)
{
  const QString star = QString::fromUtf8("\xf0\x9f\x8c\x9f"); // 4 bytes, 2 code units
  const struct
  {
    QString stack;
    QString file;
  } cases[] = {
      {"cells", "cells"},
      {"rat/1", "rat-1"},
      {"a\\b:c*d?\"e<f>g|h", "a-b-c-d-e-f-g-h"},
      {"two\nlines\tand a tab", "two-lines-and a tab"},
      {" v1.2 ", "v1.2"},
      {"", "stack"},
      {".", "stack"},
      {"..", "stack"},
      {"../secret", "-secret"},
      {".hidden", "hidden"},
      {QString(300, 'x'), QString(200, 'x')},
      {QString(199, 'x') + star, QString(199, 'x')},
      {star.repeated(80), star.repeated(50)},
  };
  for (const auto& c : cases) EXPECT_EQ(proposedFileName(c.stack), c.file) << c.stack.toStdString();
}

TEST(FileDialog, CompletesTheNamesOfFilesToWrite)
{
  const QTemporaryDir folder;
  ASSERT_TRUE(QDir(folder.path()).mkdir("sub.d"));
  const struct
  {
    const char* typed;
    const char* file;
  } cases[] = {
      {"plot", "plot.svg"},     {"exp1.2", "exp1.2.svg"}, {"sub.d/plot", "sub.d/plot.svg"},
      {"plot.PNG", "plot.PNG"}, {"plot.svg", "plot.svg"}, {"plot.pdf", "plot.pdf.svg"},
  };
  for (const auto& c : cases)
  {
    NYXSettings::settings().setOutputDirectory(folder.path());
    NYXFileDialog dialog(nullptr, "test", "Test", NYXFileDialog::Writing);
    dialog.setNameFilters({"PNG picture (*.png)", "SVG drawing (*.svg)"});
    dialog.selectNameFilter("SVG drawing (*.svg)");
    dialog.findChild<QLineEdit*>("fileNameEdit")->setText(c.typed);
    QMetaObject::invokeMethod(&dialog, "accept", Qt::QueuedConnection);
    EXPECT_EQ(dialog.ask(), QStringList(QDir(folder.path()).filePath(c.file)));
  }
}

TEST(SaveStackAs, ProposesAFileInTheOutputFolderForAnyName)
{
  WindowTest test;
  const QTemporaryDir folder;
  NYXSettings::settings().setOutputDirectory(folder.path());
  for (const char* name : {"rat/1", "/etc/passwd", "..", "v1.2"})
  {
    const NYXStack& stack = addStack(name, {}, true);
    inDialogs([](QDialog& dialog) { QMetaObject::invokeMethod(&dialog, "accept", Qt::QueuedConnection); },
              [&] { test.action("Save stack as...")->trigger(); });
    const QFileInfo file(stack.getFilename());
    EXPECT_EQ(file.absolutePath(), folder.path()) << name;
    EXPECT_EQ(file.fileName(), proposedFileName(name) + ".sdf");
    EXPECT_TRUE(file.exists());
  }
}
} // namespace
