// The program itself, killed while it saves: what lies on the disk can be read, as it was before the save or after it.
#include "app/core/nyxpreferences.h"
#include "image/imagesourcefile.h"
#include "model/model.h"
#include "model/modelitem.h"
#include "model/stackslice.h"
#include "tests/support/stackfiles.h"

#include <gtest/gtest.h>

#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QProcessEnvironment>
#include <QTest>

#include <random>

namespace
{
constexpr int patience = 60000; // for what takes a moment, in milliseconds

class KilledProgram : public testing::Test
{
protected:
  KilledProgram()
  {
    write("new");
    write("old");
    QFile::link(MIRELO_PLUGIN_saving, QString::fromStdString(_home.file("saving.so")));
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const char* name : {"HOME", "XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_RUNTIME_DIR", "MIRELO_PLUGIN_PATH"})
      environment.insert(name, QString::fromStdString(_home.getPath()));
    _program.setProcessEnvironment(environment);
    _program.setProcessChannelMode(QProcess::ForwardedErrorChannel);
  }
  ~KilledProgram() override { kill(); }

  /// Starts the program, which saves from then on. \return how long a save takes, in microseconds
  qint64 start()
  {
    _program.start(MIRELO_PROGRAM, {QString::fromStdString(_file)});
    waitFor("end"); // the first save also fills the caches
    waitFor("begin");
    QElapsedTimer timer;
    timer.start();
    waitFor("end");
    return timer.nsecsElapsed() / 1000;
  }

  void waitFor(const QByteArray& word)
  {
    QByteArray line;
    while (line != word && (_program.canReadLine() || _program.waitForReadyRead(patience)))
      if (_program.canReadLine()) line = _program.readLine().trimmed();
    ASSERT_EQ(line, word);
  }

  /// Of a program that has begun to save. \return whether it had not come to an end
  bool kill()
  {
    _program.kill();
    _program.waitForFinished(patience);
    return !_program.readAll().trimmed().endsWith("end");
  }

  /// The file and its backups are complete, there are not more of them than there should be, and nothing else.
  void expectReadable()
  {
    int numFiles = 0;
    for (const auto& entry : std::filesystem::directory_iterator(_stackFolder.getPath()))
    {
      const std::string name = entry.path().filename().string();
      if (name.starts_with(".mirelo-") && name.ends_with(".tmp")) continue; // which a later save removes
      ++numFiles;
      const std::string content = contentOf(entry.path().string());
      EXPECT_TRUE(content == _contents[0] || content == _contents[1]) << name;
      EXPECT_THAT(logOf(content), testing::IsEmpty()) << name;
    }
    EXPECT_LE(numFiles, 1 + NYXPreferences::getMaxNumBackups());
    EXPECT_TRUE(std::filesystem::exists(_file));
  }

private:
  void write(const std::string& name)
  {
    Stack stack;
    stack.setName(name);
    for (int i = 0; i < 50; ++i)
    {
      StackSlice& slice = stack.addSlice(std::make_unique<StackSlice>());
      slice.setName("s" + std::to_string(i));
      slice.setImageSource(ImageSourceFile(_stackFolder.file("a.tif")));
    }
    Model& model = stack.addModel(std::make_unique<Model>("m"));
    for (int i = 0; i < 500; ++i) ModelItem::create(model, *stack.getSlice(i % 50)).setVertices(Vertices<int>(2, 500));
    StackWriter().write(stack, _file);
    _contents.push_back(contentOf(_file));
  }

  std::vector<std::string> logOf(const std::string& content) const
  {
    Stack stack;
    StackReader reader;
    reader.read(stack, _home.write("copy.sdf", content));
    return reader.getLog();
  }

  TemporaryFolder _home;
  TemporaryFolder _stackFolder;
  std::string _file = _stackFolder.file("stack.sdf");
  std::vector<std::string> _contents;
  QProcess _program;
};

TEST_F(KilledProgram, LongLeavesAReadableStackAndBackups)
{
  std::mt19937 random(7);
  int numHits = 0;
  for (int round = 0; round < 50 && !HasFailure(); ++round)
  {
    SCOPED_TRACE(round);
    const qint64 duration = start();
    waitFor("begin");
    usleep(static_cast<useconds_t>(random() % static_cast<unsigned>(duration + duration / 4)));
    numHits += kill();
    expectReadable();
  }
  EXPECT_GE(numHits, 25);
}
} // namespace
