#include "slice/image/nyximagewidgetmediatordelegate.h"

#include "slice/image/nyximagewidgetcanvas.h"
#include "slice/image/nyximagewidgetmediator.h"

#include <QContextMenuEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QTabletEvent>

NYXImageWidgetMediatorDelegate::NYXImageWidgetMediatorDelegate(NYXImageWidgetMediator& mediator)
  : QObject(&mediator), _mediator(mediator), _canvas(mediator.canvas())
{
  _canvas.installEventFilter(this);
  _canvas.addExtraPainter(this);
}

NYXImageWidgetMediatorDelegate::~NYXImageWidgetMediatorDelegate() = default;

void NYXImageWidgetMediatorDelegate::activate()
{
  setActive(true);
}

void NYXImageWidgetMediatorDelegate::deactivate()
{
  setActive(false);
}

bool NYXImageWidgetMediatorDelegate::eventFilter(QObject* object, QEvent* event)
{
  if (object != &_canvas) return false;
  if (anyEvent(*event)) return true;
  return isActive() && dispatch(*event) && isBlocking();
}

bool NYXImageWidgetMediatorDelegate::dispatch(QEvent& event)
{
  switch (event.type())
  {
  case QEvent::MouseButtonPress:
    mousePressEvent(static_cast<QMouseEvent&>(event));
    return true;
  case QEvent::MouseMove:
    mouseMoveEvent(static_cast<QMouseEvent&>(event));
    return true;
  case QEvent::MouseButtonRelease:
    mouseReleaseEvent(static_cast<QMouseEvent&>(event));
    return true;
  case QEvent::MouseButtonDblClick:
    mouseDoubleClickEvent(static_cast<QMouseEvent&>(event));
    return true;
  case QEvent::TabletPress:
    tabletPressEvent(static_cast<QTabletEvent&>(event));
    return true;
  case QEvent::TabletMove:
    tabletMoveEvent(static_cast<QTabletEvent&>(event));
    return true;
  case QEvent::TabletRelease:
    tabletReleaseEvent(static_cast<QTabletEvent&>(event));
    return true;
  case QEvent::KeyPress:
    keyPressEvent(static_cast<QKeyEvent&>(event));
    return true;
  case QEvent::KeyRelease:
    keyReleaseEvent(static_cast<QKeyEvent&>(event));
    return true;
  case QEvent::ContextMenu:
    contextMenuEvent(static_cast<QContextMenuEvent&>(event));
    return true;
  default:
    return false;
  }
}
