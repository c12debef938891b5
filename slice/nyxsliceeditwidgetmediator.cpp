#include "slice/nyxsliceeditwidgetmediator.h"

#include "app/core/nyxactionstep.h"
#include "app/core/nyxexception.h"
#include "app/core/nyxstack.h"
#include "model/model.h"
#include "model/modelitem.h"
#include "model/stackslice.h"
#include "slice/nyxcontourvertices.h"
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
  createEditActions();
  createContourTools();
  createMenus();
  updateEditActions();
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

void NYXSliceEditWidgetMediator::createEditActions()
{
  _cancel = createAction(tr("Cancel"), tr("Give up the tool at work, or the selection"), "cancel", Qt::Key_Escape,
                         [this] { cancel(); });
  _copy = createAction(tr("Copy"), tr("Copy what is selected"), "copy", QKeySequence::Copy,
                       [this] { _selection->copySelection(); });
  _paste = createAction(tr("Paste"), tr("Put what was copied on this slice"), "paste", QKeySequence::Paste,
                        [this] { _selection->pasteSelection(); });
  _delete = createAction(tr("Delete"), tr("Delete what is selected"), "delete", Qt::Key_Delete,
                         [this] { _selection->removeSelection(); });
  _selectAll = createAction(tr("Select all"), tr("Select everything on the slice"), "selectAll",
                            QKeySequence::SelectAll, [this] { _selection->selectAllModelItems(); });
  _properties = createAction(tr("Properties..."), tr("Change the colour and lines of what is selected"), "properties",
                             {}, [this] { emit propertiesRequested(); });
}

void NYXSliceEditWidgetMediator::createContourTools()
{
  const auto add = [this](const QString& text, const QString& toolTip, const QString& name,
                          const QKeySequence& shortcut, bool (*isApplicable)(const Items&), auto activate) {
    _contourTools.push_back({createAction(text, toolTip, name, shortcut, activate), isApplicable});
  };
  const auto some = [](const Items& items) { return !items.empty(); };
  const auto curves = [](const Items& items)
  { return std::any_of(items.begin(), items.end(), [](const ModelItem* item) { return isCurve(*item); }); };
  const auto closedCurves = [](const Items& items)
  { return std::any_of(items.begin(), items.end(), [](const ModelItem* item) { return item->isClosed(); }); };
  const auto oneCurve = [](const Items& items) { return items.size() == 1 && isCurve(*items.front()); };
  add(tr("Edit points"), tr("Move, insert and delete points of what is selected"), "editPoints", Qt::Key_E, some,
      [this] { _edition->activate(); });
  add(tr("Decimate"), tr("Leave out vertices that the selected contours hardly need"), "decimate", {}, curves,
      [this] { _selection->decimateSelection(); });
  add(tr("Decimate (Douglas-Peucker)"), tr("Leave out vertices within a tolerance"), "decimateDouglasPeucker", {},
      curves, [this] { _douglasPeucker->activate(); });
  add(tr("Change origin"), tr("Make another vertex of the contour the first one"), "changeOrigin", {}, closedCurves,
      [this] { _reorigin->activate(); });
  add(tr("Resample"), tr("Give the contour vertices at equal distances"), "resample", Qt::Key_R, curves,
      [this] { _resampling->activate(); });
  add(tr("Run Snake"), tr("Let the contour move to the edges around it"), "runSnake", Qt::Key_S, closedCurves,
      [this] { _snake->activate(); });
  add(tr("Smooth (Fourier)"), tr("Keep the coarse shape of the contour only"), "smoothFourier", {}, closedCurves,
      [this] { _fourier->activate(); });
  add(tr("Split contour"), tr("Cut the contour along a line"), "splitContour", {}, oneCurve,
      [this] { _split->activate(); });
  _shiftItems = createAction(tr("Move contour"), tr("Drag what is selected as a whole"), "moveContour", {},
                             [this] { _shift->activate(); });
}

QMenu* NYXSliceEditWidgetMediator::createModelMenu(const QString& title, const QString& toolTip, const QString& name,
                                                   QStringList (NYXSliceEditWidgetMediator::*names)() const,
                                                   const std::function<void(const QString&)>& choose)
{
  auto* menu = new QMenu(title, &widget());
  menu->setObjectName(name);
  menu->menuAction()->setToolTip(toolTip);
  menu->menuAction()->setStatusTip(toolTip);
  connect(menu, &QMenu::aboutToShow, this,
          [this, menu, names, choose, toolTip]
          {
            menu->clear();
            const QStringList models = sliceCanvas().hasSlice() ? (this->*names)() : QStringList();
            for (const QString& model : models)
            {
              QAction* action =
                  menu->addAction(QString(model).replace("&", "&&"), this, [choose, model] { choose(model); });
              action->setStatusTip(toolTip);
            }
            if (models.isEmpty()) menu->addAction(tr("(no model)"))->setEnabled(false);
          });
  return menu;
}

