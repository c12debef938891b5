#include "slice/nyxsliceeditwidgetmediatorcontourdelegate.h"

#include "app/core/actions/nyxitemverticeschangeaction.h"
#include "app/core/nyxpreferences.h"
#include "model/modelitem.h"
#include "model/stackslice.h"
#include "slice/image/nyxplaintext.h"
#include "slice/nyxcontourtooldialog.h"
#include "slice/nyxcontourvertices.h"
#include "slice/nyxsliceeditwidgetcanvas.h"
#include "slice/nyxsliceeditwidgetmediator.h"

#include <QKeyEvent>
#include <QMessageBox>
#include <QPainter>

#include <algorithm>

NYXSliceEditWidgetMediatorContourDelegate::NYXSliceEditWidgetMediatorContourDelegate(
    NYXSliceEditWidgetMediator& mediator)
  : NYXSliceEditWidgetMediatorDelegate(mediator)
{
  setBlocking(true);
}

NYXSliceEditWidgetMediatorContourDelegate::~NYXSliceEditWidgetMediatorContourDelegate() = default;

bool NYXSliceEditWidgetMediatorContourDelegate::isApplicable(const ModelItem& item) const
{
  return isCurve(item);
}

bool NYXSliceEditWidgetMediatorContourDelegate::worksOn(const ModelItem& item) const
{
  return std::find(_items.begin(), _items.end(), &item) != _items.end();
}

void NYXSliceEditWidgetMediatorContourDelegate::activate()
{
  if (isActive() || !editMediator().isEditable()) return;
  _items = slice().getSelectedItems();
  std::erase_if(_items, [this](const ModelItem* item) { return !isApplicable(*item); });
  if (_items.empty()) return;
  NYXSliceEditWidgetMediatorDelegate::activate();
  _dialog = new NYXContourToolDialog(title(), &editMediator().window());
  _dialog->setAttribute(Qt::WA_DeleteOnClose);
  addControls(_dialog->form(), *_items.front());
  _dialog->offerAll(static_cast<int>(_items.size()));
  connect(_dialog, &NYXContourToolDialog::scopeChanged, this, [this] { updatePreview(); });
  connect(_dialog, &QDialog::accepted, this, [this] { _dialog && _dialog->isForAll() ? applyToAll() : apply(); });
  connect(_dialog, &QDialog::rejected, this, &NYXSliceEditWidgetMediatorContourDelegate::cancel);
  updatePreview();
  placeBeside(*_items.front(), *_dialog);
  _dialog->show();
}

void NYXSliceEditWidgetMediatorContourDelegate::deactivate()
{
  _items.clear();
  _previews.clear();
  if (_dialog)
  {
    _dialog->disconnect(this);
    _dialog->close();
  }
  NYXSliceEditWidgetMediatorDelegate::deactivate();
}

std::optional<Vertices<int>> NYXSliceEditWidgetMediatorContourDelegate::changedOnImage(const ModelItem& item) const
{
  std::optional<Vertices<int>> vertices = changed(item);
  if (vertices) clampTo(imageBox(), *vertices);
  return vertices;
}

void NYXSliceEditWidgetMediatorContourDelegate::updatePreview()
{
  _previews.clear();
  const std::size_t count = _dialog && _dialog->isForAll() ? _items.size() : std::min<std::size_t>(1, _items.size());
  for (std::size_t i = 0; i < count; ++i)
    if (auto vertices = changedOnImage(*_items[i])) _previews.emplace_back(*vertices, !_items[i]->isClosed());
  canvas().update();
}

void NYXSliceEditWidgetMediatorContourDelegate::apply()
{
  applyTo({_items.begin(), _items.begin() + std::min<std::ptrdiff_t>(1, std::ssize(_items))});
}

void NYXSliceEditWidgetMediatorContourDelegate::applyToAll()
{
  applyTo(_items);
}

void NYXSliceEditWidgetMediatorContourDelegate::applyTo(const std::vector<ModelItem*>& items)
{
  if (!isActive()) return;
  std::vector<std::unique_ptr<NYXAction>> actions;
  QString reason;
  for (ModelItem* item : items)
  {
    if (const auto vertices = changedOnImage(*item))
      actions.push_back(std::make_unique<NYXItemVerticesChangeAction>(*item, *vertices));
    else
      reason = refusal();
  }
  const QString title = this->title();
  editMediator().pushStep(std::move(actions));
  deactivate();
  if (!reason.isEmpty()) QMessageBox::warning(&editMediator().window(), title, plainText(reason));
}

void NYXSliceEditWidgetMediatorContourDelegate::keyPressEvent(QKeyEvent& event)
{
  if (event.key() == Qt::Key_Return || event.key() == Qt::Key_Enter)
    _dialog && _dialog->isForAll() ? applyToAll() : apply();
  else
    event.ignore();
}

void NYXSliceEditWidgetMediatorContourDelegate::paintFeedback(QPainter& painter)
{
  if (!isActive()) return;
  painter.setRenderHint(QPainter::Antialiasing);
  const QRectF visible = QRectF(canvas().rect()).adjusted(-4, -4, 4, 4);
  for (std::size_t i = 0; i < _previews.size(); ++i)
  {
    QPolygonF polygon;
    for (int k = 0; k < _previews[i].getNumVertices(); ++k) polygon << canvasCenter(_previews[i].data(k));
    painter.setPen(QPen(NYXPreferences::getSelectionColor(), 2));
    painter.setBrush(Qt::NoBrush);
    _previews[i].isClosed() ? painter.drawPolygon(polygon) : painter.drawPolyline(polygon);
    painter.setPen(Qt::NoPen);
    painter.setBrush(NYXPreferences::getSelectionColor());
    for (int k = 0; k < polygon.size(); ++k) // the first vertex is the origin
      if (visible.contains(polygon[k])) painter.drawEllipse(polygon[k], k == 0 ? 5 : 2.5, k == 0 ? 5 : 2.5);
  }
}
