#include "slice/nyxsliceeditwidgetmediatordelegate.h"

#include "app/core/nyxaction.h"
#include "app/core/nyxpreferences.h"
#include "app/core/nyxstack.h"
#include "model/modelitem.h"
#include "model/stackslice.h"
#include "slice/image/nyximageproxy.h"
#include "slice/nyxsliceeditwidgetcanvas.h"
#include "slice/nyxsliceeditwidgetmediator.h"

#include <QApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QTabletEvent>

#include <algorithm>

namespace
{
template <class Event> NYXPointerEvent pointerEvent(const Event& event)
{
  return {event.pos(), event.button(), event.buttons(), event.modifiers()};
}
} // namespace

NYXSliceEditWidgetMediatorDelegate::NYXSliceEditWidgetMediatorDelegate(NYXSliceEditWidgetMediator& mediator)
  : NYXImageWidgetMediatorDelegate(mediator)
{
}

NYXSliceEditWidgetMediator& NYXSliceEditWidgetMediatorDelegate::editMediator() const
{
  return static_cast<NYXSliceEditWidgetMediator&>(mediator());
}

NYXSliceEditWidgetCanvas& NYXSliceEditWidgetMediatorDelegate::editCanvas() const
{
  return static_cast<NYXSliceEditWidgetCanvas&>(canvas());
}

StackSlice& NYXSliceEditWidgetMediatorDelegate::slice() const
{
  return editCanvas().getSlice();
}

NYXStack& NYXSliceEditWidgetMediatorDelegate::stack() const
{
  return editMediator().stack();
}

void NYXSliceEditWidgetMediatorDelegate::activate()
{
  if (isActive()) return;
  editMediator().setActiveTool(this);
  NYXImageWidgetMediatorDelegate::activate();
  canvas().setFocus();
  showMode();
}

void NYXSliceEditWidgetMediatorDelegate::deactivate()
{
  if (!isActive()) return;
  NYXImageWidgetMediatorDelegate::deactivate();
  canvas().unsetCursor();
  canvas().update();
  if (editMediator().activeTool() == this) editMediator().setActiveTool(nullptr);
}

void NYXSliceEditWidgetMediatorDelegate::cancel()
{
  deactivate();
}

void NYXSliceEditWidgetMediatorDelegate::showMode()
{
  editMediator().showEditMode(editMode(), hint());
}

BoundingBox<int> NYXSliceEditWidgetMediatorDelegate::imageBox() const
{
  const QSize size = canvas().viewport().getImageSize();
  Vector<int> minimum(2), maximum(2);
  minimum.setZeros();
  maximum[0] = std::max(0, size.width() - 1);
  maximum[1] = std::max(0, size.height() - 1);
  return BoundingBox<int>(minimum, maximum);
}

bool NYXSliceEditWidgetMediatorDelegate::isOnImage(const QPoint& canvasPoint) const
{
  return canvasPoint.x() >= 0 && canvasPoint.y() >= 0 && imageBox().contains(canvas().convertToVectori(canvasPoint));
}

Vector<int> NYXSliceEditWidgetMediatorDelegate::pointOnImage(const QPoint& canvasPoint) const
{
  const BoundingBox<int> box = imageBox();
  Vector<int> point = canvas().convertToVectori(canvasPoint);
  for (int k = 0; k < 2; ++k) point[k] = std::clamp(point[k], box.getMinimum()[k], box.getMaximum()[k]);
  return point;
}

QPointF NYXSliceEditWidgetMediatorDelegate::canvasCenter(const int* position) const
{
  return canvas().viewport().mapToCanvas(QPointF(position[0] + 0.5, position[1] + 0.5));
}

void NYXSliceEditWidgetMediatorDelegate::updateFeedback()
{
  editCanvas().updatePart(_painted);
  editCanvas().updatePart(feedbackRect());
  _painted = QRect();
}

