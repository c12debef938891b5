#include "slice/nyxnavigationtoolbar.h"

NYXNavigationToolBar::NYXNavigationToolBar(QWidget* parent) : QToolBar(parent)
{
  setObjectName("navigationToolBar");
}

void NYXNavigationToolBar::addGroup(const QList<QAction*>& group)
{
  addSeparator();
  addActions(group);
}
