#include "app/nyxrootmediator.h"

#include "analysis/nyxanalysiswindow.h"
#include "analysis/nyxanalysiswindowmediator.h"
#include "app/core/actions/nyxsliceaction.h"
#include "app/core/nyxeventserver.h"
#include "app/core/nyxsettings.h"
#include "app/core/nyxstack.h"
#include "app/nyxdialogs.h"
#include "app/nyxnames.h"
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
#include "numeric/exception.h"
#include "registration/nyxregistrationmediator.h"
#include "registration/nyxregistrationwindow.h"
#include "slice/image/nyxoverview.h"
#include "slice/image/nyxpanorama.h"
#include "slice/image/nyxplaintext.h"
#include "slice/nyxmodetoolbar.h"
#include "slice/nyxnavigationtoolbar.h"
#include "slice/nyxsliceeditwidget.h"
#include "slice/nyxsliceeditwidgetmediator.h"
#include "slice/nyxsliceeditwidgetmediatorselectiondelegate.h"
#include "slice/nyxsliceeditwidgetstatusbar.h"
#include "viewer/nyxrenderingwindow.h"

#include <QAction>
#include <QDir>
#include <QFileInfo>
#include <QMenu>
#include <QSettings>
#include <QToolBar>

#include <utility>

namespace
{
/// An action that cannot be used for a reason tells it in place of what it does.
void enable(QAction& action, bool isPossible, const QString& reason)
{
  action.setEnabled(isPossible && reason.isEmpty());
  action.setToolTip(reason.isEmpty() ? action.whatsThis() : plainText(reason));
}

QColor mixture(const QColor& a, const QColor& b)
{
  return QColor((a.red() + b.red()) / 2, (a.green() + b.green()) / 2, (a.blue() + b.blue()) / 2);
}

/// Disables a list without a great change of its looks: its text is half as strong as before.
void enableQuietly(QWidget& list, bool isEnabled)
{
  QPalette palette;
  for (const auto role : {QPalette::Base, QPalette::Highlight, QPalette::HighlightedText})
    palette.setColor(QPalette::Disabled, role, palette.color(QPalette::Active, role));
  palette.setColor(
      QPalette::Disabled, QPalette::Text,
      mixture(palette.color(QPalette::Active, QPalette::Text), palette.color(QPalette::Active, QPalette::Base)));
  list.setPalette(isEnabled ? QPalette() : palette);
  list.setEnabled(isEnabled);
}
} // namespace

NYXRootMediator::NYXRootMediator(QObject* parent) : QObject(parent)
{
  createFileActions();
  createEditActions();
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
  _toolBar->addActions({_displayPanorama, _displaySingleSlice, _displayOverview});
  NYXNavigationToolBar& navigation = _sliceEditWidget->navigationToolBar();
  navigation.setIconSize({side, side});
  navigation.addGroup({_selectFirstSlice, _selectPreviousSlice, _selectNextSlice, _selectLastSlice});
  navigation.addGroup(_sliceEditWidget->sliceWidget().mediator().zoomActions());
  _sliceEditWidget->sliceWidget().toolBar().setIconSize({side, side});
  connectSliceEditor();
  createListMenus();
  _sliceEditWidget->setStartActions({_openStack, _newStack, _newStackFromFile});
  _sliceEditWidget->setInsertAction(*_insertSlice);

  connect(_stackList, &NYXStackListWidget::currentStackChanged, this, &NYXRootMediator::showCurrentStack);
  connect(_sliceList, &NYXSliceListWidget::currentSliceChanged, this, &NYXRootMediator::showSlice);
  connect(_sliceList, &NYXSliceListWidget::sliceDragged, this, &NYXRootMediator::moveSlice);
  connect(_sliceEditWidget, &NYXRootSliceEditWidget::openRequested, this, &NYXRootMediator::openStack);
  connect(_panorama, &NYXPanorama::sliceSelected, this,
          [this](int slice) { _sliceList->revealSlice(*currentStack()->getSlice(slice)); });
  connect(_panorama, &NYXPanorama::sliceOpened, this, &NYXRootMediator::openSlice);
  connect(_overview, &NYXOverview::closed, _displayOverview, [this] { _displayOverview->setChecked(false); });
  updatePluginActions();
  updateActions();
  NYXEventServer::attach(*this);
}

