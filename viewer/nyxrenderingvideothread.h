#pragma once

#include <QImage>
#include <QMutex>
#include <QQueue>
#include <QString>
#include <QThread>
#include <QWaitCondition>

#include <atomic>

/// Writes the frames of a video into a temporary folder while they come, then runs the encoder.
class NYXRenderingVideoThread : public QThread
{
  Q_OBJECT

public:
  NYXRenderingVideoThread(const QString& output, int frameRate, QObject* parent = nullptr);
  /// Cancels, waits, and removes the temporary folder.
  ~NYXRenderingVideoThread() override;

  /// Hands over the next frame. Waits while many frames are not written yet; does nothing when the thread has ended.
  void addFrame(const QImage& image);
  /// There are no more frames: the thread encodes them when they are written, and ends.
  void finishFrames();
  /// Ends without a video.
  void cancel();

  int getNumFrames() const { return _numFrames; }
  bool isCancelled() const { return _isCancelled; }
  /// Why there is no video; empty when there is one. To be asked when the thread has ended.
  const QString& getProblem() const { return _problem; }
  const QString& getFolder() const { return _folder; }
  /// Leaves the frames where they are.
  void keepFrames() { _isFolderKept = true; }

signals:
  /// Frames that are encoded of all.
  void encodingProgressed(int numFrames, int total);

protected:
  void run() override;

private:
  static constexpr int mostWaiting = 32; // frames in memory

  bool takeFrame(QImage& image);
  void writeFrame(const QImage& image);
  /// Makes the video beside the output, whose place it takes when it is complete.
  void makeVideo();
  bool encode(const QString& video);
  void replaceOutput(const QString& video);
  void fail(const QString& problem);

  QString _output;
  int _frameRate;
  QString _folder;
  QMutex _mutex;
  QWaitCondition _changed;
  QQueue<QImage> _waiting;
  bool _isComplete = false;
  bool _isFolderKept = false;
  std::atomic<bool> _isCancelled = false;
  std::atomic<int> _numFrames = 0; // that were handed over
  int _numWritten = 0;
  QString _problem;
};
