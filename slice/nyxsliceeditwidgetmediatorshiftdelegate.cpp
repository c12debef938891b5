#include "slice/nyxsliceeditwidgetmediatorshiftdelegate.h"

#include "app/core/actions/nyxitemshiftaction.h"
#include "app/core/nyxactionhistory.h"
#include "model/modelitem.h"
#include "model/stackslice.h"
#include "slice/nyxsliceeditwidgetcanvas.h"
#include "slice/nyxsliceeditwidgetmediator.h"

#include <algorithm>

NYXSliceEditWidgetMediatorShiftDelegate::NYXSliceEditWidgetMediatorShiftDelegate(NYXSliceEditWidgetMediator& mediator)
  : NYXSliceEditWidgetMediatorDelegate(mediator)
{
  setBlocking(true);
}

NYXSliceEditWidgetMediatorShiftDelegate::~NYXSliceEditWidgetMediatorShiftDelegate() = default;

void NYXSliceEditWidgetMediatorShiftDelegate::activate()
{
  if (!editMediator().isEditable() || slice().getSelectedItem() == nullptr) return;
  NYXSliceEditWidgetMediatorDelegate::activate();
  canvas().setCursor(Qt::SizeAllCursor);
}

/// A drag that is not over is taken back.
void NYXSliceEditWidgetMediatorShiftDelegate::deactivate()
{
  for (const auto& shift : _shifts)
    if (shift->isApplied()) shift->revert();
  if (!_shifts.empty()) editMediator().history().abandonStep();
  _shifts.clear();
  NYXSliceEditWidgetMediatorDelegate::deactivate();
}

bool NYXSliceEditWidgetMediatorShiftDelegate::worksOn(const ModelItem& item) const
{
  return std::any_of(_shifts.begin(), _shifts.end(), [&](const auto& shift) { return &shift->getItem() == &item; });
}

void NYXSliceEditWidgetMediatorShiftDelegate::press(const NYXPointerEvent& event)
{
  if (event.button != Qt::LeftButton) return;
  _from = canvas().convertToVectori(event.position);
  release(); // the pen and the mouse may both be down
  _bounds = BoundingBox<int>();
  for (ModelItem* item : slice().getSelectedItems())
  {
    const BoundingBox<int> box = item->boundingBox();
    _bounds.add(box.getMinimum());
    _bounds.add(box.getMaximum());
    _shifts.push_back(std::make_unique<NYXItemShiftAction>(*item));
  }
  if (!_shifts.empty()) editMediator().history().openStep(); // nothing else is undone before the drag is over
}

void NYXSliceEditWidgetMediatorShiftDelegate::move(const NYXPointerEvent& event)
{
  if (_shifts.empty()) return;
  const Vector<int> to = canvas().convertToVectori(event.position);
  const BoundingBox<int> box = imageBox();
  int shift[2];
  for (int k = 0; k < 2; ++k)
  {
    const int least = box.getMinimum()[k] - _bounds.getMinimum()[k];
    const int most = box.getMaximum()[k] - _bounds.getMaximum()[k];
    shift[k] = least <= most ? std::clamp(to[k] - _from[k], least, most) : 0;
  }
  for (const auto& action : _shifts)
  {
    action->setShift(shift[0], shift[1]);
    action->apply();
  }
}

void NYXSliceEditWidgetMediatorShiftDelegate::release()
{
  if (_shifts.empty()) return;
  NYXActionHistory& history = editMediator().history();
  for (auto& shift : _shifts)
    if (shift->isApplied() && !shift->isNull()) history.push(std::move(shift), false);
  _shifts.clear();
  history.closeStep();
}
