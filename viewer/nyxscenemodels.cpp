#include "viewer/nyxscenemodels.h"

#include "app/core/actions/nyxsliceaction.h"
#include "app/core/nyxeventserver.h"
#include "app/core/nyxstack.h"
#include "model/model.h"
#include "model/modelitem.h"
#include "model/stackslice.h"
#include "viewer/scene/modelpainters.h"
#include "viewer/viewercanvasgl.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace
{
constexpr int delay = 60; // milliseconds, so that many changes are one
}

NYXSceneModels::NYXSceneModels(NYXStack& stack, ViewerCanvasGL& canvas, QObject* parent)
  : QObject(parent), _stack(stack), _canvas(canvas)
{
  _delay.setSingleShot(true);
  _delay.setInterval(delay);
  connect(&_delay, &QTimer::timeout, this, &NYXSceneModels::start);
  connect(&_run, &NYXReconstructionRun::ended, this, &NYXSceneModels::takeResults);
  connect(&_run, &NYXReconstructionRun::progressChanged, this, &NYXSceneModels::progressChanged);
  NYXEventServer::attach(*this);
  _shownScale = lengthScale();
  rebuild();
}

NYXSceneModels::~NYXSceneModels()
{
  NYXEventServer::detach(*this);
  _canvas.removePainters();
  _canvas.makeCurrent();
  _painted.clear();
  _canvas.doneCurrent();
}

void NYXSceneModels::rebuild()
{
  markAll();
}

void NYXSceneModels::cancel()
{
  _delay.stop();
  _cancelledModels.merge(_staleModels);
  _run.cancel();
}

void NYXSceneModels::showModel(const Model& model, bool isShown)
{
  if (isShown == this->isShown(model)) return;
  isShown ? static_cast<void>(_hiddenModels.erase(&model)) : static_cast<void>(_hiddenModels.insert(&model));
  if (const auto painted = _painted.find(&model); painted != _painted.end() && painted->second.painter)
    painted->second.painter->setVisible(isShown);
  _canvas.update();
  emit modelsChanged();
}

bool NYXSceneModels::isShown(const ModelItem& item) const
{
  const auto visibility = _itemVisibilities.find(&item);
  return visibility != _itemVisibilities.end() ? visibility->second : isShown3D(item);
}

void NYXSceneModels::showItem(const ModelItem& item, bool isShown)
{
  if (isShown == this->isShown(item)) return;
  _itemVisibilities[&item] = isShown;
  markModel(*item.getModel());
  emit modelsChanged();
}

std::vector<const Model*> NYXSceneModels::shownModels() const
{
  std::vector<const Model*> models;
  for (int i = 0; i < _stack.getNumModels(); ++i)
    if (isShown(*_stack.getModel(i))) models.push_back(_stack.getModel(i));
  return models;
}

QString NYXSceneModels::problemOf(const Model& model) const
{
  const auto painted = _painted.find(&model);
  return painted == _painted.end() ? QString() : QString::fromStdString(painted->second.problem);
}

void NYXSceneModels::markModel(const Model& model)
{
  if (model.getStack() != &_stack) return;
  _staleModels.insert(&model);
  schedule();
}

void NYXSceneModels::markAll()
{
  for (int i = 0; i < _stack.getNumModels(); ++i) _staleModels.insert(_stack.getModel(i));
  schedule();
}

/// With the end of the batch when one is open: until then the stack may be in the middle of a change.
void NYXSceneModels::schedule()
{
  if (!eventBatchEnabled() && !_run.isRunning()) _delay.start();
}

void NYXSceneModels::atEventBatchEnd()
{
  if (!_staleModels.empty() && !_run.isRunning()) _delay.start();
}

NYXSceneModels::LengthScale NYXSceneModels::lengthScale() const
{
  return {_stack.getLengthUnit(), _stack.getDefaultPixelCalibration().getPixelWidth()};
}

void NYXSceneModels::showScale(const LengthScale& scale)
{
  constexpr double rounding = 1e-5; // of converted lengths
  const LengthScale old = std::exchange(_shownScale, scale);
  if (scale.unit == old.unit) return;
  const double factor = std::pow(10.0, old.unit.getScale() - scale.unit.getScale());
  const double width = double{old.pixelWidth} * factor;
  const bool isConverted = std::abs(double{scale.pixelWidth} - width) <= rounding * std::abs(width);
  _canvas.setUnit(unit());
  emit unitChanged(isConverted ? factor : 1);
}

void NYXSceneModels::start()
{
  if (_run.isRunning() || eventBatchEnabled() || _staleModels.empty()) return;
  _runScale = lengthScale();
  if (_runScale.unit != _shownScale.unit) // also what a cancelled reconstruction has left
    for (int i = 0; i < _stack.getNumModels(); ++i) _staleModels.insert(_stack.getModel(i));
  const std::vector<const Model*> models(_staleModels.begin(), _staleModels.end());
  for (const Model* model : models) _cancelledModels.erase(model);
  _staleModels.clear();
  forgetDeletedItems();
  emit runningChanged(true);
  _run.start(copyShown(_stack, models, [this](const ModelItem& item) { return isShown(item); }));
}

