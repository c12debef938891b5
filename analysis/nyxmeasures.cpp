#include "analysis/nyxmeasures.h"

#include "app/core/actions/nyxsliceaction.h"
#include "app/core/nyxeventserver.h"
#include "app/core/nyxstack.h"
#include "model/model.h"
#include "model/modelitem.h"
#include "model/stackslice.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace
{
constexpr int delay = 100;                // milliseconds, so that many changes are one
constexpr long verticesPerPiece = 100000; // which a copy takes a few milliseconds for
} // namespace

NYXMeasures::NYXMeasures(QObject* parent) : QObject(parent)
{
  _delay.setSingleShot(true);
  _delay.setInterval(delay);
  connect(&_delay, &QTimer::timeout, this, &NYXMeasures::tellAndStart);
  connect(&_copying, &QTimer::timeout, this, &NYXMeasures::advanceCopy);
  connect(&_run, &NYXMeasureRun::progressChanged, this, &NYXMeasures::progressChanged);
  connect(&_run, &NYXMeasureRun::ended, this, &NYXMeasures::takeResults);
  NYXEventServer::attach(*this);
}

NYXMeasures::~NYXMeasures()
{
  NYXEventServer::detach(*this);
}

void NYXMeasures::setStack(NYXStack* stack)
{
  if (stack == _stack) return;
  cancel();
  _isRunObsolete = _run.isRunning();
  _stack = stack;
  _measured.clear();
  _unit = stack == nullptr ? std::string() : stack->getLengthUnit().symbol();
  _itemModel = nullptr;
  _items = MeasureTable();
  _stale = _staleSince = Stale();
  if (stack != nullptr) markAll();
  tellAndStart();
  emit itemsChanged();
}

void NYXMeasures::setItemModel(const Model* model)
{
  if (model == _itemModel) return;
  _itemModel = model;
  _items = model == nullptr ? MeasureTable()
                            : emptyItemTable(model->getGeometry(), model->getStack()->getLengthUnit().symbol());
  _itemsOfSources.clear();
  for (Stale* stale : {&_stale, &_staleSince})
  {
    stale->hasItems = stale->isAllItems = false;
    stale->items.clear();
  }
  if (model != nullptr) markAllItems();
  emit itemsChanged();
  noteChange();
}

std::vector<ModelMeasures> NYXMeasures::models() const
{
  std::vector<ModelMeasures> models;
  for (int i = 0; _stack != nullptr && i < _stack->getNumModels(); ++i)
  {
    const Model& model = *_stack->getModel(i);
    const auto measured = _measured.find(&model);
    const bool isMeasured = measured != _measured.end() && measured->second.geometry == model.getGeometry();
    models.push_back(isMeasured ? measured->second : noMeasures(model, {}));
    models.back().model = model.getName();
  }
  return models;
}

std::string NYXMeasures::failureOf(const Model& model) const
{
  const auto measured = _measured.find(&model);
  if (measured == _measured.end()) return {};
  const bool hasPlace = measured->second.vertices == 0 || !std::isnan(measured->second.averageX);
  return hasPlace ? std::string() : measured->second.remark;
}

ModelItem* NYXMeasures::itemOf(int source) const
{
  if (_itemModel == nullptr || source < 0 || source >= static_cast<int>(_itemsOfSources.size())) return nullptr;
  const auto& items = _itemModel->getItems();
  const auto item = std::find(items.begin(), items.end(), _itemsOfSources[static_cast<std::size_t>(source)]);
  return item == items.end() ? nullptr : *item;
}

bool NYXMeasures::isItemStale(int source) const
{
  if (!_stale.hasItems || _stale.isAllItems) return _stale.hasItems;
  return _stale.items.contains(_itemsOfSources[static_cast<std::size_t>(source)]);
}

void NYXMeasures::markAllItems()
{
  for (Stale* stale : {&_stale, &_staleSince}) stale->hasItems = stale->isAllItems = true;
}

void NYXMeasures::markModel(const Model& model, const ModelItem* item)
{
  if (_stack == nullptr || model.getStack() != _stack) return;
  for (Stale* stale : {&_stale, &_staleSince}) stale->models.insert(&model);
  if (&model == _itemModel && item == nullptr) markAllItems();
  if (&model == _itemModel && item != nullptr)
    for (Stale* stale : {&_stale, &_staleSince})
    {
      stale->hasItems = true;
      stale->items.insert(item);
    }
  noteChange();
}

void NYXMeasures::markAll()
{
  for (int i = 0; i < _stack->getNumModels(); ++i) markModel(*_stack->getModel(i));
  noteChange();
}

void NYXMeasures::noteStackChange(const Stack& stack)
{
  if (&stack == _stack) markAll();
}

void NYXMeasures::noteItemChange(const Model& model, const ModelItem& item)
{
  markModel(model, &item);
}

/// A copy that is being made is of no use any more.
void NYXMeasures::noteChange()
{
  _copy.reset();
  _copying.stop();
  _hasChangedSinceCancel = true;
  _hasChangedInBatch = eventBatchEnabled();
  if (!_hasChangedInBatch) startDelay();
}

