#pragma once

#include <QList>

class QAction;
class QWidget;

/// Opens a menu of these actions at a right click on a list, or the menu key; tool tips say why an entry is off.
void setListMenu(QWidget& list, const QList<QAction*>& actions);
