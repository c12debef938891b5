#include "slice/nyxsliceeditwidgetmediatoreditiondelegate.h"

#include "app/core/actions/nyxinsertvertexaction.h"
#include "app/core/actions/nyxitemdeletionaction.h"
#include "app/core/actions/nyxmodelitembrushaction.h"
#include "app/core/actions/nyxmovevertexaction.h"
#include "app/core/actions/nyxremovevertexaction.h"
#include "app/core/nyxpreferences.h"
#include "app/core/nyxstack.h"
#include "model/model.h"
#include "model/modelitem.h"
#include "model/stackslice.h"
#include "slice/image/nyxplaintext.h"
#include "slice/nyxcontourvertices.h"
#include "slice/nyxregionbrush.h"
#include "slice/nyxsliceeditwidgetcanvas.h"
#include "slice/nyxsliceeditwidgetmediator.h"

#include <QContextMenuEvent>
#include <QMenu>
#include <QMessageBox>
#include <QPainter>

namespace
{
constexpr int moveRadius = 10; // pixels of the image, whatever the zoom
}

NYXSliceEditWidgetMediatorEditionDelegate::NYXSliceEditWidgetMediatorEditionDelegate(
    NYXSliceEditWidgetMediator& mediator)
  : NYXSliceEditWidgetMediatorDelegate(mediator), _toolBar(new NYXVertexEditionToolBar(&canvas()))
{
  setBlocking(true);
  _toolBar->hide();
  connect(_toolBar, &NYXVertexEditionToolBar::modeChosen, this, &NYXSliceEditWidgetMediatorEditionDelegate::setMode);
  connect(_toolBar, &NYXVertexEditionToolBar::endChosen, this, &NYXSliceEditWidgetMediatorEditionDelegate::deactivate);
}

NYXSliceEditWidgetMediatorEditionDelegate::~NYXSliceEditWidgetMediatorEditionDelegate() = default;

void NYXSliceEditWidgetMediatorEditionDelegate::activate()
{
  if (!editMediator().isEditable() || slice().getSelectedItems().empty()) return;
  _item = slice().getSelectedItems().back();
  _isPressed = false;
  _toolBar->setModesEnabled(!_item->isRegion());
  _mode = _item->isRegion() ? VertexEditionMode::Delete : VertexEditionMode::Move;
  NYXSliceEditWidgetMediatorDelegate::activate();
  setMode(_mode);
  _toolBar->move(canvas().mapToGlobal(QPoint(10, 10)));
  _toolBar->show();
}

void NYXSliceEditWidgetMediatorEditionDelegate::deactivate()
{
  giveUp();
  _toolBar->hide();
  _item = nullptr;
  NYXSliceEditWidgetMediatorDelegate::deactivate();
}

void NYXSliceEditWidgetMediatorEditionDelegate::setMode(VertexEditionMode mode)
{
  if (!isActive()) return;
  giveUp();
  _mode = _item != nullptr && _item->isRegion() ? VertexEditionMode::Delete : mode;
  _toolBar->setMode(_mode);
  canvas().setCursor(_mode == VertexEditionMode::Delete ? Qt::BlankCursor : Qt::CrossCursor);
  showMode();
  canvas().update();
}

QString NYXSliceEditWidgetMediatorEditionDelegate::editMode() const
{
  return _mode == VertexEditionMode::Move ? "MOVE" : _mode == VertexEditionMode::Insert ? "INSERT" : "DELETE";
}

QString NYXSliceEditWidgetMediatorEditionDelegate::hint() const
{
  switch (_mode)
  {
  case VertexEditionMode::Move:
    return tr("Drag a point to move it, right click for other modes, Escape to end");
  case VertexEditionMode::Insert:
    return tr("Press near the contour and drag to insert points, right click for other modes, Escape to end");
  default:
    return _item != nullptr && _item->isRegion()
               ? tr("Drag to erase the region, [ and ] change the eraser, Escape to end")
               : tr("Click or drag over points to delete them, Escape to end");
  }
}

// ------------------------------------------------------------------------------------------------ mouse and pen

void NYXSliceEditWidgetMediatorEditionDelegate::contextMenuEvent(QContextMenuEvent& event)
{
  QMenu menu(&canvas());
  menu.setObjectName("vertexEditionMenu");
  _toolBar->fill(menu);
  menu.exec(event.globalPos());
}

void NYXSliceEditWidgetMediatorEditionDelegate::press(const NYXPointerEvent& event)
{
  _cursor = event.position;
  if (event.button != Qt::LeftButton || !isOnImage(_cursor)) return;
  release(); // the pen and the mouse may both be down
  const Vector<int> point = canvas().convertToVectori(_cursor);
  _isPressed = true;
  switch (_mode)
  {
  case VertexEditionMode::Move:
    return beginMove(point);
  case VertexEditionMode::Insert:
    return beginInsertion(point);
  default:
    return beginDeletion(point);
  }
}

