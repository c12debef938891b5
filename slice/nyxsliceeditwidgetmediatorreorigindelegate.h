#pragma once

#include "slice/nyxsliceeditwidgetmediatorcontourdelegate.h"

class QSpinBox;

/// Makes another vertex of a closed contour the first one.
class NYXSliceEditWidgetMediatorReoriginDelegate : public NYXSliceEditWidgetMediatorContourDelegate
{
  Q_OBJECT

public:
  using NYXSliceEditWidgetMediatorContourDelegate::NYXSliceEditWidgetMediatorContourDelegate;

protected:
  QString editMode() const override { return "ORIGIN"; }
  QString hint() const override
  {
    return tr("Click a vertex or choose its number, Return to finish, Escape to cancel");
  }
  QString title() const override { return "Contour reparameterization"; }
  bool isApplicable(const ModelItem& item) const override;
  void addControls(QFormLayout& form, const ModelItem& item) override;
  std::optional<Vertices<int>> changed(const ModelItem& item) const override;
  void press(const NYXPointerEvent& event) override;

private:
  int _origin = 0;
  QPointer<QSpinBox> _number;
};
