#pragma once

#include "analysis/measures/stackmeasures.h"
#include "model/stackcopy.h"
#include "numeric/progresssubject.h"

#include <QObject>

#include <optional>
#include <thread>

/// Measures models and the items of one of them in a thread of its own, on a copy of the stack.
class NYXMeasureRun : public QObject, private ProgressObserver
{
  Q_OBJECT

public:
  explicit NYXMeasureRun(QObject* parent = nullptr);
  /// Cancels, and waits for the thread.
  ~NYXMeasureRun() override;

  bool isRunning() const { return _isRunning; }
  /// Takes over a complete copy. To be called when nothing is running.
  /// \param numModels  how many of the copied models are measured, from the first one on
  /// \param items  the place among the copied models of the one whose items are measured, -1 for none
  void start(std::unique_ptr<StackCopy> copy, int numModels, int items);

  /// What the last run worked on, and what came out: the measures of the first originals.
  /// @{
  const std::vector<const Model*>& originals() const { return _originals; }
  std::vector<ModelMeasures>& models() { return _models; }
  /// None when they were not asked for.
  std::optional<MeasureTable>& items() { return _items; }
  /// The item of each source of that table. Addresses that may be stale.
  std::vector<const ModelItem*>& originalItems() { return _originalItems; }
  /// @}

public slots:
  void cancel() { _subject.cancel(); }

signals:
  /// A share from 0 to 1.
  void progressChanged(double share);
  /// \param isDone  whether there are results; else it was cancelled
  void ended(bool isDone);

private:
  void started(const std::string&) override {}
  void progressed(double share) override;
  void finished() override {}
  void work(const Stack& stack, int numModels, int items);
  void measure(const Stack& stack, int numModels, int items);

  ProgressSubject _subject;
  std::vector<const Model*> _originals;
  std::vector<const ModelItem*> _originalItems;
  std::vector<ModelMeasures> _models;
  std::optional<MeasureTable> _items;
  bool _isDone = false;
  bool _isRunning = false;
  std::thread _thread;
};
