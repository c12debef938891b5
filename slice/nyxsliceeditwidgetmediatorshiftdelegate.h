#pragma once

#include "slice/nyxsliceeditwidgetmediatordelegate.h"

#include "numeric/vector.h"

#include <vector>

class NYXItemShiftAction;

/// Drags the selected items as a whole, within the image.
class NYXSliceEditWidgetMediatorShiftDelegate : public NYXSliceEditWidgetMediatorDelegate
{
  Q_OBJECT

public:
  explicit NYXSliceEditWidgetMediatorShiftDelegate(NYXSliceEditWidgetMediator& mediator);
  ~NYXSliceEditWidgetMediatorShiftDelegate() override;

  /// Nothing happens when nothing is selected.
  void activate() override;
  void deactivate() override;
  using NYXSliceEditWidgetMediatorDelegate::worksOn;
  bool worksOn(const ModelItem& item) const override;

protected:
  QString editMode() const override { return "MOVE"; }
  QString hint() const override { return tr("Drag to move what is selected, Escape to end"); }
  void press(const NYXPointerEvent& event) override;
  void move(const NYXPointerEvent& event) override;
  void release() override;

private:
  std::vector<std::unique_ptr<NYXItemShiftAction>> _shifts; // of the drag at work
  BoundingBox<int> _bounds;                                 // of the items when it began
  Vector<int> _from;                                        // image position
};
