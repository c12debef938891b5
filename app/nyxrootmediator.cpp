#include "app/nyxrootmediator.h"

#include "app/core/actions/nyxsliceinsertiondeletionaction.h"
#include "app/core/nyxeventserver.h"
#include "app/core/nyxsettings.h"
#include "app/core/nyxstack.h"
#include "app/nyxannotationdialog.h"
#include "app/nyxdialogs.h"
#include "app/nyxfiltermodelsdialog.h"
#include "app/nyxmodelsdialog.h"
#include "app/nyxnames.h"
#include "app/nyxplaintext.h"
#include "app/nyxpluginrun.h"
#include "app/nyxpluginserver.h"
#include "app/nyxpreferencesdialog.h"
#include "app/nyxrootsliceeditwidget.h"
#include "app/nyxrootstatusbar.h"
#include "app/nyxrootwindow.h"
#include "app/nyxslicelistwidget.h"
#include "app/nyxslicepropertiesdialog.h"
#include "app/nyxstackio.h"
#include "app/nyxstacklistwidget.h"
#include "app/nyxstackpropertiesdialog.h"
#include "app/nyxtransfermodelsdialog.h"
#include "model/modelitem.h"
#include "model/stackslice.h"

#include <QAction>
#include <QDir>
#include <QFileInfo>
#include <QIcon>
#include <QMenu>
#include <QToolBar>

#include <utility>

namespace
{
constexpr int messageMilliseconds = 5000;
} // namespace

NYXRootMediator::NYXRootMediator(QObject* parent) : QObject(parent)
{
  createFileActions();
  createEditActions();
  createSliceActions();
  createProcessActions();
  createAnalyzeActions();
  createPluginsActions();
}

template <class Slot> QAction* NYXRootMediator::createAction(const QString& text, const QString& toolTip,
                                                             const QKeySequence& shortcut, Slot&& slot)
{
  auto* action = new QAction(text, this);
  action->setObjectName(text);
  action->setShortcut(shortcut);
  action->setStatusTip(toolTip);
  action->setToolTip(shortcut.isEmpty() ? toolTip : toolTip + " (" + shortcut.toString(QKeySequence::NativeText) + ")");
  connect(action, &QAction::triggered, this, std::forward<Slot>(slot));
  return action;
}

template <class Slot> QAction* NYXRootMediator::createStackAction(const QString& text, const QString& toolTip,
                                                                  const QKeySequence& shortcut, Slot&& slot)
{
  QAction* action = createAction(text, toolTip, shortcut, std::forward<Slot>(slot));
  _stackActions.append(action);
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
                                 &NYXRootMediator::saveCurrentStack);
  _saveStack->setIcon(QIcon(":/icons/save.svg"));
  _saveStackAs = createStackAction(tr("Save stack as..."), tr("Save the current stack to another file"),
                                   QKeySequence("Ctrl+Shift+S"), [this] { stackIO().saveStackAs(*currentStack()); });
  _closeStack = createStackAction(tr("Close stack"), tr("Close the current stack"), QKeySequence("Ctrl+W"),
                                  [this] { stackIO().closeStack(*currentStack()); });
  _closeAll = createStackAction(tr("Close all"), tr("Close all stacks"), {}, [this] { stackIO().closeAll(); });
}

