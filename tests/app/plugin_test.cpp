#include "app/core/nyxstack.h"
#include "app/nyxplugin.h"
#include "app/nyxpluginserver.h"
#include "app/nyxrootwindow.h"
#include "window_test_support.h"

#include <gmock/gmock.h>

#include <QAction>
#include <QDir>
#include <QFile>
#include <QMenuBar>
#include <QProgressDialog>
#include <QStatusBar>
#include <QTemporaryDir>

namespace
{
using testing::AllOf;
using testing::HasSubstr;

/// A folder named by MIRELO_PLUGIN_PATH and what plug-ins are asked to do, as long as it lives.
class PluginFolder
{
public:
  PluginFolder() { qputenv("MIRELO_PLUGIN_PATH", _folder.path().toLocal8Bit()); }
  PluginFolder(const PluginFolder&) = delete;
  PluginFolder& operator=(const PluginFolder&) = delete;
  ~PluginFolder()
  {
    qunsetenv("MIRELO_PLUGIN_PATH");
    qunsetenv("MIRELO_PLUGIN_DEED");
    NYXPluginServer::server().loadPlugins();
  }

  QString path(const QString& file) const { return _folder.filePath(file); }
  void add(const QString& library, const QString& file) const
  {
    QDir().mkpath(QFileInfo(path(file)).path());
    QFile::remove(path(file));
    EXPECT_TRUE(QFile::copy(library, path(file)));
  }

