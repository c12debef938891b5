#include "registration/nyxregistrationmediator.h"

#include "app/core/actions/nyxregistrationaction.h"
#include "app/core/actions/nyxsliceaction.h"
#include "app/core/nyxeventserver.h"
#include "app/core/nyxstack.h"
#include "model/modelitem.h"
#include "model/stackslice.h"
#include "registration/nyxautomaticregistrationpanel.h"
#include "registration/nyxregistrationcanvas.h"
#include "registration/nyxregistrationpanel.h"
#include "registration/nyxregistrationstatusbar.h"
#include "registration/nyxregistrationtoolbar.h"
#include "registration/nyxregistrationview.h"
#include "slice/image/nyxplaintext.h"
#include "slice/image/nyxslicewidgetmediator.h"

#include <QAction>
#include <QFile>
#include <QIcon>
#include <QMessageBox>

namespace
{
constexpr int flickerMilliseconds = 400;
constexpr int messageMilliseconds = 8000;

QString nameOf(const StackSlice& slice)
{
  return QString::fromStdString(slice.getName());
}
} // namespace

NYXRegistrationMediator::NYXRegistrationMediator(QWidget& window) : QObject(&window), _window(window)
{
  _flickering.setInterval(flickerMilliseconds);
  connect(&_flickering, &QTimer::timeout, this, &NYXRegistrationMediator::flicker);
}

void NYXRegistrationMediator::initialize()
{
  createActions();
  connectParts();
  NYXEventServer::attach(*this);
  setStack(nullptr);
}

QAction* NYXRegistrationMediator::createAction(const QString& text, const QString& toolTip, const QString& name,
                                               const QKeySequence& shortcut, const std::function<void()>& slot)
{
  auto* action = new QAction(text, this);
  const QString icon = QString(":/icons/%1.svg").arg(name);
  if (QFile::exists(icon)) action->setIcon(QIcon(icon));
  const QString keys = shortcut.toString(QKeySequence::NativeText);
  action->setObjectName(name);
  action->setShortcut(shortcut);
  action->setToolTip(keys.isEmpty() ? toolTip : QString("%1 (%2)").arg(toolTip, keys));
  action->setStatusTip(toolTip);
  connect(action, &QAction::triggered, this, slot);
  _window.addAction(action);
  return action;
}

void NYXRegistrationMediator::createActions()
{
  using Mediator = NYXRegistrationMediator;
  _first = createAction(tr("First slice"), tr("Go to the second slice, the first to be aligned on another"), "first",
                        Qt::Key_Home, [this] { go(&Mediator::setFirstSlice); });
  _previous = createAction(tr("Previous slice"), tr("Go to the previous slice"), "previous", Qt::Key_PageUp,
                           [this] { go(&Mediator::setPreviousSlice); });
  _next = createAction(tr("Next slice"), tr("Go to the next slice"), "next", Qt::Key_PageDown,
                       [this] { go(&Mediator::setNextSlice); });
  _last = createAction(tr("Last slice"), tr("Go to the last slice"), "last", Qt::Key_End,
                       [this] { go(&Mediator::setLastSlice); });
  _undo = createAction(tr("Undo"), tr("Take the last change back"), "undo", QKeySequence::Undo, [this] { undo(); });
  _redo = createAction(tr("Redo"), tr("Make the change again that was taken back last"), "redo",
                       QKeySequence("Ctrl+Shift+Z"),
                       [this] { changeHistory([this] { _stack->histories().redo(_slice); }); });
  _flicker = createAction(tr("Flicker"), tr("Show the two slices in turn"), "flicker", Qt::Key_F, [] {});
  _flicker->setCheckable(true);
  connect(_flicker, &QAction::toggled, this, &NYXRegistrationMediator::setFlicker);
  _reset = createAction(tr("Reset"), tr("Return to the slice's stored registration"), "reset", Qt::Key_Escape,
                        [this] { reset(); });
  _apply = createAction(tr("Apply"), tr("Store this registration in the slice"), "apply", Qt::Key_Return,
                        [this]
                        {
                          _panel->commit();
                          apply();
                        });
  _apply->setShortcuts({Qt::Key_Return, Qt::Key_Enter});

  _toolBar->addGroup({_first, _previous});
  _toolBar->addSliceList();
  _toolBar->addActions({_next, _last});
  _toolBar->addGroup({_undo, _redo});
  const QList<QAction*> zoomActions = _view->mediator().zoomActions();
  _toolBar->addGroup(zoomActions);
  for (QAction* action : _view->toolBar().actions()) // the ruler, and what the canvas shows
    if (!zoomActions.contains(action)) _toolBar->addAction(action);
  _toolBar->addGroup({_flicker});
  _toolBar->addGroup({_reset, _apply});
}