void NYXRootMediator::connectSliceEditor()
{
  NYXSliceEditWidgetMediator& editor = _sliceEditWidget->sliceWidget().editMediator();
  _sliceEditWidget->modeToolBar().setModelsAction(*_editDialogs.front());
  connect(&editor, &NYXSliceEditWidgetMediator::lockRequested, this, &NYXRootMediator::lockSlice);
  connect(&editor, &NYXSliceEditWidgetMediator::propertiesRequested, this, &NYXRootMediator::editItemProperties);
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
  if (stack == nullptr) return;
  if (stack != currentStack()) finishTool();
  _stackList->selectStack(*stack);
}

void NYXRootMediator::finishTool()
{
  _sliceEditWidget->sliceWidget().editMediator().finishTool();
}

bool NYXRootMediator::confirmLeaving()
{
  finishTool();
  return _registrationWindow == nullptr || _registrationWindow->mediator().confirmLeaving();
}

void NYXRootMediator::saveCurrentStack()
{
  stackIO().saveStack(*currentStack());
}

void NYXRootMediator::editPreferences()
{
  NYXPreferencesDialog(_window).exec();
}

void NYXRootMediator::openRegistration()
{
  if (_registrationWindow == nullptr)
  {
    _registrationWindow = new NYXRegistrationWindow(_window);
    nameParts(*_registrationWindow);
  }
  _registrationWindow->setStack(currentStack());
  _registrationWindow->show();
  _registrationWindow->raise();
  _registrationWindow->activateWindow();
}

void NYXRootMediator::openMeasures()
{
  if (_analysisWindow == nullptr)
  {
    _analysisWindow = new NYXAnalysisWindow(_window);
    nameParts(*_analysisWindow);
    connect(&_analysisWindow->mediator(), &NYXAnalysisWindowMediator::itemOpened, this, &NYXRootMediator::showItem);
    connect(&_analysisWindow->mediator(), &NYXAnalysisWindowMediator::sliceOpened, this, &NYXRootMediator::revealSlice);
  }
  _analysisWindow->setStack(currentStack());
  _analysisWindow->show();
  _analysisWindow->raise();
  _analysisWindow->activateWindow();
}

/// Selects an item on its slice, and shows it.
void NYXRootMediator::showItem(ModelItem& item)
{
  if (item.getSlice() == nullptr) return;
  revealSlice(item.getSlice()->getIndex());
  NYXSliceEditWidget& editor = _sliceEditWidget->sliceWidget();
  editor.editMediator().selection().selectItem(item);
  const BoundingBox<int> box = item.boundingBox();
  if (box.isEmpty()) return;
  editor.mediator().reveal(
      QRect(QPoint(box.getMinimum()[0], box.getMinimum()[1]), QPoint(box.getMaximum()[0], box.getMaximum()[1])));
}

void NYXRootMediator::revealSlice(int slice)
{
  finishTool();
  _displaySingleSlice->trigger();
  _sliceList->revealSlice(*currentStack()->getSlice(slice));
  _window->activateWindow();
}

void NYXRootMediator::showCurrentStack()
{
  NYXStack* stack = currentStack();
  _panorama->setStack(stack);
  _sliceList->setStack(stack);
  if (_registrationWindow != nullptr && _registrationWindow->isVisible()) _registrationWindow->setStack(stack);
  if (_analysisWindow != nullptr) _analysisWindow->setStack(_analysisWindow->isVisible() ? stack : nullptr);
  followHistories();
  showStackState();
}

void NYXRootMediator::showSlice(int slice)
{
  NYXStack* stack = currentStack();
  _panorama->setCurrentSlice(slice);
  showView();
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
  if (NYXRenderingWindow* const window = NYXRenderingWindow::find(*stack)) window->setCurrentSlice(slice);
  if (slice < 0) return _statusBar->setSliceText(tr("no slice"));
  const QString name = QString::fromStdString(stack->getSlice(slice)->getName());
  const QString place = QString("%1 / %2").arg(slice + 1).arg(stack->getNumSlices());
  _statusBar->setSliceText(tr("slice %1 (%2)").arg(name, place));
}

