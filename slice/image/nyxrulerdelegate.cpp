#include "slice/image/nyxrulerdelegate.h"

#include "app/core/nyxpreferences.h"
#include "slice/image/nyximageproxy.h"
#include "slice/image/nyximagewidgetcanvas.h"
#include "slice/image/nyximagewidgetmediator.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>

#include <cmath>
#include <numbers>

NYXRulerDelegate::NYXRulerDelegate(NYXImageWidgetMediator& mediator) : NYXImageWidgetMediatorDelegate(mediator)
{
  setBlocking(true);
}

void NYXRulerDelegate::activate()
{
  if (isActive()) return;
  NYXImageWidgetMediatorDelegate::activate();
  canvas().setCursor(Qt::CrossCursor);
  canvas().setFocus();
  emit activeChanged(true);
}

void NYXRulerDelegate::deactivate()
{
  if (!isActive()) return;
  NYXImageWidgetMediatorDelegate::deactivate();
  _hasLine = _isDrawing = false;
  canvas().unsetCursor();
  canvas().update();
  emit activeChanged(false);
}

QString NYXRulerDelegate::measureText(const QPoint& from, const QPoint& to, const PixelCalibration& calibration)
{
  const double dx = (to.x() - from.x()) * static_cast<double>(calibration.getPixelWidth());
  const double dy = (from.y() - to.y()) * static_cast<double>(calibration.getPixelHeight()); // the screen's y goes down
  const double angle = std::atan2(dy, dx) * 180 / std::numbers::pi;
  return QString("%1 %2, %3°")
      .arg(std::hypot(dx, dy), 0, 'g', 6)
      .arg(QString::fromStdString(calibration.getLengthUnit().symbol()))
      .arg(angle, 0, 'f', 1);
}

QPoint NYXRulerDelegate::imagePosition(const QMouseEvent& event) const
{
  const QPoint position = canvas().convertToImagePosition(event.pos());
  const QSize size = canvas().viewport().getImageSize();
  return {std::clamp(position.x(), 0, std::max(0, size.width() - 1)),
          std::clamp(position.y(), 0, std::max(0, size.height() - 1))};
}

void NYXRulerDelegate::mousePressEvent(QMouseEvent& event)
{
  if (event.button() != Qt::LeftButton) return;
  _from = _to = imagePosition(event);
  _hasLine = _isDrawing = true;
  canvas().update();
}

void NYXRulerDelegate::mouseDoubleClickEvent(QMouseEvent& event)
{
  mousePressEvent(event); // a press soon after another one
}

void NYXRulerDelegate::mouseMoveEvent(QMouseEvent& event)
{
  if (!_isDrawing) return;
  _to = imagePosition(event);
  canvas().update();
}

void NYXRulerDelegate::mouseReleaseEvent(QMouseEvent& event)
{
  if (event.button() == Qt::LeftButton) _isDrawing = false;
}

void NYXRulerDelegate::keyPressEvent(QKeyEvent& event)
{
  if (event.key() == Qt::Key_Escape) deactivate();
}

bool NYXRulerDelegate::anyEvent(QEvent& event)
{
  if (!isActive() || event.type() != QEvent::ShortcutOverride) return false;
  if (static_cast<QKeyEvent&>(event).key() != Qt::Key_Escape) return false;
  event.accept(); // no shortcut of the windows around is meant
  return true;
}

void NYXRulerDelegate::paint(QPainter& painter)
{
  if (!_hasLine) return;
  const NYXImageViewport& viewport = canvas().viewport();
  const QPointF half(0.5, 0.5); // the centres of the pixels
  const QPointF from = viewport.mapToCanvas(_from + half);
  const QPointF to = viewport.mapToCanvas(_to + half);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(QPen(QColor(0, 0, 0, 140), 4));
  painter.drawLine(from, to);
  painter.setPen(QPen(NYXPreferences::getSelectionColor(), 2));
  painter.drawLine(from, to);
  painter.setBrush(NYXPreferences::getSelectionColor());
  for (const QPointF& end : {from, to}) painter.drawEllipse(end, 3, 3);
  paintText(painter, to);
}

void NYXRulerDelegate::paintText(QPainter& painter, const QPointF& at) const
{
  const QString text = measureText(_from, _to, canvas().getImageProxy().getPixelCalibration());
  QRectF box = painter.fontMetrics().boundingRect(text).adjusted(-6, -3, 6, 3);
  box.moveTopLeft(at + QPointF(12, 12));
  if (box.right() > canvas().width()) box.moveRight(at.x() - 12);
  if (box.bottom() > canvas().height()) box.moveBottom(at.y() - 12);
  painter.setPen(Qt::NoPen);
  painter.setBrush(QColor(0, 0, 0, 190));
  painter.drawRoundedRect(box, 3, 3);
  painter.setPen(Qt::white);
  painter.drawText(box, Qt::AlignCenter, text);
}
