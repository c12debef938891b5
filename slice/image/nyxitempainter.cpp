#include "slice/image/nyxitempainter.h"

#include "app/core/nyxpreferences.h"
#include "model/model.h"
#include "model/modelitem.h"

#include <QPainter>
#include <QPainterPath>
#include <QPolygonF>
#include <QTransform>

#include <cmath>

namespace
{
constexpr double haloWidth = 2;            // of the halo beyond the line, both sides together
constexpr double highlight = 1.5;          // by which selected lines are wider
constexpr double vertexSpacing = 1 - 1e-6; // of the screen; closer vertices are drawn as one, wherever they are
constexpr double thinSpacing = 2;          // the same for thin lines

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

bool areApart(const QPointF& a, const QPointF& b, double spacing)
{
  return std::abs(a.x() - b.x()) >= spacing || std::abs(a.y() - b.y()) >= spacing;
}

/// The item's vertices on the canvas, without those that nobody could tell from the one before; the first one again at
/// the end when the curve is closed.
QPolygonF reducedVertices(const ModelItem& item, const QTransform& toCanvas, double spacing)
{
  const Vertices<int>& vertices = item.getVertices();
  const int count = vertices.getNumVertices();
  QPolygonF polygon;
  if (count == 0) return polygon;
  const int* position = vertices.data();
  for (int i = 0; i < count; ++i, position += 2)
  {
    const QPointF point = toCanvas.map(QPointF(position[0], position[1]));
    if (i == 0 || i == count - 1 || areApart(point, polygon.constLast(), spacing)) polygon << point;
  }
  if (item.isClosed()) polygon << polygon.constFirst();
  return polygon;
}

/// Whether a segment's box reaches into a rectangle.
bool isNear(const QPointF& a, const QPointF& b, const QRectF& rect)
{
  return std::max(a.x(), b.x()) >= rect.left() && std::min(a.x(), b.x()) <= rect.right() &&
         std::max(a.y(), b.y()) >= rect.top() && std::min(a.y(), b.y()) <= rect.bottom();
}

/// The runs of segments that reach into a rectangle, in one path: where they come close, their halos do not add up. A
/// closed curve is cut where it is not seen, so that it is joined at its first vertex as anywhere else.
QPainterPath visiblePath(const QPolygonF& vertices, bool isClosed, const QRectF& rect)
{
  const int numSegments = vertices.size() - 1;
  const auto isSeen = [&](int i) { return isNear(vertices[i], vertices[i + 1], rect); };
  int cut = 0;
  while (isClosed && cut < numSegments && isSeen(cut)) ++cut;
  QPainterPath path;
  bool isDown = false;
  for (int k = 0; k < numSegments; ++k)
  {
    const int i = (cut + k) % numSegments;
    const bool wasDown = isDown;
    isDown = isSeen(i);
    if (isDown && !wasDown) path.moveTo(vertices[i]);
    if (isDown) path.lineTo(vertices[i + 1]);
  }
  if (isClosed && cut == numSegments) path.closeSubpath();
  return path;
}

void strokeCurve(QPainter& painter, const QPolygonF& vertices, bool isClosed, const QRectF& visible)
{
  if (!visible.contains(vertices.boundingRect()))
    painter.drawPath(visiblePath(vertices, isClosed, visible));
  else if (isClosed)
    painter.drawPolygon(vertices.constData(), vertices.size() - 1);
  else
    painter.drawPolyline(vertices);
}

void drawCurve(QPainter& painter, const ModelItem& item, const QTransform& toCanvas, const QRectF& visible,
               NYXItemDetail detail)
{
  const ModelItemProperties properties = effectiveProperties(item);
  const bool isThin = detail == NYXItemDetail::Thin;
  const QPolygonF vertices = reducedVertices(item, toCanvas, isThin ? thinSpacing : vertexSpacing);
  const double width = lineWidth(item, properties);
  const double margin = width + haloWidth;
  const QRectF reach = visible.adjusted(-margin, -margin, margin, margin);
  painter.setBrush(Qt::NoBrush);
  if (isThin)
  {
    painter.setPen(QPen(toQColor(properties), 1));
    return strokeCurve(painter, vertices, item.isClosed(), reach);
  }
  const QColor halo = isHighlighted(item) ? NYXPreferences::getSelectionColor() : QColor(0, 0, 0, 110);
  painter.setPen(QPen(halo, width + haloWidth, Qt::SolidLine, Qt::FlatCap, Qt::BevelJoin));
  strokeCurve(painter, vertices, item.isClosed(), reach);
  painter.setPen(QPen(toQColor(properties), width, Qt::SolidLine, Qt::FlatCap, Qt::BevelJoin));
  strokeCurve(painter, vertices, item.isClosed(), reach);
}

void drawPoints(QPainter& painter, const ModelItem& item, const QTransform& toCanvas, const QRectF& visible,
                NYXItemDetail detail)
{
  const ModelItemProperties properties = effectiveProperties(item);
  const QColor color = toQColor(properties);
  const double radius = pointRadius(properties);
  const double margin = radius + highlight + 1;
  const QRectF reach = visible.adjusted(-margin, -margin, margin, margin);
  const Vertices<int>& vertices = item.getVertices();
  const QPen edge(QColor(0, 0, 0, 160), 1);
  const QPen selectedEdge(NYXPreferences::getSelectionColor(), 2);
  painter.setBrush(color);
  const int* position = vertices.data();
  for (int i = 0; i < vertices.getNumVertices(); ++i, position += 2)
  {
    const QPointF point = toCanvas.map(QPointF(position[0], position[1]));
    if (!reach.contains(point)) continue;
    const bool isSelected = isHighlighted(item) && item.getSelection().isSelected(i);
    const double r = radius + (isSelected ? highlight : 0);
    painter.setPen(isSelected ? selectedEdge : edge);
    if (detail == NYXItemDetail::Full)
      painter.drawEllipse(point, r, r);
    else
      painter.fillRect(QRectF(point.x() - r, point.y() - r, 2 * r, 2 * r), color);
  }
}

void fillRegion(QPainter& painter, const ModelItem& item, const QTransform& toCanvas, const QRectF& visible,
                const QColor& color)
{
  painter.save();
  painter.setRenderHint(QPainter::Antialiasing, false);
  for (const RLEItem& run : item.getRLEItemSet().getItems())
  {
    const QRectF pixels(run.getOriginX() - 0.5, run.begin() - 0.5, 1, run.getLength());
    const QRectF rect = toCanvas.mapRect(pixels);
    if (rect.intersects(visible)) painter.fillRect(rect, color);
  }
  painter.restore();
}

void drawRegion(QPainter& painter, const ModelItem& item, const QTransform& toCanvas, const QRectF& visible)
{
  QColor color = toQColor(effectiveProperties(item));
  color.setAlpha(isHighlighted(item) ? 160 : 110);
  fillRegion(painter, item, toCanvas, visible, color);
}
} // namespace

