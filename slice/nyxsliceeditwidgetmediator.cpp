#include "slice/nyxsliceeditwidgetmediator.h"

#include "app/core/actions/nyxitemappendpointsaction.h"
#include "app/core/actions/nyxitemcreationaction.h"
#include "app/core/nyxactionstep.h"
#include "app/core/nyxexception.h"
#include "app/core/nyxpreferences.h"
#include "app/core/nyxstack.h"
#include "model/model.h"
#include "model/modelitem.h"
#include "model/stackslice.h"
#include "slice/image/nyxplaintext.h"
#include "slice/image/nyxrulerdelegate.h"
#include "slice/nyxcontourvertices.h"
#include "slice/nyxpreviousslice.h"
#include "slice/nyxsliceeditwidget.h"
#include "slice/nyxsliceeditwidgetcanvas.h"
#include "slice/nyxsliceeditwidgetmediatorcreationdelegate.h"
#include "slice/nyxsliceeditwidgetmediatordouglaspeuckerdecimationdelegate.h"
#include "slice/nyxsliceeditwidgetmediatoreditiondelegate.h"
#include "slice/nyxsliceeditwidgetmediatorfourierdelegate.h"
#include "slice/nyxsliceeditwidgetmediatorreorigindelegate.h"
#include "slice/nyxsliceeditwidgetmediatorresamplingdelegate.h"
#include "slice/nyxsliceeditwidgetmediatorselectiondelegate.h"
#include "slice/nyxsliceeditwidgetmediatorshiftdelegate.h"
#include "slice/nyxsliceeditwidgetmediatorsnakedelegate.h"
#include "slice/nyxsliceeditwidgetmediatorsplitdelegate.h"
#include "slice/nyxsliceeditwidgetmediatorthresholdingdelegate.h"
#include "slice/nyxsliceeditwidgetstatusbar.h"

#include <QAction>
#include <QActionGroup>
#include <QMenu>
#include <QMessageBox>
#include <QTimer>
#include <QToolBar>

#include <algorithm>

namespace
{
QStringList namesOf(const Stack& stack, const std::function<bool(const Model&)>& isListed)
{
  QStringList names;
  for (int i = 0; i < stack.getNumModels(); ++i)
    if (isListed(*stack.getModel(i))) names << QString::fromStdString(stack.getModel(i)->getName());
  return names;
}
} // namespace

NYXSliceEditWidgetMediator::NYXSliceEditWidgetMediator(NYXSliceEditWidget& widget) : NYXSliceWidgetMediator(widget) {}

void NYXSliceEditWidgetMediator::initialize()
{
  // The tools come first: whatever is added later, panning among it, looks at events before them.
  _selection = new NYXSliceEditWidgetMediatorSelectionDelegate(*this);
  _creation = new NYXSliceEditWidgetMediatorCreationDelegate(*this);
  _edition = new NYXSliceEditWidgetMediatorEditionDelegate(*this);
  _thresholding = new NYXSliceEditWidgetMediatorThresholdingDelegate(*this);
  _resampling = new NYXSliceEditWidgetMediatorResamplingDelegate(*this);
  _douglasPeucker = new NYXSliceEditWidgetMediatorDouglasPeuckerDecimationDelegate(*this);
  _reorigin = new NYXSliceEditWidgetMediatorReoriginDelegate(*this);
  _fourier = new NYXSliceEditWidgetMediatorFourierDelegate(*this);
  _snake = new NYXSliceEditWidgetMediatorSnakeDelegate(*this);
  _split = new NYXSliceEditWidgetMediatorSplitDelegate(*this);
  _shift = new NYXSliceEditWidgetMediatorShiftDelegate(*this);
  _selection->activate();
  NYXSliceWidgetMediator::initialize();
  _toolGroup = new QActionGroup(this);
  _toolGroup->setExclusionPolicy(QActionGroup::ExclusionPolicy::ExclusiveOptional);
  createDrawingTools();
  createContourTools();
  createEditActions();
  createModelKeys();
  createBrushActions();
  createPreviousSliceActions();
  createMenus();
  connect(&ruler(), &NYXRulerDelegate::activeChanged, this,
          [this](bool isActive)
          {
            if (isActive) finishTool();
            showTools();
            showIdleMode();
          });
  updateEditActions();
  showEditMode("READY", {});
}