void NYXSliceEditWidgetMediatorDelegate::paint(QPainter& painter)
{
  if (!isActive()) return;
  _painted |= feedbackRect();
  paintFeedback(painter);
}

QRect NYXSliceEditWidgetMediatorDelegate::feedbackRect() const
{
  return canvas().rect();
}

QString NYXSliceEditWidgetMediatorDelegate::missingImageText() const
{
  const NYXImageProxy& proxy = canvas().getImageProxy();
  if (editCanvas().getCanvasMode() == CanvasMode::Foreground)
    return tr("Only items are displayed: choose \"Display images and items\" first.");
  if (proxy.getImageSource() != nullptr && proxy.hasImageServer() && proxy.problem().isEmpty())
    return tr("The image of this slice is still being loaded: try again in a moment.");
  return tr("The image of this slice is not there.");
}

void NYXSliceEditWidgetMediatorDelegate::placeBeside(const ModelItem& item, QWidget& window) const
{
  constexpr int distance = 10; // from the canvas's border
  window.adjustSize();
  const BoundingBox<int> box = item.boundingBox();
  const bool isAtLeft =
      !box.isEmpty() &&
      canvasCenter(box.getMinimum().data()).x() + canvasCenter(box.getMaximum().data()).x() < canvas().width();
  const int x = isAtLeft ? canvas().width() - window.frameGeometry().width() - distance : distance;
  window.move(canvas().mapToGlobal(QPoint(x, distance)));
}

int NYXSliceEditWidgetMediatorDelegate::pickTolerance(const ModelItem& item) const
{
  const int nearest = item.isRegion() ? NYXPreferences::getRegionBrushSize() : NYXPreferences::getClickTolerance();
  return nearest + static_cast<int>(1 / canvas().getZoomFactor());
}

void NYXSliceEditWidgetMediatorDelegate::pushStep(std::unique_ptr<NYXAction> action)
{
  editMediator().pushStep(std::move(action));
}

void NYXSliceEditWidgetMediatorDelegate::mousePressEvent(QMouseEvent& event)
{
  press(pointerEvent(event));
}

void NYXSliceEditWidgetMediatorDelegate::mouseMoveEvent(QMouseEvent& event)
{
  move(pointerEvent(event));
}

void NYXSliceEditWidgetMediatorDelegate::mouseReleaseEvent(QMouseEvent& event)
{
  if (event.button() == Qt::LeftButton) release();
}

void NYXSliceEditWidgetMediatorDelegate::mouseDoubleClickEvent(QMouseEvent& event)
{
  doubleClick(pointerEvent(event));
}

/// The pen sends no double clicks: two taps at one place, one soon after the other, are one.
bool NYXSliceEditWidgetMediatorDelegate::isSecondTap(const QTabletEvent& event)
{
  const bool isSecond = event.button() == Qt::LeftButton && _sinceTap.isValid() &&
                        _sinceTap.elapsed() < QApplication::doubleClickInterval() &&
                        (event.pos() - _tap).manhattanLength() < QApplication::startDragDistance();
  _tap = event.pos();
  if (isSecond)
    _sinceTap.invalidate();
  else
    _sinceTap.start();
  return isSecond;
}

void NYXSliceEditWidgetMediatorDelegate::tabletPressEvent(QTabletEvent& event)
{
  event.accept(); // or the mouse would be said to have done the same
  isSecondTap(event) ? doubleClick(pointerEvent(event)) : press(pointerEvent(event));
}

void NYXSliceEditWidgetMediatorDelegate::tabletMoveEvent(QTabletEvent& event)
{
  event.accept();
  move(pointerEvent(event));
}

void NYXSliceEditWidgetMediatorDelegate::tabletReleaseEvent(QTabletEvent& event)
{
  event.accept();
  release();
}

void NYXSliceEditWidgetMediatorDelegate::keyPressEvent(QKeyEvent& event)
{
  event.ignore();
}

void NYXSliceEditWidgetMediatorDelegate::keyReleaseEvent(QKeyEvent& event)
{
  event.ignore();
}
