// Every action that is enabled does something that can be seen.

#include "app/core/nyxeventclient.h"
#include "app/core/nyxeventserver.h"
#include "app/core/nyxstack.h"
#include "app/core/nyxstackserver.h"
#include "app/nyxrootstatusbar.h"
#include "app/nyxrootwindow.h"
#include "app/nyxstackio.h"
#include "slice/image/nyximageproxy.h"
#include "slice/image/nyximagewidgetcanvas.h"
#include "tests/support/temporaryfolder.h"
#include "window_test_support.h"

#include <gtest/gtest.h>

#include <QAction>
#include <QApplication>
#include <QLabel>
#include <QListWidget>
#include <QMenu>
#include <QSettings>
#include <QTest>

namespace
{
/// Counts the events and actions that are posted.
class Listener : public NYXEventClient
{
public:
  Listener() { NYXEventServer::attach(*this); }
  int getCount() const { return _count; }

private:
  void stackOpenEvent(const NYXStackOpenEvent&) override { ++_count; }
  void stackCloseEvent(const NYXStackCloseEvent&) override { ++_count; }
  void stackModifyEvent(const NYXStackModifyEvent&) override { ++_count; }
  void processSliceAction(NYXSliceAction&) override { ++_count; }

  int _count = 0;
};

NYXImageWidgetCanvas& canvasOf(const NYXRootWindow& window)
{
  return *window.findChild<NYXImageWidgetCanvas*>();
}

/// What a user sees of the program, and what it remembers.
struct Appearance
{
  explicit Appearance(const NYXRootWindow& window)
    : numWindows(QApplication::topLevelWidgets().size()),
      slice(window.findChild<QListWidget*>("sliceList")->currentRow()),
      message(window.findChild<NYXRootStatusBar*>()->currentMessage() + window.findChild<QLabel*>("hint")->text()),
      isVisible(window.isVisible()),
      cursor(canvasOf(window).cursor().shape()),
      picture(canvasOf(window).grabFramebuffer())
  {
    for (const QString& key : QSettings().allKeys()) settings[key] = QSettings().value(key);
  }
  bool operator==(const Appearance&) const = default;

  int numWindows;
  int slice;
  QString message;
  bool isVisible;
  Qt::CursorShape cursor;
  QImage picture; // of the slice
  QMap<QString, QVariant> settings;
};

/// A window with a copy of the example at a slice in the middle: a slice was deleted, and another one and restored.
void prepare(WindowTest& test, const TemporaryFolder& folder)
{
  const std::string copy = folder.file("specimen.sdf");
  std::filesystem::copy(std::filesystem::path(MIRELO_EXAMPLE).parent_path(), folder.file(""),
                        std::filesystem::copy_options::overwrite_existing | std::filesystem::copy_options::recursive);
  NYXStackIO(&test.window()).openStack(QString::fromStdString(copy));
  auto* const list = test.window().findChild<QListWidget*>("sliceList");
  list->setCurrentRow(5);
  for (int i = 0; i < 2; ++i) test.action("Delete slice")->trigger();
  test.window().findChild<QAction*>("Undo")->trigger();
  test.window().findChild<NYXRootStatusBar*>()->clearMessage();
  ASSERT_TRUE(QTest::qWaitFor([&] { return canvasOf(test.window()).getImageProxy().getNumImages() > 1; }));
  QApplication::processEvents();
}

/// The entry of a choice that is chosen already.
bool isChosen(const QAction& action)
{
  return action.actionGroup() != nullptr && action.isChecked();
}

QStringList enabledActions()
{
  WindowTest test;
  const TemporaryFolder folder;
  prepare(test, folder);
  QStringList names;
  for (const QAction* action : test.window().findChildren<QAction*>())
    if (action->isEnabled() && !action->isSeparator() && !action->menu() && !action->text().isEmpty() &&
        !isChosen(*action))
      names.append(action->objectName().isEmpty() ? action->text() : action->objectName());
  return names;
}

QAction* find(const NYXRootWindow& window, const QString& name)
{
  for (QAction* action : window.findChildren<QAction*>())
    if (action->objectName() == name || (action->objectName().isEmpty() && action->text() == name)) return action;
  return nullptr;
}
void closeOtherWindows(const NYXRootWindow& window)
{
  QList<NYXRootWindow*> others;
  for (QWidget* widget : QApplication::topLevelWidgets())
    if (auto* other = qobject_cast<NYXRootWindow*>(widget); other && other != &window) others.append(other);
  qDeleteAll(others);
}
} // namespace

TEST(Actions, DoSomethingWhenTheyAreEnabled)
{
  const QStringList names = enabledActions();
  EXPECT_GT(names.size(), 25);
  for (const QString& name : names)
  {
    WindowTest test;
    const TemporaryFolder folder;
    prepare(test, folder);
    const Appearance before(test.window());
    const Listener listener;
    int numDialogs = 0;
    const auto dismiss = [&](QDialog& dialog)
    {
      ++numDialogs;
      dialog.reject();
    };
    inDialogs(dismiss, [&] { find(test.window(), name)->trigger(); });
    EXPECT_TRUE(numDialogs > 0 || listener.getCount() > 0 || !(Appearance(test.window()) == before))
        << name.toStdString();
    closeOtherWindows(test.window());
  }
}

TEST(Actions, TellWhatTheyDo)
{
  WindowTest test;
  const TemporaryFolder folder;
  prepare(test, folder);
  QStringList shortcuts;
  for (const QAction* action : test.window().findChildren<QAction*>())
  {
    if (action->isSeparator() || action->menu() || action->text().isEmpty()) continue;
    EXPECT_FALSE(action->statusTip().isEmpty()) << action->text().toStdString();
    EXPECT_NE(action->toolTip(), action->text()) << action->text().toStdString();
    if (!action->shortcut().isEmpty()) shortcuts.append(action->shortcut().toString());
  }
  EXPECT_EQ(shortcuts.removeDuplicates(), 0);
  for (const char* shortcut : {"Ctrl+N", "Ctrl+O", "Ctrl+S", "Ctrl+Shift+S", "Ctrl+W", "Ctrl+Q", "Ctrl+Z",
                               "Ctrl+Shift+Z", "PgUp", "PgDown", "Home", "End"})
    EXPECT_TRUE(shortcuts.contains(shortcut)) << shortcut;
}
