#pragma once

#include <QObject>
#include <QString>
#include <QTimer>

#include <memory>

class NYXRenderingVideoThread;
class ViewerCanvasGL;
class ViewerSpinningMotion;

/// What the user wants of a video.
struct NYXVideoSettings
{
  QString output;
  int frameRate = 25;
  bool isCircular = false; ///< the scene turns once about its Y axis, and the recording ends
  bool isRepeated = false; ///< it goes on turning until the recording is stopped
  int stepSize = 2;        ///< degrees
  int timeout = 40;        ///< milliseconds between steps
};

/// Records what a canvas shows as a video.
class NYXRenderingVideo : public QObject
{
  Q_OBJECT

public:
  /// Canvas and motion are borrowed.
  NYXRenderingVideo(ViewerCanvasGL& canvas, ViewerSpinningMotion& motion, QObject* parent);
  ~NYXRenderingVideo() override;

  /// Whether the encoder answers; otherwise a message says what to install.
  bool checkEncoder();
  static bool isEncoderInstalled();

  bool isRecording() const { return _timer.isActive(); }
  int getNumFrames() const;
  void startVideo(const NYXVideoSettings& settings);

public slots:
  /// Ends the recording and waits until the video is there, with a dialog that can cancel it. A failure is told, and
  /// whether the frames shall be kept is asked.
  void stopVideo();

signals:
  void recordingChanged(bool isRecording);
  void frameRecorded(int numFrames);
  /// The video is there.
  void videoMade(const QString& output);

private:
  void grabFrame();
  void startTurn();
  void noteStep();
  void noteMotion(bool isActive);
  /// When what is going on now is done.
  void stopSoon();
  void waitForVideo();
  void tellProblem();

  ViewerCanvasGL& _canvas;
  ViewerSpinningMotion& _motion;
  NYXVideoSettings _settings;
  QTimer _timer;
  float _turned = 0; // degrees of the circular animation
  std::unique_ptr<NYXRenderingVideoThread> _thread;
};
