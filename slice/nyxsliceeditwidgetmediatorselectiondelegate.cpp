#include "slice/nyxsliceeditwidgetmediatorselectiondelegate.h"

#include "app/core/actions/nyxitemcreationaction.h"
#include "app/core/actions/nyxitemdeletionaction.h"
#include "app/core/actions/nyxitemselectionconversionaction.h"
#include "app/core/actions/nyxitemtriangulationtagaction.h"
#include "app/core/actions/nyxitemverticeschangeaction.h"
#include "app/core/actions/nyxremoveselectionaction.h"
#include "app/core/actions/nyxselectionaction.h"
#include "app/core/nyxpreferences.h"
#include "app/core/nyxstack.h"
#include "geometry/curve.h"
#include "geometry/curveprocessing/curvedecimation.h"
#include "model/model.h"
#include "model/modelitem.h"
#include "model/stackslice.h"
#include "slice/image/nyxplaintext.h"
#include "slice/nyxcontourvertices.h"
#include "slice/nyxsliceeditwidgetcanvas.h"
#include "slice/nyxsliceeditwidgetmediator.h"

#include <QAction>
#include <QApplication>
#include <QContextMenuEvent>
#include <QKeyEvent>
#include <QMessageBox>
#include <QPainter>

#include <algorithm>

namespace
{
ModelItemSelection selectionOf(const ModelItem& item, bool isSelected)
{
  ModelItemSelection selection = item.getSelection();
  selection.set(isSelected);
  return selection;
}

bool isInside(const ModelItem& item, const BoundingBox<int>& box)
{
  const BoundingBox<int> bounds = item.boundingBox();
  return !bounds.isEmpty() && box.contains(bounds.getMinimum()) && box.contains(bounds.getMaximum());
}

/// The points of an item that lie in a box are selected as well.
ModelItemSelection withPointsInside(const ModelItem& item, const BoundingBox<int>& box)
{
  ModelItemSelection selection = item.getSelection();
  for (int i = 0; i < item.getVertices().getNumVertices(); ++i)
    if (box.contains(item.getVertices()[i])) selection.set(true, i, false);
  return selection;
}

/// What is selected of an item, as an item that belongs to no slice.
std::unique_ptr<ModelItem> copyOfSelection(const ModelItem& item)
{
  auto copy = std::make_unique<ModelItem>(item);
  if (!item.isRegion()) copy->setVertices(item.selectedVertices());
  copy->setModel(nullptr);
  copy->setSlice(nullptr);
  return copy;
}
} // namespace

NYXSliceEditWidgetMediatorSelectionDelegate::NYXSliceEditWidgetMediatorSelectionDelegate(
    NYXSliceEditWidgetMediator& mediator)
  : NYXSliceEditWidgetMediatorDelegate(mediator)
{
  setBlocking(true); // the canvas would refuse what the pen does, which then came from the mouse once more
}

NYXSliceEditWidgetMediatorSelectionDelegate::~NYXSliceEditWidgetMediatorSelectionDelegate() = default;

void NYXSliceEditWidgetMediatorSelectionDelegate::activate()
{
  setActive(true);
}

void NYXSliceEditWidgetMediatorSelectionDelegate::deactivate()
{
  cancel();
  setActive(false);
}

QString NYXSliceEditWidgetMediatorSelectionDelegate::hint() const
{
  if (!editCanvas().hasSlice()) return {};
  return selectedItem() == nullptr
             ? tr("Click or drag a box to select, right click or D to draw, wheel and middle button to zoom and move")
             : tr("Shift and click to select more, right click for what can be done, Delete to delete, Escape to "
                  "select nothing");
}

void NYXSliceEditWidgetMediatorSelectionDelegate::cancel()
{
  _isDragging = false;
  canvas().update();
}

ModelItem* NYXSliceEditWidgetMediatorSelectionDelegate::selectedItem() const
{
  return editCanvas().hasSlice() ? slice().getSelectedItem() : nullptr;
}