NYXSliceEditWidget& NYXSliceEditWidgetMediator::editWidget() const
{
  return static_cast<NYXSliceEditWidget&>(widget());
}

QWidget& NYXSliceEditWidgetMediator::window() const
{
  return *widget().window();
}

NYXStack& NYXSliceEditWidgetMediator::stack() const
{
  return static_cast<NYXStack&>(*sliceCanvas().getSlice().getStack());
}

NYXActionHistory& NYXSliceEditWidgetMediator::history() const
{
  return stack().sliceHistory(sliceCanvas().getSlice());
}

// ------------------------------------------------------------------------------------------------------- the tools

void NYXSliceEditWidgetMediator::setSlice(StackSlice* slice)
{
  const bool isShown = sliceCanvas().hasSlice() && &sliceCanvas().getSlice() == slice;
  if (_activeTool != nullptr && !isShown) _activeTool->cancel();
  if (!isShown) _selection->cancel();
  editWidget().editCanvas().setFaintItems(nullptr);
  NYXSliceWidgetMediator::setSlice(slice);
  _modelInUseHere = modelNamed(_modelInUse);
  _previous->setSlice(slice);
  showPreviousItems();
  updateEditActions();
}

void NYXSliceEditWidgetMediator::draw(const QString& modelName)
{
  setModelInUse(modelName);
  _selection->cancelSelection();
  _creation->activate(modelName);
}

void NYXSliceEditWidgetMediator::drawAutomatically(const QString& modelName)
{
  setModelInUse(modelName);
  _selection->cancelSelection();
  _thresholding->activate(modelName);
}

/// \return nullptr when there is none
const Model* NYXSliceEditWidgetMediator::modelNamed(const std::string& name) const
{
  const int place = sliceCanvas().hasSlice() ? stack().findModel(name) : -1;
  return place < 0 ? nullptr : stack().getModel(place);
}

QString NYXSliceEditWidgetMediator::modelInUse() const
{
  if (!sliceCanvas().hasSlice() || stack().getNumModels() == 0) return {};
  const int place = stack().findModel(_modelInUse);
  return QString::fromStdString(stack().getModel(std::max(place, 0))->getName());
}

void NYXSliceEditWidgetMediator::setModelInUse(const QString& name)
{
  const Model* const model = modelNamed(name.toStdString());
  if (model == nullptr) return;
  _modelInUse = model->getName();
  _modelInUseHere = model;
  _creation->changeModel(name);
  updateEditActions();
}

QList<QAction*> NYXSliceEditWidgetMediator::toolActions() const
{
  return {_select, _draw, _drawAutomatically, nullptr, _editPoints, _splitContour, _shiftItems, _runSnake};
}

void NYXSliceEditWidgetMediator::showTools()
{
  for (const auto& [action, tool] : _tools) action->setChecked(tool->isActive());
  _select->setChecked(_activeTool == nullptr && !ruler().isActive());
}

/// What can be done while no tool of the editor is at work.
void NYXSliceEditWidgetMediator::showIdleMode()
{
  if (_activeTool != nullptr) return;
  if (!ruler().isActive()) return _selection->showMode();
  showEditMode("RULER", tr("Drag to measure a length and an angle, Escape to end"));
}

void NYXSliceEditWidgetMediator::finishTool()
{
  if (_activeTool != nullptr) _activeTool->finish();
}

void NYXSliceEditWidgetMediator::setActiveTool(NYXSliceEditWidgetMediatorDelegate* tool)
{
  NYXSliceEditWidgetMediatorDelegate* const before = _activeTool;
  _activeTool = tool;
  if (before != nullptr && tool != nullptr) before->cancel();
  _activeTool == nullptr ? _selection->activate() : _selection->deactivate();
  if (_activeTool != nullptr) ruler().deactivate();
  requestLock(_activeTool != nullptr);
  updateEditActions();
}

void NYXSliceEditWidgetMediator::showEditMode(const QString& mode, const QString& hint)
{
  editWidget().editStatusBar().setEditModeInfo(mode);
  _hint = hint;
  emit hintShown(hint);
}

void NYXSliceEditWidgetMediator::showMessage(const QString& text)
{
  emit messageShown(text);
}

