#include "app/nyxnames.h"

#include <QAbstractButton>
#include <QAbstractScrollArea>
#include <QAbstractSpinBox>
#include <QAction>
#include <QComboBox>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QRegularExpression>
#include <QSizeGrip>
#include <QSplitterHandle>
#include <QToolBar>

namespace
{
template <class... Classes> bool isOneOf(const QObject& object)
{
  return (... || (qobject_cast<const Classes*>(&object) != nullptr));
}

bool hasPrivateParts(const QObject& object)
{
  return isOneOf<QAbstractScrollArea, QComboBox, QAbstractSpinBox, QLineEdit>(object);
}

/// "Save stack as..." becomes "saveStackAs".
QString camelCase(const QString& text)
{
  QString name;
  for (const QString& word : text.split(QRegularExpression("\\W+"), Qt::SkipEmptyParts))
    name += name.isEmpty() ? word.left(1).toLower() + word.mid(1) : word.left(1).toUpper() + word.mid(1);
  return name;
}

void setFreeName(QObject& object, const QString& wished)
{
  const auto isTaken = [&object](const QString& name)
  { return object.parent() && object.parent()->findChild<QObject*>(name, Qt::FindDirectChildrenOnly); };
  QString name = wished;
  for (int number = 2; isTaken(name); ++number) name = wished + QString::number(number);
  object.setObjectName(name);
}

QString nameByClass(const QObject& object)
{
  const QString name = object.metaObject()->className();
  if (name == "QWidget") return "content";
  if (name == "QDialogButtonBox") return "buttons";
  return camelCase(QString(name).remove(QRegularExpression("^(NYX|Q)")));
}

QString nameByText(const QObject& object)
{
  if (const auto* button = qobject_cast<const QAbstractButton*>(&object)) return button->text() + " Button";
  if (const auto* group = qobject_cast<const QGroupBox*>(&object)) return group->title() + " Group";
  if (const auto* menu = qobject_cast<const QMenu*>(&object)) return menu->title() + " Menu";
  if (const auto* label = qobject_cast<const QLabel*>(&object)) return label->text() + " Label";
  if (const auto* action = qobject_cast<const QAction*>(&object))
    return action->isSeparator() ? "separator" : action->text() + " Action";
  return nameByClass(object);
}

void nameIfNameless(QObject& object)
{
  if (!object.objectName().isEmpty()) return;
  const auto* const label = qobject_cast<const QLabel*>(&object);
  if (!label || !label->buddy()) return setFreeName(object, camelCase(nameByText(object)));
  nameIfNameless(*label->buddy());
  setFreeName(object, label->buddy()->objectName() + "Label");
}

/// The buttons of a tool bar have the names of their actions.
void nameButtons(const QToolBar& toolBar)
{
  for (QAction* const action : toolBar.actions())
    if (QWidget* const button = toolBar.widgetForAction(action); button && button->objectName().isEmpty())
      setFreeName(*button, camelCase(action->objectName() + " Button"));
}
} // namespace

void nameParts(QWidget& window)
{
  if (const auto* toolBar = qobject_cast<const QToolBar*>(&window)) nameButtons(*toolBar);
  for (QObject* const part : window.children())
  {
    if (!isOneOf<QWidget, QAction>(*part) || isOneOf<QSizeGrip, QSplitterHandle>(*part)) continue;
    nameIfNameless(*part);
    if (part->isWidgetType() && !hasPrivateParts(*part)) nameParts(static_cast<QWidget&>(*part));
  }
}

void setTips(QAction& action, const QString& text)
{
  action.setToolTip(text);
  action.setStatusTip(text);
}

QMenu& addMenu(QMenuBar& bar, const QString& title, const QString& tip)
{
  QMenu& menu = *bar.addMenu(title);
  menu.setToolTipsVisible(true);
  setTips(*menu.menuAction(), tip);
  return menu;
}

QMenu& addMenu(QMenu& menu, const QString& title, const QString& tip)
{
  QMenu& submenu = *menu.addMenu(title);
  submenu.setToolTipsVisible(true);
  setTips(*submenu.menuAction(), tip);
  return submenu;
}
