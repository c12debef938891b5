#pragma once

#include "analysis/nyxmeasurerun.h"
#include "app/core/nyxgeometryclient.h"

#include <QObject>
#include <QTimer>

#include <map>
#include <memory>
#include <set>

class NYXStack;

/// The measures of a stack's models and of the items of one of them, kept in step with the stack: what the event bus
/// tells of makes measures stale, and stale ones are computed in a thread of their own on a copy, which is made in
/// small pieces in between the events of the windows.
class NYXMeasures : public QObject, public NYXGeometryClient
{
  Q_OBJECT

public:
  explicit NYXMeasures(QObject* parent = nullptr);
  ~NYXMeasures() override;

  /// nullptr for none. The stack is borrowed.
  void setStack(NYXStack* stack);
  NYXStack* getStack() const { return _stack; }
  /// The model whose items are measured, nullptr for none.
  void setItemModel(const Model* model);
  const Model* getItemModel() const { return _itemModel; }

  /// In stack order; those of a model that was not measured yet are only counted.
  std::vector<ModelMeasures> models() const;
  /// The unit of length of these, which may be that from before a change.
  const std::string& unit() const { return _unit; }
  bool isStale(const Model& model) const { return _stale.models.contains(&model); }
  bool areModelsStale() const { return !_stale.models.empty(); }

  /// Why a model cannot be reconstructed; empty when it can, or was not measured yet.
  std::string failureOf(const Model& model) const;

  const MeasureTable& items() const { return _items; }
  /// The item that a row of items() was measured on; nullptr when it is gone.
  ModelItem* itemOf(int source) const;
  bool areItemsStale() const { return _stale.hasItems; }
  /// Whether the measures of one item are out of date.
  bool isItemStale(int source) const;

  /// Whether stale measures are about to be computed.
  bool isWaiting() const { return _delay.isActive(); }
  bool isRunning() const { return _copy != nullptr || _run.isRunning(); }

public slots:
  /// Ends the measuring that is at work; what is stale stays so until it changes again or refresh() is called.
  void cancel();
  /// Measures what is stale.
  void refresh();

signals:
  /// Models came, went, were renamed or measured; so may be what is on the slices.
  void modelsChanged();
  /// The items of the model have been measured, or it is another model.
  void itemsChanged();
  /// Measures are stale now.
  void outdated();
  /// Nothing could be measured. \param reason  in one line
  void failed(const QString& reason);
  void progressChanged(double share);
  void runningChanged(bool isRunning);

protected:
  void noteStackChange(const Stack& stack) override;
  void noteItemChange(const Model& model, const ModelItem& item) override;
  void stackCloseEvent(const NYXStackCloseEvent& event) override;
  void stackNameEvent(const NYXStackNameEvent& event) override;
  void sliceNameEvent(const NYXSliceNameEvent& event) override;
  void modelCreateEvent(const NYXModelCreateEvent& event) override;
  void modelDeleteEvent(const NYXModelDeleteEvent& event) override;
  void modelPropertiesEvent(const NYXModelPropertiesEvent& event) override;
  void processSliceAction(NYXSliceAction& action) override;
  void atEventBatchEnd() override;

private:
  /// What is out of date.
  struct Stale
  {
    std::set<const Model*> models;
    bool hasItems = false; // of the model whose items are measured
    bool isAllItems = false;
    std::set<const ModelItem*> items;
  };

  void markAll();
  void markModel(const Model& model, const ModelItem* item = nullptr);
  void markAllItems();
  void noteChange();
  void startDelay();
  void tellAndStart();
  void start();
  void advanceCopy();
  void takeResults(bool isDone);
  void showRunning();

  NYXStack* _stack = nullptr;
  std::map<const Model*, ModelMeasures> _measured;
  std::string _unit;
  std::string _copiedUnit;
  const Model* _itemModel = nullptr;
  MeasureTable _items;
  std::vector<const ModelItem*> _itemsOfSources; // addresses that may be stale
  Stale _stale;
  Stale _staleSince; // the copy that is at work was begun
  bool _hasChangedInBatch = false;
  bool _isShownRunning = false;
  bool _isRunObsolete = false;
  bool _hasChangedSinceCancel = false;
  std::unique_ptr<StackCopy> _copy; // while it is being made
  int _numMeasured = 0;             // of the models that are copied
  const Model* _copiedItemModel = nullptr;
  NYXMeasureRun _run;
  QTimer _delay;
  QTimer _copying;
};