void NYXRootMediator::createEditActions()
{
  _displayPanorama = createLaterAction(tr("Display stack panorama"), tr("Show all slices of the stack side by side"));
  _displaySingleSlice = createLaterAction(tr("Display single slice"), tr("Show one slice"));
  _displayOverview = createLaterAction(tr("Display overview"), tr("Show the whole slice in a small window"));
  _undo = createAction(tr("Undo"), tr("Take the last change back"), QKeySequence::Undo, &NYXRootMediator::undo);
  _undo->setIcon(QIcon(":/icons/undo.svg"));
  _redo = createAction(tr("Redo"), tr("Make the change again that was taken back last"), QKeySequence("Ctrl+Shift+Z"),
                       &NYXRootMediator::redo);
  _redo->setIcon(QIcon(":/icons/redo.svg"));
  _insertSlice = createStackAction(tr("Insert slice..."), tr("Insert images before the current slice"), {},
                                   &NYXRootMediator::insertSlices);
  _insertSlice->setIcon(QIcon(":/icons/insert.svg"));
  _deleteSlice = createAction(tr("Delete slice"), tr("Delete the current slice and what is drawn on it"), {},
                              &NYXRootMediator::deleteSlice);
  const auto sliceDialog = [this](const QString& text, const QString& toolTip, auto open)
  {
    QAction* const action = createAction(text, toolTip, {}, [this, open] { open(*currentStack(), *currentSlice()); });
    _sliceActions.append(action);
    return action;
  };
  _editDialogs = {
      createStackAction(tr("Edit models..."), tr("Create, change and delete models"), QKeySequence("Ctrl+M"),
                        [this] { openDialog<NYXModelsDialog>(*currentStack()); }),
      _insertSlice,
      _deleteSlice,
      createStackAction(tr("Stack properties..."), tr("Change the name, calibration and spacing of the stack"), {},
                        [this] { openDialog<NYXStackPropertiesDialog>(*currentStack()); }),
      sliceDialog(tr("Slice properties..."), tr("Change the name, calibration and depth of the slice"),
                  [this](NYXStack& stack, StackSlice& slice)
                  { openDialog<NYXSlicePropertiesDialog>(stack, std::vector<StackSlice*>{&slice}); }),
      createStackAction(tr("Annotate stack..."), tr("Write notes on the stack"), {},
                        [this] { openDialog<NYXAnnotationDialog>(*currentStack()); }),
      sliceDialog(tr("Annotate slice..."), tr("Write notes on the slice"),
                  [this](NYXStack& stack, StackSlice& slice) { openDialog<NYXAnnotationDialog>(stack, slice); }),
  };
  _preferences =
      createAction(tr("Preferences..."), tr("Change how the program works"), {}, &NYXRootMediator::editPreferences);
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
      createLaterAction(tr("Register"), tr("Align each slice on the one before")),
      createLaterAction(tr("Reconstruct"), tr("Show the models in 3D")),
      createLaterAction(tr("Image processing"), tr("Filter the images of the slices")),
      createLaterAction(tr("Find spots"), tr("Detect spot-like objects")),
      createLaterAction(tr("Normalize"), tr("Even out the grey levels of the slices")),
      createStackAction(tr("Transfer models..."), tr("Copy models from another stack"), {},
                        [this] { openDialog<NYXTransferModelsDialog>(*currentStack()); }),
      createStackAction(tr("Filter models..."), tr("Keep the items of models that meet conditions"), {},
                        [this] { openDialog<NYXFilterModelsDialog>(*currentStack()); }),
  };
}

void NYXRootMediator::createAnalyzeActions()
{
  _runSpatialAnalysis = createLaterAction(tr("Run"), tr("Test whether objects are placed at random"));
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
  addMenu(menu, tr("Spatial analysis"), tr("How objects lie in space")).addAction(_runSpatialAnalysis);
}

void NYXRootMediator::initPluginsMenu(QMenu& menu)
{
  menu.addAction(_refreshPlugins);
  _pluginsMenu = &menu;
  // Another window may have looked for plug-ins since.
  connect(&menu, &QMenu::aboutToShow, this, &NYXRootMediator::updatePluginActions);
}

void NYXRootMediator::initialize()
{
  _toolBar->setObjectName("rootToolBar");
  const int side = _toolBar->fontMetrics().height() * 5 / 4;
  _toolBar->setIconSize({side, side});
  _toolBar->addActions({_newStack, _openStack, _saveStack});
  _toolBar->addSeparator();
  _toolBar->addActions({_undo, _redo});
  _toolBar->addSeparator();
  _toolBar->addActions({_selectFirstSlice, _selectPreviousSlice, _selectNextSlice, _selectLastSlice});
  _sliceEditWidget->setStartActions({_openStack, _newStack, _newStackFromFile});
  _sliceEditWidget->setInsertAction(*_insertSlice);

  connect(_stackList, &NYXStackListWidget::currentStackChanged, this, &NYXRootMediator::showCurrentStack);
  connect(_sliceList, &NYXSliceListWidget::currentSliceChanged, this, &NYXRootMediator::showSlice);
  connect(_sliceEditWidget, &NYXRootSliceEditWidget::openRequested, this, &NYXRootMediator::openStack);
  updatePluginActions();
  updateActions();
  NYXEventServer::attach(*this);
}