ModelItem* NYXSliceEditWidgetMediatorSelectionDelegate::selectedCurve() const
{
  if (!editCanvas().hasSlice()) return nullptr;
  const std::vector<ModelItem*> items = slice().getSelectedItems();
  return items.size() == 1 && isCurve(*items.front()) ? items.front() : nullptr;
}

// ------------------------------------------------------------------------------------------------ mouse and pen

/// What is under the cursor is selected first, if nothing is.
void NYXSliceEditWidgetMediatorSelectionDelegate::contextMenuEvent(QContextMenuEvent& event)
{
  const bool isFree = editCanvas().hasSlice() && !stack().isLocked(slice()) && selectedItem() == nullptr;
  if (isFree && isOnImage(event.pos())) selectNear(canvas().convertToVectori(event.pos()), false);
  editMediator().showContextMenu(event.globalPos());
}

/// "Cancel" is not there while nothing is selected.
void NYXSliceEditWidgetMediatorSelectionDelegate::keyPressEvent(QKeyEvent& event)
{
  event.setAccepted(event.key() == Qt::Key_Escape && _isDragging);
  if (event.isAccepted()) cancel();
}

void NYXSliceEditWidgetMediatorSelectionDelegate::press(const NYXPointerEvent& event)
{
  if (event.button != Qt::LeftButton || !editCanvas().hasSlice() || !isOnImage(event.position)) return;
  selectNear(canvas().convertToVectori(event.position), event.modifiers & Qt::ShiftModifier);
  _isDragging = true;
  _boxStart = _boxEnd = event.position;
}

void NYXSliceEditWidgetMediatorSelectionDelegate::move(const NYXPointerEvent& event)
{
  if (!_isDragging) return hover(event.buttons == Qt::NoButton ? event.position : outside); // not while panning
  _boxEnd = event.position;
  updateFeedback();
}

void NYXSliceEditWidgetMediatorSelectionDelegate::release()
{
  if (!_isDragging) return;
  _isDragging = false;
  canvas().update();
  if ((_boxEnd - _boxStart).manhattanLength() < QApplication::startDragDistance()) return; // a click
  const QRect rect = QRect(_boxStart, _boxEnd).normalized();
  selectInBox(BoundingBox<int>(pointOnImage(rect.topLeft()), pointOnImage(rect.bottomRight())));
}

bool NYXSliceEditWidgetMediatorSelectionDelegate::anyEvent(QEvent& event)
{
  if (event.type() == QEvent::Leave) hover(outside);
  return false;
}

std::vector<NYXSliceEditWidgetMediatorSelectionDelegate::Target>
NYXSliceEditWidgetMediatorSelectionDelegate::targetsAt(const QPoint& canvasPoint) const
{
  std::vector<Target> targets;
  if (!editCanvas().hasSlice() || !isOnImage(canvasPoint)) return targets;
  const Vector<int> point = canvas().convertToVectori(canvasPoint);
  for (const ModelItem* item : candidates(point))
    if (const int vertex = findNear(*item, point); vertex >= 0)
      targets.push_back({item, isCurve(*item) || item->isRegion() ? 0 : vertex});
  return targets;
}

void NYXSliceEditWidgetMediatorSelectionDelegate::hover(const QPoint& canvasPoint)
{
  _cursor = canvasPoint;
  std::vector<Target> targets = targetsAt(canvasPoint);
  if (targets == _targets) return;
  _targets = std::move(targets);
  canvas().update();
}

/// Looks them up again: what was there when the mouse moved may be gone.
void NYXSliceEditWidgetMediatorSelectionDelegate::paintTargets(QPainter& painter) const
{
  const QColor color = NYXPreferences::getSelectionColor();
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setBrush(Qt::NoBrush);
  painter.setPen(QPen(color, 2));
  for (const auto& [item, vertex] : targetsAt(_cursor))
  {
    if (isCurve(*item) || item->isRegion())
      editCanvas().highlight(painter, *item, color);
    else
      painter.drawEllipse(canvasCenter(item->getVertices().data(vertex)), 7, 7);
  }
}