void NYXRootMediator::selectView(bool isPanorama)
{
  QSettings().setValue("rootWindow/panorama", isPanorama);
  showView();
  if (isPanorama) return _panorama->setFocus();
  _sliceEditWidget->sliceWidget().canvas().setFocus();
}

void NYXRootMediator::openSlice()
{
  _displaySingleSlice->trigger();
}

/// The panorama or the slice; what there is to say without slices is said in the slice's place.
void NYXRootMediator::showView()
{
  const NYXStack* const stack = currentStack();
  const bool hasSlices = stack != nullptr && stack->getNumSlices() > 0;
  const bool isPanorama = _displayPanorama->isChecked() && hasSlices;
  NYXSliceEditWidget& sliceWidget = _sliceEditWidget->sliceWidget();
  (isPanorama ? static_cast<QWidget*>(_sliceEditWidget) : _panorama)->hide(); // never both
  (isPanorama ? static_cast<QWidget*>(_panorama) : _sliceEditWidget)->show();
  sliceWidget.mediator().setActionsEnabled(!isPanorama);
  sliceWidget.statusBar().setVisible(!isPanorama && _sliceList->currentSlice() >= 0);
}

void NYXRootMediator::showOverview(bool isOn)
{
  QSettings().setValue("overview/visible", isOn);
  _overview->setVisible(isOn);
}

void NYXRootMediator::restoreOverview()
{
  _displayOverview->setChecked(QSettings().value("overview/visible", false).toBool());
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
  const NYXStack* const stack = currentStack();
  const StackSlice* const slice = currentSlice();
  enableActions(stack != nullptr);
  lockRequest(slice != nullptr && stack->isLocked(*slice));
  showHistories();
}

/// Why there is no current slice; empty when there is one.
QString NYXRootMediator::missingSliceText() const
{
  if (currentSlice() != nullptr) return {};
  return currentStack() == nullptr ? tr("Open a stack first") : tr("No slice is shown");
}

QString NYXRootMediator::lockText(const StackSlice& slice)
{
  return tr("Slice %1 is locked: a computation works on it").arg(QString::fromStdString(slice.getName()));
}

/// Why a step cannot be undone or made again now; empty when it can.
QString NYXRootMediator::obstacleText(const StackSlice* obstacle, const StackSlice* locked)
{
  if (locked != nullptr) return lockText(*locked);
  return obstacle == nullptr
             ? QString()
             : tr("A step on slice %1 comes first: go there").arg(QString::fromStdString(obstacle->getName()));
}

/// Nothing is edited on a slice while a computation works on it.
void NYXRootMediator::lockRequest(bool isLocked)
{
  const StackSlice* const slice = currentSlice();
  for (QAction* action : std::as_const(_sliceActions))
    enable(*action, slice != nullptr, isLocked ? lockText(*slice) : missingSliceText());
}

/// The slice stays as long as a tool works on it.
void NYXRootMediator::lockSlice(bool isToolAtWork)
{
  if (isToolAtWork == _isToolAtWork) return;
  _isToolAtWork = isToolAtWork;
  for (QWidget* list : {static_cast<QWidget*>(_stackList), static_cast<QWidget*>(_sliceList)})
    enableQuietly(*list, !isToolAtWork);
  updateActions();
}

/// What changes all slices, or the places of slices, waits until none is locked.
void NYXRootMediator::enableActions(bool flag)
{
  const QString stackReason = flag ? QString() : tr("Open a stack first");
  for (QAction* action : std::as_const(_stackActions)) enable(*action, flag, stackReason);
  const NYXStack* const stack = currentStack();
  const QString toolReason = _isToolAtWork ? tr("Finish or cancel the tool at work first") : QString();
  for (QAction* action : {_selectFirstSlice, _selectLastSlice, _selectNextSlice, _selectPreviousSlice, _displayPanorama,
                          _displaySingleSlice})
    enable(*action, flag, flag ? toolReason : stackReason);
  for (QAction* action : {_newStack, _newStackFromFile, _openStack}) enable(*action, true, toolReason);
  const bool isAnyLocked = stack != nullptr && !stack->getLockedSlices().empty();
  const QString obstacle = isAnyLocked ? lockText(*stack->getLockedSlices().front()) : toolReason;
  const QString reason = flag ? obstacle : stackReason;
  for (QAction* action : _wholeStackActions + _pluginActions) enable(*action, flag, reason);
  enable(*_runSpatialAnalysis, flag, reason);
  enableSliceMoves(reason);
}

