#pragma once

#include <QFile>
#include <QIcon>

/// The program's icon of this name, in lower case; a null icon where there is none.
inline QIcon iconNamed(const QString& name)
{
  const QString file = QString(":/icons/%1.svg").arg(name.toLower());
  return QFile::exists(file) ? QIcon(file) : QIcon();
}
