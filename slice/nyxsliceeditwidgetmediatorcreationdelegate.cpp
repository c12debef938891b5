#include "slice/nyxsliceeditwidgetmediatorcreationdelegate.h"

#include "app/core/actions/nyxitemappendpointsaction.h"
#include "app/core/actions/nyxitemcreationaction.h"
#include "app/core/nyxpreferences.h"
#include "app/core/nyxstack.h"
#include "geometry/curve.h"
#include "geometry/curveprocessing/curvedecimation.h"
#include "model/model.h"
#include "model/modelitem.h"
#include "slice/image/nyxitempainter.h"
#include "slice/image/nyxplaintext.h"
#include "slice/nyxregionbrush.h"
#include "slice/nyxsliceeditwidgetcanvas.h"
#include "slice/nyxsliceeditwidgetmediator.h"

#include <QContextMenuEvent>
#include <QKeyEvent>
#include <QMessageBox>
#include <QPainter>
#include <QPolygonF>

NYXSliceEditWidgetMediatorCreationDelegate::NYXSliceEditWidgetMediatorCreationDelegate(
    NYXSliceEditWidgetMediator& mediator)
  : NYXSliceEditWidgetMediatorDelegate(mediator)
{
  setBlocking(true);
}

NYXSliceEditWidgetMediatorCreationDelegate::~NYXSliceEditWidgetMediatorCreationDelegate() = default;

void NYXSliceEditWidgetMediatorCreationDelegate::activate(const QString& modelName)
{
  const int i = editMediator().isEditable() ? stack().findModel(modelName.toStdString()) : -1;
  if (i < 0) return;
  cancel();
  _item = std::make_unique<ModelItem>(stack().getModel(i), &slice());
  _discs.clear();
  _cursor = canvas().mapFromGlobal(QCursor::pos());
  editCanvas().setExtraItem(_item.get());
  NYXSliceEditWidgetMediatorDelegate::activate();
  canvas().setCursor(Qt::CrossCursor);
}

void NYXSliceEditWidgetMediatorCreationDelegate::deactivate()
{
  editCanvas().setExtraItem(nullptr);
  _item.reset();
  _discs.clear();
  NYXSliceEditWidgetMediatorDelegate::deactivate();
}

const Model& NYXSliceEditWidgetMediatorCreationDelegate::model() const
{
  return *_item->getModel();
}

bool NYXSliceEditWidgetMediatorCreationDelegate::worksOn(const Model& other) const
{
  return _item && &model() == &other;
}

bool NYXSliceEditWidgetMediatorCreationDelegate::isPoints() const
{
  return model().getGeometry() == MPrimitive::Polypoint;
}

QString NYXSliceEditWidgetMediatorCreationDelegate::hint() const
{
  const QString name = QString::fromStdString(model().getName());
  if (_item->isRegion())
    return tr("%1: drag to paint, [ and ] change the brush, Return to finish, Backspace to take the last disc back, "
              "Escape to cancel")
        .arg(name);
  if (isPoints())
    return tr("%1: click to add a point, Return to finish, Backspace to take one back, Escape to cancel").arg(name);
  return tr("%1: click or drag to add vertices, Return or a double click to finish, Backspace to take one back, "
            "Escape to cancel")
      .arg(name);
}

void NYXSliceEditWidgetMediatorCreationDelegate::keyPressEvent(QKeyEvent& event)
{
  switch (event.key())
  {
  case Qt::Key_Backspace:
    return removeLastVertex();
  case Qt::Key_Return:
  case Qt::Key_Enter:
    return apply();
  case Qt::Key_X:
    return addVertex(canvas().mapFromGlobal(QCursor::pos()), false);
  default:
    event.ignore();
  }
}

/// The menu of a right press would show up over the selection once the press has cancelled.
bool NYXSliceEditWidgetMediatorCreationDelegate::anyEvent(QEvent& event)
{
  if (event.type() == QEvent::MouseButtonPress) _hasPressAskedMenu = isActive();
  return event.type() == QEvent::ContextMenu && _hasPressAskedMenu &&
         static_cast<QContextMenuEvent&>(event).reason() == QContextMenuEvent::Mouse;
}

void NYXSliceEditWidgetMediatorCreationDelegate::press(const NYXPointerEvent& event)
{
  _cursor = event.position;
  if (event.button == Qt::LeftButton) addVertex(event.position, false);
  if (event.button == Qt::RightButton) cancel();
}

void NYXSliceEditWidgetMediatorCreationDelegate::doubleClick(const NYXPointerEvent& event)
{
  if (event.button != Qt::LeftButton) return;
  addVertex(event.position, false);
  apply();
}

void NYXSliceEditWidgetMediatorCreationDelegate::move(const NYXPointerEvent& event)
{
  _cursor = event.position;
  if ((event.buttons & Qt::LeftButton) && !isPoints()) addVertex(event.position, true);
  updateFeedback();
}

void NYXSliceEditWidgetMediatorCreationDelegate::addVertex(const QPoint& canvasPoint, bool isStroke)
{
  if (!isOnImage(canvasPoint))
  {
    _isInterrupted = true;
    return;
  }
  const Vector<int> point = canvas().convertToVectori(canvasPoint);
  const Vertices<int>& vertices = _item->getVertices();
  if (_item->isRegion())
    addDisc(point, isStroke);
  else if (vertices.getNumVertices() == 0 || !(vertices[vertices.getNumVertices() - 1] == point))
    _item->appendVertex(point);
  updateFeedback();
}