void NYXRegistrationMediator::connectParts()
{
  using Mediator = NYXRegistrationMediator;
  NYXRegistrationCanvas& canvas = _view->registrationCanvas();
  connect(&canvas, &NYXRegistrationCanvas::registrationChanged, this, &Mediator::takeEdit);
  connect(_panel, &NYXRegistrationPanel::registrationChanged, this, &Mediator::takeEdit);
  connect(_panel, &NYXRegistrationPanel::applyClicked, this, &Mediator::apply);
  connect(_panel, &NYXRegistrationPanel::resetClicked, this, &Mediator::reset);
  connect(_panel, &NYXRegistrationPanel::transparencyChanged, &canvas, &NYXRegistrationCanvas::setTransparency);
  connect(_panel, &NYXRegistrationPanel::fitContoursClicked, this, [this] { runICP(*_slice); });
  connect(_automaticPanel, &NYXAutomaticRegistrationPanel::runClicked, this, &Mediator::runAutomaticRegistration);
  connect(_toolBar, &NYXRegistrationToolBar::sliceChosen, this,
          [this](int index)
          {
            if (confirmLeaving()) setSlice(_stack->getSlice(index + 1));
            showSliceNames();
          });
  _panel->setTransparency(canvas.getTransparency());
}

void NYXRegistrationMediator::setStack(NYXStack* stack)
{
  if (stack == _stack && stack != nullptr) return;
  disconnect(_historiesChanged);
  _stack = stack;
  _slice = nullptr;
  if (stack != nullptr)
  {
    _historiesChanged =
        connect(&stack->histories(), &NYXStackHistories::changed, this, &NYXRegistrationMediator::updateActions);
    const int last = stack->findSlice(stack->getLastRegisteredSlice());
    if (stack->getNumSlices() > 1) _slice = stack->getSlice(last > 0 ? last : 1);
  }
  showSlice();
}

void NYXRegistrationMediator::setSlice(StackSlice* slice)
{
  if (slice != nullptr && (slice->getStack() != _stack || slice->isFirstSlice())) return;
  _slice = slice;
  showSlice();
}

void NYXRegistrationMediator::setSlice(const std::string& name)
{
  const int slice = _stack == nullptr ? -1 : _stack->findSlice(name);
  if (slice > 0) setSlice(_stack->getSlice(slice));
}

void NYXRegistrationMediator::setFirstSlice()
{
  if (_stack != nullptr && _stack->getNumSlices() > 1) setSlice(_stack->getSlice(1));
}

void NYXRegistrationMediator::setLastSlice()
{
  if (_stack != nullptr && _stack->getNumSlices() > 1) setSlice(_stack->getLastSlice());
}

void NYXRegistrationMediator::setNextSlice()
{
  if (_slice != nullptr && !_slice->isLastSlice()) setSlice(_slice->nextSlice());
}

void NYXRegistrationMediator::setPreviousSlice()
{
  if (_slice != nullptr) setSlice(_slice->prevSlice());
}

/// As the user asks for it.
void NYXRegistrationMediator::go(void (NYXRegistrationMediator::*navigate)())
{
  if (confirmLeaving()) (this->*navigate)();
}

