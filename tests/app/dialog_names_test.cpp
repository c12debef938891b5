// Automated tests and users of assistive programs find widgets and actions by their names.
#include "app/core/nyxstack.h"
#include "app/nyxnewstackdialog.h"
#include "app/nyxrootwindow.h"
#include "app/nyxstackerrordialog.h"
#include "window_test_support.h"

#include <gtest/gtest.h>

#include <QAbstractScrollArea>
#include <QAbstractSpinBox>
#include <QAction>
#include <QComboBox>
#include <QFileDialog>
#include <QLineEdit>
#include <QMenu>
#include <QSizeGrip>
#include <QSplitterHandle>

namespace
{
template <class... Classes> bool isOneOf(const QObject& object)
{
  return (... || (qobject_cast<const Classes*>(&object) != nullptr));
}

std::string pathOf(const QObject* object)
{
  std::string path;
  for (; object; object = object->parent())
    path = "/" + object->objectName().toStdString() + ":" + object->metaObject()->className() + path;
  return path;
}

/// Each widget and action has a name of its own among its siblings; actions tell what they do.
void expectNames(const QObject& parent)
{
  QStringList names;
  for (const QObject* const part : parent.children())
  {
    if (isOneOf<QSizeGrip, QSplitterHandle>(*part)) continue; // Qt's own
    const bool isNamed = part->isWidgetType() || isOneOf<QAction>(*part);
    EXPECT_TRUE(!isNamed || !part->objectName().isEmpty()) << pathOf(part);
    EXPECT_FALSE(isNamed && names.contains(part->objectName())) << pathOf(part);
    if (isNamed) names.append(part->objectName());
    const auto* const action = qobject_cast<const QAction*>(part);
    const bool isShown = action && action->isVisible() && !action->isSeparator() && !action->text().isEmpty();
    EXPECT_FALSE(isShown && (action->toolTip().isEmpty() || action->statusTip().isEmpty())) << pathOf(part);
    if (!isOneOf<QAbstractScrollArea, QComboBox, QAbstractSpinBox, QLineEdit>(*part)) expectNames(*part);
  }
}

void expectNamesIn(const QWidget& window)
{
  SCOPED_TRACE(window.objectName().toStdString());
  EXPECT_FALSE(window.objectName().isEmpty()) << window.windowTitle().toStdString();
  expectNames(window);
}

TEST(Names, AreGivenToAllPartsOfTheRootWindow)
{
  WindowTest test;
  expectNamesIn(test.window());
  test.window().startupOpenStack(MIRELO_EXAMPLE);
  addStack("empty", {}, false);
  for (QMenu* menu : test.window().findChildren<QMenu*>()) emit menu->aboutToShow(); // fills the recent files
  EXPECT_FALSE(test.window().findChild<QMenu*>("recentStacksMenu")->isEmpty());
  expectNamesIn(test.window());
}

TEST(Names, AreGivenToAllPartsOfDialogs)
{
  WindowTest test;
  test.window().startupOpenStack(MIRELO_EXAMPLE);
  QStringList seen;
  const auto look = [&](QDialog& dialog)
  {
    seen.append(dialog.windowTitle());
    EXPECT_FALSE(dialog.objectName().isEmpty()) << seen.last().toStdString();
    if (!isOneOf<QFileDialog>(dialog)) expectNamesIn(dialog);
    dialog.reject();
  };
  for (const char* text :
       {"New stack", "New stack from file", "Open stack", "Save stack as...", "Insert slice...", "Edit models...",
        "Stack properties...", "Slice properties...", "Annotate stack...", "Annotate slice...", "Preferences...",
        "Transfer models...", "Filter models...", "About Mirelo"})
  {
    const int numSeen = seen.size();
    inDialogs(look, [&] { test.action(text)->trigger(); });
    EXPECT_EQ(seen.size(), numSeen + 1) << text;
  }
  test.window().findChild<QAction*>("selectAll")->trigger();
  inDialogs(look, [&] { test.window().findChild<QAction*>("properties")->trigger(); });
  EXPECT_EQ(seen.last(), "Item properties");
  NYXStackErrorDialog errors("a.sdf", {"Error"}, true, &test.window());
  look(errors);
}
} // namespace