void NYXSliceEditWidgetMediator::requestLock(bool isLocked)
{
  emit lockRequested(isLocked);
}

void NYXSliceEditWidgetMediator::cancel()
{
  if (_activeTool != nullptr)
    _activeTool->cancel();
  else
    _selection->cancelSelection();
}

bool NYXSliceEditWidgetMediator::pushStep(std::unique_ptr<NYXAction> action)
{
  std::vector<std::unique_ptr<NYXAction>> actions;
  actions.push_back(std::move(action));
  return pushStep(std::move(actions));
}

bool NYXSliceEditWidgetMediator::pushStep(std::vector<std::unique_ptr<NYXAction>> actions)
{
  return pushStep(history(), std::move(actions));
}

bool NYXSliceEditWidgetMediator::pushStep(NYXActionHistory& history, std::vector<std::unique_ptr<NYXAction>> actions)
{
  std::erase_if(actions, [](const auto& action) { return action->isNull(); });
  if (actions.empty()) return false;
  try
  {
    NYXActionStep step(history);
    for (auto& action : actions) step.push(std::move(action));
    return true;
  }
  catch (const Exception& error)
  {
    QMessageBox::warning(&window(), tr("Error"), plainText(QString::fromStdString(error.getWhat())));
    return false;
  }
}

// ----------------------------------------------------------------------------------------------- the slice before

void NYXSliceEditWidgetMediator::showPreviousItems()
{
  updateToolActions();
  const bool isShown = _showPrevious->isChecked() && _previous->hasPrevious();
  try
  {
    editWidget().editCanvas().setFaintItems(isShown ? &_previous->items() : nullptr);
  }
  catch (const Exception& error)
  {
    showMessage(tr("Cannot place the previous slice: %1").arg(QString::fromStdString(error.getWhat())));
  }
}

QString NYXSliceEditWidgetMediator::previousItemsText(int numCopied, int numLeftOut) const
{
  QString text = numCopied == 0   ? tr("Nothing to copy from the previous slice")
                 : numCopied == 1 ? tr("1 item copied from the previous slice")
                                  : tr("%1 items copied from the previous slice").arg(numCopied);
  if (numLeftOut > 0) text += tr("; %1 would lie outside of the image").arg(numLeftOut);
  return text;
}

void NYXSliceEditWidgetMediator::copyPreviousItems()
{
  if (!isEditable() || _activeTool != nullptr) return;
  try
  {
    int numLeftOut = 0;
    std::vector<std::unique_ptr<NYXAction>> actions;
    std::vector<std::unique_ptr<ModelItem>> items;
    for (auto& item : _previous->copies(numLeftOut))
    {
      ModelItem* const buddy = isCurve(*item) ? nullptr : slice().buddyItem(*item);
      if (buddy != nullptr)
        actions.push_back(std::make_unique<NYXItemAppendPointsAction>(*buddy, *item));
      else
        items.push_back(std::move(item));
    }
    const auto numCopied = static_cast<int>(actions.size() + items.size());
    _selection->cancelSelection();
    for (const auto& item : items) item->getSelection().set(true);
    if (!items.empty()) actions.push_back(std::make_unique<NYXItemCreationAction>(std::move(items)));
    pushStep(std::move(actions));
    notifyEvent(NYXSliceItemSelectionEvent(slice()));
    showMessage(previousItemsText(numCopied, numLeftOut));
  }
  catch (const Exception& error)
  {
    showMessage(tr("Cannot place the previous slice: %1").arg(QString::fromStdString(error.getWhat())));
  }
}

// ------------------------------------------------------------------------------------------------ what is offered

QStringList NYXSliceEditWidgetMediator::buildStackModelList() const
{
  return namesOf(stack(), [](const Model&) { return true; });
}

QStringList NYXSliceEditWidgetMediator::buildSliceModelList() const
{
  const auto& items = sliceCanvas().getSlice().getItems();
  return namesOf(stack(),
                 [&](const Model& model) {
                   return std::any_of(items.begin(), items.end(),
                                      [&](const ModelItem* item) { return item->getModel() == &model; });
                 });
}

