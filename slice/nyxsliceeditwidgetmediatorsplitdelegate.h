#pragma once

#include "slice/nyxsliceeditwidgetmediatordelegate.h"

#include <QPoint>

#include <vector>

/// Cuts the selected contour along a line that is drawn with the left button.
class NYXSliceEditWidgetMediatorSplitDelegate : public NYXSliceEditWidgetMediatorDelegate
{
  Q_OBJECT

public:
  explicit NYXSliceEditWidgetMediatorSplitDelegate(NYXSliceEditWidgetMediator& mediator);

  /// Works on the first selected contour; nothing happens when there is none.
  void activate() override;
  void deactivate() override;
  using NYXSliceEditWidgetMediatorDelegate::worksOn;
  bool worksOn(const ModelItem& item) const override { return &item == _item; }

protected:
  void paintFeedback(QPainter& painter) override;
  QRect feedbackRect() const override;
  QString editMode() const override { return "SPLIT"; }
  QString hint() const override { return tr("Draw a line through the contour to split it, Escape to cancel"); }
  void press(const NYXPointerEvent& event) override;
  void move(const NYXPointerEvent& event) override;
  void release() override;

private:
  /// The items that the line makes of the contour; fewer than two when it cannot be split.
  std::vector<std::unique_ptr<ModelItem>> parts() const;

  ModelItem* _item = nullptr;
  bool _isDrawing = false;
  QPoint _from; // on the canvas
  QPoint _to;
};