void NYXSliceEditWidgetMediatorSelectionDelegate::paintFeedback(QPainter& painter)
{
  if (!_isDragging) return paintTargets(painter);
  const QColor color = NYXPreferences::getSelectionColor();
  painter.setPen(QPen(color, 1));
  painter.setBrush(QColor(color.red(), color.green(), color.blue(), 40));
  painter.drawRect(QRect(_boxStart, _boxEnd).normalized());
}

QRect NYXSliceEditWidgetMediatorSelectionDelegate::feedbackRect() const
{
  return _isDragging ? QRect(_boxStart, _boxEnd).normalized().adjusted(-1, -1, 2, 2) : canvas().rect();
}

// ---------------------------------------------------------------------------------------------------- selecting

bool NYXSliceEditWidgetMediatorSelectionDelegate::setSelection(ModelItem& item, const ModelItemSelection& selection)
{
  NYXSelectionAction action(item, selection);
  if (action.isNull()) return false;
  action.apply();
  return true;
}

void NYXSliceEditWidgetMediatorSelectionDelegate::notifySelection()
{
  editMediator().notifyEvent(NYXSliceItemSelectionEvent(slice()));
}

int NYXSliceEditWidgetMediatorSelectionDelegate::findNear(const ModelItem& item, const Vector<int>& point) const
{
  const int tolerance = pickTolerance(item);
  if (item.isRegion())
  {
    const auto nearest = item.getRLEItemSet().nearestPosition(point[0], point[1]);
    if (!nearest) return -1;
    const double dx = (*nearest)[0] - point[0];
    const double dy = (*nearest)[1] - point[1];
    return dx * dx + dy * dy <= static_cast<double>(tolerance) * tolerance ? 0 : -1;
  }
  const int vertex = item.findNearestVertex(point, tolerance);
  return vertex < 0 && isCurve(item) && item.findInsertion(point, tolerance) >= 0 ? 0 : vertex;
}

ModelItemSelection NYXSliceEditWidgetMediatorSelectionDelegate::selectionNear(const ModelItem& item, int vertex,
                                                                              bool isExtending) const
{
  ModelItemSelection selection = item.getSelection();
  if (vertex < 0)
  {
    if (!isExtending) selection.set(false);
  }
  else if (isCurve(item) || item.isRegion())
    selection.invert();
  else
    selection.set(!selection.isSelected(vertex), vertex, !isExtending);
  return selection;
}

/// The only items that can be near, in order of their addresses.
std::vector<const ModelItem*> NYXSliceEditWidgetMediatorSelectionDelegate::candidates(const Vector<int>& point) const
{
  const int farthest = std::max(NYXPreferences::getClickTolerance(), NYXPreferences::getRegionBrushSize()) +
                       static_cast<int>(1 / canvas().getZoomFactor());
  return editCanvas().itemsNear(QPoint(point[0], point[1]), farthest);
}

void NYXSliceEditWidgetMediatorSelectionDelegate::selectNear(const Vector<int>& point, bool isExtending)
{
  bool isChanged = false;
  const std::vector<const ModelItem*> near = candidates(point);
  for (ModelItem* item : slice().getItems())
  {
    const bool isCandidate = std::binary_search(near.begin(), near.end(), item);
    if (!isCandidate && (isExtending || item->getSelection().isEmpty())) continue;
    const int vertex = isCandidate ? findNear(*item, point) : -1;
    isChanged = setSelection(*item, selectionNear(*item, vertex, isExtending)) || isChanged;
  }
  if (isChanged) notifySelection();
}

