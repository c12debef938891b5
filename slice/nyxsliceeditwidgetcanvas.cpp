#include "slice/nyxsliceeditwidgetcanvas.h"

#include "slice/image/nyxitempainter.h"

#include <QPainter>

NYXSliceEditWidgetCanvas::NYXSliceEditWidgetCanvas(QWidget* parent) : NYXSliceWidgetCanvas(parent)
{
  setObjectName("sliceEditCanvas");
}

void NYXSliceEditWidgetCanvas::setExtraItem(const ModelItem* item)
{
  _extraItem = item;
  update();
}

void NYXSliceEditWidgetCanvas::paintForeground(QPainter& painter)
{
  NYXSliceWidgetCanvas::paintForeground(painter);
  if (_extraItem == nullptr || getCanvasMode() == CanvasMode::Background) return;
  painter.save();
  painter.setRenderHint(QPainter::Antialiasing);
  const NYXImageViewport& view = viewport();
  const double dx = (0.5 - view.getViewOrigin().x()) * view.scaleX();
  const double dy = (0.5 - view.getViewOrigin().y()) * view.scaleY();
  const QTransform toCanvas(view.scaleX(), 0, 0, view.scaleY(), dx, dy);
  drawModelItem(painter, *_extraItem, toCanvas, rect(), NYXItemDetail::Full);
  painter.restore();
}
