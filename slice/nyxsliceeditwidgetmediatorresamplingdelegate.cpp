#include "slice/nyxsliceeditwidgetmediatorresamplingdelegate.h"

#include "geometry/curveprocessing/curveresampling.h"
#include "model/modelitem.h"
#include "slice/image/nyxintegerbox.h"
#include "slice/nyxcontourvertices.h"

#include <QFormLayout>
#include <QSpinBox>

#include <algorithm>

namespace
{
constexpr int fewest = 3;
constexpr int most = 1000000;
} // namespace

void NYXSliceEditWidgetMediatorResamplingDelegate::addControls(QFormLayout& form, const ModelItem& item)
{
  _numVertices = std::max(fewest, item.getSize());
  auto* number = new NYXIntegerBox;
  number->setObjectName("numVertices");
  number->setRange(fewest, most);
  number->setValue(_numVertices);
  number->setToolTip(tr("How many vertices the contour gets"));
  connect(number, QOverload<int>::of(&QSpinBox::valueChanged), this,
          [this](int value)
          {
            _numVertices = value;
            updatePreview();
          });
  form.addRow("Vertices", number);
}

std::optional<Vertices<int>> NYXSliceEditWidgetMediatorResamplingDelegate::changed(const ModelItem& item) const
{
  Curve<double> resampled(2, _numVertices);
  CurveResampling<double>().apply(realCurve(item), resampled);
  return roundedVertices(resampled);
}
