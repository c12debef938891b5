#include "app/nyxbackups.h"

#include "numeric/exception.h"

#include <QFile>

void makeBackups(const QString& file, int maxNumBackups)
{
  if (maxNumBackups < 1 || !QFile::exists(file)) return;
  const auto backup = [&](int k) { return file + "~" + QString::number(k); };
  const QString newest = backup(0); // complete before any other backup moves
  QFile::remove(newest);
  if (QFile original(file); !original.copy(newest))
  {
    QFile::remove(newest);
    throw FileWriteError("void makeBackups(const QString&, int)",
                         "Cannot make a backup (" + original.errorString().toStdString() + ")", file.toStdString());
  }
  QFile::remove(backup(maxNumBackups));
  for (int k = maxNumBackups - 1; k >= 0; --k)
    if (QFile::exists(backup(k))) QFile::rename(backup(k), backup(k + 1));
}
