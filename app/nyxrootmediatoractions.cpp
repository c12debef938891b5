// The actions of the root window: how they are made and where the menus show them.
#include "app/core/nyxstack.h"
#include "app/nyxannotationdialog.h"
#include "app/nyxfiltermodelsdialog.h"
#include "app/nyxitempropertiesdialog.h"
#include "app/nyxmodelsdialog.h"
#include "app/nyxnames.h"
#include "app/nyxrootmediator.h"
#include "app/nyxrootstatusbar.h"
#include "app/nyxrootwindow.h"
#include "app/nyxslicelistwidget.h"
#include "app/nyxslicepropertiesdialog.h"
#include "app/nyxspatialanalysisplugin.h"
#include "app/nyxstackio.h"
#include "app/nyxstacklistwidget.h"
#include "app/nyxstackpropertiesdialog.h"
#include "app/nyxtransfermodelsdialog.h"
#include "slice/image/nyxlistmenu.h"
#include "viewer/nyxrenderingwindow.h"

#include <QAction>
#include <QActionGroup>
#include <QIcon>
#include <QMenu>
#include <QSettings>

#include <utility>

QAction* NYXRootMediator::createAction(const QString& text, const QString& toolTip, const QKeySequence& shortcut,
                                       const std::function<void()>& slot)
{
  auto* action = new QAction(text, this);
  action->setObjectName(text);
  action->setShortcut(shortcut);
  action->setStatusTip(toolTip);
  action->setToolTip(shortcut.isEmpty() ? toolTip : toolTip + " (" + shortcut.toString(QKeySequence::NativeText) + ")");
  action->setWhatsThis(action->toolTip()); // the tool tip while nothing is in the way: see enable()
  connect(action, &QAction::triggered, this, slot);
  return action;
}

QAction* NYXRootMediator::createStackAction(const QString& text, const QString& toolTip, const QKeySequence& shortcut,
                                            const std::function<void()>& slot)
{
  QAction* action = createAction(text, toolTip, shortcut, slot);
  _stackActions.append(action);
  return action;
}

/// An action that changes what belongs to all slices.
QAction* NYXRootMediator::createWholeStackAction(const QString& text, const QString& toolTip,
                                                 const QKeySequence& shortcut, const std::function<void()>& slot)
{
  QAction* action = createAction(text, toolTip, shortcut, slot);
  _wholeStackActions.append(action);
  return action;
}

/// Shows a dialog until it is closed; its messages go to the status bar, too.
template <class Dialog, class... Arguments> void NYXRootMediator::openDialog(Arguments&&... arguments)
{
  Dialog dialog(std::forward<Arguments>(arguments)..., _window);
  connect(&dialog, &Dialog::messageShown, _statusBar,
          [this](const QString& text) { _statusBar->showMessage(text, messageMilliseconds); });
  dialog.exec();
}

/// An action whose subsystem is not built yet: disabled, and its tool tip says so.
QAction* NYXRootMediator::createLaterAction(const QString& text, const QString& toolTip)
{
  QAction* action = createAction(text, toolTip + tr(" (not available in this version)"), {}, [] {});
  action->setEnabled(false);
  return action;
}

void NYXRootMediator::editItemProperties()
{
  openDialog<NYXItemPropertiesDialog>(*currentStack(), *currentSlice());
}

void NYXRootMediator::createFileActions()
{
  _newWindow = createAction(tr("New window"), tr("Open another window on the same stacks"), {},
                            [this] { _window->newWindow(); });
  _closeWindow = createAction(tr("Close window"), tr("Close this window; the last one quits the program"), {},
                              [this] { _window->close(); });
  _quit =
      createAction(tr("Quit"), tr("Close all stacks and quit"), QKeySequence("Ctrl+Q"), [this] { _window->quit(); });
  _newStack = createAction(tr("New stack"), tr("Make a stack of image files"), QKeySequence::New,
                           [this] { stackIO().newStack(); });
  _newStack->setIcon(QIcon(":/icons/new.svg"));
  _newStackFromFile = createAction(tr("New stack from file"), tr("Make a stack of the planes of one file"),
                                   QKeySequence("Ctrl+Shift+N"), [this] { stackIO().newStackFromFile(); });
  _newStackFromFile->setIcon(QIcon(":/icons/newfromfile.svg"));
  _openStack = createAction(tr("Open stack"), tr("Open a stack file"), QKeySequence::Open,
                            [this] { selectStack(stackIO().openStack()); });
  _openStack->setIcon(QIcon(":/icons/open.svg"));
  _saveStack = createStackAction(tr("Save stack"), tr("Save the current stack to its file"), QKeySequence::Save,
                                 [this] { saveCurrentStack(); });
  _saveStack->setIcon(QIcon(":/icons/save.svg"));
  _saveStackAs = createStackAction(tr("Save stack as..."), tr("Save the current stack to another file"),
                                   QKeySequence("Ctrl+Shift+S"), [this] { stackIO().saveStackAs(*currentStack()); });
  _closeStack = createStackAction(tr("Close stack"), tr("Close the current stack"), QKeySequence("Ctrl+W"),
                                  [this] { stackIO().closeStack(*currentStack()); });
  _closeAll = createStackAction(tr("Close all"), tr("Close all stacks"), {}, [this] { stackIO().closeAll(); });
}

