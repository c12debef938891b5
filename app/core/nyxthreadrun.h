#pragma once

#include "numeric/progresssubject.h"

#include <QObject>
#include <QString>

#include <atomic>
#include <functional>
#include <thread>

/// Base of what works in a thread of its own while the windows stay alive. A derived class owns what its thread works
/// on, and calls stop() in its destructor.
class NYXThreadRun : public QObject, private ProgressObserver
{
  Q_OBJECT

public:
  bool isRunning() const { return _isRunning; }
  /// Why the last run has no result; empty when it has one or was cancelled.
  const QString& error() const { return _error; }

public slots:
  void cancel();

signals:
  /// A share from 0 to 1.
  void progressChanged(double share);
  /// The thread is over. \param isDone  whether there is a result; else it was cancelled, or there is an error
  void ended(bool isDone);

protected:
  explicit NYXThreadRun(QObject* parent) : QObject(parent) { _subject.addObserver(*this); }
  ~NYXThreadRun() override { stop(); }

  /// Begins the work, which reports to the subject and honours its cancellation. To be called when nothing is running.
  void startThread(std::function<void(ProgressSubject&)> work);
  /// Cancels, and waits for the thread; ended() is not emitted any more.
  void stop();

private:
  void started(const std::string&) override;
  void progressed(double share) override;
  void finished() override {}
  void run(const std::function<void(ProgressSubject&)>& work);
  void end(bool isDone);

  ProgressSubject _subject;
  std::atomic<bool> _isCancelled = false;
  QString _error;
  bool _isRunning = false;
  std::thread _thread;
};