QAction* NYXSliceEditWidgetMediator::createTagAction(const QString& text, const QString& toolTip, const QString& name,
                                                     int tag)
{
  QAction* action = createAction(text, toolTip, name, {}, [] {});
  action->setCheckable(true);
  action->setData(tag);
  _tags->addAction(action);
  _reconstructionMenu->addAction(action);
  return action;
}

void NYXSliceEditWidgetMediator::createMenus()
{
  using Mediator = NYXSliceEditWidgetMediator;
  _manualMenu =
      createModelMenu(tr("Manual"), tr("Draw a new item of a model"), "manualMenu", &Mediator::buildStackModelList,
                      [this](const QString& model)
                      {
                        _selection->cancelSelection();
                        _creation->activate(model);
                      });
  _automaticMenu = createModelMenu(tr("Automatic"), tr("Make a contour of the object in a rectangle"), "automaticMenu",
                                   &Mediator::buildPolygonModelList,
                                   [this](const QString& model)
                                   {
                                     _selection->cancelSelection();
                                     _thresholding->activate(model);
                                   });
  _selectMenu =
      createModelMenu(tr("Select"), tr("Select the items of a model"), "selectMenu", &Mediator::buildSliceModelList,
                      [this](const QString& model) { _selection->selectModelItems(model); });
  _convertMenu = createModelMenu(tr("Convert"), tr("Move what is selected to another model"), "convertMenu",
                                 &Mediator::buildStackModelList,
                                 [this](const QString& model) { _selection->convertSelection(model); });

  _reconstructionMenu = new QMenu(tr("Reconstruction"), &widget());
  _reconstructionMenu->setObjectName("reconstructionMenu");
  _tags = new QActionGroup(this);
  createTagAction(tr("Can connect with all"), tr("The surface goes through the contour"), "connectAll", 0);
  createTagAction(tr("Cannot connect with previous contours"), tr("The surface begins at the contour"),
                  "connectNotPrevious", 1);
  createTagAction(tr("Cannot connect with next contours"), tr("The surface ends at the contour"), "connectNotNext", 2);
  connect(_tags, &QActionGroup::triggered, this,
          [this](const QAction* action) { _selection->changeSelectionTriangulationTag(*action); });
}

// ------------------------------------------------------------------------------------------------------- the tools

void NYXSliceEditWidgetMediator::setSlice(StackSlice* slice)
{
  if (_activeTool != nullptr) _activeTool->cancel();
  _selection->cancel();
  NYXSliceWidgetMediator::setSlice(slice);
  updateEditActions();
}

void NYXSliceEditWidgetMediator::setActiveTool(NYXSliceEditWidgetMediatorDelegate* tool)
{
  NYXSliceEditWidgetMediatorDelegate* const before = _activeTool;
  _activeTool = tool;
  if (before != nullptr && tool != nullptr) before->cancel();
  _activeTool == nullptr ? _selection->activate() : _selection->deactivate();
  if (_activeTool == nullptr) showEditMode("READY", {});
  requestLock(_activeTool != nullptr);
  updateEditActions();
}

void NYXSliceEditWidgetMediator::showEditMode(const QString& mode, const QString& hint)
{
  editWidget().editStatusBar().setEditModeInfo(mode);
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
    QMessageBox::warning(&window(), tr("Error"), QString::fromStdString(error.getWhat()));
    return false;
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

bool NYXSliceEditWidgetMediator::isEditable() const
{
  return sliceCanvas().hasSlice() && !stack().isLocked(sliceCanvas().getSlice());
}

void NYXSliceEditWidgetMediator::updateEditActions()
{
  const bool isIdle = isEditable() && _activeTool == nullptr;
  const ModelItem* const item = isIdle ? _selection->selectedItem() : nullptr;
  _cancel->setEnabled(_activeTool != nullptr || item != nullptr);
  for (QAction* action : {_copy, _delete, _shiftItems, _properties}) action->setEnabled(item != nullptr);
  const Items items = item != nullptr ? sliceCanvas().getSlice().getSelectedItems() : Items();
  for (const ContourTool& tool : _contourTools) tool.action->setEnabled(tool.isApplicable(items));
  _paste->setEnabled(isIdle && _selection->hasClipboard());
  _selectAll->setEnabled(isIdle && sliceCanvas().getSlice().getNumItems() > 0);
  _convertMenu->setEnabled(item != nullptr);
  _reconstructionMenu->setEnabled(item != nullptr && item->isClosed());
  _manualMenu->setEnabled(isEditable());
  _automaticMenu->setEnabled(isEditable());
  _selectMenu->setEnabled(isIdle);
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
  if (_selection->selectedItem() == nullptr)
  {
    menu.addMenu(_manualMenu);
    menu.addMenu(_automaticMenu);
    menu.addMenu(_selectMenu);
    menu.addSeparator();
    menu.addActions({_paste, _selectAll});
  }
  else
  {
    menu.addActions({_copy, _paste, _delete});
    menu.addSeparator();
    for (const ContourTool& tool : _contourTools) menu.addAction(tool.action);
    menu.addAction(_shiftItems);
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

void NYXSliceEditWidgetMediator::modelDeleteEvent(const NYXModelDeleteEvent& event)
{
  if (_activeTool != nullptr) _activeTool->cancel();
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