/// Models that were deleted meanwhile are no concern any more; those that changed meanwhile are stale again.
void NYXSceneModels::takeResults(bool isDone)
{
  const std::vector<const Model*>& models = _run.shown().models;
  if (_stack.getNumModels() == 0)
    showScale(lengthScale());
  else if (isDone)
    showScale(_runScale);
  _canvas.makeCurrent();
  for (std::size_t i = 0; isDone && i < models.size(); ++i)
    if (_stack.findModel(models[i]) >= 0) _painted[models[i]] = std::move(_run.painted()[i]);
  _canvas.doneCurrent();
  if (!isDone)
    for (const Model* model : models)
      if (_stack.findModel(model) >= 0) _cancelledModels.insert(model);
  _canvas.removePainters();
  for (int i = 0; i < _stack.getNumModels(); ++i)
  {
    const auto painted = _painted.find(_stack.getModel(i));
    if (painted == _painted.end() || !painted->second.painter) continue;
    painted->second.painter->setVisible(isShown(*painted->first));
    _canvas.addPainter(painted->second.painter.get());
  }
  _canvas.updateBoundingBox();
  emit runningChanged(false);
  emit modelsChanged();
  emit updated(_run.error());
  if (!_staleModels.empty()) schedule();
}

void NYXSceneModels::drop(const Model* model)
{
  const auto painted = _painted.find(model);
  if (painted == _painted.end()) return;
  if (painted->second.painter) _canvas.removePainter(painted->second.painter.get());
  _canvas.makeCurrent();
  _painted.erase(painted);
  _canvas.doneCurrent();
  _canvas.updateBoundingBox();
}

/// Items that come later may lie at their addresses.
void NYXSceneModels::forgetDeletedItems()
{
  std::set<const ModelItem*> items;
  for (int i = 0; i < _stack.getNumModels(); ++i)
    for (const ModelItem* item : _stack.getModel(i)->getItems()) items.insert(item);
  std::erase_if(_itemVisibilities, [&items](const auto& visibility) { return !items.contains(visibility.first); });
}

void NYXSceneModels::noteStackChange(const Stack& stack)
{
  if (&stack == &_stack) markAll();
}

void NYXSceneModels::noteItemChange(const Model& model, const ModelItem&)
{
  markModel(model);
}

void NYXSceneModels::stackImageCalibrationEvent(const NYXStackImageCalibrationEvent& event)
{
  NYXGeometryClient::stackImageCalibrationEvent(event);
  if (&event.getStack() == &_stack && _stack.getNumModels() == 0) showScale(lengthScale());
}

void NYXSceneModels::sliceNameEvent(const NYXSliceNameEvent& event)
{
  if (event.getSlice().getStack() == &_stack) emit modelsChanged(); // items are listed by their slices
}

/// Other changes of slices have events of their own.
void NYXSceneModels::processSliceAction(NYXSliceAction& action)
{
  if (&action.getStack() != &_stack || !action.changesPlaces()) return;
  forgetDeletedItems();
  markAll();
}

void NYXSceneModels::modelCreateEvent(const NYXModelCreateEvent& event)
{
  if (event.getStack() != &_stack) return;
  markModel(event.getModel());
  emit modelsChanged();
}

void NYXSceneModels::modelDeleteEvent(const NYXModelDeleteEvent& event)
{
  if (event.getStack() != &_stack) return;
  _staleModels.erase(&event.getModel());
  _cancelledModels.erase(&event.getModel());
  _hiddenModels.erase(&event.getModel());
  forgetDeletedItems();
  drop(&event.getModel());
  if (_stack.getNumModels() == 0 && !_run.isRunning()) showScale(lengthScale());
  emit modelsChanged();
}

bool NYXSceneModels::isBeingMade(const Model& model) const
{
  const std::vector<const Model*>& models = _run.shown().models;
  return _run.isRunning() && std::find(models.begin(), models.end(), &model) != models.end();
}

/// Colour and opacity need no other geometry, unless that is being made with those from before.
void NYXSceneModels::modelPropertiesEvent(const NYXModelPropertiesEvent& event)
{
  const Model& model = event.getModel();
  if (event.getStack() != &_stack) return;
  const auto painted = _painted.find(&model);
  const bool hasPainter = painted != _painted.end() && painted->second.painter && !isBeingMade(model);
  const bool isVisibilityKept =
      event.getOldItemProperties().getRenderingVisibility() == model.getItemProperties().getRenderingVisibility();
  if (hasPainter && isVisibilityKept && !needsOtherGeometry(event.getOldProperties(), model.getProperties()) &&
      changeMaterial(*painted->second.painter, model.getProperties(), model.getItemProperties()))
  {
    painted->second.painter->setName(model.getName());
    _canvas.update();
  }
  else
    markModel(model);
  emit modelsChanged();
}

void NYXSceneModels::modelItemCreateEvent(const NYXModelItemCreateEvent& event)
{
  NYXGeometryClient::modelItemCreateEvent(event);
  tellOfItems(event);
}

void NYXSceneModels::modelItemDeleteEvent(const NYXModelItemDeleteEvent& event)
{
  _itemVisibilities.erase(&event.getItem());
  NYXGeometryClient::modelItemDeleteEvent(event);
  tellOfItems(event);
}

/// An item may be shown in 3D or not.
void NYXSceneModels::modelItemAttributeEvent(const NYXModelItemAttributeEvent& event)
{
  if (const Model* const model = event.getItem().getModel()) markModel(*model);
  tellOfItems(event);
}

void NYXSceneModels::modelItemConvertEvent(const NYXModelItemConvertEvent& event)
{
  NYXGeometryClient::modelItemConvertEvent(event);
  tellOfItems(event);
}

void NYXSceneModels::tellOfItems(const NYXModelItemEvent& event)
{
  const Model* const model = event.getItem().getModel();
  if (model != nullptr && model->getStack() == &_stack) emit modelsChanged();
}
