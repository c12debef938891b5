#include "app/nyxsplitter.h"

#include <QSettings>

NYXSplitter::NYXSplitter(const QString& name, QWidget* parent) : QSplitter(Qt::Horizontal, parent)
{
  setObjectName(name);
  setChildrenCollapsible(false);
  connect(this, &QSplitter::splitterMoved, this, [this] { QSettings().setValue(objectName(), saveState()); });
}

void NYXSplitter::restoreSizes(const QList<int>& defaultSizes)
{
  if (!restoreState(QSettings().value(objectName()).toByteArray())) setSizes(defaultSizes);
  setChildrenCollapsible(false);
}
