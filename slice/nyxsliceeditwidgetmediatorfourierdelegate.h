#pragma once

#include "geometry/curveprocessing/fourierdescriptors.h"
#include "slice/nyxsliceeditwidgetmediatorcontourdelegate.h"

class QDoubleSpinBox;
class QSpinBox;

/// Smooths closed contours: only their first Fourier descriptors are kept, by number or by the share of the shape that
/// they describe.
class NYXSliceEditWidgetMediatorFourierDelegate : public NYXSliceEditWidgetMediatorContourDelegate
{
  Q_OBJECT

public:
  using NYXSliceEditWidgetMediatorContourDelegate::NYXSliceEditWidgetMediatorContourDelegate;

protected:
  QString editMode() const override { return "SMOOTH"; }
  QString hint() const override
  {
    return tr("Choose how much of the shape is kept, Return to finish, Escape to cancel");
  }
  QString title() const override { return tr("Fourier smoothing"); }
  bool isApplicable(const ModelItem& item) const override;
  void addControls(QFormLayout& form, const ModelItem& item) override;
  std::optional<Vertices<int>> changed(const ModelItem& item) const override;

private:
  void setNumber(int number);
  void setFidelity(double percent);

  FourierDescriptors<double> _first; // of the first contour
  int _numHarmonics = 1;
  QPointer<QSpinBox> _number;
  QPointer<QDoubleSpinBox> _fidelity;
};