NYXStack* NYXRootMediator::currentStack() const
{
  return _stackList->currentStack();
}

StackSlice* NYXRootMediator::currentSlice() const
{
  const NYXStack* stack = currentStack();
  const int slice = _sliceList->currentSlice();
  return stack != nullptr && slice >= 0 && slice < stack->getNumSlices() ? stack->getSlice(slice) : nullptr;
}

NYXStackIO NYXRootMediator::stackIO() const
{
  return NYXStackIO(_window, _statusBar);
}

void NYXRootMediator::openStack(const QString& filename)
{
  selectStack(stackIO().openStack(filename));
}

void NYXRootMediator::newStack(const QStringList& images)
{
  stackIO().newStack(images);
}

void NYXRootMediator::selectStack(const NYXStack* stack)
{
  if (stack != nullptr) _stackList->selectStack(*stack);
}

void NYXRootMediator::saveCurrentStack()
{
  stackIO().saveStack(*currentStack());
}

void NYXRootMediator::editPreferences()
{
  NYXPreferencesDialog(_window).exec();
}

void NYXRootMediator::showCurrentStack()
{
  NYXStack* stack = currentStack();
  _sliceList->setStack(stack);
  followHistories();
  showStackState();
}

void NYXRootMediator::showSlice(int slice)
{
  NYXStack* stack = currentStack();
  if (stack == nullptr)
  {
    _sliceEditWidget->setRecentFiles(NYXSettings::settings().getRecentFilesList());
    _sliceEditWidget->showStartPage();
    _statusBar->setSliceText({});
    return;
  }
  if (slice < 0)
    _sliceEditWidget->showNoSlice(stack->getNumSlices() > 0);
  else
    _sliceEditWidget->showSlice(*stack->getSlice(slice));
  updateActions();
  if (slice < 0) return _statusBar->setSliceText(tr("no slice"));
  const QString name = QString::fromStdString(stack->getSlice(slice)->getName());
  const QString place = QString("%1 / %2").arg(slice + 1).arg(stack->getNumSlices());
  _statusBar->setSliceText(tr("slice %1 (%2)").arg(name, place));
}

/// Title, status bar and actions follow the current stack's name and modified flag.
void NYXRootMediator::showStackState()
{
  const NYXStack* stack = currentStack();
  _window->setTitle(stack == nullptr ? QString() : stack->displayName());
  _statusBar->setStackText(stack == nullptr ? QString() : stack->displayName() + (stack->isModified() ? "*" : ""));
  updateActions();
}

void NYXRootMediator::updateActions()
{
  enableActions(currentStack() != nullptr);
  lockRequest(_lockedSlices.contains(currentSlice()));
}

/// Nothing is edited on a slice while a computation works on it.
void NYXRootMediator::lockRequest(bool isLocked)
{
  const bool isEditable = currentSlice() != nullptr && !isLocked;
  _deleteSlice->setEnabled(isEditable);
  for (QAction* action : std::as_const(_sliceActions)) action->setEnabled(isEditable);
  showHistories();
}

void NYXRootMediator::undo()
{
  if (NYXStack* stack = currentStack()) stack->histories().undo(currentSlice());
}

void NYXRootMediator::redo()
{
  if (NYXStack* stack = currentStack()) stack->histories().redo(currentSlice());
}

void NYXRootMediator::insertSlices()
{
  NYXStack& stack = *currentStack();
  stackIO().insertSlices(stack, qMax(_sliceList->currentSlice(), 0));
}

