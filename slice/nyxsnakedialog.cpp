#include "slice/nyxsnakedialog.h"

#include "slice/image/nyxdecimalbox.h"
#include "slice/image/nyxintegerbox.h"

#include <QCheckBox>
#include <QDoubleSpinBox>
#include <QFormLayout>
#include <QSpinBox>

NYXSnakeDialog::NYXSnakeDialog(const SnakeConfig& config, QWidget* parent)
  : NYXContourToolDialog(tr("Run Snake"), parent),
    _elasticity(addNumber(tr("Elasticity"), tr("How much the contour resists stretching; more of it shrinks it"),
                          "elasticity", 0, 1000, config.elasticity)),
    _rigidity(addNumber(tr("Rigidity"), tr("How much the contour resists bending; more of it rounds corners"),
                        "rigidity", 0, 1000, config.rigidity)),
    _imageForce(addNumber(tr("Image force"), tr("How much edges in the image attract the contour"), "imageForce", 0,
                          100, config.imageForce)),
    _balloonForce(addNumber(tr("Balloon force"), tr("Push outward (positive) or inward (negative)"), "balloonForce",
                            -100, 100, config.balloonForce)),
    _step(addNumber(tr("Step"), tr("Pixels that a force of 1 moves the contour by per iteration"), "step", 0.001, 10,
                    config.step)),
    _iterations(
        addCount(tr("Iterations"), tr("How many there are at the most"), "iterations", 100000, config.iterations)),
    _scale(addCount(tr("Scale"),
                    tr("Factor by which the image is reduced first; the lengths below are in pixels of "
                       "the reduced image"),
                    "scale", 32, config.scale)),
    _convergence(addNumber(tr("Convergence (pixels)"), tr("Mean movement per iteration at which the contour rests"),
                           "convergence", 0, 10, config.convergence)),
    _smoothing(addNumber(tr("Smoothing (pixels)"), tr("How much the image is smoothed, as a standard deviation"),
                         "smoothing", 0, 100, config.smoothing)),
    _reach(addNumber(tr("Reach (pixels)"), tr("How far from the contour edges are sought"), "reach", 0, 100,
                     config.reach)),
    _propagates(new QCheckBox(tr("Go on through the following slices")))
{
  setObjectName("snakeDialog");
  offerAll(1);
  _propagates->setObjectName("propagates");
  _propagates->setToolTip(tr("Make a contour on each slice that follows, each starting from the one before"));
  _propagates->setChecked(config.propagates);
  form().addRow(_propagates);
}

QDoubleSpinBox* NYXSnakeDialog::addNumber(const QString& label, const QString& toolTip, const char* name, double least,
                                          double greatest, double value)
{
  auto* number = new NYXDecimalBox;
  number->setObjectName(name);
  number->setToolTip(toolTip);
  number->setDecimals(3);
  number->setSingleStep(0.1);
  number->setRange(least, greatest);
  number->setValue(value);
  form().addRow(label, number);
  return number;
}

QSpinBox* NYXSnakeDialog::addCount(const QString& label, const QString& toolTip, const char* name, int greatest,
                                   int value)
{
  auto* number = new NYXIntegerBox;
  number->setObjectName(name);
  number->setToolTip(toolTip);
  number->setRange(1, greatest);
  number->setValue(value);
  form().addRow(label, number);
  return number;
}

SnakeConfig NYXSnakeDialog::config() const
{
  SnakeConfig config;
  config.elasticity = _elasticity->value();
  config.rigidity = _rigidity->value();
  config.imageForce = _imageForce->value();
  config.balloonForce = _balloonForce->value();
  config.step = _step->value();
  config.iterations = _iterations->value();
  config.scale = _scale->value();
  config.convergence = _convergence->value();
  config.smoothing = _smoothing->value();
  config.reach = _reach->value();
  config.propagates = _propagates->isChecked();
  return config;
}