void NYXSliceEditWidgetMediatorEditionDelegate::move(const NYXPointerEvent& event)
{
  _cursor = event.position;
  if (_isPressed) change(pointOnImage(_cursor));
  updateFeedback();
}

void NYXSliceEditWidgetMediatorEditionDelegate::change(const Vector<int>& point)
{
  if (_moveAction)
  {
    _moveAction->setPoint(point);
    _moveAction->apply();
  }
  else if (_mode == VertexEditionMode::Insert && _insertionIndex >= 0)
    insert(point);
  else if (_mode == VertexEditionMode::Delete)
    deleteNear(point);
}

void NYXSliceEditWidgetMediatorEditionDelegate::release()
{
  if (!_isPressed) return;
  _isPressed = false;
  if (_moveAction && !_moveAction->isNull()) editMediator().history().push(std::move(_moveAction), false);
  _moveAction.reset();
  _insertionIndex = -1;
  closeStep();
}

void NYXSliceEditWidgetMediatorEditionDelegate::giveUp()
{
  if (!_isPressed) return;
  _isPressed = false;
  if (_moveAction) _moveAction->revert();
  _moveAction.reset();
  _insertionIndex = -1;
  editMediator().history().abandonStep();
}

void NYXSliceEditWidgetMediatorEditionDelegate::openStep()
{
  if (!editMediator().history().isStepOpen()) editMediator().history().openStep();
}

void NYXSliceEditWidgetMediatorEditionDelegate::closeStep()
{
  if (editMediator().history().isStepOpen()) editMediator().history().closeStep();
}

// -------------------------------------------------------------------------------------------------- the changes

void NYXSliceEditWidgetMediatorEditionDelegate::beginMove(const Vector<int>& point)
{
  const int vertex = _item->findNearestVertex(point, moveRadius);
  if (vertex < 0) return;
  openStep(); // nothing else is undone before the drag is over
  _moveAction = std::make_unique<NYXMoveVertexAction>(*_item, vertex);
}

void NYXSliceEditWidgetMediatorEditionDelegate::beginInsertion(const Vector<int>& point)
{
  const bool isPoints = _item->getModel()->getGeometry() == MPrimitive::Polypoint;
  _insertionIndex = isPoints ? _item->getSize() : _item->findInsertion(point, pickTolerance(*_item));
  if (_insertionIndex < 0) return;
  openStep();
  _last = point;
  const Vertices<int>& vertices = _item->getVertices();
  for (const int neighbour : {_insertionIndex - 1, _insertionIndex % _item->getSize()})
    if (vertices[neighbour] == point) // a double click, or a drag that begins at a vertex
    {
      _insertionIndex = neighbour;
      return;
    }
  editMediator().history().push(std::make_unique<NYXInsertVertexAction>(*_item, _insertionIndex, point), true);
}

void NYXSliceEditWidgetMediatorEditionDelegate::insert(const Vector<int>& point)
{
  if (point == _last) return;
  _last = point;
  editMediator().history().push(std::make_unique<NYXInsertVertexAction>(*_item, ++_insertionIndex, point), true);
}

void NYXSliceEditWidgetMediatorEditionDelegate::beginDeletion(const Vector<int>& point)
{
  openStep();
  _last = point;
  deleteNear(point);
}

void NYXSliceEditWidgetMediatorEditionDelegate::deleteNear(const Vector<int>& point)
{
  if (_item->isRegion()) return erase(point);
  const int vertex = _item->findNearestVertex(point, pickTolerance(*_item));
  if (vertex < 0) return;
  const QString refusal = deletionRefusal();
  if (refusal.isEmpty())
    return editMediator().history().push(std::make_unique<NYXRemoveVertexAction>(*_item, vertex), true);
  release();
  QMessageBox::warning(&editMediator().window(), "Warning", plainText(refusal));
}

QString NYXSliceEditWidgetMediatorEditionDelegate::deletionRefusal() const
{
  const MPrimitive geometry = _item->getModel()->getGeometry();
  if (_item->getSize() > minNumVertices(geometry)) return {};
  if (geometry == MPrimitive::Polygon)
    return "You cannot remove any vertex from this contour.\n\nReason: cannot make a closed contour with less than 3 "
           "vertices.";
  if (geometry == MPrimitive::Polyline)
    return "You cannot remove any vertex from this contour.\n\nReason: cannot make an open contour with less than 2 "
           "vertices.";
  return "You cannot remove this vertex.\n\nReason: it is the last one.";
}

/// A region of which nothing is left goes as a whole.
void NYXSliceEditWidgetMediatorEditionDelegate::erase(const Vector<int>& point)
{
  const RLEItemSet stroke = brushStroke(imageBox(), _last, point, NYXPreferences::getRegionBrushSize());
  _last = point;
  RLEItemSet rest = _item->getRLEItemSet();
  rest.remove(stroke);
  NYXActionHistory& history = editMediator().history();
  if (rest == _item->getRLEItemSet()) return;
  if (!rest.isEmpty())
    return history.push(std::make_unique<NYXModelItemBrushAction>(*_item, stroke, NYXModelItemBrushAction::Erase),
                        true);
  ModelItem& item = *_item;
  _item = nullptr;
  _isPressed = false;
  history.push(std::make_unique<NYXItemDeletionAction>(item), true);
  closeStep();
  deactivate();
}