void NYXRootMediator::deleteSlice()
{
  StackSlice& slice = *currentSlice();
  const QString name = QString::fromStdString(slice.getName());
  const auto numItems = static_cast<int>(slice.getItems().size());
  currentStack()->history().pushStep(std::make_unique<NYXSliceInsertionDeletionAction>(slice));
  _statusBar->showMessage(numItems == 0 ? tr("Deleted slice %1; Undo restores it").arg(name)
                          : numItems == 1
                              ? tr("Deleted slice %1 with 1 item; Undo restores both").arg(name)
                              : tr("Deleted slice %1 with %2 items; Undo restores them").arg(name).arg(numItems),
                          messageMilliseconds);
}

void NYXRootMediator::followHistories()
{
  disconnect(_historiesChanged);
  if (NYXStack* stack = currentStack())
    _historiesChanged =
        connect(&stack->histories(), &NYXStackHistories::changed, this, &NYXRootMediator::showHistories);
  showHistories();
}

void NYXRootMediator::showHistories()
{
  NYXStack* const stack = currentStack();
  const StackSlice* const slice = currentSlice();
  const bool isLocked = _lockedSlices.contains(slice);
  const auto show =
      [&](QAction& action, const QString& name, bool isPossible, const QString& description, const StackSlice* obstacle)
  {
    action.setEnabled(isPossible && !isLocked);
    action.setText(isPossible ? tr("%1: %2").arg(name, description) : name);
    if (action.whatsThis().isEmpty()) action.setWhatsThis(action.toolTip()); // the tool tip when nothing is in the way
    action.setToolTip(
        obstacle == nullptr
            ? action.whatsThis()
            : plainText(
                  tr("A step on slice %1 comes first: go there").arg(QString::fromStdString(obstacle->getName()))));
  };
  const bool isUndoable = stack != nullptr && stack->histories().isUndoable(slice);
  const bool isRedoable = stack != nullptr && stack->histories().isRedoable(slice);
  show(*_undo, tr("Undo"), isUndoable, isUndoable ? stack->histories().undoDescription(slice, true) : QString(),
       stack != nullptr ? stack->histories().undoObstacle(slice) : nullptr);
  show(*_redo, tr("Redo"), isRedoable, isRedoable ? stack->histories().redoDescription(slice, true) : QString(),
       stack != nullptr ? stack->histories().redoObstacle(slice) : nullptr);
}

void NYXRootMediator::enableActions(bool flag)
{
  for (QAction* action : std::as_const(_stackActions)) action->setEnabled(flag);
  for (QAction* action : std::as_const(_pluginActions)) action->setEnabled(flag);
}

void NYXRootMediator::updateRecentFilesMenu()
{
  _recentFilesMenu->clear();
  for (const QString& file : NYXSettings::settings().getRecentFilesList())
  {
    QAction* action = _recentFilesMenu->addAction(QFileInfo(file).fileName().replace("&", "&&"), this,
                                                  [this, file] { openStack(file); });
    setTips(*action, plainText(QDir::toNativeSeparators(file)));
  }
  nameParts(*_recentFilesMenu);
  _recentFilesMenu->setEnabled(!_recentFilesMenu->isEmpty());
}

void NYXRootMediator::refreshPlugins()
{
  NYXPluginServer& server = NYXPluginServer::server();
  server.loadPlugins();
  updatePluginActions();
  const int count = server.getNumPlugins();
  _statusBar->showMessage(count == 1 ? tr("1 plug-in found") : tr("%1 plug-ins found").arg(count), messageMilliseconds);
  if (server.getProblems().isEmpty()) return;
  showWarning(_window, tr("Plug-in error"), server.getProblems().join('\n'));
}

