#include "viewer/nyxrenderingvideo.h"

#include "viewer/nyxrenderingvideothread.h"
#include "viewer/videocommand.h"
#include "viewer/viewercanvasgl.h"
#include "viewer/viewerspinningmotion.h"

#include <QCoreApplication>
#include <QMessageBox>
#include <QProcess>
#include <QProgressDialog>
#include <QPushButton>

#include <cmath>

namespace
{
constexpr unsigned long pollMilliseconds = 20;
}

NYXRenderingVideo::NYXRenderingVideo(ViewerCanvasGL& canvas, ViewerSpinningMotion& motion, QObject* parent)
  : QObject(parent), _canvas(canvas), _motion(motion)
{
  _timer.setTimerType(Qt::PreciseTimer);
  connect(&_timer, &QTimer::timeout, this, &NYXRenderingVideo::grabFrame);
  connect(&motion, &ViewerMotion::rotationChanged, this, &NYXRenderingVideo::noteStep);
  connect(&motion, &ViewerMotion::activeChanged, this, &NYXRenderingVideo::noteMotion);
}

NYXRenderingVideo::~NYXRenderingVideo() = default;

bool NYXRenderingVideo::isEncoderInstalled()
{
  QProcess shell;
  shell.setStandardOutputFile(QProcess::nullDevice());
  shell.setStandardErrorFile(QProcess::nullDevice());
  shell.start("/bin/sh", {"-c", VideoCommand::check()});
  return shell.waitForFinished() && shell.exitStatus() == QProcess::NormalExit && shell.exitCode() == 0;
}

bool NYXRenderingVideo::checkEncoder()
{
  if (isEncoderInstalled()) return true;
  QMessageBox::warning(_canvas.window(), tr("Video"),
                       tr("Please install ffmpeg software") + "\nhttps://ffmpeg.org/download.html");
  return false;
}

int NYXRenderingVideo::getNumFrames() const
{
  return _thread ? _thread->getNumFrames() : 0;
}

void NYXRenderingVideo::startVideo(const NYXVideoSettings& settings)
{
  if (isRecording()) return;
  _settings = settings;
  _thread = std::make_unique<NYXRenderingVideoThread>(settings.output, settings.frameRate);
  if (!_thread->getProblem().isEmpty()) return tellProblem();
  _thread->start();
  if (settings.isCircular) startTurn();
  _timer.start(1000 / qMax(1, settings.frameRate));
  emit recordingChanged(true);
}

void NYXRenderingVideo::startTurn()
{
  _turned = 0;
  _motion.setActive(false);
  _motion.setMotionAngle(static_cast<float>(_settings.stepSize));
  _motion.setTimeout(_settings.timeout);
  _motion.setActive(true);
}

/// The turn that is recorded ends where it began.
void NYXRenderingVideo::noteStep()
{
  if (!isRecording() || !_settings.isCircular) return;
  _turned += std::abs(_motion.getMotionAngle());
  if (_turned >= 360 && !_settings.isRepeated) stopSoon();
}

/// A turn that the user ends is recorded as far as it came.
void NYXRenderingVideo::noteMotion(bool isActive)
{
  if (!isActive && isRecording() && _settings.isCircular && !_settings.isRepeated) stopSoon();
}

void NYXRenderingVideo::stopSoon()
{
  QMetaObject::invokeMethod(this, &NYXRenderingVideo::stopVideo, Qt::QueuedConnection);
}

void NYXRenderingVideo::grabFrame()
{
  if (_thread->isFinished()) return stopVideo(); // frames cannot be written
  _thread->addFrame(_canvas.saveImage());
  emit frameRecorded(getNumFrames());
}

void NYXRenderingVideo::stopVideo()
{
  if (!isRecording()) return;
  _timer.stop();
  if (_settings.isCircular) _motion.setActive(false);
  emit recordingChanged(false);
  _thread->finishFrames();
  waitForVideo();
  if (!_thread->isCancelled() && _thread->getProblem().isEmpty())
    emit videoMade(_settings.output);
  else if (!_thread->isCancelled())
    return tellProblem();
  _thread.reset();
}

void NYXRenderingVideo::waitForVideo()
{
  QProgressDialog dialog(tr("Encoding video..."), tr("Cancel"), 0, 0, _canvas.window());
  dialog.setObjectName("encodingDialog");
  dialog.setWindowTitle(tr("Video"));
  dialog.setWindowModality(Qt::ApplicationModal);
  dialog.setAutoReset(false);
  connect(_thread.get(), &NYXRenderingVideoThread::encodingProgressed, &dialog,
          [&dialog](int numFrames, int total)
          {
            dialog.setMaximum(total);
            dialog.setValue(qMin(numFrames, total));
          });
  connect(&dialog, &QProgressDialog::canceled, this, [this] { _thread->cancel(); });
  dialog.show();
  while (!_thread->wait(pollMilliseconds)) QCoreApplication::processEvents();
}

void NYXRenderingVideo::tellProblem()
{
  const QString problem = _thread->getProblem();
  const bool hasFrames = getNumFrames() > 0;
  QMessageBox box(QMessageBox::Warning, tr("Video"),
                  tr("Could not make the video %1.").arg(_settings.output) + "\n" + problem, QMessageBox::Close,
                  _canvas.window());
  box.setTextFormat(Qt::PlainText);
  QPushButton* keep = nullptr;
  if (hasFrames) keep = box.addButton(tr("Keep frames"), QMessageBox::ActionRole);
  box.exec();
  if (keep != nullptr && box.clickedButton() == static_cast<QAbstractButton*>(keep))
  {
    _thread->keepFrames();
    QMessageBox::information(_canvas.window(), tr("Video"), tr("The frames are in %1").arg(_thread->getFolder()));
  }
  _thread.reset();
}
