// The actions and menus of the slice editor, and how its tools are made.
#include "app/core/nyxstack.h"
#include "model/modelitem.h"
#include "slice/image/nyxrulerdelegate.h"
#include "slice/nyxcontourvertices.h"
#include "slice/nyxpreviousslice.h"
#include "slice/nyxsliceeditwidget.h"
#include "slice/nyxsliceeditwidgetcanvas.h"
#include "slice/nyxsliceeditwidgetmediator.h"
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

#include <QAction>
#include <QActionGroup>
#include <QMenu>
#include <QTimer>
#include <QToolBar>

#include <algorithm>

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
                             {}, [this] { _selection->editSelectionProperties(); });
}

QAction* NYXSliceEditWidgetMediator::createTool(const QString& text, const QString& toolTip, const QString& name,
                                                const QKeySequence& shortcut, NYXSliceEditWidgetMediatorDelegate& tool,
                                                const std::function<void()>& activate)
{
  QAction* action = createAction(text, toolTip, name, shortcut,
                                 [this, &tool, activate]
                                 {
                                   const bool isLeft = tool.isActive();
                                   finishTool();
                                   if (!isLeft) activate();
                                   showTools();
                                 });
  action->setCheckable(true);
  _toolGroup->addAction(action);
  _tools.emplace_back(action, &tool);
  return action;
}

void NYXSliceEditWidgetMediator::createDrawingTools()
{
  _select = createAction(tr("Select"), tr("Select items by clicks or a box"), "selectTool", {},
                         [this]
                         {
                           finishTool();
                           ruler().deactivate();
                           showTools();
                         });
  _select->setCheckable(true);
  _toolGroup->addAction(_select);
  _draw = createTool(tr("Draw"), tr("Draw an item of the model in use"), "draw", Qt::Key_D, *_creation,
                     [this] { draw(modelInUse()); });
  _drawAutomatically =
      createTool(tr("Draw automatically"), tr("Make a contour of the object in a rectangle"), "drawAutomatically",
                 Qt::Key_A, *_thresholding, [this] { drawAutomatically(modelInUse()); });
}

/// The number keys choose the first nine models.
void NYXSliceEditWidgetMediator::createModelKeys()
{
  for (int i = 0; i < 9; ++i)
    _modelKeys << createAction(tr("Model %1").arg(i + 1), tr("Draw items of model %1").arg(i + 1),
                               QString("model%1").arg(i + 1), Qt::Key_1 + i,
                               [this, i]
                               {
                                 setModelInUse(buildStackModelList().value(i));
                                 showMessage(tr("Model in use: %1").arg(modelInUse()));
                               });
}

void NYXSliceEditWidgetMediator::createBrushActions()
{
  createAction(tr("Smaller brush"), tr("Make the brush and eraser of regions smaller by a pixel"), "smallerBrush",
               QKeySequence("["), [this] { changeBrushSize(-1); });
  createAction(tr("Larger brush"), tr("Make the brush and eraser of regions larger by a pixel"), "largerBrush",
               QKeySequence("]"), [this] { changeBrushSize(1); });
}

void NYXSliceEditWidgetMediator::createContourTools()
{
  const auto some = [](const Items& items) { return !items.empty(); };
  const auto curves = [](const Items& items)
  { return std::any_of(items.begin(), items.end(), [](const ModelItem* item) { return isCurve(*item); }); };
  const auto closedCurves = [](const Items& items)
  { return std::any_of(items.begin(), items.end(), [](const ModelItem* item) { return item->isClosed(); }); };
  const auto oneCurve = [](const Items& items) { return items.size() == 1 && isCurve(*items.front()); };
  _editPoints = createTool(tr("Edit points"), tr("Move, insert and delete points of what is selected"), "editPoints",
                           Qt::Key_E, *_edition, [this] { _edition->activate(); });
  _splitContour = createTool(tr("Split contour"), tr("Cut the contour along a line"), "splitContour", {}, *_split,
                             [this] { _split->activate(); });
  _shiftItems = createTool(tr("Move contour"), tr("Drag what is selected as a whole"), "moveContour", {}, *_shift,
                           [this] { _shift->activate(); });
  _runSnake = createTool(tr("Run Snake"), tr("Let the contour move to the edges around it"), "runSnake", Qt::Key_S,
                         *_snake, [this] { _snake->activate(); });
  _contourActions = {
      {_editPoints, some},
      {createAction(tr("Decimate"), tr("Leave out vertices that the selected contours hardly need"), "decimate", {},
                    [this] { _selection->decimateSelection(); }),
       curves},
      {createAction(tr("Decimate (Douglas-Peucker)"), tr("Leave out vertices within a tolerance"),
                    "decimateDouglasPeucker", {}, [this] { _douglasPeucker->activate(); }),
       curves},
      {createAction(tr("Change origin"), tr("Make another vertex of the contour the first one"), "changeOrigin", {},
                    [this] { _reorigin->activate(); }),
       closedCurves},
      {createAction(tr("Resample"), tr("Give the contour vertices at equal distances"), "resample", Qt::Key_R,
                    [this] { _resampling->activate(); }),
       curves},
      {_runSnake, closedCurves},
      {createAction(tr("Smooth (Fourier)"), tr("Keep the coarse shape of the contour only"), "smoothFourier", {},
                    [this] { _fourier->activate(); }),
       closedCurves},
      {_splitContour, oneCurve},
      {_shiftItems, some},
  };
}