// ------------------------------------------------------------------------------------------------- the feedback

double NYXSliceEditWidgetMediatorEditionDelegate::eraserRadius() const
{
  return (_item->isRegion() ? NYXPreferences::getRegionBrushSize() : pickTolerance(*_item)) + 0.5;
}

/// The vertex that a press would move or delete, or that is being moved.
int NYXSliceEditWidgetMediatorEditionDelegate::vertexAtCursor() const
{
  if (_item->isRegion() || _mode == VertexEditionMode::Insert) return -1;
  if (_moveAction) return _moveAction->getIndex();
  if (!isOnImage(_cursor)) return -1;
  const int radius = _mode == VertexEditionMode::Move ? moveRadius : pickTolerance(*_item);
  return _item->findNearestVertex(canvas().convertToVectori(_cursor), radius);
}

/// The vertices between which the next one is inserted, on the canvas with the cursor between them; empty when none is.
QPolygonF NYXSliceEditWidgetMediatorEditionDelegate::insertionAtCursor() const
{
  if (_mode != VertexEditionMode::Insert || !isOnImage(_cursor)) return {};
  if (!isCurve(*_item)) return QPolygonF() << _cursor;
  const Vertices<int>& vertices = _item->getVertices();
  const int numVertices = vertices.getNumVertices();
  const int index = _insertionIndex >= 0
                        ? _insertionIndex + 1
                        : _item->findInsertion(canvas().convertToVectori(_cursor), pickTolerance(*_item));
  if (index <= 0) return {};
  QPolygonF line;
  line << canvasCenter(vertices.data(index - 1)) << _cursor;
  if (index < numVertices || _item->isClosed()) line << canvasCenter(vertices.data(index % numVertices));
  return line;
}

/// Vertices that lie close together on the screen are marked once.
void NYXSliceEditWidgetMediatorEditionDelegate::paintVertices(QPainter& painter) const
{
  painter.setBrush(Qt::white); // the contour under them may have the same colour
  const Vertices<int>& vertices = _item->getVertices();
  const QRectF visible = painter.clipBoundingRect().adjusted(-4, -4, 4, 4);
  QPointF last(-1e9, -1e9);
  for (int i = 0; i < vertices.getNumVertices(); ++i)
  {
    const QPointF center = canvasCenter(vertices.data(i));
    if ((center - last).manhattanLength() < 3) continue;
    last = center;
    if (visible.contains(center)) painter.drawRect(QRectF(center - QPointF(2.5, 2.5), QSizeF(5, 5)));
  }
}

void NYXSliceEditWidgetMediatorEditionDelegate::paintFeedback(QPainter& painter)
{
  if (_item == nullptr) return;
  const QColor color = NYXPreferences::getSelectionColor();
  const NYXImageViewport& viewport = canvas().viewport();
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(QPen(color, 1));
  painter.setBrush(Qt::white); // the contour below them has the same colour
  paintVertices(painter);
  painter.setBrush(Qt::NoBrush);
  if (_mode == VertexEditionMode::Delete)
    painter.drawEllipse(QPointF(_cursor), eraserRadius() * viewport.scaleX(), eraserRadius() * viewport.scaleY());
  const QPolygonF insertion = insertionAtCursor();
  const int vertex = vertexAtCursor();
  painter.setBrush(color);
  if (vertex >= 0) painter.drawEllipse(canvasCenter(_item->getVertices().data(vertex)), 4, 4);
  if (insertion.isEmpty()) return;
  painter.drawEllipse(QPointF(_cursor), 3, 3);
  painter.setPen(QPen(color, 1, Qt::DashLine));
  painter.drawPolyline(insertion);
}

/// Without the marks of the vertices, which are repainted with the item.
QRect NYXSliceEditWidgetMediatorEditionDelegate::feedbackRect() const
{
  if (_item == nullptr) return {};
  const NYXImageViewport& viewport = canvas().viewport();
  const bool isEraser = _mode == VertexEditionMode::Delete;
  const double dx = isEraser ? eraserRadius() * viewport.scaleX() : 0;
  const double dy = isEraser ? eraserRadius() * viewport.scaleY() : 0;
  QRectF rect(_cursor.x() - dx, _cursor.y() - dy, 2 * dx, 2 * dy);
  const int vertex = vertexAtCursor();
  if (vertex >= 0) rect |= QRectF(canvasCenter(_item->getVertices().data(vertex)), QSizeF(0.1, 0.1));
  rect |= insertionAtCursor().boundingRect();
  return rect.adjusted(-6, -6, 6, 6).toAlignedRect();
}
