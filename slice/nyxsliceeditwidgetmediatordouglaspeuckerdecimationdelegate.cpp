#include "slice/nyxsliceeditwidgetmediatordouglaspeuckerdecimationdelegate.h"

#include "geometry/curve.h"
#include "geometry/curveprocessing/douglaspeuckercurvedecimation.h"
#include "model/model.h"
#include "model/modelitem.h"
#include "slice/image/nyxdecimalbox.h"

#include <QDoubleSpinBox>
#include <QFormLayout>

void NYXSliceEditWidgetMediatorDouglasPeuckerDecimationDelegate::addControls(QFormLayout& form, const ModelItem&)
{
  _tolerance = 1;
  auto* tolerance = new NYXDecimalBox;
  tolerance->setObjectName("tolerance");
  tolerance->setRange(0, 100);
  tolerance->setSingleStep(0.5);
  tolerance->setValue(_tolerance);
  tolerance->setToolTip(tr("How far from the new contour a vertex may lie that is left out"));
  connect(tolerance, QOverload<double>::of(&QDoubleSpinBox::valueChanged), this,
          [this](double value)
          {
            _tolerance = value;
            updatePreview();
          });
  form.addRow("Tolerance (pixels)", tolerance);
}

std::optional<Vertices<int>>
NYXSliceEditWidgetMediatorDouglasPeuckerDecimationDelegate::changed(const ModelItem& item) const
{
  Curve<int> decimated;
  DouglasPeuckerCurveDecimation<int>(static_cast<Real<int>>(_tolerance))
      .apply(Curve<int>(item.getVertices(), !item.isClosed()), decimated);
  if (item.isClosed() && decimated.getSize() < minNumVertices(MPrimitive::Polygon)) return std::nullopt;
  return decimated;
}
