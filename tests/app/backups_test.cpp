#include "app/nyxbackups.h"
#include "tests/support/errors.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

namespace
{
void write(const QString& file, const QByteArray& text)
{
  QFile device(file);
  ASSERT_TRUE(device.open(QIODevice::WriteOnly));
  device.write(text);
}

/// The files of a folder with their contents: "f=now f~1=one".
std::string listing(const QDir& folder)
{
  QStringList entries;
  for (const QString& name : folder.entryList(QDir::Files, QDir::Name))
  {
    QFile device(folder.filePath(name));
    EXPECT_TRUE(device.open(QIODevice::ReadOnly));
    entries.append(name + "=" + device.readAll());
  }
  return entries.join(' ').toStdString();
}

TEST(Backups, RotateUpToTheLimit)
{
  const struct
  {
    const char* name;
    QStringList before;
    int limit;
    const char* after;
  } cases[] = {
      {"full set", {"f=now", "f~1=one", "f~2=two", "f~3=three"}, 3, "f=now f~1=now f~2=one f~3=two"},
      {"first save", {"f=now"}, 3, "f=now f~1=now"},
      {"a gap is kept", {"f=now", "f~2=two"}, 3, "f=now f~1=now f~3=two"},
      {"beyond the limit is left alone", {"f=now", "f~1=one", "f~2=two"}, 1, "f=now f~1=now f~2=two"},
      {"limit 0", {"f=now", "f~1=one"}, 0, "f=now f~1=one"},
      {"negative limit", {"f=now"}, -1, "f=now"},
      {"no file yet", {"f~1=one"}, 3, "f~1=one"},
  };
  for (const auto& c : cases)
  {
    SCOPED_TRACE(c.name);
    const QTemporaryDir folder;
    for (const QString& entry : c.before)
      write(folder.filePath(entry.section('=', 0, 0)), entry.section('=', 1).toUtf8());
    makeBackups(folder.filePath("f"), c.limit);
    EXPECT_EQ(listing(QDir(folder.path())), c.after);
  }
}

TEST(Backups, StayWhenNoneCanBeMade)
{
  const QTemporaryDir folder;
  for (const char* name : {"f", "f~0", "f~1", "f~2"}) write(folder.filePath(name), name);
  ASSERT_TRUE(QDir(folder.path()).mkpath("f~3/taken")); // which no backup can replace
  expectError<FileWriteError>("Cannot make a backup", [&] { makeBackups(folder.filePath("f"), 3); });
  EXPECT_EQ(listing(QDir(folder.path())), "f=f f~0=f~0 f~1=f~1 f~2=f~2");
}
} // namespace
