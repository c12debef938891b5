#pragma once

#include <QString>

class QAction;
class QMenu;
class QMenuBar;
class QWidget;

/// Gives the widgets and actions within a window that have no object name one: by what they label, by their text or
/// else by their class, in camel case, with a number where a sibling has it already. Parts that widgets of Qt make for
/// themselves are left alone.
void nameParts(QWidget& window);

/// Says what an action does, at the pointer and in the status bar.
void setTips(QAction& action, const QString& text);

/// Adds a menu with tips of its own, whose entries show theirs.
/// @{
QMenu& addMenu(QMenuBar& bar, const QString& title, const QString& tip);
QMenu& addMenu(QMenu& menu, const QString& title, const QString& tip);
/// @}
