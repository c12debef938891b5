#include "app/nyxpluginserver.h"
#include "app/nyxrootwindow.h"
#include "window_test_support.h"

#include <gmock/gmock.h>

#include <QAction>
#include <QFile>
#include <QMenuBar>
#include <QTemporaryDir>

#include <algorithm>

namespace
{
TEST(PluginServer, NamesWhatIsNoPluginInOneLine)
{
  const QTemporaryDir folder;
  QFile library(folder.filePath("broken.so"));
  ASSERT_TRUE(library.open(QIODevice::WriteOnly));
  library.write("no library\n");
  library.close();
  qputenv("MIRELO_PLUGIN_PATH", folder.path().toLocal8Bit());
  testing::internal::CaptureStderr();
  NYXPluginServer::server().loadPlugins();
  const std::string said = testing::internal::GetCapturedStderr();
  qunsetenv("MIRELO_PLUGIN_PATH");
  EXPECT_EQ(NYXPluginServer::server().getNumPlugins(), 0);
  EXPECT_THAT(said, testing::StartsWith("mirelo: cannot load plug-in "));
  EXPECT_THAT(said, testing::HasSubstr("broken.so"));
  EXPECT_EQ(std::ranges::count(said, '\n'), 1);
}

QMenu* pluginsMenu(const NYXRootWindow& window)
{
  for (QAction* action : window.findChild<QMenuBar*>()->actions())
    if (action->text().remove('&') == "Plugins") return action->menu();
  return nullptr;
}

/// Opens the Plugins menu as a user does and chooses an entry; gives the entries it had.
QStringList chooseEntry(const NYXRootWindow& window, const QString& text)
{
  QMenu* menu = pluginsMenu(window);
  emit menu->aboutToShow();
  QStringList texts;
  for (QAction* action : menu->actions()) texts.append(action->text());
  for (QAction* action : menu->actions())
  {
    if (action->text() != text) continue;
    action->trigger();
    break;
  }
  return texts;
}

TEST(PluginServer, EveryWindowRunsThePluginThatItNames)
{
  const QTemporaryDir folder;
  const QString alpha = folder.filePath("alpha.so");
  ASSERT_TRUE(QFile::copy(MIRELO_PLUGIN_alpha, alpha) && QFile::copy(MIRELO_PLUGIN_beta, folder.filePath("beta.so")));
  qputenv("MIRELO_PLUGIN_PATH", folder.path().toLocal8Bit());
  NYXPluginServer::server().loadPlugins();
  WindowTest test;
  NYXRootWindow second;
  second.setAttribute(Qt::WA_DeleteOnClose, false);
  addStack("specimen", {}, false);
  chooseEntry(second, "alpha");
  EXPECT_EQ(qgetenv("MIRELO_RECORDED_PLUGIN"), "alpha");

  ASSERT_TRUE(QFile::remove(alpha));
  chooseEntry(test.window(), "Refresh");
  EXPECT_EQ(chooseEntry(second, "beta").filter("a"), QStringList({"beta"}));
  EXPECT_EQ(qgetenv("MIRELO_RECORDED_PLUGIN"), "beta");
  qunsetenv("MIRELO_PLUGIN_PATH");
  NYXPluginServer::server().loadPlugins();
}
} // namespace
