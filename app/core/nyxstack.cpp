#include "app/core/nyxstack.h"

#include "app/core/nyxeventserver.h"

#include <QCoreApplication>
#include <QFileInfo>

NYXStack::NYXStack()
{
  NYXEventServer::attach(*this);
}

void NYXStack::setFilename(const QString& filename)
{
  _filename = filename;
  notifyEvent(NYXStackFileNameEvent(*this));
}

void NYXStack::setModified(bool flag)
{
  _isModified = flag;
  notifyEvent(NYXStackModifyEvent(*this));
}

QString NYXStack::displayName() const
{
  if (!getName().empty()) return QString::fromStdString(getName());
  if (!_filename.isEmpty()) return QFileInfo(_filename).completeBaseName();
  return QCoreApplication::translate("NYXStack", "Untitled");
}

void NYXStack::stackNameEvent(const NYXStackNameEvent& event)
{
  if (&event.getStack() == this) setModified(true);
}
