#include "slice/image/nyxsliceview.h"

#include "app/core/nyxpreferences.h"
#include "image/image.h"
#include "model/model.h"
#include "model/modelitem.h"
#include "model/stackslice.h"
#include "slice/image/qimageconversion.h"

#include <QPainter>
#include <QPainterPath>

namespace
{
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

/// Vertices name pixels; they are drawn at the pixels' centres.
QPointF center(const Vertices<int>& vertices, int i)
{
  return QPointF(vertices[i][0] + 0.5, vertices[i][1] + 0.5);
}

QPainterPath curvePath(const ModelItem& item, const QTransform& toWidget)
{
  const Vertices<int>& vertices = item.getVertices();
  QPainterPath path;
  for (int i = 0; i < vertices.getNumVertices(); ++i)
  {
    const QPointF point = toWidget.map(center(vertices, i));
    i == 0 ? path.moveTo(point) : path.lineTo(point);
  }
  if (item.isClosed()) path.closeSubpath();
  return path;
}

void drawCurve(QPainter& painter, const ModelItem& item, const QTransform& toWidget)
{
  const ModelItemProperties properties = effectiveProperties(item);
  const QPainterPath path = curvePath(item, toWidget);
  const double width = std::max(1.5, static_cast<double>(properties.getLineWidth()));
  painter.setBrush(Qt::NoBrush);
  painter.setPen(QPen(QColor(0, 0, 0, 110), width + 2)); // a halo keeps the line visible on bright tissue
  painter.drawPath(path);
  painter.setPen(QPen(toQColor(properties), width));
  painter.drawPath(path);
}

void drawPoints(QPainter& painter, const ModelItem& item, const QTransform& toWidget)
{
  const ModelItemProperties properties = effectiveProperties(item);
  const double radius = 2.5 + properties.getPointSize() / 2;
  painter.setPen(QPen(QColor(0, 0, 0, 160), 1));
  painter.setBrush(toQColor(properties));
  const Vertices<int>& vertices = item.getVertices();
  for (int i = 0; i < vertices.getNumVertices(); ++i)
    painter.drawEllipse(toWidget.map(center(vertices, i)), radius, radius);
}

void drawRegion(QPainter& painter, const ModelItem& item, const QTransform& toWidget)
{
  QColor color = toQColor(effectiveProperties(item));
  color.setAlpha(110);
  painter.save();
  painter.setRenderHint(QPainter::Antialiasing, false);
  for (const RLEItem& run : item.getRLEItemSet().getItems())
  {
    const QRectF pixels(run.getOriginX(), run.begin(), 1, run.getLength());
    painter.fillRect(toWidget.mapRect(pixels), color);
  }
  painter.restore();
}
} // namespace

NYXSliceView::NYXSliceView(QWidget* parent) : QWidget(parent)
{
  setObjectName("sliceView");
  setAttribute(Qt::WA_OpaquePaintEvent);
}

void NYXSliceView::setSlice(const StackSlice* slice)
{
  _slice = slice;
  _image = QImage();
  _scaled = QPixmap();
  _problem.clear();
  _sourceSize = _correctedSize = QSize();
  if (slice != nullptr) loadImage();
  update();
}

void NYXSliceView::loadImage()
{
  try
  {
    _sourceSize = QSize(_slice->getImageSource()->getSize2(), _slice->getImageSource()->getSize1());
    _correctedSize = QSize(_slice->width(), _slice->height());
    Image image;
    _slice->load(image);
    _image = toQImage(image);
  }
  catch (const FileError& error)
  {
    const std::string file = error.getFilename().empty() ? "" : error.getFilename() + "\n";
    _problem = QString::fromStdString(file + error.getWhat());
  }
  catch (const Exception& error)
  {
    _problem = QString::fromStdString(error.getWhat());
  }
}

QRectF NYXSliceView::imageRect() const
{
  const QSizeF size = QSizeF(_correctedSize).scaled(QSizeF(rect().size()), Qt::KeepAspectRatio);
  return QRectF(QPointF((width() - size.width()) / 2, (height() - size.height()) / 2), size);
}

void NYXSliceView::paintEvent(QPaintEvent*)
{
  QPainter painter(this);
  painter.fillRect(rect(), NYXPreferences::getImageCanvasBackgroundColor());
  if (_slice == nullptr) return;
  const QRect target = imageRect().toAlignedRect();
  if (!_image.isNull())
  {
    const QSize pixels = target.size() * devicePixelRatioF();
    if (_scaled.size() != pixels)
      _scaled = QPixmap::fromImage(_image.scaled(pixels, Qt::IgnoreAspectRatio, Qt::SmoothTransformation));
    painter.drawPixmap(target, _scaled);
  }
  painter.setRenderHint(QPainter::Antialiasing);
  if (!_sourceSize.isEmpty()) drawItems(painter);
  if (!_problem.isEmpty()) drawProblem(painter);
}

void NYXSliceView::drawProblem(QPainter& painter) const
{
  painter.setPen(Qt::white);
  painter.drawText(rect().adjusted(20, 20, -20, -20), Qt::AlignCenter | Qt::TextWordWrap,
                   tr("The image of this slice cannot be shown.") + "\n" + _problem);
}

void NYXSliceView::drawItems(QPainter& painter) const
{
  const QRectF target = imageRect();
  const QTransform toWidget = QTransform::fromTranslate(target.x(), target.y())
                                  .scale(target.width() / _sourceSize.width(), target.height() / _sourceSize.height());
  for (int i = 0; i < _slice->getNumItems(); ++i)
  {
    const ModelItem& item = *_slice->getItem(i);
    if (item.getModel() == nullptr) continue;
    switch (item.getModel()->getGeometry())
    {
    case MPrimitive::Polypoint:
      drawPoints(painter, item, toWidget);
      break;
    case MPrimitive::Region:
      drawRegion(painter, item, toWidget);
      break;
    default:
      drawCurve(painter, item, toWidget);
    }
  }
}