void NYXRootMediator::updatePluginActions()
{
  qDeleteAll(_pluginActions);
  _pluginActions.clear();
  const NYXPluginServer& server = NYXPluginServer::server();
  for (int i = 0; i < server.getNumPlugins(); ++i)
  {
    const NYXLoadedPlugin& plugin = server.getPlugin(i);
    QAction* action = createAction(plugin.name, tr("Run the plug-in on the current stack"), {},
                                   [this, plugin] { pluginActionTriggered(plugin); });
    action->setText(QString(plugin.name).replace("&", "&&"));
    _pluginActions.append(action);
  }
  _pluginsMenu->insertActions(_refreshPlugins, _pluginActions);
  updateActions();
}

void NYXRootMediator::showPluginError(const QString& name, const QString& reason)
{
  showWarning(_window, tr("Plug-in error"), tr("%1 failed: %2").arg(name, reason));
}

/// Takes a copy: the menu may be filled anew meanwhile.
void NYXRootMediator::pluginActionTriggered(NYXLoadedPlugin plugin)
{
  const NYXPluginOutcome outcome = runPlugin(*plugin.plugin, plugin.name, *currentStack(), _window, *_statusBar);
  if (outcome.kind == NYXPluginOutcome::Failed) return showPluginError(plugin.name, outcome.reason);
  const bool isDone = outcome.kind == NYXPluginOutcome::Done;
  _statusBar->showMessage((isDone ? tr("%1 is done") : tr("%1 canceled; nothing was changed")).arg(plugin.name),
                          messageMilliseconds);
}

void NYXRootMediator::stackNameEvent(const NYXStackNameEvent&)
{
  showStackState();
}

void NYXRootMediator::stackFileNameEvent(const NYXStackFileNameEvent&)
{
  showStackState();
}

void NYXRootMediator::stackModifyEvent(const NYXStackModifyEvent&)
{
  showStackState();
}

void NYXRootMediator::preferencesEvent(const NYXPreferencesEvent&)
{
  _sliceEditWidget->update();
}

void NYXRootMediator::stackCloseEvent(const NYXStackCloseEvent& event)
{
  for (int i = 0; i < event.getStack().getNumSlices(); ++i) _lockedSlices.erase(event.getStack().getSlice(i));
}

void NYXRootMediator::sliceLockEvent(const NYXSliceLockEvent& event)
{
  if (event.isLocked)
    _lockedSlices.insert(&event.getSlice());
  else
    _lockedSlices.erase(&event.getSlice());
  updateActions();
}

void NYXRootMediator::refreshSlice(const StackSlice* slice)
{
  const NYXStack* stack = currentStack();
  if (stack != nullptr && slice != nullptr && slice->getStack() == stack)
    _sliceList->refreshSlice(*stack, slice->getIndex());
  _sliceEditWidget->update();
}

/// At once, or when the batch of events is over.
void NYXRootMediator::refreshSlices()
{
  _areSlicesStale = eventBatchEnabled();
  if (_areSlicesStale || currentStack() == nullptr) return;
  _sliceList->refresh(*currentStack());
  updateActions();
}

void NYXRootMediator::atEventBatchEnd()
{
  if (_areSlicesStale) refreshSlices();
}

void NYXRootMediator::processSliceAction(NYXSliceAction&)
{
  refreshSlices();
}

void NYXRootMediator::sliceNameEvent(const NYXSliceNameEvent& event)
{
  refreshSlice(&event.getSlice());
  showSlice(_sliceList->currentSlice());
}

void NYXRootMediator::modelCreateEvent(const NYXModelCreateEvent&)
{
  refreshSlices();
}

void NYXRootMediator::modelDeleteEvent(const NYXModelDeleteEvent&)
{
  refreshSlices();
}

void NYXRootMediator::modelPropertiesEvent(const NYXModelPropertiesEvent&)
{
  refreshSlices();
}

void NYXRootMediator::modelItemCreateEvent(const NYXModelItemCreateEvent& event)
{
  refreshSlice(event.getItem().getSlice());
}

void NYXRootMediator::modelItemDeleteEvent(const NYXModelItemDeleteEvent& event)
{
  refreshSlice(event.getItem().getSlice());
}

void NYXRootMediator::modelItemConvertEvent(const NYXModelItemConvertEvent& event)
{
  refreshSlice(event.getItem().getSlice());
}
