#pragma once

#include "slice/nyxsliceeditwidgetmediatorcontourdelegate.h"

/// Gives contours another number of vertices, at equal distances along them.
class NYXSliceEditWidgetMediatorResamplingDelegate : public NYXSliceEditWidgetMediatorContourDelegate
{
  Q_OBJECT

public:
  using NYXSliceEditWidgetMediatorContourDelegate::NYXSliceEditWidgetMediatorContourDelegate;

protected:
  QString editMode() const override { return "RESAMPLE"; }
  QString hint() const override { return tr("Choose the number of vertices, Return to finish, Escape to cancel"); }
  QString title() const override { return "Contour resampling"; }
  void addControls(QFormLayout& form, const ModelItem& item) override;
  std::optional<Vertices<int>> changed(const ModelItem& item) const override;

private:
  int _numVertices = 3;
};