QStringList NYXSliceEditWidgetMediator::buildPolygonModelList() const
{
  return namesOf(stack(), [](const Model& model) { return model.getGeometry() == MPrimitive::Polygon; });
}

/// Only to models that something selected does not belong to yet.
void NYXSliceEditWidgetMediator::enableConversions()
{
  if (!sliceCanvas().hasSlice()) return;
  const Items items = slice().getSelectedItems();
  for (QAction* conversion : _convertMenu->actions())
  {
    const Model* const model = modelNamed(conversion->objectName().toStdString());
    const auto isOther = [model](const ModelItem* item) { return item->getModel() != model; };
    if (model == nullptr || std::ranges::any_of(items, isOther)) continue;
    conversion->setEnabled(false);
    conversion->setToolTip(tr("What is selected belongs to this model already"));
  }
}

bool NYXSliceEditWidgetMediator::isEditable() const
{
  return sliceCanvas().hasSlice() && !stack().isLocked(sliceCanvas().getSlice());
}

void NYXSliceEditWidgetMediator::updateEditActions()
{
  const bool isIdle = isEditable() && _activeTool == nullptr;
  const ModelItem* const item = isIdle ? _selection->selectedItem() : nullptr;
  _cancel->setEnabled(_activeTool != nullptr || item != nullptr);
  for (QAction* action : {_copy, _delete, _properties}) action->setEnabled(item != nullptr);
  const Items items = item != nullptr ? slice().getSelectedItems() : Items();
  for (const ContourAction& contour : _contourActions) contour.action->setEnabled(contour.isApplicable(items));
  updateToolActions();
  _paste->setEnabled(isIdle && _selection->hasClipboard());
  _selectAll->setEnabled(isIdle && slice().getNumItems() > 0);
  _convertMenu->setEnabled(item != nullptr);
  _reconstructionMenu->setEnabled(item != nullptr && item->isClosed());
  _tags->setEnabled(item != nullptr && item->isClosed());
  _manualMenu->setEnabled(isEditable());
  _automaticMenu->setEnabled(isEditable());
  _selectMenu->setEnabled(isIdle);
  showTools();
  showIdleMode();
  emit toolsChanged();
}

void NYXSliceEditWidgetMediator::changeBrushSize(int change)
{
  const int size = std::clamp(NYXPreferences::getRegionBrushSize() + change, 0, NYXPreferences::largestRegionBrushSize);
  NYXPreferences::setRegionBrushSize(size);
  notifyEvent(NYXPreferencesEvent());
  showMessage(tr("Radius of the region brush: %1 px").arg(size));
}

/// Tools can be chosen also while another one is at work.
void NYXSliceEditWidgetMediator::updateToolActions()
{
  const Items items = isEditable() ? slice().getSelectedItems() : Items();
  for (const ContourAction& contour : _contourActions)
    if (contour.action->isCheckable()) contour.action->setEnabled(contour.isApplicable(items));
  const QString name = modelInUse();
  const bool canDraw = isEditable() && !name.isEmpty();
  const int place = canDraw ? stack().findModel(name.toStdString()) : -1;
  _select->setEnabled(sliceCanvas().hasSlice());
  _draw->setEnabled(canDraw);
  _drawAutomatically->setEnabled(canDraw && stack().getModel(place)->getGeometry() == MPrimitive::Polygon);
  for (const auto& [action, tool] : _tools)
    if (tool->isActive()) action->setEnabled(true);
  for (int i = 0; i < _modelKeys.size(); ++i) _modelKeys[i]->setEnabled(canDraw && i < stack().getNumModels());
  _showPrevious->setEnabled(_previous->hasPrevious());
  _copyPrevious->setEnabled(_previous->hasPrevious() && isEditable() && _activeTool == nullptr);
}

void NYXSliceEditWidgetMediator::refreshContextMenuActions()
{
  updateEditActions();
  const ModelItem* const item = _selection->selectedItem();
  if (item == nullptr) return;
  for (QAction* action : _tags->actions())
    action->setChecked(action->data().toInt() == static_cast<int>(item->getTriangulationTag()));
}

