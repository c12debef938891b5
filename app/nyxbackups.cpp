#include "app/nyxbackups.h"

#include "numeric/atomicfile.h"
#include "numeric/exception.h"

#include <QFile>
#include <QFileInfo>

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

/// A complete copy of a file beside it, under a name of its own, which is removed unless it becomes the newest backup.
class CopyBeside
{
public:
  explicit CopyBeside(const QString& file)
    : _copy(QFile::decodeName(temporaryNameFor(QFile::encodeName(file).toStdString()).c_str()))
  {
    QFile original(file);
    if (!original.open(QIODevice::ReadOnly)) fail(file, original.errorString());
    if (!_copy.open(QIODevice::WriteOnly | QIODevice::NewOnly)) fail(file, _copy.errorString());
    constexpr qint64 pieceSize = 1 << 20;
    while (!original.atEnd())
    {
      const QByteArray piece = original.read(pieceSize);
      if (piece.isEmpty() || _copy.write(piece) != piece.size()) refuse(file);
    }
    if (!_copy.flush()) refuse(file);
    _copy.setPermissions(original.permissions());
    _copy.close();
  }
  CopyBeside(const CopyBeside&) = delete;
  CopyBeside& operator=(const CopyBeside&) = delete;
  ~CopyBeside()
  {
    if (!_isTaken) _copy.remove();
  }

  void becomes(const QString& backup)
  {
    if (!_copy.rename(backup)) fail(backup, _copy.errorString());
    _isTaken = true;
  }

private:
  [[noreturn]] void refuse(const QString& file)
  {
    const QString reason = _copy.errorString();
    _copy.remove();
    fail(file, reason);
  }

  QFile _copy;
  bool _isTaken = false;
};
} // namespace

void makeBackups(const QString& file, int maxNumBackups)
{
  if (maxNumBackups < 1 || !QFile::exists(file)) return;
  const auto backup = [&](int k) { return file + "~" + QString::number(k); };
  CopyBeside newest(file); // complete before any other backup moves
  if (QFile oldest(backup(maxNumBackups)); oldest.exists() && !oldest.remove())
    fail(oldest.fileName(), oldest.errorString());
  for (int k = maxNumBackups - 1; k >= 1; --k)
    if (QFile::exists(backup(k))) rename(backup(k), backup(k + 1));
  newest.becomes(backup(1));
}
