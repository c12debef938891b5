#include "app/nyxbackups.h"

#include <QFile>

void makeBackups(const QString& file, int maxNumBackups)
{
  if (maxNumBackups < 1 || !QFile::exists(file)) return;
  const auto backup = [&](int k) { return file + "~" + QString::number(k); };
  for (int k = maxNumBackups; k >= 1; --k)
  {
    if (!QFile::exists(backup(k))) continue;
    // Moved rather than copied, so that a full disk costs no older backup.
    k < maxNumBackups ? QFile::rename(backup(k), backup(k + 1)) : QFile::remove(backup(k));
  }
  QFile::copy(file, backup(1));
}