void NYXSliceEditWidgetMediator::showContextMenu(const QPoint& globalPosition)
{
  if (!isEditable()) return;
  refreshContextMenuActions();
  QMenu menu(&widget());
  menu.setObjectName("contextMenu");
  menu.setToolTipsVisible(true);
  if (_selection->selectedItem() == nullptr)
  {
    menu.addMenu(_manualMenu);
    menu.addMenu(_automaticMenu);
    menu.addMenu(_selectMenu);
    menu.addSeparator();
    menu.addActions({_paste, _selectAll});
    menu.addSeparator();
    menu.addActions({_showPrevious, _copyPrevious});
  }
  else
  {
    menu.addActions({_copy, _paste, _delete});
    menu.addSeparator();
    for (const ContourAction& contour : _contourActions) menu.addAction(contour.action);
    menu.addSeparator();
    menu.addMenu(_convertMenu);
    menu.addMenu(_reconstructionMenu);
    menu.addSeparator();
    menu.addAction(_properties);
  }
  menu.exec(globalPosition);
}

// ---------------------------------------------------------------------------------------------------- the event bus

void NYXSliceEditWidgetMediator::sliceLockEvent(const NYXSliceLockEvent& event)
{
  if (!sliceCanvas().hasSlice() || &sliceCanvas().getSlice() != &event.getSlice()) return;
  const bool isOwnLock = event.getSender() == this; // of the tool at work
  if (event.isLocked && !isOwnLock && _activeTool != nullptr) _activeTool->cancel();
  QTimer::singleShot(0, this, [this] { updateEditActions(); }); // the stack may hear of the lock after this
}

void NYXSliceEditWidgetMediator::sliceItemSelectionEvent(const NYXSliceItemSelectionEvent&)
{
  updateEditActions();
}

/// Of one that another window shows.
bool NYXSliceEditWidgetMediator::isOfOtherStack(const NYXModelEvent& event) const
{
  const Stack* const own = sliceCanvas().hasSlice() ? sliceCanvas().getSlice().getStack() : nullptr;
  return event.getStack() != nullptr && event.getStack() != own;
}

void NYXSliceEditWidgetMediator::modelCreateEvent(const NYXModelCreateEvent& event)
{
  NYXSliceWidgetMediator::modelCreateEvent(event);
  _modelInUseHere = modelNamed(_modelInUse); // the deletion of it may be undone
  updateEditActions();
}

void NYXSliceEditWidgetMediator::modelPropertiesEvent(const NYXModelPropertiesEvent& event)
{
  const bool changesGeometry = event.getOldProperties().getGeometry() != event.getModel().getGeometry();
  if (_activeTool != nullptr && changesGeometry && !isOfOtherStack(event)) _activeTool->cancel();
  if (&event.getModel() == _modelInUseHere) _modelInUse = event.getModel().getName();
  NYXSliceWidgetMediator::modelPropertiesEvent(event);
  updateEditActions();
  if (_activeTool != nullptr) _activeTool->showMode(); // the hint may name the model
}

void NYXSliceEditWidgetMediator::modelDeleteEvent(const NYXModelDeleteEvent& event)
{
  if (_activeTool != nullptr && !isOfOtherStack(event) && _activeTool->worksOn(event.getModel())) _activeTool->cancel();
  if (&event.getModel() == _modelInUseHere) _modelInUseHere = nullptr;
  NYXSliceWidgetMediator::modelDeleteEvent(event);
  updateEditActions();
}

void NYXSliceEditWidgetMediator::modelItemDeleteEvent(const NYXModelItemDeleteEvent& event)
{
  if (_activeTool != nullptr && _activeTool->worksOn(event.getItem())) _activeTool->cancel();
  NYXSliceWidgetMediator::modelItemDeleteEvent(event);
  updateEditActions();
}

void NYXSliceEditWidgetMediator::modelItemVertexEvent(const NYXModelItemVertexEvent& event)
{
  if (_activeTool != nullptr && _activeTool->worksOn(event.getItem())) _activeTool->followItem();
  NYXSliceWidgetMediator::modelItemVertexEvent(event);
}

void NYXSliceEditWidgetMediator::modelItemConvertEvent(const NYXModelItemConvertEvent& event)
{
  if (_activeTool != nullptr && _activeTool->worksOn(event.getItem())) _activeTool->cancel();
  NYXSliceWidgetMediator::modelItemConvertEvent(event);
  updateEditActions();
}