void NYXSliceEditWidgetMediatorCreationDelegate::addDisc(const Vector<int>& center, bool isStroke)
{
  const bool isConnected = isStroke && !_isInterrupted && !_discs.empty();
  const Vector<int> from = isConnected ? _discs.back().center : center;
  _isInterrupted = false;
  _discs.push_back({brushStroke(imageBox(), from, center, NYXPreferences::getRegionBrushSize()), center, isConnected});
  _item->addRLEItemSet(_discs.back().positions);
}

void NYXSliceEditWidgetMediatorCreationDelegate::removeLastVertex()
{
  const int numVertices = _item->isRegion() ? static_cast<int>(_discs.size()) : _item->getSize();
  if (numVertices <= 1) return cancel();
  if (_item->isRegion())
  {
    _isInterrupted = _isInterrupted || !_discs.back().isConnected;
    _discs.pop_back();
    RLEItemSet rest;
    for (const Disc& disc : _discs) rest.add(disc.positions);
    _item->setRLEItemSet(std::move(rest));
  }
  else
    _item->removeVertex(numVertices - 1);
  canvas().update();
}

QString NYXSliceEditWidgetMediatorCreationDelegate::refusal() const
{
  if (model().getGeometry() == MPrimitive::Polygon && _item->getSize() < 3)
    return "Cannot create a closed contour with less than 3 points.\n\nCreation canceled.";
  if (model().getGeometry() == MPrimitive::Polyline && _item->getSize() < 2)
    return "Cannot create an open contour with less than 2 points.\n\nCreation canceled.";
  return {};
}

void NYXSliceEditWidgetMediatorCreationDelegate::apply()
{
  if (!isActive()) return;
  const QString text = refusal();
  if (!text.isEmpty())
  {
    cancel();
    QMessageBox::warning(&editMediator().window(), "Usage error", plainText(text));
    return;
  }
  if (_item->getSize() == 0) return cancel();
  _item->setClockwise(false);
  record();
  deactivate();
}

void NYXSliceEditWidgetMediatorCreationDelegate::finish()
{
  if (isActive() && refusal().isEmpty())
    apply();
  else
    cancel();
}

bool NYXSliceEditWidgetMediatorCreationDelegate::changeModel(const QString& modelName)
{
  if (!isActive() || _item->getSize() > 0) return false;
  activate(modelName);
  return true;
}

void NYXSliceEditWidgetMediatorCreationDelegate::decimate()
{
  const Curve<int> curve(_item->getVertices(), !_item->isClosed());
  Curve<int> decimated;
  CurveDecimation<int>().apply(curve, decimated);
  if (decimated.getSize() > 2) _item->setVertices(decimated);
}

void NYXSliceEditWidgetMediatorCreationDelegate::record()
{
  editCanvas().setExtraItem(nullptr);
  const bool isCurve = model().getGeometry() == MPrimitive::Polygon || model().getGeometry() == MPrimitive::Polyline;
  ModelItem* const buddy = isCurve ? nullptr : slice().buddyItem(*_item);
  if (buddy != nullptr) return pushStep(std::make_unique<NYXItemAppendPointsAction>(*buddy, *_item));
  if (isCurve && NYXPreferences::autoDecimationEnabled()) decimate();
  pushStep(std::make_unique<NYXItemCreationAction>(std::move(_item)));
}

void NYXSliceEditWidgetMediatorCreationDelegate::paintFeedback(QPainter& painter)
{
  if (!_item) return;
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(QPen(NYXPreferences::getSelectionColor(), 1));
  if (_item->isRegion())
  {
    const NYXImageViewport& viewport = canvas().viewport();
    const double radius = NYXPreferences::getRegionBrushSize() + 0.5;
    painter.drawEllipse(QPointF(_cursor), radius * viewport.scaleX(), radius * viewport.scaleY());
    return;
  }
  const Vertices<int>& vertices = _item->getVertices();
  if (isPoints() || vertices.getNumVertices() == 0) return;
  painter.drawLine(canvasCenter(vertices.data(vertices.getNumVertices() - 1)), _cursor);
  if (!_item->isClosed()) return;
  painter.setPen(QPen(NYXPreferences::getSelectionColor(), 1, Qt::DashLine));
  painter.drawLine(QPointF(_cursor), canvasCenter(vertices.data()));
}

/// Around what is drawn from the cursor, and what the item's newest vertex has changed.
QRect NYXSliceEditWidgetMediatorCreationDelegate::feedbackRect() const
{
  if (!_item) return {};
  const NYXImageViewport& viewport = canvas().viewport();
  const double brush = _item->isRegion() ? NYXPreferences::getRegionBrushSize() + 1.5 : 1;
  const double margin = modelItemMargin(*_item) + 2;
  const double dx = brush * viewport.scaleX() + margin, dy = brush * viewport.scaleY() + margin;
  QPolygonF points;
  points << _cursor;
  const Vertices<int>& vertices = _item->getVertices();
  const int last = vertices.getNumVertices() - 1;
  if (last >= 0) points << canvasCenter(vertices.data(0)) << canvasCenter(vertices.data(last));
  return points.boundingRect().adjusted(-dx, -dy, dx, dy).toAlignedRect();
}
