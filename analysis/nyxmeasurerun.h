#pragma once

#include "analysis/measures/stackmeasures.h"
#include "app/core/nyxthreadrun.h"
#include "model/stackcopy.h"

#include <optional>

/// Measures models and the items of one of them in a thread of its own, on a copy of the stack.
class NYXMeasureRun : public NYXThreadRun
{
  Q_OBJECT

public:
  explicit NYXMeasureRun(QObject* parent = nullptr) : NYXThreadRun(parent) {}
  ~NYXMeasureRun() override { stop(); }

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

private:
  void measure(const Stack& stack, int numModels, int items, ProgressSubject& progress);

  std::vector<const Model*> _originals;
  std::vector<const ModelItem*> _originalItems;
  std::vector<ModelMeasures> _models;
  std::optional<MeasureTable> _items;
};
