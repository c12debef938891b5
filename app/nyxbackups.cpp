#include "app/nyxbackups.h"

#include <QFile>

void makeBackups(const QString& file, int maxNumBackups)
{
  if (maxNumBackups < 1 || !QFile::exists(file)) return;
  const auto backup = [&](int k) { return file + "~" + QString::number(k); };
  for (int k = maxNumBackups; k >= 1; --k)
  {
    if (!QFile::exists(backup(k))) continue;
    if (k < maxNumBackups) QFile::copy(backup(k), backup(k + 1));
    QFile::remove(backup(k));
  }
  QFile::copy(file, backup(1));
}
