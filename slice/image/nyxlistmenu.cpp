#include "slice/image/nyxlistmenu.h"

#include <QMenu>

void setListMenu(QWidget& list, const QList<QAction*>& actions)
{
  auto* const menu = new QMenu(&list);
  menu->setToolTipsVisible(true);
  menu->addActions(actions);
  list.setContextMenuPolicy(Qt::CustomContextMenu);
  QObject::connect(&list, &QWidget::customContextMenuRequested, menu,
                   [menu, &list](const QPoint& place) { menu->popup(list.mapToGlobal(place)); });
}