bool NYXRegistrationMediator::confirmLeaving()
{
  _panel->commit();
  if (!isEdited()) return true;
  const auto answer = QMessageBox::question(
      &_window, tr("Registration"),
      plainText(tr("The registration of slice %1 was changed and not applied.\nApply it, or discard the change?")
                    .arg(nameOf(*_slice))),
      QMessageBox::Apply | QMessageBox::Discard | QMessageBox::Cancel, QMessageBox::Apply);
  if (answer == QMessageBox::Discard) reset();
  return answer == QMessageBox::Discard || (answer == QMessageBox::Apply && apply());
}

/// What correlated were other images, or they had pixels of another size.
void NYXRegistrationMediator::showImages()
{
  _view->showSlice(_slice);
  _automaticPanel->clearCorrelations();
}

void NYXRegistrationMediator::showSlice()
{
  showImages();
  showSliceNames();
  reset();
  emit stateChanged();
}

void NYXRegistrationMediator::showSliceNames()
{
  QStringList names;
  for (int i = 1; _stack != nullptr && i < _stack->getNumSlices(); ++i) names << nameOf(*_stack->getSlice(i));
  _toolBar->setSliceNames(names);
  _toolBar->setCurrentSlice(_slice == nullptr ? -1 : _slice->getIndex() - 1);
  if (_slice == nullptr)
    _panel->setSliceNames({}, {});
  else
    _panel->setSliceNames(nameOf(*_slice), nameOf(*_slice->prevSlice()));
}

void NYXRegistrationMediator::updateActions()
{
  const bool hasSlice = _slice != nullptr;
  const bool isLocked = hasSlice && _stack->isLocked(*_slice);
  const bool isEditable = hasSlice && !isLocked && !_isRunning;
  for (QAction* action : {_first, _previous}) action->setEnabled(hasSlice && _slice->getIndex() > 1);
  for (QAction* action : {_next, _last}) action->setEnabled(hasSlice && !_slice->isLastSlice());
  _undo->setEnabled(_stack != nullptr && (_stack->histories().isUndoable(_slice) || (isEditable && isEdited())));
  _redo->setEnabled(_stack != nullptr && _stack->histories().isRedoable(_slice));
  _flicker->setEnabled(hasSlice);
  _apply->setEnabled(isEditable);
  _reset->setEnabled(isEditable && isEdited());
  _panel->setEditable(isEditable);
  _automaticPanel->setRunnable(isEditable);
  _view->registrationCanvas().setEditable(isEditable);
  if (_stack == nullptr)
    _statusBar->setHint(tr("Open a stack to register its slices"));
  else if (!hasSlice)
    _statusBar->setHint(tr("There is nothing to register: the stack needs two slices"));
  else if (isLocked)
    _statusBar->setHint(tr("Slice %1 is locked: a computation works on it").arg(nameOf(*_slice)));
  else
    _statusBar->setHint(tr("Left drag moves, right drag turns, Return applies, Escape resets"));
}

void NYXRegistrationMediator::setRegistration(const Registration& registration)
{
  _registration = registration;
  _view->registrationCanvas().setRegistration(registration);
  _panel->setRegistration(registration);
  updateActions();
  emit stateChanged();
}

void NYXRegistrationMediator::takeEdit(const Registration& registration)
{
  if (_slice != nullptr) setRegistration(registration);
}

bool NYXRegistrationMediator::isEdited() const
{
  return _slice != nullptr && _registration != _slice->getRegistration();
}

void NYXRegistrationMediator::reset()
{
  const Registration stored = _slice == nullptr ? Registration() : _slice->getRegistration();
  _stored = stored;
  _panel->setStoredRegistration(stored);
  setRegistration(stored);
}

/// An edit comes before the steps, which it is not one of yet.
void NYXRegistrationMediator::undo()
{
  if (!isEdited()) return changeHistory([this] { _stack->histories().undo(_slice); });
  reset();
  showMessage(tr("The change that was not applied is taken back"));
}

void NYXRegistrationMediator::showMessage(const QString& text)
{
  _statusBar->showMessage(text, messageMilliseconds);
}

/// Makes a change to the stack, and says why when that is refused.
void NYXRegistrationMediator::changeHistory(const std::function<void()>& change)
{
  try
  {
    change();
  }
  catch (const Exception& error)
  {
    showMessage(QString::fromStdString(error.getWhat()));
  }
}