void NYXSliceEditWidgetMediatorSelectionDelegate::selectInBox(const BoundingBox<int>& box)
{
  bool isChanged = false;
  for (ModelItem* item : slice().getItems())
  {
    const bool isWhole = isCurve(*item) || item->isRegion();
    if (isWhole && !isInside(*item, box)) continue;
    isChanged = setSelection(*item, isWhole ? selectionOf(*item, true) : withPointsInside(*item, box)) || isChanged;
  }
  if (isChanged) notifySelection();
}

template <class Test> void NYXSliceEditWidgetMediatorSelectionDelegate::selectItems(const Test& test)
{
  if (!editCanvas().hasSlice()) return;
  bool isChanged = false;
  for (ModelItem* item : slice().getItems())
    isChanged = setSelection(*item, selectionOf(*item, test(*item))) || isChanged;
  if (isChanged) notifySelection();
}

void NYXSliceEditWidgetMediatorSelectionDelegate::cancelSelection()
{
  cancel();
  selectItems([](const ModelItem&) { return false; });
}

void NYXSliceEditWidgetMediatorSelectionDelegate::selectAllModelItems()
{
  selectItems([](const ModelItem&) { return true; });
}

void NYXSliceEditWidgetMediatorSelectionDelegate::selectItem(const ModelItem& item)
{
  selectItems([&item](const ModelItem& other) { return &other == &item; });
}

void NYXSliceEditWidgetMediatorSelectionDelegate::selectModelItems(const QString& modelName)
{
  selectItems([name = modelName.toStdString()](const ModelItem& item) { return item.getModel()->getName() == name; });
}

// ------------------------------------------------------------------------------------------------- the clipboard

void NYXSliceEditWidgetMediatorSelectionDelegate::copySelection()
{
  const std::vector<ModelItem*> items = slice().getSelectedItems();
  if (items.empty()) return;
  _clipboard.clear();
  for (const ModelItem* item : items) _clipboard.push_back({item->getModel()->getName(), copyOfSelection(*item)});
  editMediator().updateEditActions();
}

/// A copy for the slice that is shown, within the box of its image; nullptr when the stack has no model for it, or it
/// has too few vertices for the model there.
std::unique_ptr<ModelItem> NYXSliceEditWidgetMediatorSelectionDelegate::pasted(const Copied& copied,
                                                                               const BoundingBox<int>& box) const
{
  const int i = stack().findModel(copied.model);
  if (i < 0 ||
      (stack().getModel(i)->getGeometry() == MPrimitive::Region) != (copied.item->getVertices().getSize() == 0))
    return nullptr;
  auto item = std::make_unique<ModelItem>(*copied.item);
  item->setModel(stack().getModel(i));
  item->setSlice(&slice());
  if (item->getSize() < minNumVertices(item->getModel()->getGeometry())) return nullptr;
  if (!isInside(*item, box) && !cutTo(box, *item)) return nullptr;
  item->getSelection().set(true);
  return item;
}

void NYXSliceEditWidgetMediatorSelectionDelegate::pasteSelection()
{
  std::vector<std::unique_ptr<ModelItem>> items;
  const BoundingBox<int> box = imageBoxOf(slice());
  for (const Copied& copied : _clipboard)
    if (auto item = pasted(copied, box)) items.push_back(std::move(item));
  const std::size_t numMissing = _clipboard.size() - items.size();
  if (!items.empty())
  {
    cancelSelection();
    pushStep(std::make_unique<NYXItemCreationAction>(std::move(items)));
    notifySelection();
  }
  if (numMissing > 0)
    editMediator().showMessage(
        tr("%n of the items could not be pasted: there is no model for them, they have too few vertices, or they lie "
           "outside of the image.",
           "", static_cast<int>(numMissing)));
}

// ---------------------------------------------------------------------------------------------- what is selected

QString NYXSliceEditWidgetMediatorSelectionDelegate::removalRefusal(const ModelItem& item) const
{
  if (item.getSelection().isComplete()) return {};
  const int numLeft = item.getSize() - item.getSelection().getSize();
  const int minimum = minNumVertices(item.getModel()->getGeometry());
  if (item.isRegion() || numLeft >= minimum) return {};
  return QString("%1:\n\nCould not remove selected vertices since this would leave only %2 vertices on the contour "
                 "(the minimum number of vertices per contour is %3 in this model).")
      .arg(QString::fromStdString(item.getModel()->getName()), QString::number(numLeft), QString::number(minimum));
}