void drawModelItem(QPainter& painter, const ModelItem& item, const QTransform& toCanvas, const QRectF& visible,
                   NYXItemDetail detail)
{
  if (item.getModel() == nullptr) return;
  switch (item.getModel()->getGeometry())
  {
  case MPrimitive::Polypoint:
    return drawPoints(painter, item, toCanvas, visible, detail);
  case MPrimitive::Region:
    return drawRegion(painter, item, toCanvas, visible);
  default:
    return drawCurve(painter, item, toCanvas, visible, detail);
  }
}

void highlightModelItem(QPainter& painter, const ModelItem& item, const QTransform& toCanvas, const QRectF& visible,
                        const QColor& color)
{
  if (item.getModel() == nullptr || item.getModel()->getGeometry() == MPrimitive::Polypoint) return;
  if (item.isRegion())
    return fillRegion(painter, item, toCanvas, visible, QColor(color.red(), color.green(), color.blue(), 90));
  const double width = lineWidth(item, effectiveProperties(item)) + highlight;
  painter.setBrush(Qt::NoBrush);
  painter.setPen(QPen(color, width, Qt::SolidLine, Qt::FlatCap, Qt::BevelJoin));
  strokeCurve(painter, reducedVertices(item, toCanvas, vertexSpacing), item.isClosed(),
              visible.adjusted(-width, -width, width, width));
}

double modelItemMargin(const ModelItem& item)
{
  const ModelItemProperties properties = effectiveProperties(item);
  return std::max(lineWidth(item, properties) + haloWidth, 2 * pointRadius(properties) + highlight) / 2 + 2;
}
