#include "slice/nyxsliceeditwidgetcanvas.h"

#include "slice/image/nyxitempainter.h"

#include <QPainter>

namespace
{
constexpr double faintOpacity = 0.45;
}

NYXSliceEditWidgetCanvas::NYXSliceEditWidgetCanvas(QWidget* parent) : NYXSliceWidgetCanvas(parent)
{
  setObjectName("sliceEditCanvas");
}

void NYXSliceEditWidgetCanvas::setExtraItem(const ModelItem* item)
{
  _extraItem = item;
  update();
}

void NYXSliceEditWidgetCanvas::setFaintItems(const StackSlice* items)
{
  if (items == _faintItems && items == nullptr) return;
  _faintItems = items;
  _faintLayer.setSlice(items);
  update();
}

void NYXSliceEditWidgetCanvas::paintForeground(QPainter& painter)
{
  if (_faintItems != nullptr && getCanvasMode() != CanvasMode::Background)
  {
    painter.setOpacity(faintOpacity);
    painter.drawImage(QRectF(rect()), _faintLayer.update(viewport(), devicePixelRatioF()));
    painter.setOpacity(1);
  }
  NYXSliceWidgetCanvas::paintForeground(painter);
  if (_extraItem == nullptr || getCanvasMode() == CanvasMode::Background) return;
  painter.save();
  painter.setRenderHint(QPainter::Antialiasing);
  drawModelItem(painter, *_extraItem, itemsToCanvas(), painter.clipBoundingRect(), NYXItemDetail::Full);
  painter.restore();
}

void NYXSliceEditWidgetCanvas::highlight(QPainter& painter, const ModelItem& item, const QColor& color) const
{
  if (getCanvasMode() == CanvasMode::Background) return;
  painter.save();
  painter.setRenderHint(QPainter::Antialiasing);
  highlightModelItem(painter, item, itemsToCanvas(), painter.clipBoundingRect(), color);
  painter.restore();
}
