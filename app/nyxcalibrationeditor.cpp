#include "app/nyxcalibrationeditor.h"

#include "app/nyxnumberbox.h"
#include "model/io/calibrationlimits.h"
#include "numeric/exception.h"

#include <QFormLayout>

namespace
{
constexpr double least = 1e-15; // what stack files can hold
constexpr double greatest = 1e15;

std::optional<double> numberOf(const std::optional<PixelCalibration>& calibration,
                               float (PixelCalibration::*get)() const)
{
  if (!calibration) return {};
  return (*calibration.*get)();
}
} // namespace

NYXCalibrationEditor::NYXCalibrationEditor(QWidget* parent) : QWidget(parent)
{
  auto* const form = new QFormLayout(this);
  form->setContentsMargins(0, 0, 0, 0);
  _width = NYXNumberBox::addTo(*form, "pixelWidth", tr("Pixel width"), tr("Width of a pixel; the aspect ratio stays"));
  _height = NYXNumberBox::addTo(*form, "pixelHeight", tr("Pixel height"), tr("Height of a pixel; the width stays"));
  _aspectRatio = NYXNumberBox::addTo(*form, "aspectRatio", tr("Aspect ratio"),
                                     tr("Height of a pixel divided by its width; the width stays"));
  for (NYXNumberBox* const box : {_width, _height, _aspectRatio}) box->setRange(least, greatest);
  setFocusProxy(_width);
  connect(_width, &NYXNumberBox::edited, this,
          [this]
          {
            change(
                [this](PixelCalibration& calibration)
                {
                  calibration.setPixelWidth(static_cast<float>(_width->getNumber()));
                  calibration.setAspectRatio(calibration.getAspectRatio());
                });
          });
  connect(_height, &NYXNumberBox::edited, this,
          [this]
          {
            change(
                [this](PixelCalibration& calibration)
                {
                  calibration.setPixelWidth(calibration.getPixelWidth());
                  calibration.setPixelHeight(static_cast<float>(_height->getNumber()));
                });
          });
  connect(_aspectRatio, &NYXNumberBox::edited, this,
          [this]
          {
            change(
                [this](PixelCalibration& calibration)
                {
                  calibration.setPixelWidth(calibration.getPixelWidth());
                  calibration.setAspectRatio(static_cast<float>(_aspectRatio->getNumber()));
                });
          });
}

/// The two numbers that are set give the third one.
template <class Set> void NYXCalibrationEditor::change(Set set)
{
  PixelCalibration calibration = _calibration.value_or(_fallback);
  calibration.clearFlags();
  set(calibration);
  calibration.compute();
  _calibration = calibration;
  show();
  emit edited();
}

void NYXCalibrationEditor::setCalibration(const std::optional<PixelCalibration>& calibration)
{
  _calibration = calibration;
  show();
}

/// A box in which the user types keeps its text.
void NYXCalibrationEditor::show()
{
  const auto showIn = [this](NYXNumberBox& box, float (PixelCalibration::*get)() const)
  {
    const std::optional<double> number = numberOf(_calibration, get);
    if (!box.hasFocus() || !number || !box.hasNumber() || static_cast<float>(box.getNumber()) != *number)
      box.setNumber(number);
  };
  showIn(*_width, &PixelCalibration::getPixelWidth);
  showIn(*_height, &PixelCalibration::getPixelHeight);
  showIn(*_aspectRatio, &PixelCalibration::getAspectRatio);
}

void NYXCalibrationEditor::setUnit(const LengthUnit& unit)
{
  if (_calibration) _calibration->setLengthUnit(unit);
  _fallback.setLengthUnit(unit);
  _width->setUnit(QString::fromStdString(unit.symbol()));
  _height->setUnit(QString::fromStdString(unit.symbol()));
}

void NYXCalibrationEditor::scale(double factor)
{
  if (!_calibration) return;
  _calibration->setPixelWidth(static_cast<float>(_calibration->getPixelWidth() * factor));
  _calibration->setPixelHeight(static_cast<float>(_calibration->getPixelHeight() * factor));
  show();
}

void requireStorable(const PixelCalibration& calibration)
{
  if (isStorableCalibration(calibration)) return;
  const QString text =
      NYXCalibrationEditor::tr("A pixel width of %1 %2 with an aspect ratio of %3 cannot be saved: stack "
                               "files hold numbers from 1e-15 to 1e15");
  throw ValueError("void requireStorable(const PixelCalibration&)",
                   text.arg(calibration.getPixelWidth())
                       .arg(QString::fromStdString(calibration.getLengthUnit().symbol()))
                       .arg(calibration.getAspectRatio())
                       .toStdString());
}
