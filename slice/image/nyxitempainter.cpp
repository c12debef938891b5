#include "slice/image/nyxitempainter.h"

#include "app/core/nyxpreferences.h"
#include "model/model.h"
#include "model/modelitem.h"

#include <QPainter>
#include <QPolygonF>
#include <QTransform>

#include <cmath>

namespace
{
constexpr double haloWidth = 2;     // of the halo beyond the line, both sides together
constexpr double highlight = 1.5;   // by which selected lines are wider
constexpr double vertexSpacing = 1; // closer vertices are drawn as one, in pixels of the screen

/// The item's properties, completed by its model's and by the defaults.
ModelItemProperties effectiveProperties(const ModelItem& item)
{
  ModelItemProperties properties;
  properties.setDefaults();
  if (item.getModel() != nullptr) properties.update(item.getModel()->getItemProperties());
  properties.update(item.getProperties());
  return properties;
}

QColor toQColor(const ModelItemProperties& properties)
{
  const auto color = properties.getColor();
  return QColor(color[0], color[1], color[2]);
}

bool isHighlighted(const ModelItem& item)
{
  return NYXPreferences::getHighlightSelectedItems() && !item.getSelection().isEmpty();
}

double lineWidth(const ModelItem& item, const ModelItemProperties& properties)
{
  return std::max(1.5, static_cast<double>(properties.getLineWidth())) + (isHighlighted(item) ? highlight : 0);
}

double pointRadius(const ModelItemProperties& properties)
{
  return 2.5 + static_cast<double>(properties.getPointSize()) / 2;
}

bool areApart(const QPointF& a, const QPointF& b)
{
  return std::abs(a.x() - b.x()) >= vertexSpacing || std::abs(a.y() - b.y()) >= vertexSpacing;
}

/// The item's vertices on the canvas, without those that nobody could tell from the one before; the last one stays.
QPolygonF visibleVertices(const ModelItem& item, const QTransform& toCanvas)
{
  const Vertices<int>& vertices = item.getVertices();
  const int count = vertices.getNumVertices();
  QPolygonF polygon;
  if (count == 0) return polygon;
  const int* position = vertices.data();
  for (int i = 0; i < count; ++i, position += 2)
  {
    const QPointF point = toCanvas.map(QPointF(position[0], position[1]));
    if (i == 0 || i == count - 1 || areApart(point, polygon.constLast())) polygon << point;
  }
  return polygon;
}

void strokeCurve(QPainter& painter, const QPolygonF& vertices, bool isClosed)
{
  isClosed ? painter.drawPolygon(vertices) : painter.drawPolyline(vertices);
}

void drawCurve(QPainter& painter, const ModelItem& item, const QTransform& toCanvas, NYXItemDetail detail)
{
  const ModelItemProperties properties = effectiveProperties(item);
  const QPolygonF vertices = visibleVertices(item, toCanvas);
  painter.setBrush(Qt::NoBrush);
  if (detail == NYXItemDetail::Thin)
  {
    painter.setPen(QPen(toQColor(properties), 1));
    return strokeCurve(painter, vertices, item.isClosed());
  }
  const double width = lineWidth(item, properties);
  painter.setPen(QPen(QColor(0, 0, 0, 110), width + haloWidth, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
  strokeCurve(painter, vertices, item.isClosed());
  painter.setPen(QPen(toQColor(properties), width, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
  strokeCurve(painter, vertices, item.isClosed());
}

void drawPoints(QPainter& painter, const ModelItem& item, const QTransform& toCanvas, NYXItemDetail detail)
{
  const ModelItemProperties properties = effectiveProperties(item);
  const QColor color = toQColor(properties);
  const double radius = pointRadius(properties);
  const Vertices<int>& vertices = item.getVertices();
  painter.setPen(QPen(QColor(0, 0, 0, 160), 1));
  painter.setBrush(color);
  const int* position = vertices.data();
  for (int i = 0; i < vertices.getNumVertices(); ++i, position += 2)
  {
    const QPointF point = toCanvas.map(QPointF(position[0], position[1]));
    const bool isSelected = isHighlighted(item) && item.getSelection().isSelected(i);
    const double r = radius + (isSelected ? highlight : 0);
    if (detail == NYXItemDetail::Full)
      painter.drawEllipse(point, r, r);
    else
      painter.fillRect(QRectF(point.x() - r, point.y() - r, 2 * r, 2 * r), color);
  }
}

void drawRegion(QPainter& painter, const ModelItem& item, const QTransform& toCanvas)
{
  QColor color = toQColor(effectiveProperties(item));
  color.setAlpha(isHighlighted(item) ? 160 : 110);
  painter.save();
  painter.setRenderHint(QPainter::Antialiasing, false);
  for (const RLEItem& run : item.getRLEItemSet().getItems())
  {
    const QRectF pixels(run.getOriginX() - 0.5, run.begin() - 0.5, 1, run.getLength());
    painter.fillRect(toCanvas.mapRect(pixels), color);
  }
  painter.restore();
}
} // namespace

void drawModelItem(QPainter& painter, const ModelItem& item, const QTransform& toCanvas, NYXItemDetail detail)
{
  if (item.getModel() == nullptr) return;
  switch (item.getModel()->getGeometry())
  {
  case MPrimitive::Polypoint:
    return drawPoints(painter, item, toCanvas, detail);
  case MPrimitive::Region:
    return drawRegion(painter, item, toCanvas);
  default:
    return drawCurve(painter, item, toCanvas, detail);
  }
}

double modelItemMargin(const ModelItem& item)
{
  const ModelItemProperties properties = effectiveProperties(item);
  return std::max(lineWidth(item, properties) + haloWidth, 2 * pointRadius(properties) + highlight) / 2 + 2;
}
