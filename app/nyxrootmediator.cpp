#include "app/nyxrootmediator.h"

#include "app/core/actions/nyxsliceinsertiondeletionaction.h"
#include "app/core/nyxeventserver.h"
#include "app/core/nyxsettings.h"
#include "app/core/nyxstack.h"
#include "app/nyxplaintext.h"
#include "app/nyxpluginrun.h"
#include "app/nyxpluginserver.h"
#include "app/nyxpreferencesdialog.h"
#include "app/nyxrootsliceeditwidget.h"
#include "app/nyxrootstatusbar.h"
#include "app/nyxrootwindow.h"
#include "app/nyxslicelistwidget.h"
#include "app/nyxstackio.h"
#include "app/nyxstacklistwidget.h"
#include "model/modelitem.h"
#include "model/stackslice.h"

#include <QAction>
#include <QDir>
#include <QFileInfo>
#include <QMenu>
#include <QMessageBox>
#include <QToolBar>

#include <utility>

NYXRootMediator::NYXRootMediator(QObject* parent) : QObject(parent)
{
  createFileActions();
  createEditActions();
  createSliceActions();
  createProcessActions();
  createAnalyzeActions();
  createPluginsActions();
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
  stackIO().openStack(filename);
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
  _sliceEditWidget->showSlice(slice < 0 ? nullptr : stack->getSlice(slice));
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
    action->setToolTip(plainText(QDir::toNativeSeparators(file)));
    action->setStatusTip(action->toolTip());
  }
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
  QMessageBox::warning(_window, tr("Plug-in error"), plainText(server.getProblems().join('\n')));
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
  QMessageBox::warning(_window, tr("Plug-in error"), plainText(tr("%1 failed: %2").arg(name, reason)));
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
