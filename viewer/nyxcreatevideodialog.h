#pragma once

#include "viewer/nyxrenderingvideo.h"

#include <QDialog>

class QCheckBox;
class QLineEdit;
class QPushButton;
class QSpinBox;

/// Asks for the file and the kind of a video.
class NYXCreateVideoDialog : public QDialog
{
  Q_OBJECT

public:
  explicit NYXCreateVideoDialog(QWidget* parent);

  NYXVideoSettings settings() const;

private:
  QSpinBox* createNumber(const char* name, int least, int most, int value, const QString& suffix);
  void chooseFile();
  void update();

  QLineEdit* _output;
  QSpinBox* _frameRate;
  QCheckBox* _isCircular;
  QCheckBox* _isRepeated;
  QSpinBox* _stepSize;
  QSpinBox* _timeout;
  QPushButton* _ok = nullptr;
};