void NYXRootMediator::createEditActions()
{
  createViewActions();
  createSliceActions();
  _undo = createAction(tr("Undo"), tr("Take the last change back"), QKeySequence::Undo, [this] { undo(); });
  _undo->setIcon(QIcon(":/icons/undo.svg"));
  _redo = createAction(tr("Redo"), tr("Make the change again that was taken back last"), QKeySequence("Ctrl+Shift+Z"),
                       [this] { redo(); });
  _redo->setIcon(QIcon(":/icons/redo.svg"));
  _insertSlice = createWholeStackAction(tr("Insert slice..."), tr("Insert images before the current slice"), {},
                                        [this] { insertSlices(); });
  _insertSlice->setIcon(QIcon(":/icons/insert.svg"));
  _deleteSlice = createAction(tr("Delete slice"), tr("Delete the current slice and what is drawn on it"), {},
                              [this] { deleteSlice(); });
  _moveSliceUp = createAction(tr("Move slice up"), tr("Move the current slice before the previous one"),
                              QKeySequence("Ctrl+Shift+Up"), [this] { moveCurrentSlice(-1); });
  _moveSliceDown = createAction(tr("Move slice down"), tr("Move the current slice behind the next one"),
                                QKeySequence("Ctrl+Shift+Down"), [this] { moveCurrentSlice(1); });
  const auto sliceDialog = [this](const QString& text, const QString& toolTip, auto open)
  {
    QAction* const action = createAction(text, toolTip, {}, [this, open] { open(*currentStack(), *currentSlice()); });
    _sliceActions.append(action);
    return action;
  };
  _stackProperties =
      createWholeStackAction(tr("Stack properties..."), tr("Change the name, calibration and spacing of the stack"), {},
                             [this] { openDialog<NYXStackPropertiesDialog>(*currentStack()); });
  _sliceProperties = sliceDialog(tr("Slice properties..."), tr("Change the name, calibration and depth of the slice"),
                                 [this](NYXStack& stack, StackSlice& slice)
                                 { openDialog<NYXSlicePropertiesDialog>(stack, std::vector<StackSlice*>{&slice}); });
  _annotateStack = createStackAction(tr("Annotate stack..."), tr("Write notes on the stack"), {},
                                     [this] { openDialog<NYXAnnotationDialog>(*currentStack()); });
  _annotateSlice =
      sliceDialog(tr("Annotate slice..."), tr("Write notes on the slice"),
                  [this](NYXStack& stack, StackSlice& slice) { openDialog<NYXAnnotationDialog>(stack, slice); });
  _editDialogs = {
      createWholeStackAction(tr("Edit models..."), tr("Create, change and delete models"), QKeySequence("Ctrl+M"),
                             [this] { openDialog<NYXModelsDialog>(*currentStack()); }),
      _insertSlice,
      _deleteSlice,
      _moveSliceUp,
      _moveSliceDown,
      _stackProperties,
      _sliceProperties,
      _annotateStack,
      _annotateSlice,
  };
  _preferences =
      createAction(tr("Preferences..."), tr("Change how the program works"), {}, [this] { editPreferences(); });
}

/// A right click on a list offers what can be done with the stack or slice, which the press makes the current one.
void NYXRootMediator::createListMenus()
{
  const auto separator = [this](const char* name)
  {
    auto* const action = new QAction(this);
    action->setObjectName(name);
    action->setSeparator(true);
    return action;
  };
  setListMenu(*_stackList, {_saveStack, _saveStackAs, _closeStack, separator("stackMenuSeparator"), _stackProperties,
                            _annotateStack});
  _sliceList->setMenuActions({_insertSlice, _deleteSlice, _moveSliceUp, _moveSliceDown, separator("sliceMenuSeparator"),
                              _sliceProperties, _annotateSlice});
}

/// What the right side of the window shows.
void NYXRootMediator::createViewActions()
{
  _displayPanorama = createStackAction(tr("Display stack panorama"), tr("Show all slices of the stack side by side"),
                                       QKeySequence(Qt::Key_F6), [this] { selectView(true); });
  _displaySingleSlice = createStackAction(tr("Display single slice"), tr("Show one slice"), QKeySequence(Qt::Key_F7),
                                          [this] { selectView(false); });
  _displayOverview = createStackAction(tr("Display overview"), tr("Show the whole slice in a small window"),
                                       QKeySequence(Qt::Key_F8), [] {});
  _displayPanorama->setIcon(QIcon(":/icons/panorama.svg"));
  _displaySingleSlice->setIcon(QIcon(":/icons/singleslice.svg"));
  _displayOverview->setIcon(QIcon(":/icons/overview.svg"));
  auto* const views = new QActionGroup(this);
  for (QAction* action : {_displayPanorama, _displaySingleSlice, _displayOverview}) action->setCheckable(true);
  for (QAction* action : {_displayPanorama, _displaySingleSlice}) views->addAction(action);
  const bool isPanorama = QSettings().value("rootWindow/panorama", false).toBool();
  (isPanorama ? _displayPanorama : _displaySingleSlice)->setChecked(true);
  connect(_displayOverview, &QAction::toggled, this, &NYXRootMediator::showOverview);
}