  /// What the server says of the plug-ins.
  static std::string load()
  {
    testing::internal::CaptureStderr();
    NYXPluginServer::server().loadPlugins();
    return testing::internal::GetCapturedStderr();
  }
  static QStringList names()
  {
    QStringList names;
    const NYXPluginServer& server = NYXPluginServer::server();
    for (int i = 0; i < server.getNumPlugins(); ++i) names.append(server.getPlugin(i).name);
    return names;
  }

private:
  QTemporaryDir _folder;
};

TEST(PluginServer, NamesWhatCannotBeLoadedInOneLine)
{
  struct Case
  {
    QString library;
    const char* deed;
    std::string reason;
  };
  const PluginFolder folder;
  QFile text(folder.path("text"));
  ASSERT_TRUE(text.open(QIODevice::WriteOnly) && text.write("no library\n") > 0);
  text.close();
  const std::vector<Case> cases = {
      {text.fileName(), "", "ELF"},
      {MIRELO_PLUGIN_early, "", "it is made for version 0.0.1, this is " MIRELO_VERSION},
      {MIRELO_PLUGIN_unresolved, "", "undefined symbol"},
      {MIRELO_PLUGIN_alpha, "throw when made", "not today"},
      {MIRELO_PLUGIN_alpha, "throw when named", "No details available"},
      {MIRELO_PLUGIN_alpha, "be nameless", "it has no name"},
  };
  for (std::size_t i = 0; i < cases.size(); ++i)
  {
    const QString file = QString("broken%1.so").arg(i); // a library is known by its file from then on
    folder.add(cases[i].library, file);
    qputenv("MIRELO_PLUGIN_DEED", cases[i].deed);
    const std::string said = PluginFolder::load();
    EXPECT_THAT(said, AllOf(testing::StartsWith("mirelo: cannot load plug-in "), HasSubstr(file.toStdString() + ": "),
                            HasSubstr(cases[i].reason)));
    EXPECT_EQ(std::ranges::count(said, '\n'), 1) << said;
    EXPECT_EQ(QString::fromStdString(said).count(file), 1) << said;
    EXPECT_EQ(PluginFolder::names(), QStringList());
    ASSERT_TRUE(QFile::remove(folder.path(file)));
  }

  qunsetenv("MIRELO_PLUGIN_DEED");
  folder.add(MIRELO_PLUGIN_alpha, "broken0.so"); // mended since
  EXPECT_EQ(PluginFolder::load(), "");
  EXPECT_EQ(PluginFolder::names(), QStringList({"alpha"}));
}

TEST(PluginServer, TakesTheFirstOfAName)
{
  const PluginFolder folder;
  folder.add(MIRELO_PLUGIN_alpha, "mine/alpha.so");
  folder.add(MIRELO_PLUGIN_alpha, "theirs/again.so");
  folder.add(MIRELO_PLUGIN_beta, "theirs/beta.so");
  ASSERT_TRUE(QFile::link(folder.path("theirs/beta.so"), folder.path("mine/link.so")));
  const QStringList folders{folder.path("mine"), folder.path("theirs"), folder.path("none")};
  qputenv("MIRELO_PLUGIN_PATH", folders.join(':').toLocal8Bit());
  const std::string said = PluginFolder::load();
  EXPECT_EQ(said, "mirelo: cannot use plug-in " + folder.path("theirs/again.so").toStdString() + ": " +
                      folder.path("mine/alpha.so").toStdString() + " is named alpha, too\n" +
                      "mirelo: MIRELO_PLUGIN_PATH names a folder that does not exist: " +
                      folder.path("none").toStdString() + "\n");
  EXPECT_EQ(PluginFolder::names(), QStringList({"alpha", "beta"}));
  EXPECT_EQ(NYXPluginServer::server().getPlugin(0).file, folder.path("mine/alpha.so"));
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
  const PluginFolder folder;
  folder.add(MIRELO_PLUGIN_alpha, "alpha.so");
  folder.add(MIRELO_PLUGIN_beta, "beta.so");
  PluginFolder::load();
  WindowTest test;
  NYXRootWindow second;
  second.setAttribute(Qt::WA_DeleteOnClose, false);
  addStack("specimen", {}, false);
  chooseEntry(second, "alpha");
  EXPECT_EQ(qgetenv("MIRELO_RECORDED_PLUGIN"), "alpha");

  ASSERT_TRUE(QFile::remove(folder.path("alpha.so")));
  folder.add(MIRELO_PLUGIN_early, "early.so");
  const QStringList seen = answering({QMessageBox::Ok}, [&] { chooseEntry(test.window(), "Refresh"); });
  EXPECT_EQ(seen, QStringList({"Plug-in error|cannot load plug-in " + folder.path("early.so") +
                               ": it is made for version 0.0.1, this is " MIRELO_VERSION}));
  EXPECT_EQ(test.window().findChild<QStatusBar*>()->currentMessage(), "1 plug-in found");
  EXPECT_EQ(chooseEntry(second, "beta").filter("a"), QStringList({"beta"}));
  EXPECT_EQ(qgetenv("MIRELO_RECORDED_PLUGIN"), "beta");
}

TEST(PluginRun, ChangesTheStackInOneStepOrNotAtAll)
{
  struct Case
  {
    const char* deed;
    QString message; // of the error dialog, or else of the status bar
    bool isChanged;
  };
  const std::vector<Case> cases = {
      {"", "alpha is done", true},
      {"leave a step open", "alpha is done", true},
      {"throw Exception", "alpha failed: bad value", false},
      {"throw a std::exception", "alpha failed: bad weather", false},
      {"throw a number", "alpha failed: No details available", false},
      {"throw half-way", "alpha failed: half-way", false},
      {"wait for Cancel", "alpha canceled; nothing was changed", false},
      {"ignore Cancel", "alpha canceled; nothing was changed", false},
  };
  const PluginFolder folder;
  folder.add(MIRELO_PLUGIN_alpha, "alpha.so");
  PluginFolder::load();
  for (const Case& expected : cases)
  {
    SCOPED_TRACE(expected.deed);
    WindowTest test;
    NYXStack& stack = addStack("specimen", {}, false);
    qputenv("MIRELO_PLUGIN_DEED", expected.deed);
    QString said;
    const auto answer = [&](QDialog& dialog)
    {
      if (auto* box = qobject_cast<QMessageBox*>(&dialog)) said = box->text();
      click(dialog, qobject_cast<QProgressDialog*>(&dialog) ? "Cancel" : "OK");
    };
    inDialogs(answer, [&] { chooseEntry(test.window(), "alpha"); });
    const auto* const statusBar = test.window().findChild<QStatusBar*>();
    EXPECT_EQ(said.isEmpty() ? statusBar->currentMessage() : said, expected.message);
    EXPECT_TRUE(statusBar->findChild<QWidget*>("progress")->isHidden());

    EXPECT_EQ(stack.getAnnotation(), expected.isChanged ? "alpha" : "");
    EXPECT_EQ(stack.isModified(), expected.isChanged);
    EXPECT_EQ(stack.history().getUndoListSize(), expected.isChanged ? 1 : 0);
    EXPECT_FALSE(stack.history().isStepOpen());
    stack.history().undo();
    EXPECT_EQ(stack.getAnnotation(), "");
  }
}
} // namespace
