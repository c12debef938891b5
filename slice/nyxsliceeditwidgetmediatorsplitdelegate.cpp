#include "slice/nyxsliceeditwidgetmediatorsplitdelegate.h"

#include "app/core/actions/nyxitemcreationaction.h"
#include "app/core/actions/nyxitemdeletionaction.h"
#include "app/core/nyxpreferences.h"
#include "geometry/curveprocessing/curvesplitting.h"
#include "model/model.h"
#include "model/modelitem.h"
#include "model/stackslice.h"
#include "slice/nyxcontourvertices.h"
#include "slice/nyxsliceeditwidgetcanvas.h"
#include "slice/nyxsliceeditwidgetmediator.h"
#include "slice/nyxsliceeditwidgetmediatorselectiondelegate.h"

#include <QMessageBox>
#include <QPainter>

NYXSliceEditWidgetMediatorSplitDelegate::NYXSliceEditWidgetMediatorSplitDelegate(NYXSliceEditWidgetMediator& mediator)
  : NYXSliceEditWidgetMediatorDelegate(mediator)
{
  setBlocking(true);
}

void NYXSliceEditWidgetMediatorSplitDelegate::activate()
{
  ModelItem* const item = editMediator().selection().selectedCurve();
  if (item == nullptr || !editMediator().isEditable()) return;
  _item = item;
  _isDrawing = false;
  NYXSliceEditWidgetMediatorDelegate::activate();
  canvas().setCursor(Qt::CrossCursor);
}

void NYXSliceEditWidgetMediatorSplitDelegate::deactivate()
{
  _item = nullptr;
  _isDrawing = false;
  NYXSliceEditWidgetMediatorDelegate::deactivate();
}

void NYXSliceEditWidgetMediatorSplitDelegate::press(const NYXPointerEvent& event)
{
  if (event.button != Qt::LeftButton) return;
  _isDrawing = true;
  _from = _to = event.position;
}

void NYXSliceEditWidgetMediatorSplitDelegate::move(const NYXPointerEvent& event)
{
  if (!_isDrawing) return;
  _to = event.position;
  updateFeedback();
}

void NYXSliceEditWidgetMediatorSplitDelegate::release()
{
  if (!_isDrawing) return;
  _isDrawing = false;
  std::vector<std::unique_ptr<ModelItem>> items = parts();
  const bool isSplit = items.size() > 1;
  ModelItem& item = *_item;
  deactivate();
  if (!isSplit)
  {
    QMessageBox::warning(&editMediator().window(), tr("Split contour"), "Contour could not be split.");
    return;
  }
  std::vector<std::unique_ptr<NYXAction>> actions;
  for (auto& part : items) actions.push_back(std::make_unique<NYXItemCreationAction>(std::move(part)));
  actions.push_back(std::make_unique<NYXItemDeletionAction>(item));
  editMediator().pushStep(std::move(actions));
}

std::vector<std::unique_ptr<ModelItem>> NYXSliceEditWidgetMediatorSplitDelegate::parts() const
{
  const Vector<int> from = canvas().convertToVectori(_from);
  const Vector<int> to = canvas().convertToVectori(_to);
  // Between the rows and columns of vertices, so that the line does not run along an edge of them by chance.
  const Vector<double> a{from[0] + 1e-3, from[1] + 2e-3};
  const Vector<double> b{to[0] + 3e-3, to[1] + 1e-3};
  std::vector<std::unique_ptr<ModelItem>> items;
  for (const Curve<double>& piece : splitCurve(realCurve(*_item), a, b))
  {
    const Vertices<int> vertices = withoutRepetitions(roundedVertices(piece), _item->isClosed());
    if (vertices.getNumVertices() < minNumVertices(_item->getModel()->getGeometry())) return {};
    auto part = std::make_unique<ModelItem>(*_item);
    part->setVertices(vertices);
    items.push_back(std::move(part));
  }
  return items;
}

void NYXSliceEditWidgetMediatorSplitDelegate::paintFeedback(QPainter& painter)
{
  if (!_isDrawing) return;
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(QPen(QColor(0, 0, 0, 140), 3));
  painter.drawLine(_from, _to);
  painter.setPen(QPen(NYXPreferences::getSelectionColor(), 1.5));
  painter.drawLine(_from, _to);
}

QRect NYXSliceEditWidgetMediatorSplitDelegate::feedbackRect() const
{
  return _isDrawing ? QRect(_from, _to).normalized().adjusted(-3, -3, 3, 3) : QRect();
}
