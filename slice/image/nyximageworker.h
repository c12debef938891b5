#pragma once

#include "numeric/progresssubject.h"

#include <QObject>

#include <atomic>

/// Work on an image that is done once, in the thread to which the worker was moved.
class NYXImageWorker : public QObject
{
  Q_OBJECT

public:
  NYXImageWorker();
  ~NYXImageWorker() override;

  /// From any thread, also before the work begins.
  void cancel();
  bool isCancelled() const { return _isCancelled; }
  /// Whether the work has come to its end: what it made may be used by other threads.
  bool isDone() const { return _isDone; }

public slots:
  void run();

signals:
  /// The share of the work that is done, 0 to 1.
  void progressed(double share);
  /// Done, cancelled or failed.
  void finished();

protected:
  /// May throw Cancelled when the subject is, and nothing else.
  virtual void work(ProgressSubject& subject) = 0;

private:
  /// Passes the progress on as a signal.
  class Relay : public ProgressObserver
  {
  public:
    explicit Relay(NYXImageWorker& worker) : _worker(worker) {}
    void started(const std::string&) override {}
    void progressed(double share) override { emit _worker.progressed(share); }
    void finished() override {}

  private:
    NYXImageWorker& _worker;
  };

  ProgressSubject _subject;
  Relay _relay;
  std::atomic<bool> _isCancelled = false; // kept, while the subject forgets it as a step begins
  std::atomic<bool> _isDone = false;
};
