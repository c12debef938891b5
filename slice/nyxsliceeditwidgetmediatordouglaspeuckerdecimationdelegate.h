#pragma once

#include "slice/nyxsliceeditwidgetmediatorcontourdelegate.h"

/// Leaves out vertices of contours that lie within a tolerance of what remains.
class NYXSliceEditWidgetMediatorDouglasPeuckerDecimationDelegate : public NYXSliceEditWidgetMediatorContourDelegate
{
  Q_OBJECT

public:
  using NYXSliceEditWidgetMediatorContourDelegate::NYXSliceEditWidgetMediatorContourDelegate;

protected:
  QString editMode() const override { return "DECIMATE"; }
  QString hint() const override { return tr("Choose the tolerance, Return to finish, Escape to cancel"); }
  QString title() const override { return "Douglas-Peucker decimation"; }
  void addControls(QFormLayout& form, const ModelItem& item) override;
  std::optional<Vertices<int>> changed(const ModelItem& item) const override;
  QString refusal() const override { return "Cannot decimate to less than 3 vertices"; }

private:
  double _tolerance = 1;
};