void NYXMeasures::startDelay()
{
  if (!_delay.isActive()) _delay.start();
  emit outdated();
}

void NYXMeasures::atEventBatchEnd()
{
  if (std::exchange(_hasChangedInBatch, false)) startDelay();
}

void NYXMeasures::tellAndStart()
{
  _delay.stop();
  emit modelsChanged();
  start();
}

void NYXMeasures::refresh()
{
  start();
}

void NYXMeasures::cancel()
{
  _copy.reset();
  _copying.stop();
  _run.cancel();
  _hasChangedSinceCancel = false;
  showRunning();
}

void NYXMeasures::start()
{
  const bool isIdle = _copy == nullptr && !_run.isRunning() && !eventBatchEnabled();
  if (isIdle && _stack != nullptr && (areModelsStale() || areItemsStale()))
  {
    std::vector<const Model*> models(_stale.models.begin(), _stale.models.end());
    _numMeasured = static_cast<int>(models.size());
    if (areItemsStale() && !_stale.models.contains(_itemModel)) models.push_back(_itemModel);
    _copy = std::make_unique<StackCopy>(*_stack, models);
    _copiedUnit = _stack->getLengthUnit().symbol();
    _staleSince = Stale();
    _copying.start(0);
  }
  showRunning();
}

void NYXMeasures::advanceCopy()
{
  if (eventBatchEnabled() || _copy->advance(verticesPerPiece)) return;
  _copying.stop();
  const std::vector<const Model*>& models = _copy->getOriginals();
  _copiedItemModel = _itemModel;
  const auto place = std::find(models.begin(), models.end(), _itemModel);
  const bool hasItems = areItemsStale() && place != models.end();
  _run.start(std::move(_copy), _numMeasured, hasItems ? static_cast<int>(place - models.begin()) : -1);
}

/// Models that were deleted meanwhile are no concern any more; those that changed meanwhile are stale again.
void NYXMeasures::takeResults(bool isDone)
{
  const bool isTaken = isDone && !_isRunObsolete;
  const bool hasFailed = !_isRunObsolete && !_run.error().isEmpty();
  if (hasFailed) _hasChangedSinceCancel = false; // not again before a change or refresh()
  const bool isWanted = isTaken || _isRunObsolete || _hasChangedSinceCancel;
  _isRunObsolete = false;
  if (isTaken)
  {
    _unit = _copiedUnit;
    for (std::size_t i = 0; i < _run.models().size(); ++i)
      if (_stack->findModel(_run.originals()[i]) >= 0) _measured[_run.originals()[i]] = std::move(_run.models()[i]);
    const bool areItemsOfModel = _run.items() && _copiedItemModel == _itemModel && !_staleSince.isAllItems;
    if (areItemsOfModel)
    {
      _items = std::move(*_run.items());
      _itemsOfSources = std::move(_run.originalItems());
    }
    _stale = std::exchange(_staleSince, Stale());
    emit modelsChanged();
    if (areItemsOfModel) emit itemsChanged();
  }
  if (hasFailed) emit failed(_run.error());
  if (isWanted && (areModelsStale() || areItemsStale())) startDelay();
  showRunning();
}

void NYXMeasures::showRunning()
{
  if (isRunning() == _isShownRunning) return;
  _isShownRunning = isRunning();
  emit runningChanged(_isShownRunning);
}

void NYXMeasures::stackCloseEvent(const NYXStackCloseEvent& event)
{
  if (&event.getStack() == _stack) setStack(nullptr);
}

/// The images may be looked for elsewhere.
void NYXMeasures::stackNameEvent(const NYXStackNameEvent& event)
{
  noteStackChange(event.getStack());
}

void NYXMeasures::sliceNameEvent(const NYXSliceNameEvent& event)
{
  if (_stack == nullptr || event.getSlice().getStack() != _stack) return;
  if (_itemModel != nullptr) markAllItems();
  noteChange();
}

void NYXMeasures::processSliceAction(NYXSliceAction& action)
{
  noteStackChange(action.getStack());
}

void NYXMeasures::modelCreateEvent(const NYXModelCreateEvent& event)
{
  markModel(event.getModel());
}

void NYXMeasures::modelDeleteEvent(const NYXModelDeleteEvent& event)
{
  if (_stack == nullptr || event.getStack() != _stack) return;
  const Model* const model = &event.getModel();
  _measured.erase(model);
  if (model == _itemModel) setItemModel(nullptr);
  for (Stale* stale : {&_stale, &_staleSince}) stale->models.erase(model);
  noteChange();
}

/// Names, colours and the order of the models need no other measures.
void NYXMeasures::modelPropertiesEvent(const NYXModelPropertiesEvent& event)
{
  if (_stack == nullptr || event.getStack() != _stack) return;
  if (event.getOldProperties().getGeometry() == event.getModel().getGeometry()) return noteChange();
  markModel(event.getModel());
}