void NYXSliceEditWidgetMediatorSelectionDelegate::removeSelection()
{
  std::vector<ModelItem*> whole;
  std::vector<std::unique_ptr<NYXAction>> actions;
  QStringList refusals;
  for (ModelItem* item : slice().getSelectedItems())
  {
    const QString refusal = removalRefusal(*item);
    if (!refusal.isEmpty())
      refusals << refusal;
    else if (item->getSelection().isComplete())
      whole.push_back(item);
    else
      actions.push_back(std::make_unique<NYXRemoveSelectionAction>(*item));
  }
  if (!whole.empty()) actions.push_back(std::make_unique<NYXItemDeletionAction>(whole));
  editMediator().pushStep(std::move(actions));
  notifySelection();
  for (const QString& refusal : refusals)
    QMessageBox::warning(&editMediator().window(), "Vertex suppresion", plainText(refusal));
}

void NYXSliceEditWidgetMediatorSelectionDelegate::decimateSelection()
{
  std::vector<std::unique_ptr<NYXAction>> actions;
  int numBefore = 0, numAfter = 0;
  for (ModelItem* item : slice().getSelectedItems())
  {
    if (!isCurve(*item)) continue;
    Curve<int> decimated;
    CurveDecimation<int>().apply(Curve<int>(item->getVertices(), !item->isClosed()), decimated);
    numBefore += item->getSize();
    const bool isPossible = decimated.getSize() >= minNumVertices(item->getModel()->getGeometry());
    numAfter += isPossible ? decimated.getSize() : item->getSize();
    if (isPossible) actions.push_back(std::make_unique<NYXItemVerticesChangeAction>(*item, decimated));
  }
  const bool isStep = editMediator().pushStep(std::move(actions));
  if (numAfter == numBefore)
    editMediator().showMessage(tr("All %1 vertices are needed").arg(numBefore));
  else if (isStep)
    editMediator().showMessage(tr("%1 of %2 vertices are left").arg(numAfter).arg(numBefore));
  notifySelection();
}

std::vector<std::unique_ptr<NYXAction>>
NYXSliceEditWidgetMediatorSelectionDelegate::conversionsTo(Model& destination) const
{
  std::vector<std::unique_ptr<NYXAction>> actions;
  std::vector<ModelItem*> items = slice().getSelectedItems();
  std::reverse(items.begin(), items.end());
  for (ModelItem* item : items)
    if (item->getModel() != &destination)
      actions.push_back(std::make_unique<NYXItemSelectionConversionAction>(*item, &destination));
  return actions;
}

void NYXSliceEditWidgetMediatorSelectionDelegate::editSelectionProperties()
{
  if (selectedItem() != nullptr) emit editMediator().propertiesRequested();
}

void NYXSliceEditWidgetMediatorSelectionDelegate::convertSelection(const QString& modelName)
{
  const int i = stack().findModel(modelName.toStdString());
  if (i < 0) return;
  try
  {
    if (editMediator().pushStep(conversionsTo(*stack().getModel(i)))) notifySelection();
  }
  catch (const UsageError& error)
  {
    QMessageBox::warning(&editMediator().window(), tr("Convert"), plainText(QString::fromStdString(error.getWhat())));
  }
}

void NYXSliceEditWidgetMediatorSelectionDelegate::changeSelectionTriangulationTag(const QAction& action)
{
  ModelItem* const item = selectedItem();
  if (item == nullptr) return;
  const auto tag = static_cast<CurveStackTriangulationContourTag>(action.data().toInt());
  pushStep(std::make_unique<NYXItemTriangulationTagAction>(*item, tag));
}
