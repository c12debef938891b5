#pragma once

#include "image/activecontour/snakeconfig.h"
#include "slice/nyxcontourtooldialog.h"

class QCheckBox;
class QDoubleSpinBox;
class QSpinBox;

/// Asks for the parameters of the active contour.
class NYXSnakeDialog : public NYXContourToolDialog
{
  Q_OBJECT

public:
  NYXSnakeDialog(const SnakeConfig& config, QWidget* parent);

  SnakeConfig config() const;

private:
  QDoubleSpinBox* addNumber(const QString& label, const QString& toolTip, const char* name, double least,
                            double greatest, double value);
  QSpinBox* addCount(const QString& label, const QString& toolTip, const char* name, int greatest, int value);

  QDoubleSpinBox* _elasticity;
  QDoubleSpinBox* _rigidity;
  QDoubleSpinBox* _imageForce;
  QDoubleSpinBox* _balloonForce;
  QDoubleSpinBox* _step;
  QSpinBox* _iterations;
  QSpinBox* _scale;
  QDoubleSpinBox* _convergence;
  QDoubleSpinBox* _smoothing;
  QDoubleSpinBox* _reach;
  QCheckBox* _propagates;
};