void NYXRootMediator::createSliceActions()
{
  _selectFirstSlice = createStackAction(tr("Select first slice"), tr("Go to the first slice"),
                                        QKeySequence(Qt::Key_Home), [this] { _sliceList->selectEnd(false); });
  _selectLastSlice = createStackAction(tr("Select last slice"), tr("Go to the last slice"), QKeySequence(Qt::Key_End),
                                       [this] { _sliceList->selectEnd(true); });
  _selectNextSlice = createStackAction(tr("Select next slice"), tr("Go to the next slice"),
                                       QKeySequence(Qt::Key_PageDown), [this] { _sliceList->selectNeighbour(1); });
  _selectPreviousSlice = createStackAction(tr("Select previous slice"), tr("Go to the previous slice"),
                                           QKeySequence(Qt::Key_PageUp), [this] { _sliceList->selectNeighbour(-1); });
  _selectFirstSlice->setIcon(QIcon(":/icons/first.svg"));
  _selectLastSlice->setIcon(QIcon(":/icons/last.svg"));
  _selectNextSlice->setIcon(QIcon(":/icons/next.svg"));
  _selectPreviousSlice->setIcon(QIcon(":/icons/previous.svg"));
}

void NYXRootMediator::createProcessActions()
{
  _process = {
      createStackAction(tr("Register"), tr("Align each slice on the one before"), {}, [this] { openRegistration(); }),
      createStackAction(tr("Reconstruct"), tr("Show the models in 3D"), QKeySequence("Ctrl+3"),
                        [this] { NYXRenderingWindow::showFor(*currentStack(), _sliceList->currentSlice()); }),
      createLaterAction(tr("Image processing"), tr("Filter the images of the slices")),
      createLaterAction(tr("Find spots"), tr("Detect spot-like objects")),
      createLaterAction(tr("Normalize"), tr("Even out the grey levels of the slices")),
      createWholeStackAction(tr("Transfer models..."), tr("Copy models from another stack"), {},
                             [this] { openDialog<NYXTransferModelsDialog>(*currentStack()); }),
      createWholeStackAction(tr("Filter models..."), tr("Keep the items of models that meet conditions"), {},
                             [this] { openDialog<NYXFilterModelsDialog>(*currentStack()); }),
  };
}

void NYXRootMediator::createAnalyzeActions()
{
  _measures = createStackAction(tr("Measures"), tr("Measure the models, the slices and the items of the stack"),
                                QKeySequence("Ctrl+4"), [this] { openMeasures(); });
  _runSpatialAnalysis = createAction(tr("Run"), tr("Test whether objects are placed at random"), {},
                                     [this] { NYXSpatialAnalysisPlugin(*currentStack()).run(_window); });
}

void NYXRootMediator::createPluginsActions()
{
  _refreshPlugins = createAction(tr("Refresh"), tr("Look for plug-ins again"), {}, [this] { refreshPlugins(); });
}

void NYXRootMediator::initFileMenu(QMenu& menu)
{
  menu.addActions({_newWindow, _closeWindow});
  menu.addSeparator();
  menu.addActions({_newStack, _newStackFromFile, _openStack});
  _recentFilesMenu = &addMenu(menu, tr("Recent stacks..."), tr("Open a stack file that was opened before"));
  menu.addSeparator();
  menu.addActions({_saveStack, _saveStackAs});
  menu.addSeparator();
  menu.addActions({_closeStack, _closeAll});
  menu.addSeparator();
  menu.addAction(_quit);
  connect(&menu, &QMenu::aboutToShow, this, &NYXRootMediator::updateRecentFilesMenu);
}

void NYXRootMediator::initEditMenu(QMenu& menu)
{
  menu.addActions({_undo, _redo});
  menu.addSeparator();
  menu.addActions({_displayPanorama, _displaySingleSlice, _displayOverview});
  menu.addSeparator();
  menu.addActions({_selectFirstSlice, _selectLastSlice, _selectNextSlice, _selectPreviousSlice});
  menu.addSeparator();
  menu.addActions(_editDialogs);
  menu.addSeparator();
  menu.addAction(_preferences);
}

void NYXRootMediator::initProcessMenu(QMenu& menu)
{
  menu.addActions(_process);
}

void NYXRootMediator::initAnalyzeMenu(QMenu& menu)
{
  menu.addAction(_measures);
  addMenu(menu, tr("Spatial analysis"), tr("How objects lie in space")).addAction(_runSpatialAnalysis);
}

void NYXRootMediator::initPluginsMenu(QMenu& menu)
{
  menu.addAction(_refreshPlugins);
  _pluginsMenu = &menu;
  // Another window may have looked for plug-ins since.
  connect(&menu, &QMenu::aboutToShow, this, &NYXRootMediator::updatePluginActions);
}