void NYXRootMediator::enableSliceMoves(const QString& obstacle)
{
  const StackSlice* const slice = currentSlice();
  const auto enableUnless = [&](QAction& action, const QString& reason)
  {
    const QString missing = missingSliceText();
    enable(action, slice != nullptr, !obstacle.isEmpty() ? obstacle : !missing.isEmpty() ? missing : reason);
  };
  const bool isFirst = slice != nullptr && slice->getIndex() == 0;
  const bool isLast = slice != nullptr && slice->getIndex() + 1 == slice->getStack()->getNumSlices();
  enableUnless(*_deleteSlice, {});
  enableUnless(*_moveSliceUp, isFirst ? tr("This is the first slice") : QString());
  enableUnless(*_moveSliceDown, isLast ? tr("This is the last slice") : QString());
}

void NYXRootMediator::followHistories()
{
  disconnect(_historiesChanged);
  if (NYXStack* stack = currentStack())
    _historiesChanged =
        connect(&stack->histories(), &NYXStackHistories::changed, this, &NYXRootMediator::updateActions);
  updateActions();
}

void NYXRootMediator::showHistories()
{
  const auto show = [](QAction& action, const QString& name, const QString& description, const QString& reason)
  {
    action.setText(description.isEmpty() ? name : tr("%1: %2").arg(name, description));
    enable(action, !description.isEmpty(), reason);
  };
  NYXStack* const stack = currentStack();
  if (stack == nullptr)
  {
    show(*_undo, tr("Undo"), {}, {});
    return show(*_redo, tr("Redo"), {}, {});
  }
  NYXStackHistories& histories = stack->histories();
  const StackSlice* const slice = currentSlice();
  show(*_undo, tr("Undo"), histories.isUndoable(slice) ? histories.undoDescription(slice, true) : QString(),
       obstacleText(histories.undoObstacle(slice), histories.undoLock(slice)));
  show(*_redo, tr("Redo"), histories.isRedoable(slice) ? histories.redoDescription(slice, true) : QString(),
       obstacleText(histories.redoObstacle(slice), histories.redoLock(slice)));
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
  _recentFilesMenu->setEnabled(!_recentFilesMenu->isEmpty() && !_isToolAtWork);
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
  _overview->update();
}

void NYXRootMediator::stackCloseEvent(const NYXStackCloseEvent& event)
{
  _sliceList->forget(event.getStack());
}

/// The actions follow the stack's news of what can be undone.
void NYXRootMediator::sliceLockEvent(const NYXSliceLockEvent& event)
{
  const StackSlice& slice = event.getSlice();
  const NYXStack* const stack = currentStack();
  if (stack != nullptr && slice.getStack() == stack) _sliceList->showLock(slice.getIndex(), event.isLocked);
}

void NYXRootMediator::refreshSlice(const StackSlice* slice)
{
  const NYXStack* stack = currentStack();
  if (stack != nullptr && slice != nullptr && slice->getStack() == stack)
    _sliceList->refreshSlice(*stack, slice->getIndex());
  _sliceEditWidget->update();
}

/// The change that is made may be a step of several actions, and may be taken back.
void NYXRootMediator::noteConcernedSlice(const NYXSliceAction& action)
{
  const StackSlice& slice = action.getSlice();
  if (slice.getStack() == nullptr)
  {
    if (_concernedSlice == &slice) _concernedSlice = nullptr;
  }
  else if (_concernedSlice == nullptr && action.changesPlaces())
    _concernedSlice = &slice;
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

void NYXRootMediator::processSliceAction(NYXSliceAction& action)
{
  noteConcernedSlice(action);
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