void NYXSliceEditWidgetMediator::createPreviousSliceActions()
{
  _previous = new NYXPreviousSlice(this);
  connect(_previous, &NYXPreviousSlice::changed, this,
          [this]
          {
            editWidget().editCanvas().setFaintItems(nullptr);
            QTimer::singleShot(0, this, &NYXSliceEditWidgetMediator::showPreviousItems);
          });
  _showPrevious = createAction(tr("Show previous slice"), tr("Show the items of the previous slice faintly"),
                               "showPreviousSlice", Qt::Key_P, [this] { showPreviousItems(); });
  _showPrevious->setCheckable(true);
  _copyPrevious =
      createAction(tr("Copy from previous slice"), tr("Make items like those of the previous slice on this one"),
                   "copyFromPreviousSlice", QKeySequence("Ctrl+Shift+C"), [this] { copyPreviousItems(); });
  widget().toolBar().addSeparator();
  widget().toolBar().addActions({_showPrevious, _copyPrevious});
}

QMenu* NYXSliceEditWidgetMediator::createModelMenu(const QString& title, const QString& toolTip, const QString& name,
                                                   QStringList (NYXSliceEditWidgetMediator::*names)() const,
                                                   const std::function<void(const QString&)>& choose)
{
  auto* menu = new QMenu(title, &widget());
  menu->setObjectName(name);
  menu->setToolTipsVisible(true);
  menu->menuAction()->setToolTip(toolTip);
  menu->menuAction()->setStatusTip(toolTip);
  connect(menu, &QMenu::aboutToShow, this,
          [this, menu, names, choose, toolTip]
          {
            menu->clear();
            const QStringList models = sliceCanvas().hasSlice() ? (this->*names)() : QStringList();
            for (const QString& model : models)
            {
              QAction* const action = menu->addAction(QString(model).replace("&", "&&"));
              action->setObjectName(model);
              connect(action, &QAction::triggered, this, [choose, model] { choose(model); });
            }
            if (models.isEmpty()) menu->addAction(tr("(no model)"))->setObjectName("noModel");
            if (models.isEmpty()) menu->actions().constFirst()->setEnabled(false);
            for (QAction* action : menu->actions())
            {
              action->setToolTip(toolTip);
              action->setStatusTip(toolTip);
            }
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
  _manualMenu = createModelMenu(tr("Manual"), tr("Draw a new item of a model"), "manualMenu",
                                &Mediator::buildStackModelList, [this](const QString& model) { draw(model); });
  _automaticMenu =
      createModelMenu(tr("Automatic"), tr("Make a contour of the object in a rectangle"), "automaticMenu",
                      &Mediator::buildPolygonModelList, [this](const QString& model) { drawAutomatically(model); });
  _selectMenu =
      createModelMenu(tr("Select"), tr("Select the items of a model"), "selectMenu", &Mediator::buildSliceModelList,
                      [this](const QString& model) { _selection->selectModelItems(model); });
  _convertMenu = createModelMenu(tr("Convert"), tr("Move what is selected to another model"), "convertMenu",
                                 &Mediator::buildStackModelList,
                                 [this](const QString& model) { _selection->convertSelection(model); });
  connect(_convertMenu, &QMenu::aboutToShow, this, &Mediator::enableConversions); // once it is filled

  _reconstructionMenu = new QMenu(tr("Reconstruction"), &widget());
  _reconstructionMenu->setObjectName("reconstructionMenu");
  _reconstructionMenu->setToolTipsVisible(true);
  const QString toolTip = tr("How the surface goes on at the contour");
  _reconstructionMenu->menuAction()->setToolTip(toolTip);
  _reconstructionMenu->menuAction()->setStatusTip(toolTip);
  _tags = new QActionGroup(this);
  createTagAction(tr("Can connect with all"), tr("The surface goes through the contour"), "connectAll", 0);
  createTagAction(tr("Cannot connect with previous contours"), tr("The surface begins at the contour"),
                  "connectNotPrevious", 1);
  createTagAction(tr("Cannot connect with next contours"), tr("The surface ends at the contour"), "connectNotNext", 2);
  connect(_tags, &QActionGroup::triggered, this,
          [this](const QAction* action) { _selection->changeSelectionTriangulationTag(*action); });
}
