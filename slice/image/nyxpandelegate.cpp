#include "slice/image/nyxpandelegate.h"

#include "slice/image/nyximagewidgetcanvas.h"
#include "slice/image/nyximagewidgetmediator.h"

#include <QApplication>
#include <QCursor>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QTabletEvent>

#include <cmath>

namespace
{
constexpr int notch = 120; // of the wheel, in eighths of a degree
}

NYXPanDelegate::NYXPanDelegate(NYXImageWidgetMediator& mediator) : NYXImageWidgetMediatorDelegate(mediator)
{
  setBlocking(true);
}

NYXPanDelegate::~NYXPanDelegate()
{
  if (isActive()) QApplication::restoreOverrideCursor();
  if (_isHandDown) QApplication::restoreOverrideCursor();
}

void NYXPanDelegate::activate()
{
  if (isActive()) return;
  QApplication::setOverrideCursor(Qt::OpenHandCursor);
  _lastPosition = canvas().mapFromGlobal(QCursor::pos());
  NYXImageWidgetMediatorDelegate::activate();
}

void NYXPanDelegate::deactivate()
{
  if (!isActive()) return;
  QApplication::restoreOverrideCursor();
  NYXImageWidgetMediatorDelegate::deactivate();
}

bool NYXPanDelegate::anyEvent(QEvent& event)
{
  switch (event.type())
  {
  case QEvent::KeyPress:
    return spaceEvent(static_cast<QKeyEvent&>(event), true);
  case QEvent::KeyRelease:
    return spaceEvent(static_cast<QKeyEvent&>(event), false);
  case QEvent::MouseButtonPress:
  case QEvent::MouseButtonDblClick: // a press soon after another one
  case QEvent::MouseMove:
  case QEvent::MouseButtonRelease:
    return handEvent(static_cast<QMouseEvent&>(event));
  case QEvent::Wheel:
    return wheelEvent(static_cast<QWheelEvent&>(event));
  case QEvent::FocusOut:
    deactivate(); // the release of Space goes elsewhere
    endHand();
    return false;
  default:
    return false;
  }
}

bool NYXPanDelegate::spaceEvent(const QKeyEvent& event, bool isPress)
{
  if (event.key() != Qt::Key_Space) return false;
  if (event.isAutoRepeat()) return isActive();
  if (isPress && isActive()) return true;
  if (isPress && canvas().isBestFitMode()) return false;
  if (!isPress && !isActive()) return false;
  isPress ? activate() : deactivate();
  return true;
}

bool NYXPanDelegate::handEvent(const QMouseEvent& event)
{
  const bool isMove = event.type() == QEvent::MouseMove;
  if (isMove ? !_isHandDown : event.button() != Qt::MiddleButton) return false;
  if (isMove)
    dragHand(event.pos());
  else if (event.type() == QEvent::MouseButtonRelease)
    endHand();
  else
    startHand(event.pos());
  return true;
}

void NYXPanDelegate::startHand(const QPoint& position)
{
  if (_isHandDown) return;
  QApplication::setOverrideCursor(Qt::ClosedHandCursor);
  _isHandDown = true;
  _handPosition = position;
  _handOrigin = canvas().getViewOrigin();
}

void NYXPanDelegate::dragHand(const QPoint& position)
{
  const NYXImageViewport& viewport = canvas().viewport();
  const QPoint moved = position - _handPosition;
  mediator().moveView(_handOrigin - QPoint(static_cast<int>(std::lround(moved.x() / viewport.scaleX())),
                                           static_cast<int>(std::lround(moved.y() / viewport.scaleY()))));
}

void NYXPanDelegate::endHand()
{
  if (!_isHandDown) return;
  _isHandDown = false;
  QApplication::restoreOverrideCursor();
}

bool NYXPanDelegate::wheelEvent(QWheelEvent& event)
{
  _wheelAngle += event.angleDelta().y();
  for (; _wheelAngle >= notch; _wheelAngle -= notch) mediator().zoomAt(event.position().toPoint(), true);
  for (; _wheelAngle <= -notch; _wheelAngle += notch) mediator().zoomAt(event.position().toPoint(), false);
  event.accept();
  return true;
}

void NYXPanDelegate::mousePressEvent(QMouseEvent& event)
{
  if (event.button() == Qt::LeftButton) _lastPosition = event.localPos();
}

void NYXPanDelegate::mouseDoubleClickEvent(QMouseEvent& event)
{
  mousePressEvent(event);
}

void NYXPanDelegate::mouseMoveEvent(QMouseEvent& event)
{
  if (event.buttons() & Qt::LeftButton) slide(event.localPos());
}

void NYXPanDelegate::tabletPressEvent(QTabletEvent& event)
{
  _lastPosition = event.posF();
  event.accept();
}

void NYXPanDelegate::tabletMoveEvent(QTabletEvent& event)
{
  if (event.buttons() & Qt::LeftButton) slide(event.posF());
  event.accept();
}

void NYXPanDelegate::slide(const QPointF& position)
{
  const QPoint moved = position.toPoint() - _lastPosition.toPoint();
  _lastPosition = position;
  mediator().moveView(canvas().getViewOrigin() + moved);
}
