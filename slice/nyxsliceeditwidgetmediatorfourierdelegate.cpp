#include "slice/nyxsliceeditwidgetmediatorfourierdelegate.h"

#include "model/modelitem.h"
#include "slice/image/nyxdecimalbox.h"
#include "slice/image/nyxintegerbox.h"
#include "slice/nyxcontourvertices.h"

#include <QDoubleSpinBox>
#include <QFormLayout>
#include <QSignalBlocker>

#include <algorithm>

namespace
{
constexpr int most = 500; // descriptors: contours are drawn pixel by pixel, so that more would describe the steps
constexpr double fullyDescribed = 0.999;

int numHarmonicsOf(const ModelItem& item)
{
  return std::clamp(item.getSize() / 2, 1, most);
}
} // namespace

bool NYXSliceEditWidgetMediatorFourierDelegate::isApplicable(const ModelItem& item) const
{
  return item.isClosed() && item.getSize() > 2;
}

void NYXSliceEditWidgetMediatorFourierDelegate::addControls(QFormLayout& form, const ModelItem& item)
{
  _first.compute(realCurve(item), numHarmonicsOf(item));
  _fidelity = new NYXDecimalBox;
  _fidelity->setObjectName("fidelity");
  _fidelity->setRange(0, 100);
  _fidelity->setDecimals(2);
  _fidelity->setSuffix(" %");
  _fidelity->setSingleStep(0.1);
  _fidelity->setToolTip(tr("Share of the contour's variance that is kept"));
  _number = new NYXIntegerBox;
  _number->setObjectName("numDescriptors");
  _number->setRange(1, _first.getNumHarmonics());
  _number->setToolTip(tr("How many Fourier descriptors are kept"));
  form.addRow(tr("Fidelity"), _fidelity);
  form.addRow(tr("Descriptors"), _number);
  setNumber(_first.numHarmonicsFor(fullyDescribed));
  connect(_number, QOverload<int>::of(&QSpinBox::valueChanged), this,
          &NYXSliceEditWidgetMediatorFourierDelegate::setNumber);
  connect(_fidelity, QOverload<double>::of(&QDoubleSpinBox::valueChanged), this,
          &NYXSliceEditWidgetMediatorFourierDelegate::setFidelity);
}

void NYXSliceEditWidgetMediatorFourierDelegate::setNumber(int number)
{
  _numHarmonics = number;
  const QSignalBlocker numberBlocker(_number);
  const QSignalBlocker fidelityBlocker(_fidelity);
  _number->setValue(number);
  _fidelity->setValue(100 * _first.fidelity(number));
  updatePreview();
}

void NYXSliceEditWidgetMediatorFourierDelegate::setFidelity(double percent)
{
  _numHarmonics = std::max(1, _first.numHarmonicsFor(percent / 100));
  const QSignalBlocker blocker(_number);
  _number->setValue(_numHarmonics);
  updatePreview();
}

std::optional<Vertices<int>> NYXSliceEditWidgetMediatorFourierDelegate::changed(const ModelItem& item) const
{
  FourierDescriptors<double> descriptors;
  descriptors.compute(realCurve(item), std::min(_numHarmonics, numHarmonicsOf(item)));
  return roundedVertices(descriptors.reconstruct(descriptors.getNumHarmonics(), item.getSize()));
}
