#include "app/nyxbackups.h"

#include "numeric/exception.h"

#include <QFile>
#include <QFileInfo>
#include <QTemporaryFile>

namespace
{
[[noreturn]] void fail(const QString& file, const QString& reason)
{
  throw FileWriteError("void makeBackups(const QString&, int)", "Cannot make a backup (" + reason.toStdString() + ")",
                       file.toStdString());
}

void rename(const QString& from, const QString& to)
{
  if (QFile source(from); !source.rename(to)) fail(to, source.errorString());
}

/// A complete copy of the file beside it, under a name of its own, which is removed unless it is taken.
void copyBeside(const QString& file, QTemporaryFile& copy)
{
  QFile original(file);
  if (!original.open(QIODevice::ReadOnly)) fail(file, original.errorString());
  copy.setFileTemplate(file + ".XXXXXX");
  if (!copy.open()) fail(file, copy.errorString());
  constexpr qint64 pieceSize = 1 << 20;
  while (!original.atEnd())
  {
    const QByteArray piece = original.read(pieceSize);
    if (piece.isEmpty() || copy.write(piece) != piece.size()) fail(file, copy.errorString());
  }
  if (!copy.flush()) fail(file, copy.errorString());
  copy.setPermissions(original.permissions());
  copy.close();
}
} // namespace

void makeBackups(const QString& file, int maxNumBackups)
{
  if (maxNumBackups < 1 || !QFile::exists(file)) return;
  const auto backup = [&](int k) { return file + "~" + QString::number(k); };
  QTemporaryFile newest; // complete before any other backup moves
  copyBeside(file, newest);
  if (QFile oldest(backup(maxNumBackups)); oldest.exists() && !oldest.remove())
    fail(oldest.fileName(), oldest.errorString());
  for (int k = maxNumBackups - 1; k >= 1; --k)
    if (QFile::exists(backup(k))) rename(backup(k), backup(k + 1));
  if (!newest.rename(backup(1))) fail(backup(1), newest.errorString());
  newest.setAutoRemove(false);
}