bool NYXRegistrationMediator::apply()
{
  if (_slice == nullptr) return false;
  bool isDone = false;
  changeHistory(
      [&]
      {
        _stack->history().pushStep(std::make_unique<NYXRegistrationAction>(*_slice, _registration));
        isDone = true;
      });
  return isDone;
}

void NYXRegistrationMediator::setScale(float scale)
{
  NYXRegistrationCanvas& canvas = _view->registrationCanvas();
  canvas.setBestFitMode(false, true);
  canvas.setZoomFactor(scale);
  canvas.rectifyViewOrigin();
  _view->mediator().updateView();
}

void NYXRegistrationMediator::increaseScale()
{
  _view->mediator().increaseZoomFactor();
}

void NYXRegistrationMediator::decreaseScale()
{
  _view->mediator().decreaseZoomFactor();
}

void NYXRegistrationMediator::setFlicker(bool isOn)
{
  isOn ? _flickering.start() : _flickering.stop();
  _view->registrationCanvas().setShownSlices(isOn ? NYXShownSlices::Foreground : NYXShownSlices::Both);
}

void NYXRegistrationMediator::flicker()
{
  NYXRegistrationCanvas& canvas = _view->registrationCanvas();
  const bool isForeground = canvas.getShownSlices() == NYXShownSlices::Foreground;
  canvas.setShownSlices(isForeground ? NYXShownSlices::Background : NYXShownSlices::Foreground);
}

void NYXRegistrationMediator::followItem(const NYXModelItemEvent& event)
{
  const StackSlice* slice = event.getItem().getSlice();
  if (_slice != nullptr && (slice == _slice || slice == _slice->prevSlice())) _view->canvas().update();
}

void NYXRegistrationMediator::stackCloseEvent(const NYXStackCloseEvent& event)
{
  if (&event.getStack() == _stack) setStack(nullptr);
}

void NYXRegistrationMediator::stackNameEvent(const NYXStackNameEvent&)
{
  emit stateChanged();
}

void NYXRegistrationMediator::stackFileNameEvent(const NYXStackFileNameEvent&)
{
  emit stateChanged();
}

void NYXRegistrationMediator::stackRegistrationEvent(const NYXStackRegistrationEvent& event)
{
  if (&event.getStack() != _stack) return;
  _statusBar->clearMessage(); // it told of a registration before
  _automaticPanel->clearCorrelations();
  const bool isOtherSlice = _slice != nullptr && _slice->getRegistration() == _stored;
  isOtherSlice ? updateActions() : reset(); // what is edited on this slice stays
}

void NYXRegistrationMediator::stackImageCalibrationEvent(const NYXStackImageCalibrationEvent& event)
{
  if (&event.getStack() == _stack) showImages();
}

void NYXRegistrationMediator::sliceImageCalibrationEvent(const NYXSliceImageCalibrationEvent& event)
{
  if (_slice != nullptr && (&event.getSlice() == _slice || &event.getSlice() == _slice->prevSlice())) showImages();
}

void NYXRegistrationMediator::sliceNameEvent(const NYXSliceNameEvent& event)
{
  if (_stack != nullptr && event.getSlice().getStack() == _stack) showSliceNames();
}

void NYXRegistrationMediator::sliceLockEvent(const NYXSliceLockEvent& event)
{
  if (_stack != nullptr && event.getSlice().getStack() == _stack) updateActions();
}

/// Slices came, went or changed their places: the current one stays when it has one before it, with what is edited.
void NYXRegistrationMediator::processSliceAction(NYXSliceAction& action)
{
  if (_stack == nullptr || &action.getStack() != _stack || !action.changesPlaces()) return;
  const bool isThere = _slice != nullptr && _slice->getStack() == _stack && !_slice->isFirstSlice();
  if (isThere)
  {
    const Registration edited = _registration;
    showSlice();
    return setRegistration(edited);
  }
  _slice = _stack->getNumSlices() > 1 ? _stack->getSlice(1) : nullptr;
  showSlice();
}
