#include "viewer/nyxrenderingvideothread.h"

#include "viewer/videocommand.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QMutexLocker>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>

#include <cerrno>
#include <cstdio>

namespace
{
constexpr int pollMilliseconds = 100;

/// The last lines of what a program said, which tell why it failed.
QString lastLines(const QByteArray& text, int count)
{
  QStringList lines = QString::fromLocal8Bit(text).split(QRegularExpression("[\r\n]+"), Qt::SkipEmptyParts);
  return lines.mid(qMax(0, lines.size() - count)).join('\n');
}

/// Runs a command of the shell that takes no time.
void runShell(const QString& command)
{
  QProcess::execute("/bin/sh", {"-c", command});
}
} // namespace

NYXRenderingVideoThread::NYXRenderingVideoThread(const QString& output, int frameRate, QObject* parent)
  : QThread(parent), _output(output), _frameRate(frameRate)
{
  QTemporaryDir folder;
  folder.setAutoRemove(false);
  if (folder.isValid())
    _folder = folder.path();
  else
    fail(tr("Cannot make a temporary folder: %1").arg(folder.errorString()));
}

NYXRenderingVideoThread::~NYXRenderingVideoThread()
{
  if (isRunning()) cancel();
  wait();
  if (_folder.isEmpty() || _isFolderKept) return;
  runShell(VideoCommand::emptyFolder(_folder));
  runShell(VideoCommand::removeFolder(_folder));
}

void NYXRenderingVideoThread::addFrame(const QImage& image)
{
  QMutexLocker lock(&_mutex);
  while (_waiting.size() >= mostWaiting && isRunning() && !_isCancelled) _changed.wait(&_mutex, pollMilliseconds);
  if (isFinished() || _isCancelled) return;
  _waiting.enqueue(image);
  ++_numFrames;
  _changed.wakeAll();
}

void NYXRenderingVideoThread::finishFrames()
{
  const QMutexLocker lock(&_mutex);
  _isComplete = true;
  _changed.wakeAll();
}

void NYXRenderingVideoThread::cancel()
{
  _isCancelled = true;
  finishFrames();
}

bool NYXRenderingVideoThread::takeFrame(QImage& image)
{
  QMutexLocker lock(&_mutex);
  while (_waiting.isEmpty() && !_isComplete) _changed.wait(&_mutex);
  if (_waiting.isEmpty() || _isCancelled) return false;
  image = _waiting.dequeue();
  _changed.wakeAll();
  return true;
}

void NYXRenderingVideoThread::fail(const QString& problem)
{
  if (_problem.isEmpty()) _problem = problem;
}

void NYXRenderingVideoThread::writeFrame(const QImage& image)
{
  const QString name = VideoCommand::frameName(_folder, _numWritten);
  if (image.save(name, "PNG"))
    ++_numWritten;
  else
    fail(tr("Cannot write the frame %1").arg(name));
}

void NYXRenderingVideoThread::run()
{
  for (QImage image; _problem.isEmpty() && takeFrame(image);) writeFrame(image);
  if (_isCancelled || !_problem.isEmpty()) return;
  if (_numWritten == 0) return fail(tr("No frame was recorded"));
  makeVideo();
}

void NYXRenderingVideoThread::makeVideo()
{
  const QFileInfo output(_output);
  if (output.exists() && !output.isWritable()) return fail(tr("%1 is write-protected").arg(_output));
  const QTemporaryDir folder(output.absolutePath() + "/.mirelo-XXXXXX");
  if (!folder.isValid()) return fail(tr("Cannot write into the folder %1").arg(output.absolutePath()));
  const QString video = folder.filePath("video." + output.suffix()); // which tells the encoder the kind
  if (encode(video)) replaceOutput(video);
}

bool NYXRenderingVideoThread::encode(const QString& video)
{
  QProcess encoder;
  encoder.setStandardInputFile(QProcess::nullDevice());
  encoder.start("/bin/sh", {"-c", "exec " + VideoCommand::encode(_folder, _frameRate, video)});
  QByteArray said;
  static const QRegularExpression frame("frame=\\s*(\\d+)");
  while (encoder.state() != QProcess::NotRunning && !_isCancelled)
  {
    encoder.waitForFinished(pollMilliseconds);
    const QByteArray news = encoder.readAllStandardError();
    said = (said + news).right(1 << 16);
    auto matches = frame.globalMatch(QString::fromLatin1(news));
    while (matches.hasNext()) emit encodingProgressed(matches.next().captured(1).toInt(), _numWritten);
  }
  if (_isCancelled) encoder.kill();
  encoder.waitForFinished(-1);
  if (_isCancelled) return false;
  if (encoder.exitStatus() == QProcess::NormalExit && encoder.exitCode() == 0) return true;
  fail(tr("The encoder failed:\n%1").arg(lastLines(said + encoder.readAllStandardError(), 4)));
  return false;
}

/// A link stays, and what it leads to is replaced.
void NYXRenderingVideoThread::replaceOutput(const QString& video)
{
  const QString former = QFileInfo(_output).canonicalFilePath();
  if (!former.isEmpty()) QFile::setPermissions(video, QFile::permissions(former));
  const QString target = former.isEmpty() ? _output : former;
  if (std::rename(QFile::encodeName(video).constData(), QFile::encodeName(target).constData()) != 0)
    fail(tr("Cannot write %1: %2").arg(target, qt_error_string(errno)));
}
