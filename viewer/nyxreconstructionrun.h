#pragma once

#include "numeric/progresssubject.h"
#include "viewer/scene/shownstack.h"
#include "viewer/scene/stackpainters.h"

#include <QObject>
#include <QString>

#include <thread>

/// Reconstructs models in a thread of its own while the windows stay alive.
class NYXReconstructionRun : public QObject, private ProgressObserver
{
  Q_OBJECT

public:
  explicit NYXReconstructionRun(QObject* parent = nullptr);
  /// Waits for the thread.
  ~NYXReconstructionRun() override;

  bool isRunning() const { return _isRunning; }
  /// Takes over the copy to work on. To be called when nothing is running.
  void start(ShownStack shown);

  /// What the last run has worked on, and what came out: a painter for each of its models, or a text that says why
  /// there are none.
  const ShownStack& shown() const { return _shown; }
  std::vector<PaintedModel>& painted() { return _painted; }
  const QString& error() const { return _error; }

public slots:
  void cancel() { _subject.cancel(); }

signals:
  /// A share from 0 to 1.
  void progressChanged(double share);
  /// \param isDone  whether there is a result; else it was cancelled, or there is an error
  void ended(bool isDone);

private:
  void started(const std::string&) override {}
  void progressed(double share) override;
  void finished() override {}
  void work();
  void end();

  ProgressSubject _subject;
  ShownStack _shown;
  std::vector<PaintedModel> _painted;
  QString _error;
  bool _isDone = false;
  bool _isRunning = false;
  std::thread _thread;
};
